// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_PROGRESS_H
#define REELDB_CLI_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace reeldb::cli {

/// A bar on standard error while work goes on. It shows only on a terminal, only when the work takes long, and leaves
/// no trace when it ends.
class ProgressBar {
public:
  explicit ProgressBar(std::string what);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Shows how much is done, at most ten times a second.
  void show(std::size_t done, std::size_t total);

private:
  using Clock = std::chrono::steady_clock;

  std::string what_;
  bool wanted_;
  bool visible_ = false;
  Clock::time_point next_;
};

} // namespace reeldb::cli

#endif
