// SPDX-License-Identifier: Apache-2.0
//
// The source table of a cut list: rows ">>> SOURCE name name id". Either name may be the cut one. No other place of a
// cut list gives a source an identity of its own.
#ifndef REELDB_LISTS_SOURCE_TABLE_H
#define REELDB_LISTS_SOURCE_TABLE_H

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace reeldb::lists {

/// One row for a reel text.
struct SourceRow {
  std::string longer;     ///< the longer of its names; with names of one length the reel text
  bool isSecond = false;  ///< whether that is its second name
  std::string sourceFile; ///< the source file noted below it; may be empty
  std::string id;         ///< may be empty
};

/// The rows of the table for a reel text.
struct SourceMatch {
  bool found = false;             ///< whether a row has the text as a name, ignoring ASCII case
  std::string identifier;         ///< the longer name of that row; empty if the reel text itself is the identifier
  std::vector<std::string> names; ///< all names of the rows that fit, each once
  std::vector<std::string> ids;   ///< the ids of those rows, each once
  std::vector<std::string> fits;  ///< the different longer names if the rows that fit do not agree
  std::vector<SourceRow> rows;    ///< all rows with the text as a name, in order
};

/// A row that cannot be used.
struct UnusedRow {
  std::size_t row = 0; ///< counted from 0, in the order of add()
  std::string reason;
};

/// Whether the id has the form of a UMID. Other ids are two hexadecimal words.
bool isUmid(std::string_view id);

class SourceTable {
public:
  using IsReel = std::function<bool(const std::string& folded)>;

  /// Takes the text behind ">>> SOURCE". Returns why it is not a row, or an empty text.
  std::string add(std::string_view row);

  /// Notes the source file of the last row. REQUIRES: a row was added.
  void noteSourceFile(std::string sourceFile) { rows_.back().sourceFile = std::move(sourceFile); }

  /// Splits the names of the rows and makes find() ready; rows whose names hold single blanks need to know which texts
  /// are reels of the list. To be called once, after the last add().
  ///
  /// Returns the rows that are left out: a row with one name if no event has that reel; a row without an id if neither
  /// name is the start of the other, because its meaning is then unclear, or if no event has either name. A complete
  /// row of a source that the list does not use is not left out.
  std::vector<UnusedRow> settle(const IsReel& isReel);

  SourceMatch find(const std::string& reel) const;

private:
  struct Row {
    std::string whole;         ///< before settle(): the text of the row
    std::string names;         ///< before settle(): the text before the id
    std::string first, second; ///< equal if the row has one name
    std::string id;            ///< may be empty
    std::string sourceFile;    ///< may be empty
    bool single = false;
  };

  static void split(Row& row, const IsReel& isReel);
  static std::string fault(const Row& row, const IsReel& isReel);

  std::vector<Row> rows_;
  std::unordered_map<std::string, std::vector<std::size_t>> byName_; ///< folded name: its rows, in order
};

} // namespace reeldb::lists

#endif
