// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_NUMBER_H
#define REELDB_CLI_NUMBER_H

#include <optional>
#include <string_view>

namespace reeldb::cli {

/// The number that the text writes in decimal digits, nothing else; nothing when it is none or too large.
std::optional<int> parseNumber(std::string_view text);

} // namespace reeldb::cli

#endif
