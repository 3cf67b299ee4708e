// SPDX-License-Identifier: Apache-2.0
//
// Parting a reel, and moving or deleting single shots.
#ifndef REELDB_APP_SPLIT_H
#define REELDB_APP_SPLIT_H

#include <cstdint>
#include <string>
#include <vector>

#include "app/names.h"
#include "app/session.h"
#include "app/shots.h"

namespace reeldb::app {

/// What goes to the new reel: exactly one of these has elements.
struct SplitBy {
  std::vector<std::string> lists;  ///< what these kept lists mean by the names of the reel
  std::vector<std::string> names;  ///< what all lists mean by these names
  std::vector<std::int64_t> shots; ///< these shots, by number
};

struct Split {
  std::string from, into; ///< identifiers
  bool dryRun = false, stored = false;
  std::vector<ReelMove> moves;
};

/// Creates a reel and lets a part of another one be that reel. That is a decision: the same lists, and all others, mean
/// by the names and the shots what was decided. A shot that only some of its lists mean so becomes two. Throws Error:
/// NotFound; Invalid or Refused for a name of the new reel that breaks the rule of reels.h; Refused if a reel has it,
/// or if the reel has no such name, shot or event. With @p dryRun nothing is stored. REQUIRES: a session for writing,
/// unless it is a dry run.
Split splitReel(Session& session, const std::string& reel, const std::string& newReel, const SplitBy& by, bool dryRun);

struct ShotsMoved {
  std::string to;
  bool dryRun = false, stored = false;
  std::vector<NumberedShot> shots; ///< those that lie in another reel now
  std::vector<ReelMove> moves;
};

/// Puts shots into another reel, whatever their names say; lists that have them keep them there. Throws Error:
/// NotFound; Refused if the reel has the same shot. With @p dryRun nothing is stored. REQUIRES: a session for writing,
/// unless it is a dry run.
ShotsMoved moveShots(Session& session, const std::vector<std::int64_t>& shots, const std::string& to, bool dryRun);

struct ShotsDeleted {
  bool dryRun = false, stored = false;
  std::vector<NumberedShot> shots;
};

/// Deletes shots, with the events of lists that name them. No list brings them back. Throws Error (NotFound). With
/// @p dryRun nothing is stored. REQUIRES: a session for writing, unless it is a dry run.
ShotsDeleted deleteShots(Session& session, const std::vector<std::int64_t>& shots, bool dryRun);

} // namespace reeldb::app

#endif
