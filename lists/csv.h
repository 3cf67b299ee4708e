// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_CSV_H
#define REELDB_LISTS_CSV_H

#include <string>
#include <vector>

namespace reeldb::lists {

/// One record according to RFC 4180, with its line end. A field with a comma, a quote or a line end is put in quotes,
/// and its own quotes are doubled. A field that a spreadsheet would run as a formula, or that begins with an
/// apostrophe, gets an apostrophe in front. Other fields are unchanged.
std::string csvRow(const std::vector<std::string>& fields);

} // namespace reeldb::lists

#endif
