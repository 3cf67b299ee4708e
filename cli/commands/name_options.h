// SPDX-License-Identifier: Apache-2.0
//
// The options --match and --names of the commands that read lists.
#ifndef REELDB_CLI_NAME_OPTIONS_H
#define REELDB_CLI_NAME_OPTIONS_H

#include <optional>
#include <string>

#include "line/command_line.h"
#include "lists/list.h"
#include "lists/name_index.h"

namespace reeldb::cli {

struct NameOptions {
  std::optional<std::string> match, names;

  /// These throw app::Error (Invalid) for an unknown word.
  lists::NameRules rules() const;
  lists::ReadOptions reading() const;
};

void addNameOptions(Command& command, NameOptions& options);

} // namespace reeldb::cli

#endif
