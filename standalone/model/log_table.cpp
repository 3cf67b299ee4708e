// SPDX-License-Identifier: Apache-2.0
#include "model/log_table.h"

#include <utility>

namespace reelhost::model {

void LogTable::put(Log& log)
{
  std::size_t i = place(log.words);
  while (slots_[i].log)
    i = next(i);
  slots_[i] = {log.words.first, log.words.second, &log};
}

void LogTable::insert(Log& log)
{
  if (2 * (count_ + 1) > slots_.size()) {
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    --shift_;
    for (const Slot& slot : old)
      if (slot.log)
        put(*slot.log);
  }
  put(log);
  log.isGone = false;
  ++count_;
  if (last_)
    last_->follower = &log;
  last_ = &log;
}

void LogTable::erase(Log& log)
{
  std::size_t hole = place(log.words);
  while (slots_[hole].log != &log) {
    if (!slots_[hole].log)
      return;
    hole = next(hole);
  }
  log.isGone = true;
  // A search stops at a hole. So later entries that it would no longer find are moved into the hole.
  for (std::size_t i = next(hole); slots_[i].log; i = next(i)) {
    const std::size_t home = place(slots_[i].log->words);
    const std::size_t mask = slots_.size() - 1;
    if (((i - home) & mask) >= ((i - hole) & mask)) {
      slots_[hole] = slots_[i];
      hole = i;
    }
  }
  slots_[hole] = {};
  --count_;
}

} // namespace reelhost::model
