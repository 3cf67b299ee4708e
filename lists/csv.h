// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_CSV_H
#define REELDB_LISTS_CSV_H

#include <string>
#include <vector>

namespace reeldb::lists {

/// One record as RFC 4180 has it, with its line end. A field with a comma, a quote or a line end stands in quotes, its
/// own quotes doubled. A field that a spreadsheet would run as a formula, or that begins with an apostrophe, stands
/// behind an apostrophe. Any other goes as it is.
std::string csvRow(const std::vector<std::string>& fields);

} // namespace reeldb::lists

#endif
