// SPDX-License-Identifier: Apache-2.0
//
// Text as it may go to a terminal. Identifiers and names are data from lists and other people: one that carries an
// escape sequence must not move anybody's cursor.
#ifndef REELDB_CLI_DISPLAY_TEXT_H
#define REELDB_CLI_DISPLAY_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace reeldb::cli {

/// The text as valid UTF-8 without control characters and without marks that change the direction of writing: these
/// and bytes that are no UTF-8 are written as \n, \x1b, \u202e and the like. Everything else stays as it is.
std::string displayText(std::string_view text);

/// The same, cut to a length that suits a message.
std::string shortText(std::string_view text);

/// Columns that a displayText takes up on a terminal.
std::size_t displayWidth(std::string_view text);

/// The longest start of a displayText that fits into @p columns (at least 1), with an ellipsis when something is left.
std::string cutToWidth(std::string_view text, std::size_t columns);

} // namespace reeldb::cli

#endif
