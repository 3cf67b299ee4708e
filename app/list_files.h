// SPDX-License-Identifier: Apache-2.0
//
// Files that people hand to an operation, or get from one.
#ifndef REELDB_APP_LIST_FILES_H
#define REELDB_APP_LIST_FILES_H

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
};

/// Reads a cut list or log file of at most 256 MiB. Throws Error: NotFound when there is no such file, Unreadable when
/// it is not a regular file (a pipe would hold the caller up), is too large or holds no list, Io.
ListFile readListFile(const std::string& path);

/// What became of several files: those that hold lists, in their order, and an Error for each that cannot be read.
struct ListFiles {
  std::vector<ListFile> read;
  std::vector<Error> failures;
};
ListFiles readListFiles(const std::vector<std::string>& paths);

/// Writes a file whole or not at all. Throws Error: Refused when there is a file of that name, unless it is to be
/// replaced, or what is there is not a regular file; Io. Then what was there is as it was, and nothing else is left. A
/// file that is replaced keeps its permissions; a link stays, and what it leads to is replaced.
void writeOutputFile(const std::string& path, std::string_view bytes, bool replace);

} // namespace reeldb::app

#endif
