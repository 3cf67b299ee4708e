// SPDX-License-Identifier: Apache-2.0
//
// The reels that shots need, and whether they are ready.
#ifndef REELDB_APP_NEEDS_H
#define REELDB_APP_NEEDS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/kept_lists.h"
#include "app/list_files.h"
#include "app/names.h"
#include "app/reels.h"
#include "app/session.h"

namespace reeldb::app {

/// One reel that shots need.
struct Need {
  std::string id; ///< as its record spells it; without a record, as the shots do
  std::int64_t shots = 0;
  std::optional<Reel> reel; ///< empty: there is no record
  /// why it cannot be used: "missing", "perhaps" (it has no record, but its names may mean reels that do),
  /// "unavailable", "unknown type"
  std::vector<std::string> troubles;
  std::vector<NamedReel> names = {};      ///< of a list: its names for this reel
  std::vector<Candidate> candidates = {}; ///< of a list: the reels that its names may mean, if it has no record

  std::string state() const; ///< the troubles, or "ready"
};

/// The needs of the project's shots that have one of these clip names, ignoring letter case, in the order of the first
/// shot of each. Throws Error: NotFound for a name that no shot has, Refused if none of these shots has a reel.
std::vector<Need> needsOfClips(Session& session, const std::vector<std::string>& clips);

/// The needs of the shots recorded from a reel. Throws Error: NotFound if there is neither such a reel nor such a shot,
/// Refused if no shot was recorded from the reel.
std::vector<Need> needsOfReel(Session& session, const std::string& reel);

/// The needs of a list, which need not be imported. Empty if none of its clips has a reel. Its names are
/// matched by @p rules; if the project keeps the list, or one list with its file name, they mean what a person decided
/// for it. Throws Error.
std::vector<Need> needsOfList(Session& session, const ListFile& file, lists::NameRules rules = lists::NameRules::All);

/// The needs of all shots of the project, and its reels without a shot: first the reels in the order of the project,
/// then those without a record.
std::vector<Need> needsOfProject(Session& session);

/// The needs of events of lists that the project keeps; a shot is counted for each event.
std::vector<Need> needsOfEvents(Session& session, const std::vector<ListUse>& events);

std::size_t readyCount(const std::vector<Need>& needs);

/// The order in which people look for reels: by state, which is missing, perhaps, unavailable, unknown type, ready;
/// then by shelf, reels without one last; then by identifier, ignoring letter case. @return Whether @p a comes before
/// @p b.
bool comesFirst(const Need& a, const Need& b);

/// The number of needs with each state, in that order.
std::vector<std::pair<std::string, std::size_t>> countsOfStates(const std::vector<Need>& needs);

/// Whether the project has no such reel: it is missing, or perhaps another one.
bool isMissing(const Need& need);

} // namespace reeldb::app

#endif
