// SPDX-License-Identifier: Apache-2.0
//
// Finding reels by identifier: a plain scan of the reel list that opens one log after the other.
#include <cstdio>
#include <cstring>

#include "ReelDbManager.h"
#include "host/config.h"
#include "reeldb/identifier.h"
#include "reelrec/open_log.h"
#include "reelrec/text_equality.h"
#include "reeltypes/known_type.h"

using reeldb::reelAttribute;
using reeldb::sameText;

namespace {

LightweightString<char> userFieldNameKey(int n)
{
  LightweightString<char> key("reel_userfield");
  key += n;
  return key;
}

/// Keys count from 0, display names from 1.
LightweightString<char> defaultUserFieldName(int n)
{
  char name[40];
  std::snprintf(name, sizeof name, "User field %lld", n + 1LL);
  return name;
}

} // namespace

Cookie ReelDbManager::getCookieFromReelId(LightweightString<char> id)
{
  if (id.empty())
    return {};
  const CookieVec reels = reelList;
  for (const Cookie& reel : reels) {
    const LightweightString<char> candidate = reelAttribute(reel);
    if (!candidate.empty() && reeldb::sameReelId(candidate, id))
      return reel;
  }
  return {};
}

ReelDbRec ReelDbManager::getReelInfo(LightweightString<char> id)
{
  const Cookie reel = getCookieFromReelId(id);
  return reel.valid() ? ReelDbRec(reel) : ReelDbRec();
}

bool ReelDbManager::doesReelExist(LightweightString<char> id)
{
  return getCookieFromReelId(id).valid();
}

int ReelDbManager::checkReelValid(LightweightString<char> id)
{
  ReelDbRec rec = getReelInfo(id);
  if (!rec.valid())
    return 1;
  return reeldb::isKnownType(rec.typeName()) ? 0 : 4;
}

bool ReelDbManager::representsLiveMaterial(LightweightString<char> id)
{
  ReelDbRec rec = getReelInfo(id);
  return rec.valid() && sameText(rec.typeName(), reeldb::liveType);
}

bool ReelDbManager::representsInternallyGeneratedMaterial(LightweightString<char> id)
{
  return std::strchr(id.c_str(), '*') != nullptr;
}

void ReelDbManager::reelInUse(LightweightString<char> id, bool inUse)
{
  if (inUse)
    reelsInUse.add(id);
  else
    reelsInUse.remove(id);
}

bool ReelDbManager::reelInUse(LightweightString<char> id)
{
  return reelsInUse.contains(id);
}

LightweightString<char> ReelDbManager::userFieldName(int n)
{
  const LightweightString<char> stored = SystemCfg::theConfig().get(userFieldNameKey(n));
  return stored.empty() ? defaultUserFieldName(n) : stored;
}

void ReelDbManager::userFieldName(int n, LightweightString<char> name)
{
  SystemCfg::theConfig().set(userFieldNameKey(n), name);
}
