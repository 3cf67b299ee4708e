// SPDX-License-Identifier: Apache-2.0
#include "host/cookie.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "ledger.h"

namespace {

Zr::UUID uuid(const std::string& bytes)
{
  Zr::UUID id;
  std::memcpy(id.bytes, bytes.data(), std::min(bytes.size(), sizeof id.bytes));
  return id;
}

Zr::UUID counting()
{
  Zr::UUID id;
  for (unsigned char i = 0; i < 16; ++i)
    id.bytes[i] = i;
  return id;
}

std::string text(const Cookie& cookie)
{
  return cookie.asString(false).c_str();
}

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

// --- UUID

TEST(Uuid, NewIsZero)
{
  for (const unsigned char byte : Zr::UUID().bytes)
    EXPECT_EQ(byte, 0);
}

TEST(Uuid, CompareGivesTheSignOfTheByteOrder)
{
  EXPECT_EQ(uuid("a").compare(uuid("a")), 0);
  EXPECT_EQ(uuid("a").compare(uuid("b")), -1);
  EXPECT_EQ(uuid("b").compare(uuid("a")), 1);
  EXPECT_EQ(uuid("\x80").compare(uuid("\x7F")), 1);
  EXPECT_EQ(uuid("0123456789abcdef").compare(uuid("0123456789abcdeg")), -1);
}

TEST(Uuid, CopyIsEqual)
{
  const Zr::UUID id = counting();
  Zr::UUID copy = id, assigned;
  assigned = id;
  assigned = *&assigned;
  EXPECT_EQ(copy.compare(id), 0);
  EXPECT_EQ(assigned.compare(id), 0);
}

// --- Cookie

TEST(Cookie, NewIsInvalid)
{
  EXPECT_FALSE(Cookie().valid());
  EXPECT_EQ(Cookie().kind(), 'I');
}

TEST(Cookie, InvalidateGivesTheStateOfANewOne)
{
  Cookie cookie(counting(), 7, 'E');
  cookie.invalidate();
  EXPECT_FALSE(cookie.valid());
  EXPECT_EQ(cookie.compare(Cookie()), 0);
  EXPECT_EQ(text(cookie), text(Cookie()));
}

TEST(Cookie, AllInvalidOnesAreEqual)
{
  EXPECT_EQ(Cookie(counting(), 7, 'I').compare(Cookie()), 0);
  EXPECT_EQ(Cookie("Iabc", false).compare(Cookie("I{000102030405060708090a0b0c0d0e0f.0001}", false)), 0);
  EXPECT_EQ(text(Cookie("Iabc", false)), text(Cookie()));
}

TEST(Cookie, CompareLooksAtBytesTagAndKind)
{
  const Cookie cookie(counting(), 7, 'E');
  EXPECT_EQ(cookie.compare(Cookie(counting(), 7, 'E')), 0);
  const Cookie others[] = {Cookie(uuid("x"), 7, 'E'), Cookie(counting(), 8, 'E'), Cookie(counting(), 7, 'P'), Cookie()};
  for (const Cookie& other : others) {
    EXPECT_NE(cookie.compare(other), 0) << text(other);
    EXPECT_EQ(cookie.compare(other) < 0, other.compare(cookie) > 0) << text(other);
  }
}

TEST(CookieText, ProjectNameIsItsBytes)
{
  const Cookie cookie("P0001000", false);
  EXPECT_TRUE(cookie.valid());
  EXPECT_EQ(cookie.kind(), 'P');
  EXPECT_EQ(cookie.compare(Cookie(uuid("0001000"), 0, 'P')), 0);
  EXPECT_EQ(text(cookie), "P0001000");
}

TEST(CookieText, EachFormBothWays)
{
  const std::pair<Cookie, const char*> table[] = {
      {Cookie(uuid("a"), 0, 'E'), "Ea"},
      {Cookie(uuid("0AZaz9"), 0, 'P'), "P0AZaz9"},
      {Cookie(uuid("0123456789abcdef"), 0, 'E'), "E0123456789abcdef"},
      {Cookie(uuid("I"), 0, 'E'), "EI"},
      {Cookie(counting(), 0x1AF, 'E'), "E{000102030405060708090a0b0c0d0e0f.01af}"},
      {Cookie(counting(), 0, 'E'), "E{000102030405060708090a0b0c0d0e0f.0000}"},
      {Cookie(uuid("a"), 1, 'E'), "E{61000000000000000000000000000000.0001}"}, // a tag: no name
      {Cookie(uuid("a"), 0xFFFF, 'E'), "E{61000000000000000000000000000000.ffff}"},
      {Cookie(uuid("a b"), 0, 'E'), "E{61206200000000000000000000000000.0000}"},
      {Cookie(uuid("a_"), 0, 'E'), "E{615f0000000000000000000000000000.0000}"},
      {Cookie(uuid("\xE9"), 0, 'E'), "E{e9000000000000000000000000000000.0000}"},
      {Cookie(uuid(std::string("a\0b", 3)), 0, 'E'), "E{61006200000000000000000000000000.0000}"},
      {Cookie(uuid("0123456789abcde\xFF"), 0, 'E'), "E{303132333435363738396162636465ff.0000}"},
      {Cookie(Zr::UUID(), 0, 'E'), "E{00000000000000000000000000000000.0000}"},
      {Cookie(uuid("a"), 0, '{'), "{a"},
      {Cookie(), "I{00000000000000000000000000000000.0000}"},
  };
  for (const auto& [cookie, expected] : table) {
    EXPECT_EQ(text(cookie), expected);
    const Cookie back(expected, false);
    EXPECT_EQ(back.compare(cookie), 0) << expected;
    EXPECT_EQ(back.kind(), cookie.kind()) << expected;
  }
}

TEST(CookieText, WhatIsNotATextOfACookieGivesAnInvalidOne)
{
  const char* const table[] = {
      "",
      "P",
      "P ",
      "P0001000 ",
      "P0001-000",
      "Pa\xE9",
      "E0123456789abcdefg", // too long for a name
      "{",
      "E{",
      "E{}",
      "E{00}",
      "E{000102030405060708090a0b0c0d0e0f}",       // no tag
      "E{000102030405060708090a0b0c0d0e0f.01a}",   // short
      "E{000102030405060708090a0b0c0d0e0f.01aff}", // long
      "E{000102030405060708090a0b0c0d0e0f.01af} ", // more behind
      "E{000102030405060708090a0b0c0d0e0f:01af}",  // no point
      "E{000102030405060708090a0b0c0d0e0f.01af)",  // no brace
      "E{000102030405060708090a0b0c0d0e0g.01af}",  // no digit
      "E{000102030405060708090a0b0c0d0e-1.01af}",  //
      "E{000102030405060708090a0b0c0d0e0f.+1af}",  //
      "E{000102030405060708090A0B0C0D0E0F.01AF}",  // capitals: the same Cookie would have two texts
      "E{61000000000000000000000000000000.0000}",  // has a name: likewise
  };
  for (const char* bad : table)
    EXPECT_EQ(Cookie(bad, false).compare(Cookie()), 0) << bad;
  EXPECT_FALSE(Cookie(nullptr, false).valid());
  EXPECT_FALSE(Cookie(std::string(100000, 'a').c_str(), false).valid());
}

// --- CookieVec

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
  copy.add(nth(9)); // the place behind its last is the other's
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
  copy.add(nth(8));
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

// --- CookieSet

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

// --- IdStamp

TEST(IdStamp, OnlyZeroIsInvalid)
{
  EXPECT_FALSE(IdStamp().valid());
  EXPECT_FALSE(IdStamp(0).valid());
  const IdStamp stamp(3);
  EXPECT_TRUE(stamp.valid());
  IdStamp copy = stamp, assigned;
  assigned = stamp;
  EXPECT_TRUE(copy.valid());
  EXPECT_TRUE(assigned.valid());
}
