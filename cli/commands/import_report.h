// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_IMPORT_REPORT_H
#define REELDB_CLI_IMPORT_REPORT_H

#include <cstddef>
#include <string>

#include "app/import.h"

namespace reeldb::cli {

/// Whether the report is about an import or about a dry run.
enum class Mood { Fact, Conditional };

/// The result for the list as text for people. Names are wrapped at @p columns; quoted lines of the list are not.
std::string toText(const app::ImportedList& imported, std::size_t columns, Mood mood);

/// The rejected lines of the list alone, below its file; empty if it has none.
std::string rejectedText(const app::ImportedList& imported, Mood mood);

/// The totals in one line.
std::string totalsText(const app::ImportTotals& totals, Mood mood);

/// What the import removed, because only replaced versions of lists had it; empty if that is nothing.
std::string removedText(const app::ImportReport& report, std::size_t columns, Mood mood);

/// The reels that got another type, one line per reel.
std::string toText(const std::vector<app::TypeChange>& changes, Mood mood);

/// The shots that got another reel, one line per pair of reels.
std::string toText(const std::vector<app::ReelMove>& moves, Mood mood);

} // namespace reeldb::cli

#endif
