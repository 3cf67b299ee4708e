// SPDX-License-Identifier: Apache-2.0
//
// Which reels an operation is for: by their names, by patterns and by conditions.
#ifndef REELDB_APP_SELECTION_H
#define REELDB_APP_SELECTION_H

#include <string>
#include <vector>

#include "app/reels.h"
#include "app/session.h"

namespace reeldb::app {

struct Selection {
  /// Identifiers, and patterns of them in which a star stands for any characters; letter case is ignored. Empty: all
  /// reels.
  std::vector<std::string> reels;
  /// Conditions that all have to hold: "FIELD=VALUE" or "FIELD!=VALUE". The value is a pattern, too, and an empty one
  /// stands for a field without a value. Fields are those of changeReel; name; shelf, which is bin; shots; unused (yes
  /// or no; "unused" alone is "unused=yes"); roll, a camera roll; and list, a list that uses the reel, by its number,
  /// file name or title.
  std::vector<std::string> where;

  bool empty() const { return reels.empty() && where.empty(); }
  /// Whether it is the name of one reel.
  bool isOneName() const;
};

/// The selected reels: first those of each name or pattern in turn, each reel once, otherwise in the order of the
/// project. Throws Error: NotFound for a name or pattern of no reel or a list that is not kept, Invalid for a condition
/// that is not valid.
std::vector<Reel> selectReels(Session& session, const Selection& selection);

/// Their identifiers. Throws Error (NotFound) also if no reel is selected.
std::vector<std::string> requireSelected(Session& session, const Selection& selection);

/// Sorts reels by fields, the first of which counts most: fields of a condition except list and roll, "-FIELD" for
/// descending order. Numbers in texts count as numbers, letter case is ignored, and empty values come last. Throws
/// Error (Invalid).
void sortReels(std::vector<Reel>& reels, const std::vector<std::string>& fields);

} // namespace reeldb::app

#endif
