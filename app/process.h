// SPDX-License-Identifier: Apache-2.0
//
// The process: what a face does once.
#ifndef REELDB_APP_PROCESS_H
#define REELDB_APP_PROCESS_H

#include <cstdio>
#include <string>
#include <vector>

namespace reeldb::app {

/// Makes the calling thread the library's main thread. Before any other operation of this room.
void startUp();

/// The version of the library: "14.0.0.0".
std::string libraryVersion();

/// What is odd about the facility and does no harm: numbers of channels that the library takes for others, say. Each is
/// "PATH:LINE: fact (cause)". Throws Error when there is no facility or it cannot be read.
std::vector<std::string> facilityRemarks();

/// Writes every call of the library to its host to the file, a line each; null: no longer. The file is borrowed.
void traceHostCalls(std::FILE* file);

} // namespace reeldb::app

#endif
