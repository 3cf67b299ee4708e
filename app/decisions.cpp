// SPDX-License-Identifier: Apache-2.0
#include "app/decisions.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <fmt/format.h>

#include "app/error.h"
#include "app/host_text.h"
#include "app/plain_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

constexpr const char* keyBase = "reel_decision";
constexpr char divider = '\t'; // no name contains it

constexpr std::string_view nameWord = "name", apartWord = "apart", aliasWord = "alias", inListWord = "list",
                           removedListWord = "removed-list", deletedWord = "deleted-shot";

std::vector<std::string_view> parts(std::string_view text)
{
  std::vector<std::string_view> result;
  for (;;) {
    const std::size_t end = text.find(divider);
    result.push_back(text.substr(0, end));
    if (end == std::string_view::npos)
      return result;
    text.remove_prefix(end + 1);
  }
}

/// Adds what the text says. What a newer program decided is ignored.
void read(const std::string& text, Decisions& decisions)
{
  const std::vector<std::string_view> words = parts(text);
  const auto isOf = [&](std::string_view kind, std::size_t count) { return words[0] == kind && words.size() == count; };
  if (isOf(nameWord, 1))
    decisions.namesReel = true;
  else if (isOf(apartWord, 1))
    decisions.isApart = true;
  else if (isOf(aliasWord, 2))
    decisions.aliases.emplace_back(words[1]);
  else if (isOf(deletedWord, 2))
    decisions.deletedShots.emplace_back(words[1]);
  else if (NameInList decided; isOf(inListWord, 4)) {
    std::from_chars(words[1].data(), words[1].data() + words[1].size(), decided.list);
    decided.name = words[2];
    decided.reel = words[3];
    decisions.inLists.push_back(std::move(decided));
  } else if (isOf(removedListWord, 4)) {
    decisions.inLists.push_back({0, std::string(words[2]), std::string(words[3]), std::string(words[1])});
  }
}

Decisions decisionsIn(const std::vector<std::string>& texts)
{
  Decisions decisions;
  for (const std::string& text : texts)
    read(text, decisions);
  return decisions;
}

} // namespace

Decisions decisionsOf(ReelDbRec reel)
{
  return decisionsIn(keptTexts(reel, keyBase));
}

Decisions decisionsOf(const reelhost::StoredLog& reel)
{
  return decisionsIn(keptTexts(reel, keyBase));
}

void keepDecisions(ReelDbRec reel, const Decisions& decisions)
{
  std::vector<std::string> texts;
  if (decisions.namesReel)
    texts.emplace_back(nameWord);
  if (decisions.isApart)
    texts.emplace_back(apartWord);
  for (const std::string& each : decisions.aliases)
    texts.push_back(fmt::format("{}\t{}", aliasWord, each));
  for (const NameInList& each : decisions.inLists)
    texts.push_back(each.list != 0 ? fmt::format("{}\t{}\t{}\t{}", inListWord, each.list, each.name, each.reel)
                                   : fmt::format("{}\t{}\t{}\t{}", removedListWord, each.bytes, each.name, each.reel));
  for (const std::string& each : decisions.deletedShots)
    texts.push_back(fmt::format("{}\t{}", deletedWord, each));
  for (const std::string& text : texts)
    if (text.size() > longestField)
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: too long to be kept ({} bytes; at most {})",
                              base::shortText(std::string(parts(text).back())), text.size(), longestField));
  keepTexts(reel, keyBase, texts);
}

void keepGivenName(ReelDbRec reel)
{
  Decisions decisions = decisionsOf(reel);
  decisions.namesReel = true;
  keepDecisions(reel, decisions);
}

bool takeName(ReelDbRec reel, const std::string& name)
{
  Decisions decisions = decisionsOf(reel);
  const std::size_t count = decisions.aliases.size();
  std::erase_if(decisions.aliases, [&](const std::string& alias) { return base::sameName(alias, name); });
  const bool wasAlias = decisions.aliases.size() != count;
  if (wasAlias)
    keepDecisions(reel, decisions);
  return forgetOldName(reel, name) || wasAlias;
}

namespace {

/// Gives the decisions about one list that it finds to another.
template <class IsFrom>
void rebind(ReelDbManager& manager, IsFrom isFrom, std::int64_t list, const std::string& bytes)
{
  for (const Cookie& log : manager.reelList) {
    ReelDbRec record(log);
    Decisions decisions = decisionsOf(record);
    bool changes = false;
    for (NameInList& each : decisions.inLists)
      if (isFrom(each)) {
        each.list = list;
        each.bytes = bytes;
        changes = true;
      }
    if (changes)
      keepDecisions(record, decisions);
  }
}

} // namespace

void requireNotGiven(ReelDbManager& manager, const std::string& name, const std::string& own)
{
  for (const Cookie& log : manager.reelList) {
    ReelDbRec record(log);
    if (!hasName(decisionsOf(record).aliases, name))
      continue;
    if (const std::string id = text(record.reelId()); !base::sameName(id, own))
      throw Error(ErrorKind::Refused,
                  fmt::format("{0}: a name of {1} (reeldb alias --remove {1} {0} takes it from there)",
                              base::shortText(name), base::shortText(id)));
  }
}

void keepForBytes(ReelDbManager& manager, const reelhost::KeptList& list)
{
  rebind(
      manager, [&](const NameInList& each) { return each.list == list.number; }, 0, hexOf(list.digest));
}

void keepForList(ReelDbManager& manager, std::int64_t list, const reelhost::Digest& bytes)
{
  const std::string hex = hexOf(bytes);
  rebind(manager, [&](const NameInList& each) { return each.list == 0 && each.bytes == hex; }, list, {});
}

std::string hexOf(const reelhost::Digest& digest)
{
  std::string hex;
  for (const unsigned char byte : digest)
    hex += fmt::format("{:02x}", byte);
  return hex;
}

bool hasName(const std::vector<std::string>& names, const std::string& name)
{
  return std::any_of(names.begin(), names.end(), [&](const std::string& each) { return base::sameName(each, name); });
}

std::string deletedShot(const Shot& shot)
{
  std::string key = shotKey(shot);
  key.erase(0, key.find('\0')); // the reel may be renamed
  return hexOf(reelhost::digestOf(key));
}

} // namespace reeldb::app
