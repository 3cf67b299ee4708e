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

/// The path that means standard input, and what messages and lists call it.
inline constexpr std::string_view standardInput = "-";
inline constexpr std::string_view standardInputName = "standard input";

/// Reads a list of at most 256 MiB: a file, a folder of FCPXML, or standard input. Throws Error: NotFound if there is
/// no such file; Unreadable if it is not a regular file (a pipe would make the caller wait), is too large or is not a
/// list; Io.
ListFile readListFile(const std::string& path, const lists::ReadOptions& options = {});

/// The bytes of a file of at most @p largest bytes. Throws as readListFile does, but takes any content.
std::string readInputFile(const std::string& path, std::size_t largest);

/// A file that cannot be read, and why.
struct UnreadFile {
  std::string path;
  Error error;
  /// The error without the path.
  std::string reason() const;
};

/// The result for several files: the lists, in the order of the files, and an entry for each file that cannot be read.
struct ListFiles {
  std::vector<ListFile> read;
  std::vector<UnreadFile> failures;
};

/// How a folder among the files is read. A folder of FCPXML is always a list.
enum class Folders {
  NotLists, ///< it is a file that cannot be read
  Files,    ///< the files in it
  AllFiles  ///< the files in it and in its folders
};

/// Reads the files in the order of the paths, those of a folder in the order of their names. Files and folders in a
/// folder whose names begin with a dot are not read, and links to folders there are not followed.
ListFiles readListFiles(const std::vector<std::string>& paths, const lists::ReadOptions& options = {},
                        Folders folders = Folders::NotLists);

/// Writes a file completely or not at all. Throws Error: Refused if a file of that name must not be replaced, or is not
/// a regular file; Io. After a throw the old file is unchanged, and no other file is left. A replaced file keeps its
/// permissions. A link stays, and the file that it leads to is replaced.
void writeOutputFile(const std::string& path, std::string_view bytes, bool replace);

} // namespace reeldb::app

#endif
