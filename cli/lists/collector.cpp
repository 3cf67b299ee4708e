// SPDX-License-Identifier: Apache-2.0
#include "lists/collector.h"

#include <algorithm>
#include <utility>

#include "lists/names.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// A rejected line is shown, not kept: this much of it.
constexpr std::size_t kShownBytes = 1000;

/// Keeps what is another name for the reel, each once.
std::vector<std::string> aliasesOf(std::vector<std::string> names, std::string_view reel)
{
  std::unordered_set<std::string> seen = {fold(reel)};
  std::vector<std::string> aliases;
  for (std::string& name : names) {
    const bool isName = !name.empty() && !isAuxiliary(name) && placeholderReason(name).empty();
    if (isName && seen.insert(fold(name)).second)
      aliases.push_back(std::move(name));
  }
  return aliases;
}

} // namespace

bool Collector::clip(Clip clip, std::string_view text)
{
  if (clip.reel.empty()) {
    reject(clip.line, text, "no reel");
    return false;
  }
  const std::string_view reason = specialReason(clip.reel);
  if (!reason.empty()) {
    special(clip.reel, reason, clip.line);
    return false;
  }
  if (clip.reel.size() > kIdentifierBytes) {
    reject(clip.line, text,
           "reel identifier of " + std::to_string(clip.reel.size()) + " bytes (at most " +
               std::to_string(kIdentifierBytes) + ")");
    return false;
  }
  const std::string& first = spellings_.try_emplace(fold(clip.reel), clip.reel).first->second;
  if (first != clip.reel) {
    if (otherSpellings_.insert(clip.reel).second)
      list_.spellings.push_back({first, clip.reel});
    clip.reel = first;
  }
  clip.aliases = aliasesOf(std::move(clip.aliases), clip.reel);
  list_.clips.push_back(std::move(clip));
  return true;
}

void Collector::special(std::string_view text, std::string_view reason, int line)
{
  std::string key = fold(text);
  key += '\n';
  key += reason;
  const auto [entry, isNew] = specials_.try_emplace(std::move(key), list_.specials.size());
  if (isNew)
    list_.specials.push_back({std::string(text), std::string(reason), 0, {}});
  Special& known = list_.specials[entry->second];
  ++known.count;
  known.lines.push_back(line);
}

void Collector::reject(int line, std::string_view text, std::string reason)
{
  list_.rejected.push_back({line, shortened(trim(text), kShownBytes), std::move(reason)});
}

const std::string& Collector::spelling(const std::string& reel) const
{
  const auto known = spellings_.find(fold(reel));
  return known == spellings_.end() ? reel : known->second;
}

List Collector::finish()
{
  std::stable_sort(list_.rejected.begin(), list_.rejected.end(),
                   [](const Rejected& a, const Rejected& b) { return a.line < b.line; });
  return std::move(list_);
}

} // namespace reeldb::lists
