// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_APP_RENAME_H
#define REELDB_APP_RENAME_H

#include <string>
#include <vector>

#include "app/session.h"
#include "app/shots.h"

namespace reeldb::app {

/// The result of renaming a reel, or of a dry run.
struct Renamed {
  std::string from, to;
  bool dryRun = false;
  bool stored = false;              ///< also false if the reel already has the name
  std::vector<Shot> shots;          ///< the shots of the reel, with the new identifier
  std::vector<std::string> remarks; ///< why the new name is doubtful; each "subject: fact (cause)"
};

/// Renames a reel and every shot recorded from it, and stores that. Outer blanks of the new name are removed. The old
/// name is stored, so that whichReel finds the reel by it. Throws Error: NotFound; Invalid or Refused for a name that
/// breaks the rule of reels.h; Refused if another reel has it, ignoring letter case. With @p dryRun nothing changes.
/// REQUIRES: a session for writing, unless it is a dry run.
Renamed renameReel(Session& session, const std::string& from, const std::string& to, bool dryRun);

} // namespace reeldb::app

#endif
