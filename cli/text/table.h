// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_TABLE_H
#define REELDB_CLI_TABLE_H

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace reeldb::cli {

struct Column {
  std::string title;
  bool number = false;   ///< aligned to the right
  bool optional = false; ///< left out if the column is empty in all rows
};

/// Rows of text under titles, in columns as wide as their contents. On a terminal, cells of columns other than the
/// first are wrapped if a row would not fit; elsewhere a row is one line.
class Table {
public:
  /// Titles and cells may contain any bytes.
  explicit Table(std::vector<Column> columns);

  /// Adds a row with one cell per column.
  void add(std::vector<std::string> row);
  bool empty() const { return rows_.empty(); }
  /// Leaves out the line of titles.
  void hideTitles() { showsTitles_ = false; }

  /// The table as text, each line indented by @p indent blanks, fitted to the columns of a terminal if given.
  std::string text(std::optional<std::size_t> terminalColumns, bool colours, std::size_t indent = 0) const;
  /// Prints it on standard output.
  void print(std::size_t indent = 0) const;
  /// Prints the table, or @p nothing if it has no rows.
  void printOr(std::string_view nothing) const;

private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
  bool showsTitles_ = true;
};

} // namespace reeldb::cli

#endif
