// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_ASK_H
#define REELDB_CLI_ASK_H

#include <string>

namespace reeldb::cli {

/// Asks a question on standard error and reads the answer from standard input; whether it was yes. Throws Failure when
/// standard input is no terminal: then nobody is there to answer, and --yes has to say it.
bool ask(const std::string& question);

} // namespace reeldb::cli

#endif
