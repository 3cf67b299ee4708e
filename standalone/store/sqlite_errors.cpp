// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_errors.h"

#include "reelhost/display_text.h"

namespace reelhost {

Error errorFrom(const sqlite::Failure& failure, const std::string& subject, const std::string& fact,
                const std::string& holder)
{
  const auto error = [&](ErrorKind kind, const std::string& what, const std::string& why) {
    return Error(kind, subject + ": " + what + (why.empty() ? "" : " (" + why + ")"));
  };
  const std::string cause = displayText(failure.what());
  switch (failure.cause()) {
  case sqlite::Cause::Busy:
    return error(ErrorKind::Busy, "held by another process", holder);
  case sqlite::Cause::Damaged:
    return error(ErrorKind::Unreadable, "damaged", cause);
  case sqlite::Cause::ReadOnly:
    return error(ErrorKind::ReadOnly, "read-only", cause);
  case sqlite::Cause::Constraint:
    return error(ErrorKind::Refused, fact, cause);
  case sqlite::Cause::CannotOpen:
  case sqlite::Cause::Full:
  case sqlite::Cause::Other:
    break;
  }
  return error(ErrorKind::Io, fact, cause);
}

} // namespace reelhost
