// SPDX-License-Identifier: Apache-2.0
//
// What a command says: results on standard output, messages on standard error.
#ifndef REELDB_CLI_OUTPUT_H
#define REELDB_CLI_OUTPUT_H

#include <string>
#include <string_view>

namespace reeldb::cli {

/// Writes to standard output. The text is a displayText already, with line ends.
void print(std::string_view text);

/// Writes "reeldb: " and the message, made fit for a terminal, to standard error.
void complain(std::string_view message);

/// Says that the command has stored what it was to change: flushOutput tells it when the report of it is lost.
void changesAreStored();

/// Hands over what print has kept. False, after one message, when standard output did not take everything.
bool flushOutput();

} // namespace reeldb::cli

#endif
