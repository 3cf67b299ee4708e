// SPDX-License-Identifier: Apache-2.0
#include "ReelDbManager.h"
#include "host/codes.h"
#include "host/config.h"
#include "host/device.h"
#include "host/projdb.h"
#include "reelrec/config_access.h"

namespace {

constexpr const char* defaultTypeOption = "reeldb_defaultType";

} // namespace

ReelDbManager* ReelDbManager::theReelDbManager_ = nullptr;

// Read before the reel types. A host sees this order when it loads the library.
LightweightString<char> ReelDbManager::systemWideDefaultReelType_ __attribute__((init_priority(60000))) =
    config_string("default_reel_type", "");

ReelDbManager::ReelDbManager() : notifyHoldCount(0)
{
  reelsInUse.sorted(true);
  lastProject.invalidate();
}

ReelDbManager::~ReelDbManager() = default;

ReelDbManager* ReelDbManager::theReelDbManager()
{
  if (!theReelDbManager_)
    theReelDbManager_ = new ReelDbManager;
  return theReelDbManager_;
}

void ReelDbManager::handleProjectEntry()
{
  const Cookie placeholder("P0001000", false);
  const Cookie entered = get_project_cookie();
  const Cookie current = get_project_cookie();
  if (entered.compare(placeholder) == 0)
    return;
  reelsInUse.clear();
  informReelDbChanged("");
  configb& options = EditManager::ProjOpts();
  if (!reeldb::hasKey(options, defaultTypeOption))
    reeldb::writeText(options, defaultTypeOption, systemWideDefaultReelType_.c_str());
  if (current.compare(lastProject) != 0) {
    resetDevices();
    lastProject = get_project_cookie();
  }
}

void ReelDbManager::handleProjectExit()
{
  reelList.clear();
}

void ReelDbManager::buildReelList()
{
  projdb* const db = EditManager::getProjdb();
  if (db)
    reelList = db->search(codes::reelSearchMask, codes::reelSearchMaskOff);
}

bool ReelDbManager::handleDeviceChange(const NotifyMsg& msg)
{
  const IdStamp device = ExtDeviceConfigurationManager::DeviceChangedMsgParser(msg);
  static_cast<void>(device.valid()); // the result is not used: no device change alters the reels
  return true;
}

void ReelDbManager::setProjectDefaultReelType(LightweightString<char> type)
{
  reeldb::writeText(EditManager::ProjOpts(), defaultTypeOption, type.c_str());
}
