// SPDX-License-Identifier: Apache-2.0
#include "text/progress.h"

#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "text/terminal.h"

namespace reeldb::cli {

namespace {

constexpr std::chrono::milliseconds patience{400}; // what is done sooner needs no bar
constexpr std::chrono::milliseconds interval{100};
constexpr std::size_t barColumns = 30;

} // namespace

Progress::Progress(std::string what, std::size_t total)
    : what_(std::move(what)), total_(total), wanted_(total > 0 && isCapableTerminal(stderr)),
      next_(Clock::now() + patience)
{
}

Progress::~Progress()
{
  if (visible_)
    fmt::print(stderr, "\r\x1b[K");
}

void Progress::advance()
{
  ++finished_;
  if (!wanted_ || Clock::now() < next_)
    return;
  visible_ = true;
  draw();
  next_ = Clock::now() + interval;
}

void Progress::draw() const
{
  const std::size_t filled = barColumns * finished_ / total_;
  fmt::print(stderr, "\r{} [{:<{}}] {}/{}", what_, std::string(filled, '#'), barColumns, finished_, total_);
  std::fflush(stderr);
}

} // namespace reeldb::cli
