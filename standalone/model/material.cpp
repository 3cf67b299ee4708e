// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "host/codes.h"
#include "model/listeners.h"
#include "model/log.h"
#include "model/project.h"
#include "reelhost/host.h"

namespace reelhost {

using model::Log;
using model::Project;

Cookie importMaterial(const Material& material)
{
  Project& project = model::requireProject("import");
  StoredLog log;
  log.type = codes::materialLog;
  log.imported = true;
  log.name = material.name;
  log.videoChannels = material.videoChannels;
  log.audioChannels = material.audioChannels;
  for (const auto& [key, member] : shotTexts)
    if (const std::string& text = material.*member; !text.empty())
      log.fields.emplace_back(key, text);
  if (!material.frameRate.empty())
    log.fields.emplace_back(frameRateKey, material.frameRate);
  if (material.dropFrame)
    log.fields.emplace_back(dropFrameKey, "yes");
  if (!material.ownName.empty())
    log.fields.emplace_back(ownNameKey, material.ownName);
  if (material.mayBeCut)
    log.fields.emplace_back(mayBeCutKey, "yes");
  if (!material.sourceId.empty())
    log.fields.emplace_back(sourceIdKey, material.sourceId);
  if (!material.furtherNames.empty())
    log.fields.emplace_back(furtherNamesKey, material.furtherNames);
  if (!material.reelOfNames.empty())
    log.fields.emplace_back(reelOfNamesKey, material.reelOfNames);
  if (!material.cameraRoll.empty())
    log.fields.emplace_back(cameraRollKey, material.cameraRoll);
  if (!material.soundOf.empty())
    log.fields.emplace_back(soundOfKey, material.soundOf);
  Cookie cookie = project.create(std::move(log)).cookie;
  model::notifyLogModification(cookie, EditModification(codes::madeOrImported));
  return cookie;
}

void changeMaterial(const Cookie& cookie, const Material& material)
{
  Log* const log = model::openedProject ? model::openedProject->find(cookie) : nullptr;
  if (!log)
    return;
  const auto change = [&](const char* key, const std::string& text) {
    if (!text.empty() || log->block.find(key))
      log->block.set(key, text.c_str());
  };
  for (const auto& [key, member] : shotTexts)
    change(key, material.*member);
  change(ownNameKey, material.ownName);
  change(mayBeCutKey, material.mayBeCut ? "yes" : "");
  change(sourceIdKey, material.sourceId);
  change(furtherNamesKey, material.furtherNames);
  change(reelOfNamesKey, material.reelOfNames);
  change(cameraRollKey, material.cameraRoll);
  change(soundOfKey, material.soundOf);
}

Material materialOf(const Cookie& cookie)
{
  Material material;
  const Log* const log = model::openedProject ? model::openedProject->find(cookie) : nullptr;
  if (!log)
    return material;
  material.name = log->name;
  material.videoChannels = log->videoChannels;
  material.audioChannels = log->audioChannels;
  for (const auto& [key, member] : shotTexts)
    if (const LightweightString<char>* const text = log->block.find(key))
      material.*member = text->c_str();
  if (const LightweightString<char>* const rate = log->block.find(frameRateKey))
    material.frameRate = rate->c_str();
  material.dropFrame = log->block.find(dropFrameKey) != nullptr;
  if (const LightweightString<char>* const name = log->block.find(ownNameKey))
    material.ownName = name->c_str();
  if (const LightweightString<char>* const cut = log->block.find(mayBeCutKey))
    material.mayBeCut = *cut->c_str() != '\0';
  if (const LightweightString<char>* const id = log->block.find(sourceIdKey))
    material.sourceId = id->c_str();
  if (const LightweightString<char>* const names = log->block.find(furtherNamesKey))
    material.furtherNames = names->c_str();
  if (const LightweightString<char>* const reel = log->block.find(reelOfNamesKey))
    material.reelOfNames = reel->c_str();
  if (const LightweightString<char>* const roll = log->block.find(cameraRollKey))
    material.cameraRoll = roll->c_str();
  if (const LightweightString<char>* const name = log->block.find(soundOfKey))
    material.soundOf = name->c_str();
  return material;
}

CookieVec allShots()
{
  CookieVec shots;
  if (model::openedProject)
    for (const Log* log : model::openedProject->others())
      shots.add(log->cookie);
  return shots;
}

CookieVec shotsOf(const std::string& reelId)
{
  return model::openedProject ? model::openedProject->othersWithReelId(reelId) : CookieVec();
}

std::unordered_map<std::string, std::int64_t> shotCounts()
{
  return model::openedProject ? model::openedProject->countOthersByReelId()
                              : std::unordered_map<std::string, std::int64_t>();
}

Cookie addLog(const StoredLog& log)
{
  return model::requireProject("new log").create(StoredLog(log)).cookie;
}

} // namespace reelhost
