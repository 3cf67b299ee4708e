// SPDX-License-Identifier: Apache-2.0
//
// Everything fails in turn, beneath every operation: once, and so that it stays.
#include <cstdio>
#include <memory>
#include <ostream>
#include <tuple>

#include "faults/library_calls.h"
#include "faults/sweep.h"
#include "support/ledger.h"

namespace reeldb_tests {

namespace {

struct Kind {
  const char* name;
  std::unique_ptr<FaultKind> (*make)(Fault);
  /// Checks the number of faults of an operation, and the number of logs that it opens when nothing fails.
  void (*check)(const Scenario& scenario, int faults, int openings);
};

void PrintTo(const Kind& kind, std::ostream* out)
{
  *out << kind.name;
}

template <class T>
std::unique_ptr<FaultKind> make(Fault fault)
{
  return std::make_unique<T>(fault);
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
       // If a sanitizer's operator new replaces the library's, the host does not see its allocations.
       EXPECT_TRUE(faults > 0 || !scenario.withoutMemory || !newIsRouted()) << scenario << " asked for no memory";
     }},
    {"CallFromTheLibraryThrows", make<LibraryCallThrows>,
     [](const Scenario& scenario, int faults, int) {
       EXPECT_TRUE(faults > 0 || scenario.noHostCall) << scenario << " called nothing of the host's";
     }},
};

class Faults : public Sweep, public ::testing::WithParamInterface<std::tuple<Kind, Fault>> {};

/// Runs each scenario with notifications and while they are held. Prints the number of faults.
TEST_P(Faults, HappenBeneathEachOperation)
{
  const auto& [parameter, fault] = GetParam();
  const std::unique_ptr<FaultKind> kind = parameter.make(fault);
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
    parameter.check(scenario, here, openings);
    faults[scenario.operation] += here;
    total += here;
  }
  EXPECT_GT(total, 0);
  for (const auto& [operation, count] : faults)
    std::printf("%7d  %s\n", count, operation.c_str());
  std::printf("%7d  %s, beneath %zu operations\n", total, kind->name(), faults.size());
  RecordProperty("faults", total);
}

std::string nameOf(const ::testing::TestParamInfo<std::tuple<Kind, Fault>>& of)
{
  const auto& [kind, fault] = of.param;
  return std::string(kind.name) + (fault == Fault::Once ? "Once" : "FromThenOn");
}

INSTANTIATE_TEST_SUITE_P(Every, Faults,
                         ::testing::Combine(::testing::ValuesIn(kinds), ::testing::Values(Fault::Once, Fault::Stays)),
                         nameOf);

} // namespace

} // namespace reeldb_tests
