// SPDX-License-Identifier: Apache-2.0
//
// What may stand next on a command line that is being typed.
#ifndef REELDB_CLI_COMPLETION_H
#define REELDB_CLI_COMPLETION_H

#include <optional>
#include <string>
#include <vector>

#include "app/completion.h"

namespace CLI {
class App;
} // namespace CLI

namespace reeldb::cli {

/// The kind of value that help calls so: the word in capitals decides.
app::ValueKind valueKindOf(const std::string& metavariable);

struct Completion {
  std::string start; ///< what the word typed begins with before the value: "", "--project="
  std::string typed; ///< what there is of the value
  app::ValueKind value = app::ValueKind::Other;
  std::vector<app::Choice> words;     ///< commands or options that may stand there instead of a value
  std::optional<std::string> project; ///< that an option before it has chosen
};

/// The words are those after the program's name; the last one is being typed, and empty when nothing of it is there.
Completion completionOf(const CLI::App& root, const std::vector<std::string>& words);

} // namespace reeldb::cli

#endif
