// SPDX-License-Identifier: Apache-2.0
//
// A project file and the files beside it, looked at before SQLite touches any of them.
#ifndef REELDB_STORE_PROJECT_FILE_H
#define REELDB_STORE_PROJECT_FILE_H

#include <cstdint>
#include <filesystem>
#include <string>

#include "reelhost/error.h"

namespace reelhost {

/// SQLite takes 512 bytes for a full path with the longest of the endings it adds.
constexpr std::size_t longestProjectPath = 500;

struct ProjectFile {
  std::string path;      ///< absolute, links resolved: where the write-ahead log lies beside it
  bool writable = false; ///< whether the file and its folder can be written
  std::string whyNot;    ///< the reason when they cannot
  std::uintmax_t size = 0;
  std::uintmax_t logSize = 0; ///< of the write-ahead log; 0 when there is none
  bool hasLogIndex = false;   ///< whether the index of the write-ahead log is there: somebody may be using the project
  std::int64_t modified = 0;  ///< when the file was last written, in nanoseconds
};

/// Looks at @p path. Throws Error, "PATH: fact (cause)": NotFound; Unreadable for anything but a regular file, also in
/// the places of the files beside it; Io when it must not be read. Opens nothing.
ProjectFile inspectProjectFile(const std::filesystem::path& path);

/// Names the process that holds the write lock of the project at @p absolutePath, which this process has open:
/// "pid 4711, reeldb import cut.edl". Empty when none can be named.
std::string writeLockHolder(const std::string& absolutePath);

} // namespace reelhost

#endif
