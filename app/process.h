// SPDX-License-Identifier: Apache-2.0
//
// The process: what a face does once.
#ifndef REELDB_APP_PROCESS_H
#define REELDB_APP_PROCESS_H

#include <cstdio>
#include <string>

namespace reeldb::app {

/// Makes the calling thread the library's main thread. Before any other operation of this room.
void startUp();

/// The version of the library: "14.0.0.0".
std::string libraryVersion();

/// Writes every call of the library to its host to the file, a line each; null: no longer. The file is borrowed.
void traceHostCalls(std::FILE* file);

} // namespace reeldb::app

#endif
