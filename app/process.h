// SPDX-License-Identifier: Apache-2.0
//
// The process: functions that a face calls once.
#ifndef REELDB_APP_PROCESS_H
#define REELDB_APP_PROCESS_H

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace reeldb::app {

/// Makes the calling thread the library's main thread. Before any other operation of this room.
void startUp();

/// Names the program and the words of its command line in the history of every project that is changed from now on.
void setCommandLine(std::vector<std::string> words);

/// The version of the library: "14.0.0.0".
std::string libraryVersion();

/// Harmless mistakes in the facility, for example channel counts that the library reads as other numbers. Each is
/// "PATH:LINE: fact (cause)". Throws Error if there is no facility or it cannot be read.
std::vector<std::string> facilityRemarks();

/// Sends the library's own prints (for example a line for each shot that is renamed or deleted) to @p sink, as texts
/// that are safe to show. An empty sink restores standard error, which is the default.
void printLibraryTo(std::function<void(std::string_view)> sink);

/// Sends what is worth knowing besides an operation's result to @p sink: "subject: fact (cause)", for example that a
/// project is of a newer format now. Without a sink, which is the default, nobody is notified.
void noticesTo(std::function<void(const std::string&)> sink);

/// Writes every call of the library to its host to the file, one line per call; null stops that. The file is borrowed.
void traceHostCalls(std::FILE* file);

} // namespace reeldb::app

#endif
