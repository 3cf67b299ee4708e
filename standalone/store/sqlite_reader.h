// SPDX-License-Identifier: Apache-2.0
//
// Reads a project from its tables, whichever @p version they have. All functions throw sqlite::Failure, with cause
// Damaged if the tables contain data that this program never writes. REQUIRES: a transaction.
#ifndef REELDB_STORE_SQLITE_READER_H
#define REELDB_STORE_SQLITE_READER_H

#include <cstdint>
#include <functional>
#include <optional>
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
enum class LogSet { Reels, Others };
void readLogs(sqlite::Database& database, std::int64_t version, LogSet set,
              const std::function<void(StoredLog&&)>& sink);

std::vector<std::pair<std::string, std::int64_t>> countOthersByReel(sqlite::Database& database, std::int64_t version);

/// Reads single logs. REQUIRES: a version with history.
class LogLookup {
public:
  explicit LogLookup(sqlite::Database& database);
  std::optional<StoredLog> find(std::int64_t number); ///< empty if there is no such log
  bool exists(std::int64_t number);

private:
  sqlite::Statement log_, fields_, exists_;
};

} // namespace reelhost

#endif
