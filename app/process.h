// SPDX-License-Identifier: Apache-2.0
//
// The process: what a face does once.
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

/// The version of the library: "14.0.0.0".
std::string libraryVersion();

/// What is odd about the facility and does no harm: numbers of channels that the library takes for others, say. Each is
/// "PATH:LINE: fact (cause)". Throws Error when there is no facility or it cannot be read.
std::vector<std::string> facilityRemarks();

/// Hands what the library itself prints (a line for each shot that is renamed or deleted, say) to @p sink, as texts fit
/// to be shown. An empty sink: to standard error, as without this call.
void printLibraryTo(std::function<void(std::string_view)> sink);

/// Writes every call of the library to its host to the file, a line each; null: no longer. The file is borrowed.
void traceHostCalls(std::FILE* file);

} // namespace reeldb::app

#endif
