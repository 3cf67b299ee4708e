// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_OUTPUT_FILE_H
#define REELDB_CLI_OUTPUT_FILE_H

#include <string>
#include <string_view>

namespace reeldb::cli {

/// Writes a file whole or not at all: into another one beside it, which takes its name when everything is on the disk.
/// Throws Failure: refused when there is a file of that name, unless it is to be replaced, or what is there is no
/// regular file; unreadable when the system refuses. Then what was there is as it was, and nothing else is left.
void writeOutputFile(const std::string& path, std::string_view bytes, bool replace);

} // namespace reeldb::cli

#endif
