// SPDX-License-Identifier: Apache-2.0
#include "ReelDbManager.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reeldb/log_types.h"
#include "reeldb/shots.h"
#include "reelrec/open_log.h"

using reeldb::LogTypes;

bool ReelDbManager::doesCookieSetContainReels(CookieSet& set)
{
  const LogTypes types;
  for (int i = 0; i < set->count(); ++i)
    if (types.isReel((*set)[i]))
      return true;
  return false;
}

bool ReelDbManager::removeReelsFromCookieSet(CookieVec& v)
{
  const LogTypes types;
  bool removed = false;
  for (int i = 0; i < v.count();) {
    const Cookie log = v[i]; // a copy: the vector changes under it
    if (types.isReel(log)) {
      v.remove(log);
      removed = true;
    } else {
      ++i;
    }
  }
  return removed;
}

CookieVec ReelDbManager::getReelsReferenced(const CookieVec& shots)
{
  CookieVec reels;
  if (reelList.empty())
    return reels;
  for (const Cookie& shot : shots) {
    const LightweightString<char> id = reeldb::reelAttribute(shot);
    if (id.empty())
      continue;
    const ReelDbRec rec = theReelDbManager()->getReelInfo(id);
    if (rec.valid())
      reels.add(rec);
  }
  return reels;
}

void ReelDbManager::addShotsFromReel(Cookie reel, CookieVec& out)
{
  ReelDbRec rec(reel);
  if (!rec.valid())
    return;
  const LightweightString<char> id = rec.reelId();
  projdb* const db = EditManager::getProjdb();
  if (!db)
    return;
  const CookieVec shots = reeldb::findShots(*db, id);
  for (const Cookie& shot : shots) {
    if (!reeldb::isRecordedFrom(shot, id))
      continue;
    out.add(shot);
    vorn_printf("%s\n", ("Preparing to delete: " + shot.asString(false) + " from Reel: " + id).c_str());
  }
}

CookieVec ReelDbManager::buildSetOfReelsAndAssociatedShots(CookieVec selection)
{
  CookieVec doomed;
  const LogTypes types;
  for (const Cookie& log : selection) {
    if (!types.isReel(log))
      continue;
    const LightweightString<char> id = ReelDbRec(log).reelId();
    if (reelInUse(id)) {
      vorn_printf("%s\n", ("Couldn't delete reel: " + id + " because it was marked as in use.").c_str());
      continue;
    }
    doomed.add(log);
    addShotsFromReel(log, doomed);
  }
  return doomed;
}
