// SPDX-License-Identifier: Apache-2.0
//
// Everything fails once, beneath every operation.
#include <cstdio>

#include "faults/library_calls.h"
#include "faults/sweep.h"
#include "reelhost/memory.h"

namespace reeldb_tests {

namespace {

class Faults : public Sweep {
protected:
  /// Lets each of this kind fail beneath every operation, with notifications and while they are held; prints how many
  /// there were.
  void failBeneathAll(FaultKind& kind);

  /// What is to be said of an operation with so many faults.
  virtual void check(const Scenario&, int) {}
};

void Faults::failBeneathAll(FaultKind& kind)
{
  if (const std::string why = kind.unavailable(); !why.empty())
    GTEST_SKIP() << why;
  warmUp(kind);
  std::map<std::string, int> faults;
  int total = 0;
  for (const Scenario& scenario : allScenarios()) {
    int here = 0;
    for (const int hold : {0, 1}) {
      if (hold != 0 && (!*scenario.heard || scenario.changesWhenTold))
        continue;
      SCOPED_TRACE(::testing::Message() << scenario << (hold ? ", while notifications are held" : ""));
      runClean(scenario, hold);
      here += failEach(scenario, kind, hold);
    }
    check(scenario, here);
    faults[scenario.operation] += here;
    total += here;
  }
  for (const auto& [operation, count] : faults)
    std::printf("%7d  %s\n", count, operation.c_str());
  std::printf("%7d  %s, beneath %zu operations\n", total, kind.name(), faults.size());
  RecordProperty("faults", total);
}

class EveryHostCallThrows : public Faults {
  void check(const Scenario& scenario, int faults) override
  {
    EXPECT_EQ(faults == 0, scenario.noHostCall != nullptr) << scenario << " made " << faults << " host calls";
  }
};

TEST_F(EveryHostCallThrows, Once)
{
  HostCallThrows kind;
  failBeneathAll(kind);
}

using EveryLogRefusesToOpen = Faults;

TEST_F(EveryLogRefusesToOpen, Once)
{
  OpeningRefused kind;
  failBeneathAll(kind);
}

using EveryAllocationFails = Faults;

TEST_F(EveryAllocationFails, Once)
{
  AllocationFails kind;
  failBeneathAll(kind);
}

using EveryCallFromTheLibraryThrows = Faults;

TEST_F(EveryCallFromTheLibraryThrows, Once)
{
  LibraryCallThrows kind;
  failBeneathAll(kind);
}

} // namespace

} // namespace reeldb_tests
