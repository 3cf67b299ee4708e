// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_LOG_TABLE_H
#define REELHOST_MODEL_LOG_TABLE_H

#include <cstddef>
#include <vector>

#include "model/log.h"

namespace reelhost::model {

/// Finds a log by its Cookie. The library opens thousands of logs to find one reel, and this search is the cost of an
/// opening. It opens them in the same order again and again, so the search first tries the log that followed the last
/// found one the previous time, or at first the log that was created after it. Next it tries the last found log,
/// because logs are also opened several times in a row. All others are in one array, searched from the hash on to a
/// free slot.
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

  /// REQUIRES: no log of this Cookie is in the table. If it throws std::bad_alloc, nothing has changed.
  void insert(Log& log);
  void erase(Log& log); ///< removes the log, if it is in the table

private:
  struct Slot {
    std::uint64_t first = 0, second = 0;
    Log* log = nullptr; ///< null: the place is free
  };

  static bool isThere(const Log* log, const CookieWords& words) { return log && log->words == words && !log->isGone; }

  /// Prefetches the data that is read next if the logs are opened in turn.
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

  /// Cookies of logs differ only in their last digits. The multiplications carry that difference upwards, so the slot
  /// is taken from the uppermost bits.
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
  Log* found_ = nullptr;    ///< the log found last; it may be deleted
  Log* expected_ = nullptr; ///< its follower; likewise
};

} // namespace reelhost::model

#endif
