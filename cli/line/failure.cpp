// SPDX-License-Identifier: Apache-2.0
#include "line/failure.h"

namespace reeldb::cli {

ExitCode exitCodeOf(reelhost::ErrorKind kind)
{
  using reelhost::ErrorKind;
  switch (kind) {
  case ErrorKind::NotFound:
  case ErrorKind::Refused:
  case ErrorKind::ReadOnly:
  case ErrorKind::Busy:
    return refused;
  case ErrorKind::Unreadable:
  case ErrorKind::Io:
    return unreadable;
  }
  return unreadable;
}

} // namespace reeldb::cli
