// SPDX-License-Identifier: Apache-2.0
#include "reeldb/log_types.h"

#include "host/codes.h"
#include "host/projdb.h"
#include "reelrec/open_log.h"

namespace reeldb {

LogTypes::LogTypes() : db_(EditManager::getProjdb()), typeColumn_(db_ ? db_->findField("Type") : 0) {}

bool LogTypes::isReel(const Cookie& log) const
{
  if (db_)
    if (const dbrecord* row = (*db_)[log])
      return Edit::getLogTypeFromString(row->get_field(typeColumn_)) == codes::reelLog;
  const OpenLog opened(log);
  return opened && opened->getLogType() == codes::reelLog;
}

} // namespace reeldb
