// SPDX-License-Identifier: Apache-2.0
#include "app/host_errors.h"

namespace reeldb::app {

namespace {

ErrorKind kindFrom(reelhost::ErrorKind kind)
{
  switch (kind) {
  case reelhost::ErrorKind::NotFound:
    return ErrorKind::NotFound;
  case reelhost::ErrorKind::Refused:
    return ErrorKind::Refused;
  case reelhost::ErrorKind::ReadOnly:
    return ErrorKind::ReadOnly;
  case reelhost::ErrorKind::Busy:
    return ErrorKind::Busy;
  case reelhost::ErrorKind::Unreadable:
    return ErrorKind::Unreadable;
  case reelhost::ErrorKind::Io:
    return ErrorKind::Io;
  case reelhost::ErrorKind::Conflict:
    return ErrorKind::Conflict;
  }
  return ErrorKind::Io;
}

} // namespace

Error errorFrom(const reelhost::Error& error)
{
  return {kindFrom(error.kind()), error.what()};
}

} // namespace reeldb::app
