// SPDX-License-Identifier: Apache-2.0
//
// Everything fails once, beneath every operation.
#include <cstdio>
#include <memory>
#include <ostream>

#include "faults/library_calls.h"
#include "faults/sweep.h"
#include "support/ledger.h"

namespace reeldb_tests {

namespace {

struct Kind {
  const char* name;
  std::unique_ptr<FaultKind> (*make)();
  /// What is to be said of an operation with so many faults, and so many openings of logs when nothing fails.
  void (*check)(const Scenario& scenario, int faults, int openings);
};

void PrintTo(const Kind& kind, std::ostream* out)
{
  *out << kind.name;
}

template <class T>
std::unique_ptr<FaultKind> make()
{
  return std::make_unique<T>();
}

const Kind kinds[] = {
    {"HostCallThrows", make<HostCallThrows>,
     [](const Scenario& scenario, int faults, int) {
       EXPECT_EQ(faults == 0, scenario.noHostCall != nullptr) << scenario << " made " << faults << " host calls";
     }},
    {"LogRefusesToOpen", make<OpeningRefused>,
     [](const Scenario& scenario, int faults, int openings) {
       EXPECT_EQ(faults, openings) << scenario << " opened more or fewer logs than did not open";
     }},
    {"AllocationFails", make<AllocationFails>,
     [](const Scenario& scenario, int faults, int) {
       // Where a sanitizer's operator new stands before the library's, the host sees nothing of that one.
       EXPECT_TRUE(faults > 0 || !scenario.withoutMemory || !newIsRouted()) << scenario << " asked for no memory";
     }},
    {"CallFromTheLibraryThrows", make<LibraryCallThrows>,
     [](const Scenario& scenario, int faults, int) {
       EXPECT_TRUE(faults > 0 || scenario.noHostCall) << scenario << " called nothing of the host's";
     }},
};

class Faults : public Sweep, public ::testing::WithParamInterface<Kind> {};

/// With notifications and while they are held; prints how many faults there were.
TEST_P(Faults, HappenOnceBeneathEachOperation)
{
  const std::unique_ptr<FaultKind> kind = GetParam().make();
  if (const std::string why = kind->unavailable(); !why.empty())
    GTEST_SKIP() << why;
  warmUp(*kind);
  std::map<std::string, int> faults;
  int total = 0;
  for (const Scenario& scenario : allScenarios()) {
    int here = 0, openings = 0;
    for (const int hold : {0, 1}) {
      if (hold != 0 && (!*scenario.heard || scenario.changesWhenTold))
        continue;
      SCOPED_TRACE(::testing::Message() << scenario << (hold ? ", while notifications are held" : ""));
      openings += runClean(scenario, hold);
      here += failEach(scenario, *kind, hold);
    }
    GetParam().check(scenario, here, openings);
    faults[scenario.operation] += here;
    total += here;
  }
  EXPECT_GT(total, 0);
  for (const auto& [operation, count] : faults)
    std::printf("%7d  %s\n", count, operation.c_str());
  std::printf("%7d  %s, beneath %zu operations\n", total, kind->name(), faults.size());
  RecordProperty("faults", total);
}

INSTANTIATE_TEST_SUITE_P(Every, Faults, ::testing::ValuesIn(kinds), [](const auto& of) { return of.param.name; });

} // namespace

} // namespace reeldb_tests
