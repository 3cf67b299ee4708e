// SPDX-License-Identifier: Apache-2.0
//
// Reads the history of a project from its tables. All functions throw sqlite::Failure, with cause Damaged if the tables
// hold data that no program of ours has written. REQUIRES: a transaction, and tables of a version with history.
#ifndef REELDB_STORE_SQLITE_HISTORY_H
#define REELDB_STORE_SQLITE_HISTORY_H

#include <cstdint>
#include <functional>
#include <optional>

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
