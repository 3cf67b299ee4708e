// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "host/cookie.h"
#include "support/ledger.h"

namespace {

/// The n-th of many different Cookies.
Cookie nth(int n)
{
  Zr::UUID id;
  std::memcpy(id.bytes, &n, sizeof n);
  return Cookie(id, 1, 'E');
}

std::vector<int> numbers(const CookieVec& vec)
{
  std::vector<int> result;
  for (const Cookie& cookie : vec) {
    int n = 0;
    while (cookie.compare(nth(n)) != 0 && n < 20000)
      ++n;
    result.push_back(n);
  }
  return result;
}

CookieVec vecOf(int first, int count)
{
  CookieVec vec;
  for (int i = 0; i < count; ++i)
    vec.add(nth(first + i));
  return vec;
}

using Numbers = std::vector<int>;

} // namespace

// --- CookieVec -----------------------------------------------------------------------------------

TEST(CookieVec, NewIsEmptyWithoutMemory)
{
  const Ledger ledger;
  CookieVec vec;
  EXPECT_TRUE(vec.empty());
  EXPECT_EQ(vec.count(), 0);
  EXPECT_EQ(vec.begin(), vec.end());
  vec.remove(nth(1));
  vec.clear();
  const CookieVec copy = vec;
  EXPECT_TRUE(copy.empty());
  EXPECT_EQ(ledger.allocations(), 0);
}

TEST(CookieVec, AddKeepsOrderAndDuplicates)
{
  CookieVec vec;
  for (const int n : {3, 1, 3})
    vec.add(nth(n));
  EXPECT_EQ(numbers(vec), (Numbers{3, 1, 3}));
  EXPECT_EQ(vec[1].compare(nth(1)), 0);
  EXPECT_FALSE(vec.empty());
  EXPECT_EQ(vec.end() - vec.begin(), 3);
}

TEST(CookieVec, TenThousandAddsAllocateAFewTimesAndFreeAll)
{
  const Ledger ledger;
  {
    const CookieVec vec = vecOf(0, 10000);
    ASSERT_EQ(vec.count(), 10000);
    for (int i = 0; i < 10000; ++i)
      ASSERT_EQ(vec[i].compare(nth(i)), 0);
    EXPECT_LE(ledger.allocations(), 12);
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(CookieVec, OwnElementCanBeAddedAtEverySize)
{
  CookieVec vec;
  vec.add(nth(7));
  for (int i = 1; i < 100; ++i)
    vec.add(vec[0]);
  ASSERT_EQ(vec.count(), 100);
  for (const Cookie& cookie : vec)
    EXPECT_EQ(cookie.compare(nth(7)), 0);
}

TEST(CookieVec, RemoveTakesTheFirstEqualOnly)
{
  CookieVec vec;
  for (const int n : {1, 2, 1, 3})
    vec.add(nth(n));
  vec.remove(nth(9));
  EXPECT_EQ(numbers(vec), (Numbers{1, 2, 1, 3}));
  vec.remove(nth(1));
  EXPECT_EQ(numbers(vec), (Numbers{2, 1, 3}));
  vec.remove(vec[2]); // an element of its own
  EXPECT_EQ(numbers(vec), (Numbers{2, 1}));
  vec.remove(vec[0]);
  vec.remove(vec[0]);
  EXPECT_TRUE(vec.empty());
  vec.add(nth(4));
  EXPECT_EQ(numbers(vec), (Numbers{4}));
}

TEST(CookieVec, RemoveWithoutACopyAllocatesNothing)
{
  CookieVec vec = vecOf(0, 3);
  const Cookie* storage = vec.begin();
  const Ledger ledger;
  vec.remove(nth(1));
  EXPECT_EQ(ledger.allocations(), 0);
  EXPECT_EQ(vec.begin(), storage);
}

TEST(CookieVec, CopySharesTheStorage)
{
  const CookieVec vec = vecOf(0, 1000);
  const Ledger ledger;
  const CookieVec copy = vec;
  CookieVec assigned;
  assigned = vec;
  EXPECT_EQ(copy.begin(), vec.begin());
  EXPECT_EQ(assigned.begin(), vec.begin());
  EXPECT_EQ(ledger.allocations(), 0);
  EXPECT_EQ(ledger.countsUp(), 2);
}

TEST(CookieVec, LastHolderFreesTheStorage)
{
  const Ledger ledger;
  {
    auto vec = std::make_unique<CookieVec>(vecOf(0, 3));
    CookieVec copy = *vec;
    auto& same = copy;
    copy = same;
    vec.reset();
    EXPECT_EQ(numbers(copy), (Numbers{0, 1, 2}));
    copy = CookieVec();
    EXPECT_EQ(ledger.open(), 0);
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(CookieVec, ChangeOfACopyLeavesTheOriginalAlone)
{
  const CookieVec vec = vecOf(0, 3);
  CookieVec added = vec, removed = vec, cleared = vec;
  added.add(nth(9));
  removed.remove(nth(1));
  cleared.clear();
  cleared.add(nth(5));
  EXPECT_EQ(numbers(vec), (Numbers{0, 1, 2}));
  EXPECT_EQ(numbers(added), (Numbers{0, 1, 2, 9}));
  EXPECT_EQ(numbers(removed), (Numbers{0, 2}));
  EXPECT_EQ(numbers(cleared), (Numbers{5}));
}

TEST(CookieVec, ChangeOfTheOriginalLeavesTheCopyAlone)
{
  CookieVec vec = vecOf(0, 3);
  const CookieVec copy = vec;
  vec.add(nth(9));
  EXPECT_EQ(numbers(copy), (Numbers{0, 1, 2}));
  vec.remove(nth(0));
  EXPECT_EQ(numbers(copy), (Numbers{0, 1, 2}));
  vec.clear();
  vec.add(nth(8));
  EXPECT_EQ(numbers(copy), (Numbers{0, 1, 2}));
  EXPECT_EQ(numbers(vec), (Numbers{8}));
}

TEST(CookieVec, TwoHoldersThatBothAddEachSeeTheirOwn)
{
  CookieVec first = vecOf(0, 3);
  CookieVec second = first;
  for (int i = 0; i < 20; ++i) {
    first.add(nth(100 + i));
    second.add(nth(200 + i));
  }
  ASSERT_EQ(first.count(), 23);
  ASSERT_EQ(second.count(), 23);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(first[3 + i].compare(nth(100 + i)), 0);
    EXPECT_EQ(second[3 + i].compare(nth(200 + i)), 0);
  }
}

TEST(CookieVec, AddWithACopyAroundCopiesNothingWhileThereIsRoom)
{
  CookieVec vec = vecOf(0, 3);
  const CookieVec copy = vec;
  const Ledger ledger;
  vec.add(nth(3));
  EXPECT_EQ(ledger.allocations(), 0);
  EXPECT_EQ(vec.begin(), copy.begin());
  EXPECT_EQ(numbers(vec), (Numbers{0, 1, 2, 3}));
  EXPECT_EQ(numbers(copy), (Numbers{0, 1, 2}));
}

TEST(CookieVec, CopyThatWentShorterDoesNotWriteOverTheOther)
{
  CookieVec vec = vecOf(0, 2);
  CookieVec copy = vec;
  vec.add(nth(2));
  copy.add(nth(9)); // the entry behind its last belongs to the other vector
  EXPECT_EQ(numbers(vec), (Numbers{0, 1, 2}));
  EXPECT_EQ(numbers(copy), (Numbers{0, 1, 9}));
}

TEST(CookieVec, PlaceLeftByACopyThatIsGoneIsUsedAgain)
{
  CookieVec vec = vecOf(0, 2);
  {
    CookieVec copy = vec;
    copy.add(nth(9));
  }
  const Ledger ledger;
  vec.add(nth(2));
  EXPECT_EQ(ledger.allocations(), 0);
  EXPECT_EQ(numbers(vec), (Numbers{0, 1, 2}));
}

TEST(CookieVec, RemovedElementIsGoneForLaterAdds)
{
  CookieVec vec = vecOf(0, 4);
  vec.remove(nth(1));
  CookieVec copy = vec;
  const Ledger ledger;
  copy.add(nth(8)); // directly behind the last remaining entry
  EXPECT_EQ(ledger.allocations(), 0);
  vec.add(nth(9));
  EXPECT_EQ(numbers(vec), (Numbers{0, 2, 3, 9}));
  EXPECT_EQ(numbers(copy), (Numbers{0, 2, 3, 8}));
}

TEST(CookieVec, ClearKeepsTheStorage)
{
  CookieVec vec = vecOf(0, 5);
  const Cookie* storage = vec.begin();
  const Ledger ledger;
  vec.clear();
  EXPECT_TRUE(vec.empty());
  for (int i = 0; i < 5; ++i)
    vec.add(nth(10 + i));
  EXPECT_EQ(vec.begin(), storage);
  EXPECT_EQ(ledger.allocations(), 0);
  EXPECT_EQ(numbers(vec), (Numbers{10, 11, 12, 13, 14}));
}

TEST(CookieVec, LastOfASharedVectorCanBeRemoved)
{
  CookieVec vec = vecOf(0, 1);
  const CookieVec copy = vec;
  vec.remove(nth(0));
  EXPECT_TRUE(vec.empty());
  EXPECT_EQ(numbers(copy), (Numbers{0}));
  vec.add(nth(1));
  EXPECT_EQ(numbers(vec), (Numbers{1}));
}

TEST(CookieVec, WithoutMemoryTheVectorStaysAndNothingLeaks)
{
  CookieVec full = vecOf(0, 8);
  const CookieVec copy = full;
  EXPECT_TRUE(failsWithoutMemory([&] { full.add(nth(9)); }));
  EXPECT_TRUE(failsWithoutMemory([&] { full.remove(nth(3)); }));
  EXPECT_EQ(numbers(full), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(failEachAllocation([] {
              CookieVec vec = vecOf(0, 9);
              const CookieVec other = vec;
              vec.remove(nth(0));
            }),
            3);
}

// --- CookieSet -----------------------------------------------------------------------------------

TEST(CookieSet, InsertKeepsOrderAndTakesEachOnce)
{
  CookieSet set;
  EXPECT_EQ(set->count(), 0);
  for (const int n : {5, 2, 5, 9, 2})
    set.insert(nth(n));
  set->insert(nth(1));
  ASSERT_EQ(set->count(), 4);
  const int expected[] = {5, 2, 9, 1};
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ((*set)[i].compare(nth(expected[i])), 0) << i;
}

TEST(CookieSet, CopiesShareTheBody)
{
  const Ledger ledger;
  {
    CookieSet set;
    const CookieSet copy = set;
    set.insert(nth(1));
    EXPECT_EQ(copy->count(), 1);
  }
  EXPECT_EQ(ledger.open(), 0);
}
