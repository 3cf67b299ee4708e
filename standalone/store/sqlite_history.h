// SPDX-License-Identifier: Apache-2.0
//
// Reads the history of a project from its tables. All functions throw sqlite::Failure, with cause Damaged if the tables
// hold data that no program of ours has written. REQUIRES: a transaction, and tables of a version with history.
#ifndef REELDB_STORE_SQLITE_HISTORY_H
#define REELDB_STORE_SQLITE_HISTORY_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reelhost/history.h"
#include "store/sqlite.h"

namespace reelhost {

/// The log number under which a revision keeps the options of the project.
constexpr std::int64_t optionsNumber = 0;
/// The log number under which it keeps a list.
constexpr std::int64_t logNumberOfList(std::int64_t list)
{
  return -list;
}

/// The column logs of a revision: the numbers of its rows in changes, from the least on, with commas between.
std::string textOfNumbers(std::vector<std::int64_t> numbers);
std::optional<std::vector<std::int64_t>> numbersFrom(std::string_view text); ///< empty for any other text
std::vector<std::int64_t> changedLogs(const sqlite::Statement& row, int column);

/// The rows of changes, with the columns before, revision and log. A row is valid until the next call.
class ChangeRows {
public:
  explicit ChangeRows(sqlite::Database& database);
  /// The row of a log, a list or the options that @p revision changed.
  const sqlite::Statement& at(std::int64_t revision, std::int64_t log);
  /// The row of the next revision that changed the log, the list or the options; null if no later revision did.
  const sqlite::Statement* after(std::int64_t revision, std::int64_t log);

private:
  sqlite::Statement rows_;
};

/// Reads the numbers of the logs that a revision created, which @p row names in two columns, first_new and last_new. Of
/// the numbers between, it leaves out those of which the project knows nothing.
void readNewLogs(sqlite::Database& database, const sqlite::Statement& row, int column,
                 const std::function<void(std::int64_t)>& sink);
void readRevisions(sqlite::Database& database, const std::function<bool(Revision&&)>& sink); ///< the newest first
std::optional<RevisionChanges> changesOf(sqlite::Database& database, std::int64_t revision);
void readChangesOfLog(sqlite::Database& database, std::int64_t number, const std::function<void(LogChange&&)>& sink);
void readChangedLogs(sqlite::Database& database, const std::function<void(std::int64_t, std::int64_t, bool)>& sink);
std::int64_t trashCount(sqlite::Database& database);
std::int64_t removedListCount(sqlite::Database& database);

} // namespace reelhost

#endif
