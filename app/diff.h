// SPDX-License-Identifier: Apache-2.0
//
// What new versions of lists change: against the versions that the project keeps, or against its reels and shots.
#ifndef REELDB_APP_DIFF_H
#define REELDB_APP_DIFF_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/list_files.h"
#include "app/list_versions.h"
#include "app/names.h"
#include "app/session.h"
#include "app/shots.h"

namespace reeldb::app {

/// A reel that an import would create.
struct NewReel {
  std::string id;
  std::vector<Candidate> candidates;     ///< existing reels that the name may mean
  std::vector<std::string> perhaps = {}; ///< reels of the project and of the lists that it may be by the rules of names
};

/// A line of a list that could not be read.
struct RejectedLine {
  std::string file;
  lists::Rejected line;
};

struct ListDiff {
  std::vector<std::string> files;                    ///< the lists
  std::vector<std::optional<std::int64_t>> versions; ///< of each list, the kept list that it was compared with
  bool whole = false;                                ///< the argument of compareLists
  std::vector<NewReel> newReels;                     ///< in the order of the lists
  std::vector<std::string> goneReels;                ///< in the order of the project
  std::vector<lists::Spelling> spellings; ///< the spellings of a record and of a list, or two spellings of lists
  std::vector<Shot> added;                ///< shots that the project does not have, in the order of the lists
  std::vector<Shot> missing;          ///< shots of the kept version or of the project that no list has, in its order
  std::vector<ClipStep> trimmed;      ///< shots with another source in or out than in the kept version
  std::vector<ClipStep> changed;      ///< shots at another place of the cut than in the kept version
  std::vector<RejectedLine> rejected; ///< in the order of the lists
  std::vector<NamedReel> names = {};  ///< the names of the lists' sources, each once, in their order
  std::vector<ReelMove> moves = {};   ///< shots that the names of the lists would give another reel

  /// Whether there is no difference.
  bool empty() const
  {
    return newReels.empty() && goneReels.empty() && spellings.empty() && added.empty() && missing.empty() &&
           trimmed.empty() && changed.empty() && moves.empty();
  }
};

/// Compares each list with the version of it that the project keeps: with the kept list that has its bytes, or else its
/// file name, or else its title; the only list with the kept list @p as, if that is given. Changes nothing. Throws
/// Error, Refused if several kept lists have that name.
///
/// Lists without a kept version, or with @p whole all lists, are compared, taken together, with the reels and shots of
/// the project. A shot with a record in or out comes from a cut list, any other shot from a log file. Only shots from
/// lists of the compared kinds can be missing, because a cut list does not describe the content of a log file. A shot
/// is missing if one of these lists names its reel but none the shot. With @p whole the lists are complete: shots of
/// any reel can be missing, and a reel is gone if all of its shots of these kinds are missing. The names of the lists
/// are matched by @p rules.
ListDiff compareLists(Session& session, std::vector<ListFile> files, bool whole,
                      const std::optional<std::string>& as = {}, lists::NameRules rules = lists::NameRules::All);

} // namespace reeldb::app

#endif
