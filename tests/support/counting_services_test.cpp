// SPDX-License-Identifier: Apache-2.0
#include "support/counting_services.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "host/containers.h"
#include "host/cookie.h"
#include "host/os.h"
#include "support/hosts_own.h"
#include "support/ledger.h"

namespace reeldb_tests {

TEST(CountingServices, StandInFrontOfTheHosts)
{
  iHostServices* const hosts = hostsOwn<iHostServices*()>("_Z2OSv")();
  EXPECT_NE(OS(), hosts);
  const Ledger ledger;
  const LightweightString<char> text("a text");
  EXPECT_EQ(ledger.allocations(), 1) << "the host allocates here, too";
}

TEST(CountingServices, AllocationsAndReleasesAreCounted)
{
  const Ledger ledger;
  void* a = OS()->allocator().allocate(1);
  void* b = OS()->allocator().allocate(2);
  EXPECT_EQ(ledger.allocations(), 2);
  EXPECT_EQ(ledger.open(), 2);
  OS()->allocator().release(a);
  EXPECT_EQ(ledger.open(), 1);
  OS()->allocator().release(b);
  EXPECT_EQ(ledger.open(), 0);
  OS()->allocator().release(nullptr);
  EXPECT_EQ(ledger.open(), 0);
}

TEST(CountingServices, ReferencesAreCounted)
{
  int count = 1;
  const Ledger ledger;
  OS()->refCounts().incRef(&count);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(OS()->refCounts().decRef(&count), 1);
  EXPECT_EQ(OS()->refCounts().decRef(&count), 0);
  EXPECT_EQ(ledger.countsUp(), 1);
  EXPECT_EQ(ledger.countsDown(), 2);
}

TEST(CountingServices, ThreadsLoseNoCount)
{
  constexpr int threads = 4, rounds = 20000;
  int count = 1;
  const Ledger ledger;
  std::vector<std::thread> running;
  for (int t = 0; t < threads; ++t)
    running.emplace_back([&count] {
      for (int i = 0; i < rounds; ++i) {
        OS()->refCounts().incRef(&count);
        OS()->allocator().release(OS()->allocator().allocate(8));
        if (i % 2)
          OS()->refCounts().decRef(&count);
      }
    });
  for (std::thread& thread : running)
    thread.join();
  EXPECT_EQ(ledger.countsUp(), threads * rounds);
  EXPECT_EQ(ledger.countsDown(), threads * rounds / 2);
  EXPECT_GE(ledger.allocations(), threads * rounds);
}

TEST(FurtherHolders, AreThoseBeyondTheFirstOfTextsStoragesAndObjects)
{
  const std::int64_t before = furtherHolders();
  {
    const LightweightString<char> text("a text");
    CookieVec logs;
    logs.add(Cookie("E1", false));
    const Zr::Ptr<AssocListRep> object(new AssocListRep(false));
    EXPECT_EQ(furtherHolders() - before, 0) << "each has one holder";
    const LightweightString<char> copy = text;
    EXPECT_EQ(furtherHolders() - before, 1);
    const CookieVec shared = logs;
    EXPECT_EQ(furtherHolders() - before, 2);
    {
      const Zr::Ptr<AssocListRep> other(object);
      EXPECT_EQ(furtherHolders() - before, 3);
    }
    EXPECT_EQ(furtherHolders() - before, 2);
  }
  EXPECT_EQ(furtherHolders() - before, 0);
}

TEST(FailAllocation, TheThirdFromNowFailsOnceAndIsNotCounted)
{
  void* got[5];
  failAllocation(3);
  const Ledger ledger;
  for (void*& p : got)
    p = OS()->allocator().allocate(8);
  EXPECT_EQ(ledger.allocations(), 4);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(got[i] == nullptr, i == 2) << i;
  for (void* p : got)
    OS()->allocator().release(p);
}

TEST(FailAllocationsFrom, TheSecondFromNowAndAllAfterItFailUntilThatIsTakenBack)
{
  void* got[5];
  bool toCome[5];
  failAllocationsFrom(2);
  for (int i = 0; i < 5; ++i) {
    toCome[i] = allocationWillFail();
    if (i == 4)
      failAllocation(0);
    got[i] = OS()->allocator().allocate(8);
  }
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(toCome[i], i < 2) << i;
    EXPECT_EQ(got[i] != nullptr, i == 0 || i == 4) << i;
  }
  for (void* p : got)
    OS()->allocator().release(p);
}

TEST(FailAllocation, ZeroTakesItBack)
{
  failAllocation(1);
  failAllocation(0);
  void* p = OS()->allocator().allocate(8);
  EXPECT_NE(p, nullptr);
  OS()->allocator().release(p);
}

TEST(FailAllocation, WillFailUntilItDid)
{
  EXPECT_FALSE(allocationWillFail());
  failAllocation(2);
  OS()->allocator().release(OS()->allocator().allocate(8));
  EXPECT_TRUE(allocationWillFail());
  EXPECT_EQ(OS()->allocator().allocate(8), nullptr);
  EXPECT_FALSE(allocationWillFail());
}

} // namespace reeldb_tests
