// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_SHELL_WORD_H
#define REELDB_CLI_SHELL_WORD_H

#include <string>
#include <string_view>

namespace reeldb::cli {

/// The text as one word of a command line that can be typed into a shell: in quotes where it needs them. What cannot be
/// shown is written in the $'...' that most shells know.
std::string shellWord(std::string_view text);

} // namespace reeldb::cli

#endif
