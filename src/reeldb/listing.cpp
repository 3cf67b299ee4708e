// SPDX-License-Identifier: Apache-2.0
#include "ReelDbManager.h"
#include "host/device.h"
#include "reeldb/identifier.h"
#include "reelrec/open_log.h"
#include "reelrec/text_equality.h"
#include "reeltypes/known_type.h"

namespace {

void fill(StringList& list, const std::vector<LightweightString<char>>& ids)
{
  for (const LightweightString<char>& id : ids)
    list.add(id);
}

} // namespace

void ReelDbManager::getAllReelIds(std::vector<LightweightString<char>>& out, bool includeLive)
{
  const CookieVec reels = reelList;
  for (const Cookie& reel : reels) {
    const LightweightString<char> id = reeldb::reelAttribute(reel);
    if (id.empty())
      continue;
    // Looked up by identifier: if two identifiers differ only in case, the first reel decides for both.
    if (!includeLive && reeldb::sameText(getReelInfo(id).typeName(), reeldb::liveType))
      continue;
    out.push_back(id);
  }
}

void ReelDbManager::getAllReelIds(StringList& out, bool includeLive)
{
  out.clear();
  std::vector<LightweightString<char>> ids;
  getAllReelIds(ids, includeLive);
  fill(out, ids);
}

void ReelDbManager::getReelsCompatibleWithDevice(std::vector<LightweightString<char>>& out, int device)
{
  const ExtDeviceConfig config = theConfigurationManager().getConfig(device);
  const CookieVec reels = reelList;
  for (const Cookie& reel : reels) {
    if (!reel.valid())
      continue;
    ReelDbRec rec(reel);
    const LightweightString<char> type = rec.typeName();
    // For an undefined type it is unknown whether the device can use the reel, so the reel is listed.
    if (config.getTapeList().contains(type) || !reeldb::isKnownType(type))
      out.push_back(rec.reelId());
  }
}

void ReelDbManager::getReelsCompatibleWithDevice(StringList& out, int device)
{
  out.clear();
  std::vector<LightweightString<char>> ids;
  getReelsCompatibleWithDevice(ids, device);
  fill(out, ids);
}
