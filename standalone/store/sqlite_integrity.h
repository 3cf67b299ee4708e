// SPDX-License-Identifier: Apache-2.0
//
// Integrity checks of a project file. These functions read in the current transaction and throw sqlite::Failure.
#ifndef REELDB_STORE_SQLITE_INTEGRITY_H
#define REELDB_STORE_SQLITE_INTEGRITY_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "store/sqlite.h"

namespace reelhost {

/// "N of M bytes" if the file is shorter than its first bytes say, else empty. Also empty while there is a write-ahead
/// log, because its content may not be in the file yet. Also throws what inspectProjectFile throws for @p path.
std::string missingBytes(sqlite::Database& database, const std::filesystem::path& path);

/// The first fault in the pages of the file; empty if there is no fault.
std::string quickCheck(sqlite::Database& database);

/// One line per fault in the pages of the file and in their content; empty if there is no fault.
/// @p version is that of the tables.
std::vector<std::string> integrityProblems(sqlite::Database& database, std::int64_t version);

} // namespace reelhost

#endif
