// SPDX-License-Identifier: Apache-2.0
//
// What may stand next on a command line that is being typed.
#ifndef REELDB_CLI_COMPLETION_H
#define REELDB_CLI_COMPLETION_H

#include <optional>
#include <string>
#include <vector>

#include <CLI/App.hpp>

namespace reeldb::cli {

/// What a value names. Help shows it as a word in capitals, and that word decides.
enum class ValueKind { Other, Reel, Device, Project, LabelMap, FrameRate, Field, File, Folder };

/// The kind of value that help calls so.
ValueKind valueKindOf(const std::string& metavariable);

struct CompletionWord {
  std::string word;
  std::string description; ///< one line; may be empty
};

struct Completion {
  std::string start; ///< what the word typed begins with before the value: "", "--project="
  std::string typed; ///< what there is of the value
  ValueKind value = ValueKind::Other;
  std::vector<CompletionWord> words;  ///< commands or options that may stand there instead of a value
  std::optional<std::string> project; ///< that an option before it has chosen
};

/// The words are those after the program's name; the last one is being typed, and empty when nothing of it is there.
Completion completionOf(const CLI::App& root, const std::vector<std::string>& words);

} // namespace reeldb::cli

#endif
