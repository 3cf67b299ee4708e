// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_EXIT_CODE_H
#define REELDB_CLI_EXIT_CODE_H

namespace reeldb::cli {

/// What the command tells its caller. The codes are documented in `reeldb --help` and stay as they are.
enum ExitCode : int {
  done = 0,
  refused = 1,    ///< nothing found, or the request makes no sense as things are
  usage = 2,      ///< the command line makes no sense
  unreadable = 3, ///< damaged or unreadable data, or the system refused a read or write
  incomplete = 4, ///< done, but some input lines were rejected
};

} // namespace reeldb::cli

#endif
