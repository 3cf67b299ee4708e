// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_THREAD_NUMBERS_H
#define REELHOST_MODEL_THREAD_NUMBERS_H

#include <atomic>

#include "host/codes.h"

namespace reelhost::model {

/// Assigns thread numbers: 1, 2, 3, ... The library compares only the bits of codes::threadMask, so all threads beyond
/// the last number share that number, and none of them is ever mistaken for the main thread.
class ThreadNumbers {
public:
  static constexpr int last = codes::threadMask;

  int next()
  {
    int before = given_.load(std::memory_order_relaxed);
    while (before < last && !given_.compare_exchange_weak(before, before + 1, std::memory_order_relaxed)) {
    }
    return before < last ? before + 1 : last;
  }

private:
  std::atomic<int> given_ = 0;
};

} // namespace reelhost::model

#endif
