// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_IMPORTED_H
#define REELDB_CLI_IMPORTED_H

#include <cstddef>
#include <string>
#include <vector>

#include "lists/list.h"

namespace reeldb::cli {

/// What became of one list.
struct Imported {
  std::string file;
  lists::List list; ///< as it was read; its spellings also name those that differ from a record's
  std::size_t shotsAdded = 0;
  std::size_t shotsThere = 0;       ///< clips whose shot was there already, from another list or earlier in this one
  std::size_t shotsRepeated = 0;    ///< those of them whose shot came earlier in this one
  std::vector<std::string> created; ///< identifiers of the reels that were made, in order
  std::vector<std::string> matched; ///< of the reels that were there before the list came, as their records spell them
};

} // namespace reeldb::cli

#endif
