// SPDX-License-Identifier: Apache-2.0
#include "commands/name_options.h"

#include <fmt/format.h>

#include "app/error.h"
#include "base/text_width.h"

namespace reeldb::cli {

namespace {

/// Whether the option has the second of its two words; the first is the default.
bool isSecond(const char* option, const std::optional<std::string>& word, const char* first, const char* second)
{
  if (word && *word != first && *word != second)
    throw app::Error(app::ErrorKind::Invalid,
                     fmt::format("{} {}: invalid (use {} or {})", option, base::shortText(*word), first, second));
  return word && *word == second;
}

} // namespace

lists::NameRules NameOptions::rules() const
{
  return isSecond("--match", match, "all", "exact") ? lists::NameRules::Exact : lists::NameRules::All;
}

lists::ReadOptions NameOptions::reading() const
{
  return {.clipNames = isSecond("--names", names, "list", "clip")};
}

void addNameOptions(Command& command, NameOptions& options)
{
  command.text("--match", options.match, "How names of the list find reels: all (the default) or exact")
      .shownAs("MATCH");
  command.text("--names", options.names, "Where a cut name is whole: list (the default) or clip").shownAs("NAMES");
}

} // namespace reeldb::cli
