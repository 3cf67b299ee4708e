// SPDX-License-Identifier: Apache-2.0
//
// The source table of a cut list: rows ">>> SOURCE name name id". Either name may be the cut one, and it is the only
// place of a cut list where a source has an identity of its own.
#ifndef REELDB_LISTS_SOURCE_TABLE_H
#define REELDB_LISTS_SOURCE_TABLE_H

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace reeldb::lists {

/// What the table says of a reel text.
struct SourceMatch {
  bool found = false;             ///< a row carries the text as one of its names, ignoring ASCII case
  std::string identifier;         ///< the longer name of that row; empty when the reel text itself is the identifier
  std::vector<std::string> names; ///< all names of the rows that fit, each once
  std::vector<std::string> ids;   ///< the ids of those rows, each once
  std::vector<std::string> fits;  ///< the different longer names, when the rows that fit do not agree
};

class SourceTable {
public:
  /// Takes what stands behind ">>> SOURCE". False when it holds no name.
  bool add(std::string_view row);

  /// Splits the names of the rows and makes find() ready; rows whose names hold single blanks need to know which texts
  /// are reels of the list. To be called once, after the last add().
  void settle(const std::function<bool(const std::string& folded)>& isReel);

  SourceMatch find(const std::string& reel) const;

private:
  struct Row {
    std::string names; ///< before settle(): both names as they stand
    std::string first, second;
    std::string id; ///< may be empty
  };

  static void split(Row& row, const std::function<bool(const std::string&)>& isReel);

  std::vector<Row> rows_;
  std::unordered_map<std::string, std::vector<std::size_t>> byName_; ///< folded name to rows, in order
};

} // namespace reeldb::lists

#endif
