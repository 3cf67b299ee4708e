// SPDX-License-Identifier: Apache-2.0
//
// What a command says: results on standard output, messages on standard error.
#ifndef REELDB_CLI_OUTPUT_H
#define REELDB_CLI_OUTPUT_H

#include <string_view>

#include <nlohmann/json.hpp>

namespace reeldb::cli {

/// Objects keep the order in which their keys were set.
using Json = nlohmann::ordered_json;

/// Writes to standard output. The text is a displayText already, with line ends.
void print(std::string_view text);

/// Writes the value as JSON text, indented, with a line end. Bytes that are no UTF-8 become U+FFFD.
void printJson(const Json& value);

/// Writes "reeldb: " and the message, made fit for a terminal, to standard error.
void complain(std::string_view message);

/// Hands over what print has kept. False, after a message, when standard output did not take everything.
bool flushOutput();

} // namespace reeldb::cli

#endif
