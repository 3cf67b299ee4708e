// SPDX-License-Identifier: Apache-2.0
//
// Whether a project file is whole. What these functions read, they read in the transaction that goes on. They throw
// sqlite::Failure.
#ifndef REELDB_STORE_SQLITE_INTEGRITY_H
#define REELDB_STORE_SQLITE_INTEGRITY_H

#include <filesystem>
#include <string>
#include <vector>

#include "store/sqlite.h"

namespace reelhost {

/// "N of M bytes" when the start of the file says that some of it is missing, else empty. What is in the write-ahead
/// log may not have reached the file, so nothing can be said while there is one. Throws also what inspectProjectFile
/// throws for @p path.
std::string missingBytes(sqlite::Database& database, const std::filesystem::path& path);

/// The first thing that is wrong with the pages of the file; empty when all is well.
std::string quickCheck(sqlite::Database& database);

/// A line for each thing that is wrong with the pages of the file and with what they hold; none when all is well.
std::vector<std::string> integrityProblems(sqlite::Database& database);

} // namespace reelhost

#endif
