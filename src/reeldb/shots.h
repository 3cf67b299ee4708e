// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_SHOTS_H
#define REELDB_REELDB_SHOTS_H

#include "host/cookie.h"
#include "host/lwstring.h"

class projdb;

namespace reeldb {

/// The logs that the database finds for @p reelId, in database order. The result may contain near matches; the caller
/// checks each log with isRecordedFrom.
CookieVec findShots(projdb& db, const LightweightString<char>& reelId);

/// Whether this log carries the identifier. A log without one matches the empty identifier.
bool isRecordedFrom(const Cookie& shot, const LightweightString<char>& reelId);

} // namespace reeldb

#endif
