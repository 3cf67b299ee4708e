// SPDX-License-Identifier: Apache-2.0
//
// The tables of a project file and their upgrade steps.
#ifndef REELDB_STORE_SQLITE_SCHEMA_H
#define REELDB_STORE_SQLITE_SCHEMA_H

#include <functional>
#include <string_view>
#include <vector>

#include "store/sqlite.h"

namespace reelhost {

/// In bytes 68 to 71 of every project file ("REEL"). Never changes.
constexpr std::int64_t projectApplicationId = 0x5245454C;

/// Upgrades a file of one version to the next.
using SchemaStep = std::function<void(sqlite::Database&)>;
SchemaStep sqlStep(const char* sql); ///< runs the statements

/// Step n (from 0) upgrades a file of version n to version n + 1. A released step is never edited, because files of
/// that version exist. A change of the tables is a new step at the end.
using SchemaSteps = std::vector<SchemaStep>;

/// The first version that keeps a history and lists. In a file of version 1 the table logs also holds the deleted logs.
constexpr std::int64_t versionWithHistory = 2;

/// The steps of this program. Their count is the version that it writes; it reads that one and all older ones.
const SchemaSteps& schemaSteps();

/// Brings the tables from their version to the last one, one step at a time. REQUIRES: a transaction that writes.
void bringUpToDate(sqlite::Database& database, const SchemaSteps& steps);

/// The content of the first 100 bytes of a file.
struct FileStart {
  bool isSqlite = false;
  std::int64_t applicationId = 0;
  std::int64_t version = 0;
  std::int64_t bytes = 0; ///< size of the whole file; 0 if the writer did not store it
};
FileStart readFileStart(std::string_view start);

} // namespace reelhost

#endif
