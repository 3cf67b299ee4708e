// SPDX-License-Identifier: Apache-2.0
#include "app/shots.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"

namespace reeldb::app {

namespace {

constexpr char divider = '\n'; ///< between the other names of a shot; no name contains it

std::vector<std::string> divided(const std::string& text, char by = divider)
{
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(by, at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

constexpr char fieldEnd = '\t'; ///< between what is known of a further name; no name and no id contains it

std::string textOf(const std::vector<lists::SourceName>& names)
{
  std::string text;
  for (const lists::SourceName& name : names) {
    if (!text.empty())
      text += divider;
    text.append(name.name).append(1, fieldEnd).append(name.mayBeCut ? "cut" : "").append(1, fieldEnd);
    text += name.sourceId;
  }
  return text;
}

std::vector<lists::SourceName> namesFrom(const std::string& text)
{
  std::vector<lists::SourceName> names;
  for (const std::string& line : divided(text)) {
    const std::vector<std::string> fields = divided(line, fieldEnd);
    if (fields.empty() || fields[0].empty())
      continue;
    names.push_back(
        {fields[0], fields.size() > 1 && !fields[1].empty(), fields.size() > 2 ? fields[2] : std::string()});
  }
  return names;
}

} // namespace

reelhost::Material materialFrom(const Shot& shot)
{
  reelhost::Material material;
  for (const ShotText& text : shotTexts)
    material.*text.material = shot.*text.text;
  material.aliases = fmt::format("{}", fmt::join(shot.aliases, std::string_view(&divider, 1)));
  material.videoChannels = shot.videoChannels;
  material.audioChannels = shot.audioChannels;
  material.frameRate = shot.frameRate;
  material.dropFrame = shot.dropFrame;
  material.ownName = shot.ownName;
  material.mayBeCut = shot.mayBeCut;
  material.sourceId = shot.sourceId;
  material.furtherNames = textOf(shot.furtherNames);
  material.reelOfNames = shot.reelOfNames;
  material.cameraRoll = shot.cameraRoll;
  material.soundOf = shot.soundOf;
  return material;
}

Shot shotFrom(const reelhost::Material& material)
{
  Shot shot;
  for (const ShotText& text : shotTexts)
    shot.*text.text = material.*text.material;
  shot.aliases = divided(material.aliases);
  shot.videoChannels = material.videoChannels;
  shot.audioChannels = material.audioChannels;
  shot.frameRate = material.frameRate;
  shot.dropFrame = material.dropFrame;
  shot.ownName = material.ownName;
  shot.mayBeCut = material.mayBeCut;
  shot.sourceId = material.sourceId;
  shot.furtherNames = namesFrom(material.furtherNames);
  shot.reelOfNames = material.reelOfNames;
  shot.cameraRoll = material.cameraRoll;
  shot.soundOf = material.soundOf;
  return shot;
}

std::vector<Shot> shotsFrom(const CookieVec& logs)
{
  std::vector<Shot> shots;
  for (const Cookie& log : logs)
    shots.push_back(shotFrom(reelhost::materialOf(log)));
  return shots;
}

std::string shotKey(const Shot& shot)
{
  std::string key = base::fold(shot.reel);
  for (const std::string* part : {&shot.clipName, &shot.sourceIn, &shot.sourceOut, &shot.tracks}) {
    key += '\0'; // no text contains it
    key += *part;
  }
  return key;
}

const std::string& ownNameOf(const Shot& shot)
{
  return shot.ownName.empty() ? shot.reel : shot.ownName;
}

std::vector<lists::SourceName> namesOf(const Shot& shot)
{
  std::vector<lists::SourceName> names = {{ownNameOf(shot), shot.mayBeCut, shot.sourceId}};
  names.insert(names.end(), shot.furtherNames.begin(), shot.furtherNames.end());
  return names;
}

void setReel(Shot& shot, const std::string& reel, const std::vector<lists::SourceName>& names)
{
  const lists::SourceName& first = names.front();
  const bool isSame = base::sameName(first.name, reel);
  shot.reel = isSame ? first.name : reel; // a shot keeps the spelling of its list
  shot.ownName = isSame && !first.mayBeCut && names.size() == 1 ? std::string() : first.name;
  shot.mayBeCut = first.mayBeCut;
  shot.sourceId = first.sourceId;
  shot.furtherNames.assign(names.begin() + 1, names.end());
  shot.reelOfNames = isSame ? std::string() : reel;
}

const std::string& reelByNames(const Shot& shot)
{
  return shot.reelOfNames.empty() ? ownNameOf(shot) : shot.reelOfNames;
}

void giveName(lists::Clip& clip, const std::string& name)
{
  clip.reel = name;
  clip.ownName.clear();
  clip.mayBeCut = false;
}

void putInto(Shot& shot, const std::string& reel)
{
  if (shot.ownName.empty())
    shot.ownName = shot.reel;
  shot.reel = reel;
}

std::vector<std::pair<std::int64_t, Cookie>> requireShots(const std::vector<std::int64_t>& numbers)
{
  std::map<std::int64_t, Cookie> all;
  for (const Cookie& log : reelhost::allShots())
    all.emplace(reelhost::logNumber(log), log);
  std::map<std::int64_t, Cookie> found;
  for (const std::int64_t number : numbers) {
    const auto shot = all.find(number);
    if (shot == all.end())
      throw Error(ErrorKind::NotFound,
                  fmt::format("shot {}: no such shot (reeldb shots REEL shows the numbers)", number));
    found.insert(*shot);
  }
  return {found.begin(), found.end()};
}

bool addName(Shot& shot, const lists::SourceName& name)
{
  const auto saysAll = [&](const lists::SourceName& known) {
    return base::sameName(known.name, name.name) && known.sourceId == name.sourceId &&
           (!known.mayBeCut || name.mayBeCut);
  };
  const std::vector<lists::SourceName> names = namesOf(shot);
  if (std::any_of(names.begin(), names.end(), saysAll))
    return false;
  if (shot.ownName.empty())
    shot.ownName = shot.reel;
  shot.furtherNames.push_back(name);
  return true;
}

bool takeEarlierRecord(Shot& shot, const Shot& use)
{
  if (use.recordIn.empty() ||
      (!shot.recordIn.empty() && std::tie(shot.recordIn, shot.recordOut) <= std::tie(use.recordIn, use.recordOut)))
    return false;
  shot.recordIn = use.recordIn;
  shot.recordOut = use.recordOut;
  return true;
}

bool takeUse(Shot& shot, const Shot& use)
{
  bool changes = takeEarlierRecord(shot, use);
  for (std::string Shot::*const text : {&Shot::sourceFile, &Shot::cameraRoll, &Shot::soundOf})
    if (const std::string& other = use.*text; !other.empty() && ((shot.*text).empty() || other < shot.*text)) {
      shot.*text = other;
      changes = true;
    }
  if (use.aliases != shot.aliases) {
    std::set<std::string> aliases(shot.aliases.begin(), shot.aliases.end());
    aliases.insert(use.aliases.begin(), use.aliases.end());
    std::vector<std::string> all(aliases.begin(), aliases.end());
    changes = changes || all != shot.aliases;
    shot.aliases = std::move(all);
  }
  return changes;
}

ReelShots shotsOfReel(Session& session, const std::string& id)
{
  return guarded([&] {
    ReelShots result;
    result.reel = text(requireReel(session.manager(), id).reelId());
    for (const Cookie& log : reelhost::shotsOf(result.reel))
      result.shots.push_back({reelhost::logNumber(log), shotFrom(reelhost::materialOf(log))});
    return result;
  });
}

std::vector<Shot> allShots(Session&)
{
  return guarded([] { return shotsFrom(reelhost::allShots()); });
}

} // namespace reeldb::app
