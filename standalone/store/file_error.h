// SPDX-License-Identifier: Apache-2.0
//
// Converts failed operations on files to Errors of the host. Any thread.
#ifndef REELDB_STORE_FILE_ERROR_H
#define REELDB_STORE_FILE_ERROR_H

#include "base/files.h"
#include "reelhost/error.h"

namespace reelhost {

namespace base = reeldb::base;

/// The same failure with the same text.
inline Error hostError(const base::FileError& error)
{
  const auto kind = [](base::FileFault fault) {
    switch (fault) {
    case base::FileFault::NotFound:
      return ErrorKind::NotFound;
    case base::FileFault::Exists:
      return ErrorKind::Refused;
    case base::FileFault::NotRegular:
    case base::FileFault::TooLarge:
      return ErrorKind::Unreadable;
    case base::FileFault::System:
      break;
    }
    return ErrorKind::Io;
  };
  return Error(kind(error.fault()), error.what());
}

/// Runs @p work and converts a FileError with hostError.
template <class Work>
auto withHostErrors(Work work) -> decltype(work())
{
  try {
    return work();
  } catch (const base::FileError& error) {
    throw hostError(error);
  }
}

} // namespace reelhost

#endif
