// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_STORE_SQLITE_ERRORS_H
#define REELDB_STORE_SQLITE_ERRORS_H

#include <string>

#include "reelhost/error.h"
#include "store/sqlite.h"

namespace reelhost {

/// The Error for a failed call of SQLite on the project @p subject: "SUBJECT: held by another process (@p holder)" for
/// a lock, else "SUBJECT: FACT (CAUSE)". FACT is @p fact unless the cause gives a better one.
Error errorFrom(const sqlite::Failure& failure, const std::string& subject, const std::string& fact,
                const std::string& holder);

} // namespace reelhost

#endif
