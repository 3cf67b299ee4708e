// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_EXIT_CODE_H
#define REELDB_CLI_EXIT_CODE_H

#include "app/error.h"

namespace reeldb::cli {

/// The exit codes of the command. `reeldb --help` documents them; they never change.
enum ExitCode : int {
  done = 0,
  refused = 1,    ///< nothing found, or the request is not possible in this state
  usage = 2,      ///< the command line is wrong
  unreadable = 3, ///< damaged or unreadable data, or the system refused a read or write
  incomplete = 4, ///< done, but some input lines were rejected
};

/// The exit code for an error of an operation.
constexpr ExitCode exitCodeOf(app::ErrorKind kind)
{
  using app::ErrorKind;
  switch (kind) {
  case ErrorKind::Invalid:
    return usage;
  case ErrorKind::NotFound:
  case ErrorKind::Refused:
  case ErrorKind::ReadOnly:
  case ErrorKind::Busy:
  case ErrorKind::Cancelled:
  case ErrorKind::Conflict:
    return refused;
  case ErrorKind::Unreadable:
  case ErrorKind::Io:
    return unreadable;
  }
  return unreadable;
}

} // namespace reeldb::cli

#endif
