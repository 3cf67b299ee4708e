// SPDX-License-Identifier: Apache-2.0
#include "app/shot_key.h"

#include <initializer_list>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/host_text.h"
#include "app/shot.h"

namespace reeldb::cli {

namespace {

/// No text holds the divider.
std::string keyOf(const std::string& reel, std::initializer_list<std::string_view> rest)
{
  std::string key = folded(reel);
  for (const std::string_view part : rest) {
    key += '\0';
    key += part;
  }
  return key;
}

} // namespace

std::string shotKey(const reelhost::Material& shot)
{
  return keyOf(shot.reel, {shot.name, shot.sourceIn, shot.sourceOut, shot.tracks});
}

std::string shotKey(const lists::Clip& clip)
{
  return keyOf(clip.reel, {clip.clipName, clip.sourceIn, clip.sourceOut, clip.tracks});
}

reelhost::Material material(const lists::Clip& clip)
{
  reelhost::Material result;
  result.reel = clip.reel;
  result.name = clip.clipName;
  result.sourceFile = clip.sourceFile;
  result.sourceIn = clip.sourceIn;
  result.sourceOut = clip.sourceOut;
  result.recordIn = clip.recordIn;
  result.recordOut = clip.recordOut;
  result.tracks = clip.tracks;
  result.aliases = fmt::format("{}", fmt::join(clip.aliases, "\n"));
  result.videoChannels = clip.videoChannels;
  result.audioChannels = clip.audioChannels;
  return result;
}

lists::Clip clipOf(const reelhost::Material& shot)
{
  lists::Clip clip;
  clip.reel = shot.reel;
  clip.clipName = shot.name;
  clip.sourceFile = shot.sourceFile;
  clip.tracks = shot.tracks;
  clip.sourceIn = shot.sourceIn;
  clip.sourceOut = shot.sourceOut;
  clip.recordIn = shot.recordIn;
  clip.recordOut = shot.recordOut;
  clip.aliases = aliasesOf(shot);
  clip.videoChannels = shot.videoChannels;
  clip.audioChannels = shot.audioChannels;
  return clip;
}

} // namespace reeldb::cli
