// SPDX-License-Identifier: Apache-2.0
//
// The output of a command: results on standard output, messages on standard error.
#ifndef REELDB_CLI_OUTPUT_H
#define REELDB_CLI_OUTPUT_H

#include <string>
#include <string_view>

namespace reeldb::cli {

/// Writes to standard output. @p text comes from displayText and has line ends.
void print(std::string_view text);

/// Writes the content of a file to standard output, byte for byte. If that is a terminal, it gets no control
/// characters.
void printBytes(std::string_view bytes);

/// Writes "reeldb: " and the message, made fit for a terminal, to standard error.
void complain(std::string_view message);

/// To be called when the command has stored its changes. If the report is lost, flushOutput adds that they are stored.
void changesAreStored();

/// Writes the output that print has buffered. Returns false, after one message, if standard output failed.
bool flushOutput();

} // namespace reeldb::cli

#endif
