// SPDX-License-Identifier: Apache-2.0
//
// Text as it goes to a terminal: the escaping is the host's, the widths are the command's own.
#ifndef REELDB_CLI_DISPLAY_TEXT_H
#define REELDB_CLI_DISPLAY_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "reelhost/display_text.h"

namespace reeldb::cli {

using reelhost::displayText;

/// The displayText, cut to a length that suits a message.
std::string shortText(std::string_view text);

/// Columns that a displayText takes up on a terminal.
std::size_t displayWidth(std::string_view text);

/// The longest start of a displayText that fits into @p columns (at least 1), with an ellipsis when something is left.
std::string cutToWidth(std::string_view text, std::size_t columns);

} // namespace reeldb::cli

#endif
