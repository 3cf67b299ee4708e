// SPDX-License-Identifier: Apache-2.0
//
// Operations that only read, and the comparison of the whole state.
#include <cstdint>
#include <map>

#include "ReelTypeManager.h"
#include "host/codes.h"
#include "host/edit.h"
#include "host/text.h"
#include "manager/driver.h"
#include "manager/vocabulary.h"
#include "models/reel_types.h"
#include "reelhost/host.h"

namespace reeldb_fuzz {

void Driver::lookUp()
{
  const std::string id = anyText();
  with(id);
  const Number reel = world_.lookUp(id);
  same(number(manager_.getCookieFromReelId(id.c_str())), reel, "Cookie");
  same(number(manager_.getReelInfo(id.c_str())), reel, "record");
  same(manager_.doesReelExist(id.c_str()), reel != 0, "whether it exists");
  same(manager_.checkReelValid(id.c_str()), world_.validity(id), "validity");
  same(manager_.representsLiveMaterial(id.c_str()), world_.isLive(id), "whether it is live");
  same(manager_.representsInternallyGeneratedMaterial(id.c_str()), id.find('*') != std::string::npos,
       "whether it is generated");
  same(manager_.reelInUse(id.c_str()), world_.inUse.count(id) != 0, "whether it is in use");
  same(text(manager_.getLiveDeviceMediaName(id.c_str())), id + " live feed", "name of a feed");
}

/// The form with a vector appends, the one with a list clears first.
void Driver::list()
{
  const bool live = bytes_.flag();
  with(live);
  Texts wanted = world_.allIds(live);
  StringList list;
  list.add("before");
  manager_.getAllReelIds(list, live);
  same(texts(list), wanted, "identifiers in a list");
  std::vector<LightweightString<char>> vector = {"before"};
  manager_.getAllReelIds(vector, live);
  wanted.insert(wanted.begin(), "before");
  same(texts(vector), wanted, "identifiers in a vector");
}

void Driver::listForDevice()
{
  const int device = anyDevice(bytes_);
  with(device);
  Texts wanted = world_.compatibleIds(device);
  StringList list;
  list.add("before");
  manager_.getReelsCompatibleWithDevice(list, device);
  same(texts(list), wanted, "identifiers in a list");
  std::vector<LightweightString<char>> vector = {"before"};
  manager_.getReelsCompatibleWithDevice(vector, device);
  wanted.insert(wanted.begin(), "before");
  same(texts(vector), wanted, "identifiers in a vector");
}

void Driver::askUserFieldName()
{
  const int field = anyUserField(bytes_);
  with(field);
  same(text(manager_.userFieldName(field)), world_.userFieldName(field), "name");
}

void Driver::sortOutReels()
{
  const Numbers logs = someLogs();
  with(logs);
  CookieSet set;
  CookieVec left;
  Numbers others;
  for (const Number log : logs) {
    set.insert(cookie(log));
    left.add(cookie(log));
    if (!world_.isReel(log))
      others.push_back(log);
  }
  const bool any = others.size() != logs.size();
  const CookieVec shared = left;
  same(manager_.doesCookieSetContainReels(set), any, "whether there are reels");
  same(manager_.removeReelsFromCookieSet(left), any, "whether reels were removed");
  same(numbers(left), others, "what is left");
  same(numbers(shared), logs, "what shared the storage");
}

void Driver::askReferenced()
{
  const Numbers shots = someLogs();
  with(shots);
  same(numbers(manager_.getReelsReferenced(cookies(shots))), world_.referenced(shots), "reels");
}

void Driver::addShots()
{
  const Number reel = anyLog();
  with(reel);
  CookieVec shots = cookies({0});
  Numbers wanted = {0};
  manager_.addShotsFromReel(cookie(reel), shots);
  world_.addShots(reel, wanted);
  same(numbers(shots), wanted, "shots");
}

void Driver::askDoomed()
{
  const Numbers selection = someLogs();
  with(selection);
  const Numbers got = numbers(manager_.buildSetOfReelsAndAssociatedShots(cookies(selection)));
  same(got, world_.doomed(selection), "what goes");
}

void Driver::askType()
{
  const std::string name = anyText();
  with(name);
  const ReelType type = theReelTypeManager()->type(LightweightString<char>(name.c_str()));
  same(text(type.name), name, "name");
  same(type.numAudioChans, world_.channelsOf(name, "AudioChannels"), "audio channels");
  same(type.numVideoChans, world_.channelsOf(name, "VideoChannels"), "video channels");
}

void Driver::compareAll()
{
  for (Number log = 0; log <= static_cast<Number>(world_.logs.size()) + 1; ++log)
    compareRecord(log);
  StringList types;
  theReelTypeManager()->getAllReelTypes(types);
  Texts wanted;
  for (const auto& [name, params] : world_.types)
    wanted.push_back(name);
  same(texts(types), wanted, "types");
  same(texts(manager_.reelsInUse).empty(), world_.inUse.empty(), "whether anything is in use");
  for (const std::string& id : world_.inUse)
    same(manager_.reelInUse(id.c_str()), true, "mark of", id);
  for (std::size_t i = 0; i < world_.devices.size(); ++i)
    same(reelhost::facility().devices().at(i).lastReel, world_.devices[i].lastReel, "last reel of a device");
  const auto counts = reelhost::shotCounts();
  same(std::map<std::string, std::int64_t>(counts.begin(), counts.end()) == world_.shotCounts(), true, "shot counts");
}

void Driver::compareRecord(Number log)
{
  ReelDbRec rec = record(log);
  same(text(rec.reelId()), world_.id(log), "identifier of log", log);
  same(text(rec.typeName()), world_.typeName(log), "type of log", log);
  same(rec.reelAvailable(), world_.flag(log, "reel_available_flag"), "availability of log", log);
  same(rec.recInhibit(), world_.flag(log, "record_inhibit_flag"), "record inhibit of log", log);
  same(text(rec.labelMapping()), world_.textUnless(log, "reel_labelmapping", "unknown"), "label mapping of log", log);
  same(text(rec.binName()), world_.textUnless(log, "profile_bin_name", "default"), "bin name of log", log);
  for (const int field : {0, 5, 6})
    same(text(rec.userField(field)), world_.text(log, "reel_userfield" + std::to_string(field)), "user field of log",
         log);
  same(text(toUTF8(rec.lastDevice())), world_.text(log, "reel_last_device"), "last device of log", log);

  const ModelLog* const wanted = world_.find(log);
  EditPtr edit;
  edit.i_open(cookie(log), codes::openAsUsual);
  const bool opened = bool(edit);
  const int type = opened ? edit->getLogType() : 0;
  edit.i_close();
  same(opened, wanted != nullptr, "existence of log", log);
  if (!wanted)
    return;
  const reelhost::Material material = reelhost::materialOf(cookie(log));
  same(type, wanted->type, "log type of log", log);
  same(material.name, wanted->name, "name of log", log);
  same(material.videoChannels, wanted->video, "video channels of log", log);
  same(material.audioChannels, wanted->audio, "audio channels of log", log);
}

} // namespace reeldb_fuzz
