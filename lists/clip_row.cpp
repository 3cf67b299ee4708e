// SPDX-License-Identifier: Apache-2.0
#include "lists/clip_row.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "lists/ale.h"
#include "lists/frame_rate.h"
#include "lists/names.h"
#include "lists/own_name.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/tracks.h"

namespace reeldb::lists {
namespace {

/// The tracks of a source when the row has none: a picture.
constexpr const char* defaultTracks = "V";

std::string timesFault(const ClipRow& row)
{
  const bool numbered = isFrameNumber(row.sourceIn) && isFrameNumber(row.sourceOut);
  const std::array<std::pair<const char*, const std::string*>, 4> times = {{{"source in", &row.sourceIn},
                                                                            {"source out", &row.sourceOut},
                                                                            {"record in", &row.recordIn},
                                                                            {"record out", &row.recordOut}}};
  for (std::size_t i = 0; i < times.size(); ++i) {
    const auto& [name, time] = times[i];
    if (time->empty() || (numbered && i < 2))
      continue;
    if (const std::string fault = timecodeFault(*time); !fault.empty())
      return std::string(name) + " " + inQuotes(*time) + " is not a timecode (" + fault + ")";
  }
  return {};
}

/// Why a text of the row that no other rule covers cannot be kept; empty if all can.
std::string textsFault(const ClipRow& row)
{
  Clip texts;
  texts.reel = "tracks, camera roll or source id";
  texts.aliases = {row.tracks, row.cameraRoll, row.sourceId};
  return Collector::fault(texts);
}

std::string channelsFault(const ClipRow& row)
{
  constexpr int mostChannels = 256;
  for (const std::optional<int>& channels : {row.videoChannels, row.audioChannels})
    if (channels.value_or(0) > mostChannels)
      return std::to_string(*channels) + " channels (at most " + std::to_string(mostChannels) + ")";
  return {};
}

/// The channels of the row; empty if no list can have its tracks.
std::optional<Tracks> channelsOf(const ClipRow& row)
{
  if (row.videoChannels && row.audioChannels)
    return Tracks{*row.videoChannels, *row.audioChannels};
  if (row.tracks.empty())
    return Tracks{1, 0};
  if (const std::optional<Tracks> tracks = parseLogTracks(row.tracks))
    return tracks;
  return parseTracks(row.tracks, Digits::Set);
}

} // namespace

std::string takeRow(Collector& collector, ClipRow row, std::string_view text)
{
  const auto reject = [&](std::string reason) {
    collector.reject(row.line, text, std::move(reason));
    return std::string();
  };
  for (std::string fault : {timesFault(row), textsFault(row), channelsFault(row)})
    if (!fault.empty())
      return reject(std::move(fault));
  const std::optional<Tracks> channels = channelsOf(row);
  if (!channels)
    return reject("unknown tracks " + inQuotes(row.tracks));
  Clip clip;
  clip.line = row.line;
  clip.clipName = clean(row.clipName);
  clip.sourceFile = clean(row.sourceFile);
  clip.tracks = row.tracks.empty() ? std::string(defaultTracks) : clean(row.tracks);
  clip.videoChannels = channels->video;
  clip.audioChannels = channels->audio;
  clip.sourceIn = std::move(row.sourceIn);
  clip.sourceOut = std::move(row.sourceOut);
  clip.recordIn = std::move(row.recordIn);
  clip.recordOut = std::move(row.recordOut);
  clip.dropFrame = row.dropFrame;
  if (const std::optional<FrameRate> rate = rateOf(row.frameRate))
    clip.frameRate = rateName(*rate);
  else if (!row.frameRate.empty())
    collector.warn(row.line, text, "unknown frame rate " + inQuotes(row.frameRate) + " (kept without it)");
  clip.sourceId = clean(row.sourceId);
  clip.cameraRoll = clean(row.cameraRoll);
  for (const std::string& alias : row.aliases)
    clip.aliases.push_back(clean(alias));
  clip.event.reelText = clean(row.reel);
  OwnName name{clip.event.reelText};
  if (name.name.empty() || isAuxiliary(name.name))
    name = clip.sourceFile.empty() && !clip.cameraRoll.empty()
               ? OwnName{clip.cameraRoll, NameEvidence::CameraRoll}
               : ownNameWithoutTape(clip.sourceFile, clip.sourceFile.empty() ? clip.clipName : std::string());
  clip.evidence = name.evidence;
  clip.reel = name.name;
  if (clip.reel.empty())
    return reject("no reel, no source file and no clip name");
  if (!isClipOf(clip.cameraRoll, clip.reel)) {
    clip.aliases.push_back(clip.cameraRoll);
    clip.cameraRoll.clear();
  }
  std::optional<Clip> sound = soundOf(clip, clean(row.soundRoll));
  if (std::string fault = sound ? Collector::fault(*sound) : std::string(); !fault.empty())
    return reject(std::move(fault));
  if (!collector.clip(std::move(clip), text))
    return {};
  std::string reel = collector.list().clips.back().reel;
  if (sound) {
    sound->soundOf = reel;
    collector.clip(*std::move(sound), text);
  }
  return reel;
}

} // namespace reeldb::lists
