// SPDX-License-Identifier: Apache-2.0
//
// Completes a command line that is being typed.
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

/// The kind of value for the name that the help text has for it, a word in capitals.
app::ValueKind valueKindOf(const std::string& metavariable);

struct Completion {
  std::string start; ///< the part of the typed word before the value: "" or "--project="
  std::string typed; ///< the typed part of the value
  app::ValueKind value = app::ValueKind::Other;
  std::vector<app::Choice> words;     ///< commands or options that are possible instead of a value
  std::optional<std::string> project; ///< the project chosen by an earlier option
};

/// Completes the last of @p words, which are the words after the program's name. The last word may be empty.
Completion completionOf(const CLI::App& root, const std::vector<std::string>& words);

} // namespace reeldb::cli

#endif
