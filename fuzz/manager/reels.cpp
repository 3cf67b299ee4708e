// SPDX-License-Identifier: Apache-2.0
//
// Operations that change reels through the manager.
#include "host/codes.h"
#include "host/edit.h"
#include "manager/driver.h"
#include "manager/vocabulary.h"
#include "support/own_host.h"

namespace reeldb_fuzz {

void Driver::createReel()
{
  const std::string id = anyText();
  const int device = anyDevice(bytes_);
  with(id, device);
  const Number made = number(manager_.createNewReel(id.c_str(), device));
  same(made, world_.create(id, device), "reel made");
}

void Driver::createReelOffThread()
{
  ownHost().offMainThread = world_.offMain = true;
  createReel();
  ownHost().offMainThread = world_.offMain = false;
}

void Driver::renameReel()
{
  const std::string from = anyText(), to = anyText();
  with(from, to);
  manager_.changeReelId(from.c_str(), to.c_str());
  world_.rename(from, to);
}

void Driver::copyReel()
{
  const std::string from = anyText(), to = anyText();
  with(from, to);
  manager_.copyReelInfo(from.c_str(), to.c_str());
  world_.copy(from, to);
}

void Driver::checkLiveMedia()
{
  const int device = anyDevice(bytes_);
  with(device);
  manager_.checkLiveDeviceMedia(device);
  world_.checkLive(device);
}

void Driver::checkLiveMediaOffThread()
{
  ownHost().offMainThread = world_.offMain = true;
  checkLiveMedia();
  ownHost().offMainThread = world_.offMain = false;
}

void Driver::setDefaultType()
{
  const std::string type = anyText();
  with(type);
  manager_.setProjectDefaultReelType(type.c_str());
  if (world_.open)
    world_.defaultType = type;
}

void Driver::markInUse()
{
  const std::string id = anyText();
  const bool mark = bytes_.flag();
  with(id, mark);
  manager_.reelInUse(id.c_str(), mark);
  if (mark)
    world_.inUse.insert(id);
  else
    world_.inUse.erase(id);
}

void Driver::nameUserField()
{
  const int field = anyUserField(bytes_);
  const std::string name = anyText();
  with(field, name);
  manager_.userFieldName(field, name.c_str());
  world_.system["reel_userfield" + std::to_string(field)] = name;
}

void Driver::modifyLog()
{
  const Number log = anyLog();
  const int modification = bytes_.flag() ? int{codes::madeOrImported} : 1;
  with(log, modification);
  manager_.handleLogModification(cookie(log), EditModification(EditModificationType(modification)));
  world_.handleModification(log, modification);
}

void Driver::informListChanged()
{
  const std::string id = anyText();
  with(id);
  manager_.informReelDbChanged(id.c_str());
  world_.informChanged(id);
}

void Driver::informRecordChanged()
{
  const std::string id = anyText();
  with(id);
  manager_.informReelDbRecChanged(id.c_str());
  world_.informRecord(id);
}

void Driver::enterAgain()
{
  manager_.handleProjectEntry();
  world_.handleEntry();
}

} // namespace reeldb_fuzz
