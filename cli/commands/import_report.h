// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_IMPORT_REPORT_H
#define REELDB_CLI_IMPORT_REPORT_H

#include <cstddef>
#include <string>

#include "app/import.h"

namespace reeldb::cli {

/// Whether the report tells what was done, or what would be if it were.
enum class Mood { Fact, Conditional };

/// What became of the list, for people. Names are wrapped at so many columns; a line of the list that is shown is not.
std::string toText(const app::ImportedList& imported, std::size_t columns, Mood mood);

} // namespace reeldb::cli

#endif
