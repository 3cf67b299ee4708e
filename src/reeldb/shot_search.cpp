// SPDX-License-Identifier: Apache-2.0
#include "reeldb/shots.h"

#include "host/codes.h"
#include "host/projdb.h"
#include "reeldb/identifier.h"
#include "reelrec/open_log.h"

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
