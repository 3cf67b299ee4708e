// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_GLOBALS_H
#define REELDB_CLI_GLOBALS_H

#include <optional>
#include <string>

namespace reeldb::cli {

/// What can be said with any command.
struct Globals {
  std::optional<std::string> facility; ///< given with -C; the program has chosen by it already, only init asks
  std::optional<std::string> project;  ///< given with -p
  bool trace = false;
};

} // namespace reeldb::cli

#endif
