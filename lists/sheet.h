// SPDX-License-Identifier: Apache-2.0
//
// Tables (CSV, TSV) of reels with their fields, or of clips. docs/formats/sheet.md describes them.
#ifndef REELDB_LISTS_SHEET_H
#define REELDB_LISTS_SHEET_H

#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// Whether a row of titles is among the first rows of the text.
bool isSheet(std::string_view text, const TitleMap& titles);

/// Whether tables have a column of this title, whatever a project calls its fields.
bool isSheetTitle(std::string_view title);

/// Reads a table. Throws Error if it has no row of titles. A row that cannot be read is a rejected line.
List readSheet(std::string_view text, const TitleMap& titles);

} // namespace reeldb::lists

#endif
