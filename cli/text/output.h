// SPDX-License-Identifier: Apache-2.0
//
// What a command says: results on standard output, messages on standard error.
#ifndef REELDB_CLI_OUTPUT_H
#define REELDB_CLI_OUTPUT_H

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace reeldb::cli {

/// Objects keep the order in which their keys were set.
using Json = nlohmann::ordered_json;

/// Writes to standard output. The text is a displayText already, with line ends.
void print(std::string_view text);

/// The value as JSON text, with line end: indented, or in one line. Bytes that are no UTF-8 become U+FFFD; what must
/// not reach a terminal is written as \u009b and the like, which means the same.
std::string jsonText(const Json& value);
std::string jsonLine(const Json& value);

/// Prints the jsonText.
void printJson(const Json& value);

/// Writes "reeldb: " and the message, made fit for a terminal, to standard error.
void complain(std::string_view message);

/// Says that the command has stored what it was to change: flushOutput tells it when the report of it is lost.
void changesAreStored();

/// Hands over what print has kept. False, after one message, when standard output did not take everything.
bool flushOutput();

} // namespace reeldb::cli

#endif
