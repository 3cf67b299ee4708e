// SPDX-License-Identifier: Apache-2.0
//
// What the names of a project would be called if its lists were imported today.
#ifndef REELDB_APP_NAMES_CHECK_H
#define REELDB_APP_NAMES_CHECK_H

#include <cstddef>
#include <vector>

#include "app/names.h"
#include "app/session.h"

namespace reeldb::app {

struct NamesCheck {
  std::vector<ReelMove> moves;  ///< shots that get another reel
  std::vector<NamedReel> names; ///< names of shots that may mean several reels, each once
  bool applied = false;         ///< whether the moves were asked for
  bool stored = false;
  std::size_t shotsWithoutList = 0; ///< the number of shots, of those that keep no name, that no kept list uses
};

/// Works out the reels that the shots of the project have by all names of the project. A shot that was made before
/// projects kept lists has no list that says whether its name is cut; here such a name may be cut if it fills the reel
/// field of any list. With @p apply the moves are stored, else nothing is. Throws Error. REQUIRES: a session for
/// writing, if @p apply.
NamesCheck checkNames(Session& session, bool apply);

} // namespace reeldb::app

#endif
