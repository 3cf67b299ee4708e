// SPDX-License-Identifier: Apache-2.0
//
// Whether host operations are recorded or replaced. While journal and script are off, an operation reads only this.
#ifndef REELHOST_JOURNAL_WATCH_H
#define REELHOST_JOURNAL_WATCH_H

#include <atomic>

namespace reelhost {

/// What needs host operations to take the slow path.
enum class Watcher : unsigned { Record = 1, Trace = 2, Script = 4 };

extern std::atomic<unsigned> watchers; ///< the sum of the active values

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
