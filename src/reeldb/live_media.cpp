// SPDX-License-Identifier: Apache-2.0
#include "ReelDbManager.h"
#include "host/device.h"
#include "host/text.h"
#include "reeldb/identifier.h"

LightweightString<char> ReelDbManager::getLiveDeviceMediaName(LightweightString<char> deviceName)
{
  return deviceName + " live feed";
}

void ReelDbManager::checkLiveDeviceMedia(int deviceId)
{
  ExtDeviceConfig config = theConfigurationManager().getConfig(deviceId);
  if (!config.getTapeList().contains(reeldb::liveType))
    return;
  const LightweightString<char> name = getLiveDeviceMediaName(toUTF8(config.getTextName()));
  if (doesReelExist(name))
    return;
  // The device stores its reel whatever createNewReel returned: a deferred reel is created later.
  ReelDbRec rec = createNewReel(name, -1);
  rec.typeName(reeldb::liveType);
  rec.lastDevice(config.getTextName());
  config.setLastReel(name);
  theConfigurationManager().storeDevice(config, false);
}
