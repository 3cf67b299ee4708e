// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_TERMINAL_H
#define REELDB_CLI_TERMINAL_H

#include <cstddef>
#include <cstdio>
#include <optional>

namespace reeldb::cli {

bool isTerminal(std::FILE* file);

/// Whether escape sequences are welcome there: a terminal that is not "dumb".
bool isCapableTerminal(std::FILE* file);

/// Whether colours are: a capable terminal, and the environment variable NO_COLOR is not set.
bool showsColours(std::FILE* file);

/// Columns of the terminal; nothing when the file is none.
std::optional<std::size_t> terminalColumns(std::FILE* file);

} // namespace reeldb::cli

#endif
