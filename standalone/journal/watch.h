// SPDX-License-Identifier: Apache-2.0
//
// Whether host operations are watched: the only value that an operation reads while journal and script are off.
#ifndef REELHOST_JOURNAL_WATCH_H
#define REELHOST_JOURNAL_WATCH_H

#include <atomic>

namespace reelhost {

/// Who watches host operations; an operation then takes the slow path.
enum class Watcher : unsigned { Record = 1, Trace = 2, Script = 4 };

extern std::atomic<unsigned> watchers; ///< the sum of those that watch

inline bool watched()
{
  return watchers.load(std::memory_order_relaxed) != 0;
}

inline bool watched(Watcher who)
{
  return (watchers.load(std::memory_order_relaxed) & static_cast<unsigned>(who)) != 0;
}

void watch(Watcher who, bool on);

} // namespace reelhost

#endif
