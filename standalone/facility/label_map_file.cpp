// SPDX-License-Identifier: Apache-2.0
#include "facility/label_map_words.h"
#include "facility/toml_file.h"
#include "reelhost/display_text.h"
#include "reelhost/facility.h"

namespace reelhost {

namespace {

constexpr std::size_t entryCount = 14;

std::string neededText(const TomlTable& entry, std::string_view key)
{
  const auto text = entry.text(key);
  if (!text)
    entry.fail(key, "missing");
  return *text;
}

unsigned neededCode(const TomlTable& entry, std::string_view key, std::optional<unsigned> (*codeOf)(std::string_view),
                    std::string (*words)())
{
  const std::string word = neededText(entry, key);
  const auto code = codeOf(word);
  if (!code)
    entry.fail(key, '"' + displayText(word) + "\" is unknown (known: " + words() + ")");
  return *code;
}

} // namespace

std::vector<LabelMapEntry> readLabelMap(const std::filesystem::path& path)
{
  const TomlFile file(path);
  const TomlTable root(file, file.root(), "");
  root.allowOnly({"entry"});
  std::vector<LabelMapEntry> entries;
  for (const TomlTable& entry : root.tables("entry")) {
    if (entries.size() == entryCount)
      entry.fail("one too many (a label map has " + std::to_string(entryCount) + " entries)");
    entry.allowOnly({"label", "in_use", "source", "format"});
    neededText(entry, "label");
    const auto inUse = entry.flag("in_use");
    if (!inUse)
      entry.fail("in_use", "missing");
    entries.push_back({*inUse, neededCode(entry, "source", labelSourceCode, labelSourceWords),
                       neededCode(entry, "format", labelFormatCode, labelFormatWords)});
  }
  if (entries.size() != entryCount)
    root.fail("a label map has " + std::to_string(entryCount) + " entries (this one has " +
              std::to_string(entries.size()) + ")");
  return entries;
}

} // namespace reelhost
