// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_LIST_FILE_H
#define REELDB_CLI_LIST_FILE_H

#include <string>

#include "lists/list.h"

namespace reeldb::cli {

/// Reads a cut list or log file. Throws Failure as readInputFile does, and when the file holds neither.
lists::List readListFile(const std::string& path);

} // namespace reeldb::cli

#endif
