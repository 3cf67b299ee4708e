// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_TABLE_H
#define REELDB_CLI_TABLE_H

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace reeldb::cli {

struct Column {
  std::string title;
  bool number = false;   ///< to the right
  bool optional = false; ///< left out when no row has anything there
};

/// Rows of text under titles, in columns as wide as their contents. On a terminal the columns other than the first are
/// cut when a row would not fit; elsewhere nothing is ever cut.
class Table {
public:
  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// A cell for each column. Any bytes.
  void add(std::vector<std::string> row);
  bool empty() const { return rows_.empty(); }

  /// The lines for a terminal of that many columns, or for anything else.
  std::string text(std::optional<std::size_t> terminalColumns, bool colours) const;
  /// Prints it on standard output.
  void print() const;

private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

} // namespace reeldb::cli

#endif
