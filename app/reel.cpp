// SPDX-License-Identifier: Apache-2.0
#include "app/reel.h"

#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "app/host_text.h"
#include "app/open_log.h"

namespace reeldb::cli {

namespace {

constexpr auto videoChannel = EditChanType(1);
constexpr auto audioChannel = EditChanType(2);

int channels(const OpenLog& log, EditChanType type)
{
  return log->getNumChans(type) & 0xFFFF;
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
  if (const OpenLog log(record); log) {
    reel.videoChannels = channels(log, videoChannel);
    reel.audioChannels = channels(log, audioChannel);
  }
  if (const auto found = shots.find(folded(reel.id)); found != shots.end())
    reel.shots = found->second;
  return reel;
}

std::vector<Reel> readReels(const ReelDbManager& manager, const ShotCounts& shots)
{
  std::vector<Reel> reels;
  for (const Cookie& log : manager.reelList) {
    Reel reel = readReel(ReelDbRec(log), shots);
    if (!reel.id.empty())
      reels.push_back(std::move(reel));
  }
  return reels;
}

Json toJson(const Reel& reel)
{
  Json fields = Json::object();
  for (std::size_t i = 0; i < userFieldCount; ++i)
    if (!reel.userFields[i].empty())
      fields[std::to_string(i)] = reel.userFields[i];
  Json json;
  json["id"] = reel.id;
  json["type"] = reel.type;
  json["available"] = reel.available;
  json["inhibit"] = reel.inhibit;
  json["label_mapping"] = reel.labelMapping;
  json["bin"] = reel.bin;
  json["last_device"] = reel.lastDevice;
  json["video_channels"] = reel.videoChannels;
  json["audio_channels"] = reel.audioChannels;
  json["user_fields"] = std::move(fields);
  json["shots"] = reel.shots;
  return json;
}

bool isListedType(const std::string& type)
{
  return static_cast<bool>(theReelTypeManager()->rep()->find(hostText(type)));
}

std::string_view yesOrNo(bool value)
{
  return value ? "yes" : "no";
}

} // namespace reeldb::cli
