// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_LOG_TYPES_H
#define REELDB_REELDB_LOG_TYPES_H

#include "host/cookie.h"

class projdb;

namespace reeldb {

/// Tells reel logs from others: by the database's row where there is one, else by opening the log. The row's column is
/// looked up once, when this is made.
class LogTypes {
public:
  LogTypes();
  bool isReel(const Cookie& log) const; ///< false also for a log that cannot be opened

private:
  projdb* db_; ///< null when no database is open
  unsigned short typeColumn_;
};

} // namespace reeldb

#endif
