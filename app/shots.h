// SPDX-License-Identifier: Apache-2.0
//
// Shots of the open project. A shot has the form of the clip that becomes it: texts as they are stored, line 0.
#ifndef REELDB_APP_SHOTS_H
#define REELDB_APP_SHOTS_H

#include <string>
#include <vector>

#include "app/session.h"
#include "lists/list.h"

namespace reeldb::app {

using Shot = lists::Clip;

/// The shots recorded from one reel.
struct ReelShots {
  std::string reel; ///< the identifier as its record spells it
  std::vector<Shot> shots;
};

/// The shots recorded from the reel, ignoring letter case, in the order of the database. Throws Error (NotFound).
ReelShots shotsOfReel(Session& session, const std::string& id);

/// All shots of the project, in the order of creation.
std::vector<Shot> allShots(Session& session);

} // namespace reeldb::app

#endif
