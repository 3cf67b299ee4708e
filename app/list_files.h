// SPDX-License-Identifier: Apache-2.0
//
// The input and output files of operations.
#ifndef REELDB_APP_LIST_FILES_H
#define REELDB_APP_LIST_FILES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/error.h"
#include "lists/list.h"

namespace reeldb::app {

/// A list, and the file it was read from.
struct ListFile {
  std::string path;
  lists::List list;
  std::string bytes;
};

/// Reads a list of at most 256 MiB: a file, or a folder of FCPXML. Throws Error: NotFound if there is no such file;
/// Unreadable if it is not a regular file (a pipe would make the caller wait), is too large or is not a list; Io.
ListFile readListFile(const std::string& path, const lists::ReadOptions& options = {});

/// The bytes of a file of at most @p largest bytes. Throws as readListFile does, but takes any content.
std::string readInputFile(const std::string& path, std::size_t largest);

/// The result for several files: the lists, in the order of the files, and an Error for each file that cannot be read.
struct ListFiles {
  std::vector<ListFile> read;
  std::vector<Error> failures;
};
ListFiles readListFiles(const std::vector<std::string>& paths, const lists::ReadOptions& options = {});

/// Writes a file completely or not at all. Throws Error: Refused if a file of that name must not be replaced, or is not
/// a regular file; Io. After a throw the old file is unchanged, and no other file is left. A replaced file keeps its
/// permissions. A link stays, and the file that it leads to is replaced.
void writeOutputFile(const std::string& path, std::string_view bytes, bool replace);

} // namespace reeldb::app

#endif
