// SPDX-License-Identifier: Apache-2.0
#include "text/progress.h"

#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "text/terminal.h"

namespace reeldb::cli {

namespace {

constexpr std::chrono::milliseconds patience{400}; // shorter work needs no bar
constexpr std::chrono::milliseconds interval{100};
constexpr std::size_t barColumns = 30;

} // namespace

ProgressBar::ProgressBar(std::string what)
    : what_(std::move(what)), wanted_(isCapableTerminal(stderr)), next_(Clock::now() + patience)
{
}

ProgressBar::~ProgressBar()
{
  if (visible_)
    fmt::print(stderr, "\r\x1b[K");
}

void ProgressBar::show(std::size_t done, std::size_t total)
{
  if (!wanted_ || total == 0 || Clock::now() < next_)
    return;
  visible_ = true;
  const std::string filled(barColumns * done / total, '#');
  fmt::print(stderr, "\r{} [{:<{}}] {}/{}", what_, filled, barColumns, done, total);
  std::fflush(stderr);
  next_ = Clock::now() + interval;
}

} // namespace reeldb::cli
