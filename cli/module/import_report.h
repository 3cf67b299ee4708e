// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_IMPORT_REPORT_H
#define REELDB_CLI_IMPORT_REPORT_H

#include "module/imported.h"
#include "module/output.h"

namespace reeldb::cli {

/// What became of the list, for people. Lines are at most so wide, unless one identifier alone is wider.
std::string toText(const Imported& imported, std::size_t columns);
Json toJson(const Imported& imported);

} // namespace reeldb::cli

#endif
