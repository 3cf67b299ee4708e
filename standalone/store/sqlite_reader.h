// SPDX-License-Identifier: Apache-2.0
//
// Reads a project from its tables. All functions throw sqlite::Failure, with cause Damaged if the tables contain data
// that this program never writes. REQUIRES: a transaction.
#ifndef REELDB_STORE_SQLITE_READER_H
#define REELDB_STORE_SQLITE_READER_H

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "reelhost/store.h"
#include "store/sqlite.h"

namespace reelhost {

ProjectInfo readInfo(sqlite::Database& database);
KeyValues readOptions(sqlite::Database& database);
std::int64_t lastNumber(sqlite::Database& database); ///< the highest number that a log ever had

/// Which logs are read.
enum class LogSet { Reels, Others, LastDeletion };
void readLogs(sqlite::Database& database, LogSet set, const std::function<void(StoredLog&&)>& sink);

std::vector<std::pair<std::string, std::int64_t>> countOthersByReel(sqlite::Database& database);
std::vector<std::int64_t> lastDeletion(sqlite::Database& database);
std::int64_t trashCount(sqlite::Database& database);

} // namespace reelhost

#endif
