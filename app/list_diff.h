// SPDX-License-Identifier: Apache-2.0
//
// What bringing lists in would change, and what of the project they no longer name.
#ifndef REELDB_CLI_LIST_DIFF_H
#define REELDB_CLI_LIST_DIFF_H

#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "lists/list.h"
#include "app/reel_names.h"
#include "reelhost/host.h"

namespace reeldb::cli {

/// A reel that an import would make.
struct NewReel {
  std::string id;
  std::vector<Candidate> candidates; ///< reels that are there and that the name may mean all the same
};

struct ListDiff {
  std::vector<NewReel> newReels;           ///< in the order of the lists
  std::vector<std::string> goneReels;      ///< in the order of the project
  std::vector<lists::Spelling> spellings;  ///< as the record spells it, and as a list does; or two spellings of lists
  std::vector<reelhost::Material> added;   ///< shots that the project has not, in the order of the lists
  std::vector<reelhost::Material> missing; ///< shots of the project that no list has, in its order

  bool empty() const
  {
    return newReels.empty() && goneReels.empty() && spellings.empty() && added.empty() && missing.empty();
  }
};

/// Compares the lists, taken together, with the open project.
///
/// A shot with a record in or out comes from a cut list, any other from a log file; missing and gone is only what comes
/// from lists of the kinds compared, for a cut says nothing of what a log holds. Shots are missing when a list names
/// their reel. With @p whole the lists are all there is: shots of any reel may be missing, and a reel is gone when all
/// of its shots that count are.
ListDiff compareLists(const std::vector<lists::List>& lists, ReelDbManager& manager, bool whole);

} // namespace reeldb::cli

#endif
