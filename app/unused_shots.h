// SPDX-License-Identifier: Apache-2.0
//
// Shots that no list uses any more. For the sources of this room.
#ifndef REELDB_APP_UNUSED_SHOTS_H
#define REELDB_APP_UNUSED_SHOTS_H

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "app/session.h"
#include "app/shots.h"
#include "reelhost/host.h"

namespace reeldb::app {

/// The numbers of the logs that an import has made, and that nothing but changes of lists has changed. Empty if the
/// project keeps no history.
std::set<std::int64_t> madeByImports();

struct UnusedShots {
  std::vector<Shot> shots;
  std::vector<std::string> reels; ///< identifiers
};

/// Deletes those of the shots, given by their logs' numbers, that no kept list uses and that imports alone made and
/// changed; then each of their reels that has no shot left and that imports alone made and changed. Returns what was
/// deleted. What was made before the history of the project begins stays. Logs with numbers above @p lastBefore were
/// made by an import that is not stored yet.
UnusedShots deleteUnused(Session& session, const std::set<std::int64_t>& shots,
                         std::int64_t lastBefore = reelhost::lastLogNumber);

} // namespace reeldb::app

#endif
