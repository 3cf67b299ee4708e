// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_LOG_TABLE_H
#define REELHOST_MODEL_LOG_TABLE_H

#include <cstddef>
#include <vector>

#include "model/log.h"

namespace reelhost::model {

/// Finds a log by its Cookie. The library opens logs by the thousand to find one reel, and this is what an opening
/// costs. It opens them in one order again and again, so the one that came after the last one found, when that was
/// found before, is looked at first; the first time it is the one that was made after it. What is looked for several
/// times in a row comes next. All others are found in one array, searched from the hash on until a free place.
class LogTable {
public:
  LogTable() : slots_(16), shift_(64 - 4) {}

  Log* find(const CookieWords& words)
  {
    if (!isThere(expected_, words)) {
      if (isThere(found_, words))
        return found_;
      Log* const log = search(words);
      if (!log)
        return nullptr;
      if (found_)
        found_->follower = log;
      expected_ = log;
    }
    found_ = expected_;
    expect(found_->follower);
    return found_;
  }

  /// REQUIRES: no log of this Cookie is in the table. Without memory for it nothing has changed: the log may go again.
  void insert(Log& log);
  void erase(Log& log); ///< the log is gone from now on, unless it is in no table

private:
  struct Slot {
    std::uint64_t first = 0, second = 0;
    Log* log = nullptr; ///< null: the place is free
  };

  static bool isThere(const Log* log, const CookieWords& words) { return log && log->words == words && !log->isGone; }

  /// Has the processor fetch what is read next if the logs are opened in turn.
  void expect(Log* log)
  {
    expected_ = log;
    if (log) {
      __builtin_prefetch(log->reelIdText);
      __builtin_prefetch(log->follower);
    }
  }

  Log* search(const CookieWords& words) const
  {
    for (std::size_t i = place(words);; i = next(i)) {
      const Slot& slot = slots_[i];
      if (!slot.log)
        return nullptr;
      if (slot.first == words.first && slot.second == words.second && slot.log->words.rest == words.rest)
        return slot.log;
    }
  }

  /// Names of logs differ in their last digits only. The multiplications carry that difference upwards, so the place is
  /// made of the uppermost bits.
  std::size_t place(const CookieWords& words) const
  {
    const std::uint64_t sum = (words.second ^ (words.second >> 32)) * 0x9e3779b97f4a7c15u + words.first;
    return static_cast<std::size_t>(((sum ^ (sum >> 32)) * 0xff51afd7ed558ccdu) >> shift_);
  }
  std::size_t next(std::size_t i) const { return (i + 1) & (slots_.size() - 1); }
  void put(Log& log);

  std::vector<Slot> slots_; ///< a power of two, at most half of them taken
  unsigned shift_;          ///< 64 less its exponent
  std::size_t count_ = 0;
  Log* last_ = nullptr;     ///< the log inserted last
  Log* found_ = nullptr;    ///< the log found last; it may be gone
  Log* expected_ = nullptr; ///< its follower; likewise
};

} // namespace reelhost::model

#endif
