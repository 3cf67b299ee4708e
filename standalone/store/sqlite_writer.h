// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_STORE_SQLITE_WRITER_H
#define REELDB_STORE_SQLITE_WRITER_H

#include "reelhost/store.h"
#include "store/sqlite.h"

namespace reelhost {

/// Writes the changes and their revisions into the tables, which are up to date. Throws sqlite::Failure. REQUIRES: a
/// transaction that writes, and that is rolled back when this throws.
void writeChanges(sqlite::Database& database, const Changes& changes);

} // namespace reelhost

#endif
