// SPDX-License-Identifier: Apache-2.0
//
// Everything fails once, beneath every operation.
#include <cstdio>

#include "faults/library_calls.h"
#include "faults/sweep.h"
#include "support/ledger.h"

namespace reeldb_tests {

namespace {

class Faults : public Sweep {
protected:
  /// Lets each of this kind fail beneath every operation, with notifications and while they are held; prints how many
  /// there were.
  void failBeneathAll(FaultKind& kind);

  /// What is to be said of an operation with so many faults, and so many openings of logs when nothing fails.
  virtual void check(const Scenario& scenario, int faults, int openings) = 0;
};

void Faults::failBeneathAll(FaultKind& kind)
{
  if (const std::string why = kind.unavailable(); !why.empty())
    GTEST_SKIP() << why;
  warmUp(kind);
  std::map<std::string, int> faults;
  int total = 0;
  for (const Scenario& scenario : allScenarios()) {
    int here = 0, openings = 0;
    for (const int hold : {0, 1}) {
      if (hold != 0 && (!*scenario.heard || scenario.changesWhenTold))
        continue;
      SCOPED_TRACE(::testing::Message() << scenario << (hold ? ", while notifications are held" : ""));
      openings += runClean(scenario, hold);
      here += failEach(scenario, kind, hold);
    }
    check(scenario, here, openings);
    faults[scenario.operation] += here;
    total += here;
  }
  EXPECT_GT(total, 0);
  for (const auto& [operation, count] : faults)
    std::printf("%7d  %s\n", count, operation.c_str());
  std::printf("%7d  %s, beneath %zu operations\n", total, kind.name(), faults.size());
  RecordProperty("faults", total);
}

class EveryHostCallThrows : public Faults {
  void check(const Scenario& scenario, int faults, int) override
  {
    EXPECT_EQ(faults == 0, scenario.noHostCall != nullptr) << scenario << " made " << faults << " host calls";
  }
};

TEST_F(EveryHostCallThrows, Once)
{
  HostCallThrows kind;
  failBeneathAll(kind);
}

class EveryLogRefusesToOpen : public Faults {
  void check(const Scenario& scenario, int faults, int openings) override
  {
    EXPECT_EQ(faults, openings) << scenario << " opened more or fewer logs than did not open";
  }
};

TEST_F(EveryLogRefusesToOpen, Once)
{
  OpeningRefused kind;
  failBeneathAll(kind);
}

class EveryAllocationFails : public Faults {
  void check(const Scenario& scenario, int faults, int) override
  {
    // Where a sanitizer's operator new stands before the library's, the host sees nothing of that one.
    EXPECT_TRUE(faults > 0 || !scenario.withoutMemory || !newIsRouted()) << scenario << " asked for no memory";
  }
};

TEST_F(EveryAllocationFails, Once)
{
  AllocationFails kind;
  failBeneathAll(kind);
}

class EveryCallFromTheLibraryThrows : public Faults {
  void check(const Scenario& scenario, int faults, int) override
  {
    EXPECT_TRUE(faults > 0 || scenario.noHostCall) << scenario << " called nothing of the host's";
  }
};

TEST_F(EveryCallFromTheLibraryThrows, Once)
{
  LibraryCallThrows kind;
  failBeneathAll(kind);
}

} // namespace

} // namespace reeldb_tests
