// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_JOURNAL_CALL_RECORD_H
#define REELHOST_JOURNAL_CALL_RECORD_H

#include <cstdint>
#include <string>

#include "reelhost/journal.h"

namespace reelhost {

/// One call in the journal. The constructor enters it; ended() completes it. Any thread.
class CallRecord {
public:
  CallRecord(const char* operation, std::string arguments);
  void ended(std::string result);

private:
  Call call_;
  std::uint64_t number_;
  bool isKept_;
};

} // namespace reelhost

#endif
