// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_TERMINAL_H
#define REELDB_CLI_TERMINAL_H

#include <cstddef>
#include <cstdio>
#include <optional>

namespace reeldb::cli {

bool isTerminal(std::FILE* file);

/// Whether the file is a terminal that understands escape sequences, which a "dumb" one does not.
bool isCapableTerminal(std::FILE* file);

/// Whether colours may be used: the terminal is capable, and the environment variable NO_COLOR is not set.
bool showsColours(std::FILE* file);

/// The columns of the terminal; empty if the file is not a terminal.
std::optional<std::size_t> terminalColumns(std::FILE* file);

/// The columns at which text for people is wrapped: those of the terminal, or 100 if the file is not a terminal.
std::size_t textColumns(std::FILE* file);

} // namespace reeldb::cli

#endif
