// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_APP_MERGE_H
#define REELDB_APP_MERGE_H

#include <string>
#include <vector>

#include "app/names.h"
#include "app/session.h"

namespace reeldb::app {

/// A field in which a reel differs from the one that it is joined with. The latter keeps its value.
struct LostField {
  std::string reel, field; ///< the identifier of the joined reel; the field as changeReel names it
  std::string value, kept; ///< of the joined reel, and of the remaining one
};

struct Merged {
  std::vector<std::string> from; ///< identifiers of the reels that are gone
  std::string into;
  bool dryRun = false, stored = false;
  std::vector<std::string> names;   ///< the names that mean the remaining reel from now on
  std::vector<LostField> different; ///< fields of the reels that are gone
  std::vector<ReelMove> moves;      ///< shots that have another reel now
};

/// Joins reels with another one: it gets their shots and their names, keeps its fields, and their records are deleted.
/// That is a decision: whatever lists come, the names mean the remaining reel. Clients see the reels before and after,
/// never two reels of one name. Throws Error: NotFound; Invalid if a reel is the remaining one; Refused if a reel that
/// would be deleted is in use, or, unless @p force, if lists give the reels different source ids. With @p dryRun
/// nothing is stored. REQUIRES: a session for writing, unless it is a dry run.
Merged mergeReels(Session& session, const std::vector<std::string>& from, const std::string& into, bool force,
                  bool dryRun);

} // namespace reeldb::app

#endif
