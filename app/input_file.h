// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_INPUT_FILE_H
#define REELDB_CLI_INPUT_FILE_H

#include <string>

namespace reeldb::cli {

/// The bytes of a regular file. Throws Failure: refused when there is none of that name, unreadable when it cannot be
/// read, is no regular file (a pipe would hold the command up) or is far too large for a list.
std::string readInputFile(const std::string& path);

} // namespace reeldb::cli

#endif
