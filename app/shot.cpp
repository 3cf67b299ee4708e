// SPDX-License-Identifier: Apache-2.0
#include "app/shot.h"

#include <algorithm>

#include "host/projdb.h"
#include "app/host_text.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

constexpr auto reelIdAttribute = LogAttributes::eLogAttribute(20);

std::string reelOf(const Cookie& shot)
{
  EditInfo info(shot, eEditOpenBehaviour(0));
  const std::string id = text(info.getAttrib(reelIdAttribute));
  info.i_close();
  return id;
}

} // namespace

CookieVec shotsOf(const std::string& reelId)
{
  CookieVec shots;
  projdb* const database = EditManager::getProjdb();
  if (!database)
    return shots;
  projdb::SearchCriteria criteria;
  criteria.first = 1;
  criteria.second = 102350;
  criteria.attributes.add(reelIdAttribute, hostText(reelId));
  for (const Cookie& shot : database->search(criteria))
    if (folded(reelOf(shot)) == folded(reelId))
      shots.add(shot);
  return shots;
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
