// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_GLOBALS_H
#define REELDB_CLI_GLOBALS_H

#include <optional>
#include <string>

namespace reeldb::cli {

/// The options that every command takes.
struct Globals {
  std::optional<std::string> facility; ///< the value of -C. The program has already used it; only init needs it here
  std::optional<std::string> project;  ///< the value of -p
  bool trace = false;
};

} // namespace reeldb::cli

#endif
