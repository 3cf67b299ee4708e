// SPDX-License-Identifier: Apache-2.0
//
// Reads from the tables what differs between two states of a project. All functions throw sqlite::Failure, with cause
// Damaged if the tables hold data that no program of ours has written. REQUIRES: a transaction, and tables of a version
// with history.
#ifndef REELDB_STORE_SQLITE_FEED_H
#define REELDB_STORE_SQLITE_FEED_H

#include "reelhost/feed.h"
#include "store/sqlite.h"

namespace reelhost {

FeedPosition newestPosition(sqlite::Database& database);
Delta changesSince(sqlite::Database& database, const FeedPosition& before); ///< as Feed::since

} // namespace reelhost

#endif
