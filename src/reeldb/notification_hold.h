// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_NOTIFICATION_HOLD_H
#define REELDB_REELDB_NOTIFICATION_HOLD_H

namespace reeldb {

/// Holds back the manager's notifications for as long as this lives, exceptions included: a count left up would make
/// every client deaf for good. The count never falls below 0.
class NotificationHold {
public:
  explicit NotificationHold(int& count) : count_(count) { ++count_; }
  ~NotificationHold()
  {
    if (count_ > 0)
      --count_;
  }
  NotificationHold(const NotificationHold&) = delete;
  NotificationHold& operator=(const NotificationHold&) = delete;

private:
  int& count_;
};

} // namespace reeldb

#endif
