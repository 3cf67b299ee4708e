// SPDX-License-Identifier: Apache-2.0
#include "reeldb/shots.h"

#include "ReelDbManager.h"
#include "host/codes.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reeldb/identifier.h"
#include "reelrec/open_log.h"

namespace {

/// Decides whether a log is a reel: by its database row if it has one, else by opening the log. The row's column is
/// looked up once, in the constructor.
class LogTypes {
public:
  LogTypes() : db_(EditManager::getProjdb()), typeColumn_(db_ ? db_->findField("Type") : 0) {}

  /// False also for a log that cannot be opened.
  bool isReel(const Cookie& log) const
  {
    if (db_)
      if (const dbrecord* row = (*db_)[log])
        return Edit::getLogTypeFromString(row->get_field(typeColumn_)) == codes::reelLog;
    const reeldb::OpenLog opened(log);
    return opened && opened->getLogType() == codes::reelLog;
  }

private:
  projdb* db_; ///< null when no database is open
  unsigned short typeColumn_;
};

} // namespace

namespace reeldb {

CookieVec findShots(projdb& db, const LightweightString<char>& reelId)
{
  projdb::SearchCriteria criteria;
  criteria.first = codes::shotSearchFirst;
  criteria.second = codes::shotSearchSecond;
  criteria.attributes.add(codes::reelIdAttribute, reelId);
  return db.search(criteria);
}

bool isRecordedFrom(const Cookie& shot, const LightweightString<char>& reelId)
{
  return sameReelId(reelAttribute(shot), reelId);
}

} // namespace reeldb

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
