// SPDX-License-Identifier: Apache-2.0
#include "app/shots.h"

#include <algorithm>

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

std::vector<std::string> divided(const std::string& text)
{
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(divider, at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
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

ReelShots shotsOfReel(Session& session, const std::string& id)
{
  return guarded([&] {
    ReelShots result;
    result.reel = text(requireReel(session.manager(), id).reelId());
    result.shots = shotsFrom(reelhost::shotsOf(result.reel));
    return result;
  });
}

std::vector<Shot> allShots(Session&)
{
  return guarded([] { return shotsFrom(reelhost::allShots()); });
}

} // namespace reeldb::app
