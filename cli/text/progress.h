// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_PROGRESS_H
#define REELDB_CLI_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace reeldb::cli {

/// A progress bar on standard error. It appears only on a terminal and only if the work takes long, and is removed at
/// the end.
class ProgressBar {
public:
  explicit ProgressBar(std::string what);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Shows the progress, at most ten times per second.
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
