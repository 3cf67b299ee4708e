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

bool fits(const ReelUse& use, TypeRule::Tracks tracks)
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

bool fits(const ReelUse& use, const TypeRule& rule)
{
  return (rule.name.empty() || fits(use.reel, rule.name)) &&
         (rule.extensions.empty() || hasExtension(use.reel, rule.extensions) ||
          hasExtension(use.file, rule.extensions)) &&
         fits(use, rule.tracks);
}

/// The type of the built-in rule that fits; empty if none does.
std::string builtInType(const ReelUse& use)
{
  lists::Ending ending = lists::partsOf(use.reel).ending;
  if (ending == lists::Ending::None)
    ending = lists::partsOf(use.file).ending;
  switch (ending) {
  case lists::Ending::Sound:
    return "Sound file";
  case lists::Ending::Still:
    return "Still";
  case lists::Ending::File:
    return "File";
  case lists::Ending::None:
    break;
  }
  return fits(use, TypeRule::Tracks::Audio) ? "Audio only" : "";
}

} // namespace

void ReelUse::add(const Shot& shot)
{
  reel = shot.reel;
  audio = audio || shot.audioChannels > 0;
  video = video || shot.videoChannels > 0;
  if (lists::partsOf(ownNameOf(shot)).ending != lists::Ending::None)
    file = ownNameOf(shot);
}

std::string typeByRules(const ReelUse& use)
{
  for (const TypeRule& rule : requireFacility().typeRules())
    if (fits(use, rule))
      return rule.type;
  const std::string type = builtInType(use);
  return isListedType(type) ? type : std::string();
}

TypeOfNewReels::TypeOfNewReels(ReelDbManager& manager, const std::string& type) : manager_(manager)
{
  if (type.empty())
    return;
  const char* const before = EditManager::ProjOpts().in(defaultTypeOption);
  default_ = before ? before : "";
  manager_.setProjectDefaultReelType(hostText(type));
}

TypeOfNewReels::~TypeOfNewReels()
{
  if (default_)
    manager_.setProjectDefaultReelType(hostText(*default_));
}

} // namespace reeldb::app
