// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_SHELL_WORD_H
#define REELDB_CLI_SHELL_WORD_H

#include <string>
#include <string_view>

namespace reeldb::cli {

/// The text as one word of a shell command line, in quotes if necessary. A text with characters that displayText
/// escapes is written as $'...', which most shells understand.
std::string shellWord(std::string_view text);

} // namespace reeldb::cli

#endif
