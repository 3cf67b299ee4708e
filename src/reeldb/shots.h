// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_SHOTS_H
#define REELDB_REELDB_SHOTS_H

#include "host/cookie.h"
#include "host/lwstring.h"

class projdb;

namespace reeldb {

/// The logs whose reel identifier the database takes to be @p reelId, and those among them that do carry it, in any
/// case, in the order of the database. The search may answer near matches; what it answers is compared again.
CookieVec findShots(projdb& db, const LightweightString<char>& reelId);

/// Whether this log carries the identifier. A log without one matches the empty identifier.
bool isRecordedFrom(const Cookie& shot, const LightweightString<char>& reelId);

} // namespace reeldb

#endif
