// SPDX-License-Identifier: Apache-2.0
//
// Which reels shots need, and which of those are not ready.
#ifndef REELDB_APP_NEEDS_H
#define REELDB_APP_NEEDS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/reels.h"
#include "app/session.h"
#include "lists/list.h"

namespace reeldb::app {

/// One reel that shots need.
struct Need {
  std::string id; ///< as its record spells it, or as the shots do when there is no record
  std::int64_t shots = 0;
  std::optional<Reel> reel;          ///< empty: there is no record
  std::vector<std::string> troubles; ///< what stands in the way of using it: "missing", "unavailable", "unknown type"

  std::string state() const; ///< the troubles, or "ready"
};

/// The needs of the project's shots that have one of these clip names, letter case aside, in the order of the first
/// shot of each. Throws Error: NotFound for a name that no shot has, Refused when no such shot has a reel.
std::vector<Need> needsOfClips(Session& session, const std::vector<std::string>& clips);

/// The needs of the shots recorded from a reel. Throws Error (NotFound) when there is neither shot nor reel, (Refused)
/// when no shot was recorded from it.
std::vector<Need> needsOfReel(Session& session, const std::string& reel);

/// The needs of a list, which need not have been imported; empty when no clip in it has a reel. Throws Error.
std::vector<Need> needsOfList(Session& session, const lists::List& list);

std::size_t readyCount(const std::vector<Need>& needs);

} // namespace reeldb::app

#endif
