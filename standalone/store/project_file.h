// SPDX-License-Identifier: Apache-2.0
//
// Inspects a project file and the files beside it before SQLite opens any of them.
#ifndef REELDB_STORE_PROJECT_FILE_H
#define REELDB_STORE_PROJECT_FILE_H

#include <cstdint>
#include <filesystem>
#include <string>

#include "reelhost/error.h"

namespace reelhost {

/// In bytes. SQLite allows 512 bytes for a full path with the longest ending that it adds.
constexpr std::size_t longestProjectPath = 500;

struct ProjectFile {
  std::string path;      ///< absolute, links resolved: where the write-ahead log lies beside it
  bool writable = false; ///< whether the file and its folder can be written
  std::string whyNot;    ///< the reason if they cannot
  std::uintmax_t size = 0;
  std::uintmax_t logSize = 0; ///< of the write-ahead log; 0 if there is no such file
  bool hasLogIndex = false;   ///< whether the index of the write-ahead log exists: a process may be using the project
  std::int64_t modified = 0;  ///< when the file was last written, in nanoseconds
};

/// Inspects @p path without opening it. Throws Error, "PATH: fact (cause)": NotFound; Unreadable if it or a file beside
/// it is not a regular file; Io if it must not be read.
ProjectFile inspectProjectFile(const std::filesystem::path& path);

/// Names the process that holds the write lock of the project at @p absolutePath, which this process has open:
/// "pid 4711, reeldb import cut.edl". Empty if no process can be named.
std::string writeLockHolder(const std::string& absolutePath);
/// Whether another process holds that lock. REQUIRES: this process has the project open.
bool isBeingWritten(const std::string& absolutePath) noexcept;

} // namespace reelhost

#endif
