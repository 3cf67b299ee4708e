// SPDX-License-Identifier: Apache-2.0
//
// Times two pieces of work side by side: in turns, several times, the median of each.
#ifndef REELDB_BENCH_STOPWATCH_H
#define REELDB_BENCH_STOPWATCH_H

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace reeldb_bench {

/// The milliseconds of one run.
inline double timeOf(const std::function<void()>& work)
{
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> times)
{
  std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
  return times[times.size() / 2];
}

struct Pair {
  double ours;
  double theirs;
};

/// Medians in milliseconds of @p rounds runs of each, in turns, after one run of each that does not count.
inline Pair sideBySide(int rounds, const std::function<void()>& ours, const std::function<void()>& theirs)
{
  ours();
  theirs();
  std::vector<double> a, b;
  for (int i = 0; i < rounds; ++i) {
    a.push_back(timeOf(ours));
    b.push_back(timeOf(theirs));
  }
  return {median(a), median(b)};
}

} // namespace reeldb_bench

#endif
