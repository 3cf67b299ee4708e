// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_ASK_H
#define REELDB_CLI_ASK_H

#include <string>

namespace reeldb::cli {

/// Asks a question on standard error and reads the reply from standard input. Returns whether it was yes. Throws
/// app::Error (Refused) if standard input is not a terminal.
bool ask(const std::string& question);

} // namespace reeldb::cli

#endif
