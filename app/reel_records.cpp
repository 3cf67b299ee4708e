// SPDX-License-Identifier: Apache-2.0
#include "app/reel_records.h"

#include <algorithm>
#include <cwctype>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <utf8.h>

#include "ReelTypeManager.h"
#include "app/commit_entries.h"
#include "app/host_text.h"
#include "app/plain_text.h"
#include "base/ascii.h"
#include "base/character_locale.h"
#include "base/text_width.h"
#include "lists/names.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

std::string noSuchReel(const ReelDbManager& manager, const std::string& id)
{
  constexpr std::size_t most = 5; // a longer list would not help
  std::vector<std::string> all;
  for (const Cookie& log : manager.reelList)
    if (std::string other = text(ReelDbRec(log).reelId()); !other.empty())
      all.push_back(std::move(other));
  std::vector<std::string> similar = similarNames(id, all);
  const bool more = similar.size() > most;
  similar.resize(std::min(most, similar.size()));
  const bool needsQuotes = id.empty() || id.front() == ' ' || id.back() == ' ';
  std::string message = fmt::format("{0}{1}{0}: no such reel", needsQuotes ? "\"" : "", base::shortText(id));
  if (!similar.empty())
    message += fmt::format(" (but there {} {}{})", similar.size() == 1 ? "is" : "are", fmt::join(similar, ", "),
                           more ? ", ..." : "");
  return message;
}

/// The letters and digits of the text, in lower case, without bytes that are not UTF-8.
std::u32string essence(std::string_view text)
{
  const base::CharacterLocale locale;
  std::u32string result;
  const std::string valid = utf8::replace_invalid(text);
  for (auto at = valid.begin(); at != valid.end();)
    if (const auto c = static_cast<wint_t>(utf8::next(at, valid.end())); std::iswalnum(c))
      result += static_cast<char32_t>(std::towlower(c));
  return result;
}

/// The start of the keys of old names.
constexpr const char* oldName = "reel_old_name";

/// Each text has its own key, because the library reads back only values of a name's length.
std::string numbered(const std::string& key, std::size_t number)
{
  return key + std::to_string(number);
}

std::vector<std::string> without(std::vector<std::string> names, const std::string& name)
{
  names.erase(std::remove(names.begin(), names.end(), name), names.end());
  return names;
}

} // namespace

Reel readReel(ReelDbRec record, const ShotCounts& shots)
{
  Reel reel;
  reel.id = text(record.reelId());
  reel.type = text(record.typeName());
  reel.available = record.reelAvailable();
  reel.inhibit = record.recInhibit();
  reel.labelMapping = text(record.labelMapping());
  reel.bin = text(record.binName());
  reel.lastDevice = text(record.lastDevice());
  for (std::size_t i = 0; i < userFieldCount; ++i)
    reel.userFields[i] = text(record.userField(static_cast<int>(i)));
  const reelhost::Material log = reelhost::materialOf(record); // the host's way to the channels of any log
  reel.videoChannels = log.videoChannels;
  reel.audioChannels = log.audioChannels;
  if (const auto found = shots.find(base::fold(reel.id)); found != shots.end())
    reel.shots = found->second;
  return reel;
}

ReelDbRec requireReel(ReelDbManager& manager, const std::string& id)
{
  ReelDbRec reel = manager.getReelInfo(hostText(id));
  if (!reel.valid())
    throw Error(ErrorKind::NotFound, noSuchReel(manager, id));
  return reel;
}

bool isListedType(const std::string& type)
{
  return static_cast<bool>(theReelTypeManager()->rep()->find(hostText(type)));
}

std::string checkedReelName(const std::string& asked)
{
  ReelDbManager& manager = *ReelDbManager::theReelDbManager();
  const std::string fact = fmt::format("\"{}\": not a valid reel name", base::shortText(asked));
  requirePlainText(asked, fact);
  std::string id = text(manager.trimLeadingTrailingSpaces(hostText(asked)));
  if (id.empty())
    throw Error(ErrorKind::Refused, fact + " (it is blank)");
  if (asked.size() > longestField)
    throw Error(ErrorKind::Refused, fmt::format("{} (it has {} bytes; at most {})", fact, asked.size(), longestField));
  if (manager.representsInternallyGeneratedMaterial(hostText(id)))
    throw Error(ErrorKind::Refused, fact + " (a star denotes generated material)");
  return id;
}

void remarkOnUnlistedType(const std::string& type, std::vector<std::string>& remarks)
{
  if (!type.empty() && !isListedType(type))
    remarks.push_back(
        fmt::format("{}: not in the reel type catalogue (stored anyway; reeldb type list shows the catalogue)",
                    base::shortText(type)));
}

void remarkOnSpecialName(const std::string& id, std::vector<std::string>& remarks)
{
  const std::string_view meaning = lists::isAuxiliary(id) ? "a source without a tape" : lists::placeholderReason(id);
  if (!meaning.empty())
    remarks.push_back(
        fmt::format("{}: stored, but import cannot find a reel by this name (its meaning in cut lists: {})",
                    base::shortText(id), meaning));
}

std::vector<std::string> similarNames(std::string_view meant, const std::vector<std::string>& names)
{
  std::vector<std::string> result;
  const std::u32string wanted = essence(meant);
  if (wanted.empty())
    return result;
  for (const std::string& name : names)
    if (essence(name) == wanted)
      result.push_back(name);
  return result;
}

std::vector<std::string> oldNamesOf(ReelDbRec reel)
{
  return without(keptTexts(reel, oldName), text(reel.reelId())); // not a current name
}

std::vector<std::string> oldNamesOf(const reelhost::StoredLog& reel)
{
  return without(keptTexts(reel, oldName), idOf(reel));
}

void keepOldName(ReelDbRec reel, const std::string& name)
{
  std::vector<std::string> names = keptTexts(reel, oldName);
  const auto isSame = [&](const std::string& other) { return base::sameName(other, name); };
  if (std::any_of(names.begin(), names.end(), isSame))
    return;
  names.push_back(name);
  keepTexts(reel, oldName, names);
}

bool forgetOldName(ReelDbRec reel, const std::string& name)
{
  std::vector<std::string> names = keptTexts(reel, oldName);
  if (std::erase_if(names, [&](const std::string& other) { return base::sameName(other, name); }) == 0)
    return false;
  keepTexts(reel, oldName, names);
  return true;
}

std::vector<std::string> keptTexts(ReelDbRec reel, const std::string& key)
{
  std::vector<std::string> texts;
  for (LightweightString<char> kept; reel.getStringValFromEdit(hostText(numbered(key, texts.size())), kept);) {
    if (kept.empty())
      break;
    texts.push_back(text(kept));
  }
  return texts;
}

std::vector<std::string> keptTexts(const reelhost::StoredLog& reel, const std::string& key)
{
  const std::map<std::string_view, std::string_view> values(reel.fields.begin(), reel.fields.end());
  std::vector<std::string> texts;
  for (auto kept = values.find(numbered(key, 0)); kept != values.end() && !kept->second.empty();
       kept = values.find(numbered(key, texts.size())))
    texts.emplace_back(kept->second);
  return texts;
}

void keepTexts(ReelDbRec reel, const std::string& key, const std::vector<std::string>& texts)
{
  const std::vector<std::string> before = keptTexts(reel, key);
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (i >= before.size() || before[i] != texts[i])
      reel.setStringValInEdit(hostText(numbered(key, i)), hostText(texts[i]));
  for (std::size_t i = texts.size(); i < before.size(); ++i)
    reel.setStringValInEdit(hostText(numbered(key, i)), "");
}

} // namespace reeldb::app
