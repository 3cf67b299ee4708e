// SPDX-License-Identifier: Apache-2.0
#include "app/new_reel_types.h"

#include <algorithm>
#include <string_view>

#include "app/facility.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "host/projdb.h"
#include "lists/name_forms.h"

namespace reeldb::app {

namespace {

using reelhost::TypeRule;

constexpr const char* defaultTypeOption = "reeldb_defaultType";

/// Whether the text fits a pattern in which '*' is any text and '?' any character, ignoring the case of ASCII letters.
bool fits(std::string_view text, std::string_view pattern)
{
  std::size_t at = 0, in = 0, afterStar = std::string_view::npos, retry = 0;
  while (at < text.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      afterStar = ++in;
      retry = at;
    } else if (in < pattern.size() && (pattern[in] == '?' || base::toLower(pattern[in]) == base::toLower(text[at]))) {
      ++in;
      ++at;
      while (pattern[in - 1] == '?' && at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80)
        ++at; // the rest of the character
    } else if (afterStar != std::string_view::npos) {
      in = afterStar;
      at = ++retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

bool hasExtension(std::string_view name, const std::vector<std::string>& extensions)
{
  return std::any_of(extensions.begin(), extensions.end(), [&](const std::string& extension) {
    return name.size() > extension.size() && name[name.size() - extension.size() - 1] == '.' &&
           base::sameName(name.substr(name.size() - extension.size()), extension);
  });
}

bool fits(const TypeEvidence& use, TypeRule::Tracks tracks)
{
  switch (tracks) {
  case TypeRule::Tracks::Any:
    return true;
  case TypeRule::Tracks::Audio:
    return use.audio && !use.video;
  case TypeRule::Tracks::Video:
    return use.video && !use.audio;
  case TypeRule::Tracks::Both:
    return use.audio && use.video;
  }
  return false;
}

/// Whether the name fits with or without its ending: which of both is the identifier depends on the list that came
/// first.
bool fitsPattern(std::string_view name, const TypeRule& rule)
{
  return fits(name, rule.name) || fits(lists::partsOf(name).stem, rule.name);
}

/// Whether the condition holds for the identifier or for another name of the reel.
template <class Condition>
bool anyName(const TypeEvidence& use, Condition holds)
{
  return holds(use.reel) || std::any_of(use.names.begin(), use.names.end(), holds);
}

bool fits(const TypeEvidence& use, const TypeRule& rule)
{
  const auto fitsName = [&](std::string_view name) { return fitsPattern(name, rule); };
  const auto fitsExtension = [&](std::string_view name) { return hasExtension(name, rule.extensions); };
  return (rule.name.empty() || anyName(use, fitsName)) && (rule.extensions.empty() || anyName(use, fitsExtension)) &&
         fits(use, rule.tracks);
}

/// The type of the built-in rule that fits; empty if none does.
std::string builtInType(const TypeEvidence& use)
{
  const auto has = [&](lists::Ending ending) {
    return anyName(use, [&](std::string_view name) { return lists::partsOf(name).ending == ending; });
  };
  if (has(lists::Ending::File)) // may have picture and sound
    return "File";
  if (has(lists::Ending::Still))
    return "Still";
  if (has(lists::Ending::Sound))
    return "Sound file";
  return fits(use, TypeRule::Tracks::Audio) ? "Audio only" : "";
}

} // namespace

void TypeEvidence::add(const Shot& shot)
{
  audio = audio || shot.audioChannels > 0;
  video = video || shot.videoChannels > 0;
  const auto addName = [&](const std::string& name) {
    if (!base::sameName(name, shot.reel))
      names.insert(name);
  };
  addName(ownNameOf(shot));
  for (const lists::SourceName& name : shot.furtherNames)
    addName(name.name);
}

std::string typeByRules(const TypeEvidence& use)
{
  for (const TypeRule& rule : requireFacility().typeRules())
    if (fits(use, rule))
      return rule.type;
  const std::string type = builtInType(use);
  return isListedType(type) ? type : std::string();
}

std::string defaultTypeOfProject()
{
  const char* const type = EditManager::ProjOpts().in(defaultTypeOption);
  return type ? type : "";
}

TypeOfNewReels::TypeOfNewReels(ReelDbManager& manager, const std::string& type) : manager_(manager)
{
  if (type.empty())
    return;
  default_ = defaultTypeOfProject();
  manager_.setProjectDefaultReelType(hostText(type));
}

TypeOfNewReels::~TypeOfNewReels()
{
  if (default_)
    manager_.setProjectDefaultReelType(hostText(*default_));
}

} // namespace reeldb::app
