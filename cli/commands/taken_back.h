// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_TAKEN_BACK_H
#define REELDB_CLI_TAKEN_BACK_H

#include "app/history.h"
#include "line/exit_code.h"

namespace reeldb::cli {

/// Prints what undo or redo has done.
ExitCode report(const app::TakenBackCommit& result, bool json);

} // namespace reeldb::cli

#endif
