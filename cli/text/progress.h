// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_PROGRESS_H
#define REELDB_CLI_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace reeldb::cli {

/// A bar on standard error while work goes on. It shows only on a terminal, only when the work takes long, and leaves
/// no trace when it ends.
class Progress {
public:
  Progress(std::string what, std::size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// One more piece is done.
  void advance();

private:
  using Clock = std::chrono::steady_clock;
  void draw() const;

  std::string what_;
  std::size_t total_;
  std::size_t finished_ = 0;
  bool wanted_;
  bool visible_ = false;
  Clock::time_point next_;
};

} // namespace reeldb::cli

#endif
