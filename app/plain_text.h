// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_PLAIN_TEXT_H
#define REELDB_CLI_PLAIN_TEXT_H

#include <string>
#include <string_view>

namespace reeldb::cli {

/// Throws Failure (usage), "FACT (cause)", unless the text can be shown and handed on as it is: UTF-8 without control
/// characters. To be asked of every text that a command is to store; what is stored already is found as it is.
void requirePlainText(const std::string& text, std::string_view fact);

} // namespace reeldb::cli

#endif
