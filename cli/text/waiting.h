// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_WAITING_H
#define REELDB_CLI_WAITING_H

#include <chrono>
#include <optional>

namespace reeldb::cli {

/// Waits for a descriptor, and for the signals that end the command: while it lives they do not end the process, so
/// that the command can clean up.
class Waiting {
public:
  Waiting();
  ~Waiting();
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

  /// Waits until the descriptor, unless it is -1, is readable, or for this time. Returns whether a signal came.
  bool endedBySignal(int descriptor, std::optional<std::chrono::microseconds> time) const;

private:
  int signals_ = -1;
};

} // namespace reeldb::cli

#endif
