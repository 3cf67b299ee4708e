// SPDX-License-Identifier: Apache-2.0
//
// Shots of the open project. A shot has the form of the clip that becomes it: texts as they are stored, line 0.
#ifndef REELDB_APP_SHOTS_H
#define REELDB_APP_SHOTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "app/session.h"
#include "lists/list.h"

namespace reeldb::app {

using Shot = lists::Clip;

/// A shot with the number of its log, by which people name it. No other shot of the project ever has that number.
struct NumberedShot {
  std::int64_t number = 0;
  Shot shot;
};

/// The shots recorded from one reel.
struct ReelShots {
  std::string reel; ///< the identifier as its record spells it
  std::vector<NumberedShot> shots;
};

/// The shots recorded from the reel, ignoring letter case, in the order of the database. Throws Error (NotFound).
ReelShots shotsOfReel(Session& session, const std::string& id);

/// All shots of the project, in the order of creation.
std::vector<Shot> allShots(Session& session);

} // namespace reeldb::app

#endif
