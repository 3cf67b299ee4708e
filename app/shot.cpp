// SPDX-License-Identifier: Apache-2.0
#include "app/shot.h"

#include <algorithm>

#include "text/table.h"

namespace reeldb::cli {

CookieVec shotsOf(const std::string& reelId)
{
  return reelhost::shotsOf(reelId);
}

std::vector<reelhost::Material> materialOf(const CookieVec& logs)
{
  std::vector<reelhost::Material> result;
  for (const Cookie& log : logs)
    result.push_back(reelhost::materialOf(log));
  return result;
}

std::vector<std::string> aliasesOf(const reelhost::Material& shot)
{
  std::vector<std::string> aliases;
  for (std::size_t at = 0; at < shot.aliases.size();) {
    const std::size_t end = std::min(shot.aliases.find('\n', at), shot.aliases.size());
    aliases.push_back(shot.aliases.substr(at, end - at));
    at = end + 1;
  }
  return aliases;
}

Json toJson(const reelhost::Material& shot)
{
  Json json;
  json["reel"] = shot.reel;
  json["clip"] = shot.name;
  json["tracks"] = shot.tracks;
  json["source_in"] = shot.sourceIn;
  json["source_out"] = shot.sourceOut;
  json["record_in"] = shot.recordIn;
  json["record_out"] = shot.recordOut;
  json["source_file"] = shot.sourceFile;
  json["aliases"] = aliasesOf(shot);
  json["video_channels"] = shot.videoChannels;
  json["audio_channels"] = shot.audioChannels;
  return json;
}

Json toJson(const std::vector<reelhost::Material>& shots)
{
  Json json = Json::array();
  for (const reelhost::Material& shot : shots)
    json.push_back(toJson(shot));
  return json;
}

void printShots(const std::vector<reelhost::Material>& shots, std::size_t indent)
{
  Table table({{"CLIP"},
               {"TRACKS"},
               {"SOURCE IN"},
               {"SOURCE OUT"},
               {.title = "RECORD IN", .optional = true},
               {.title = "RECORD OUT", .optional = true},
               {.title = "SOURCE FILE", .optional = true}});
  for (const reelhost::Material& shot : shots)
    table.add({shot.name.empty() ? "-" : shot.name, shot.tracks, shot.sourceIn, shot.sourceOut, shot.recordIn,
               shot.recordOut, shot.sourceFile});
  table.print(indent);
}

} // namespace reeldb::cli
