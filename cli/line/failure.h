// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_FAILURE_H
#define REELDB_CLI_FAILURE_H

#include <stdexcept>
#include <string>

#include "line/exit_code.h"
#include "reelhost/error.h"

namespace reeldb::cli {

/// Ends a command: nothing of it is stored. what() reads "subject: fact (cause)".
class Failure : public std::runtime_error {
public:
  Failure(ExitCode code, const std::string& what) : std::runtime_error(what), code_(code) {}
  ExitCode code() const { return code_; }

private:
  ExitCode code_;
};

/// The exit code for an error of the host.
ExitCode exitCodeOf(reelhost::ErrorKind kind);

} // namespace reeldb::cli

#endif
