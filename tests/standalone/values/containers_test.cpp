// SPDX-License-Identifier: Apache-2.0
#include "host/containers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "support/ledger.h"

namespace {

using Text = LightweightString<char>;
using Texts = std::vector<std::string>;

/// A record that counts how often it is compared, by number.
struct Numbered : ArrayRec {
  explicit Numbered(int n, char m = ' ') : number(n), mark(m) {}
  int compare(const ArrayRec& other) const override
  {
    ++compared;
    return number - static_cast<const Numbered&>(other).number;
  }
  int number;
  char mark;
  static inline int compared = 0;
};

std::vector<int> numbers(const Array& array)
{
  std::vector<int> result;
  for (unsigned i = 0; i < array.count(); ++i)
    result.push_back(static_cast<Numbered*>(array.at(i))->number);
  return result;
}

Texts texts(const StringList& list)
{
  Texts result;
  for (unsigned i = 0; i < list.count(); ++i)
    result.emplace_back(list[i].c_str());
  return result;
}

void fill(StringList& list, const Texts& items)
{
  for (const std::string& item : items)
    list.add(item.c_str());
}

} // namespace

// --- ArrayRec and StringRec ----------------------------------------------------------------------

TEST(ArrayRec, ComparesByAddress)
{
  const ArrayRec records[2];
  EXPECT_EQ(records[0].compare(records[0]), 0);
  EXPECT_EQ(records[0].compare(records[1]), -1);
  EXPECT_EQ(records[1].compare(records[0]), 1);
  EXPECT_TRUE(records[0] == records[0]);
  EXPECT_FALSE(records[0] == records[1]);
  EXPECT_TRUE(records[0] != records[1]);
  EXPECT_FALSE(records[0] != records[0]);
}

TEST(ArrayRec, EqualityFollowsAnOverriddenCompare)
{
  const Numbered a(1), b(1), c(2);
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a != b);
  EXPECT_TRUE(a != c);
}

TEST(ArrayRec, PrintsNothing)
{
  GrowString out;
  out = "x";
  ArrayRec().printOn(out);
  EXPECT_STREQ(out, "x");
}

TEST(ArrayRec, HoldsOnePointerOfItsOwn)
{
  static_assert(sizeof(ArrayRec) == 2 * sizeof(void*));
  static_assert(sizeof(StringRec) == sizeof(ArrayRec) + sizeof(Text));
  struct Open : ArrayRec {
    using ArrayRec::arrayData_;
  };
  EXPECT_EQ(Open().arrayData_, nullptr);
}

TEST(StringRec, ComparesByteByByteAndPrintsItsText)
{
  const StringRec upper("B"), lower("a"), empty("");
  EXPECT_LT(upper.compare(lower), 0);
  EXPECT_GT(lower.compare(upper), 0);
  EXPECT_EQ(upper.compare(StringRec("B")), 0);
  EXPECT_EQ(empty.compare(StringRec(Text())), 0);
  GrowString out;
  upper.printOn(out);
  lower.printOn(out);
  empty.printOn(out);
  EXPECT_STREQ(out, "Ba");
}

// --- Array ---------------------------------------------------------------------------------------

TEST(Array, AddAndAppendKeepTheOrderWithoutComparing)
{
  Numbered a(3), b(1), c(2);
  Array array;
  Numbered::compared = 0;
  array.add(&a);
  array.append(&b);
  array.add(&c);
  EXPECT_EQ(numbers(array), (std::vector<int>{3, 1, 2}));
  EXPECT_EQ(Numbered::compared, 0);
}

TEST(Array, SortedAddFindsThePlaceBehindEquals)
{
  Numbered a(2, 'a'), b(1), c(3), d(2, 'd'), e(0);
  Array array;
  array.sorted(true);
  for (Numbered* record : {&a, &b, &c, &d, &e})
    array.add(record);
  EXPECT_EQ(numbers(array), (std::vector<int>{0, 1, 2, 2, 3}));
  EXPECT_EQ(static_cast<Numbered*>(array.at(2))->mark, 'a');
  EXPECT_EQ(static_cast<Numbered*>(array.at(3))->mark, 'd');
}

TEST(Array, SortedMarkMovesNothingAndAppendIgnoresIt)
{
  Numbered a(2), b(1), c(0), d(5);
  Array array;
  array.add(&a);
  array.add(&b);
  array.sorted(true);
  EXPECT_EQ(numbers(array), (std::vector<int>{2, 1}));
  array.append(&c);
  EXPECT_EQ(numbers(array), (std::vector<int>{2, 1, 0}));
  array.sorted(false);
  array.add(&d);
  array.add(&a);
  EXPECT_EQ(numbers(array), (std::vector<int>{2, 1, 0, 5, 2}));
}

TEST(Array, RemoveTakesOneByIndexAndIgnoresOthers)
{
  Numbered a(0), b(1), c(2);
  Array array;
  for (Numbered* record : {&a, &b, &c})
    array.add(record);
  array.remove(3);
  array.remove(1);
  EXPECT_EQ(numbers(array), (std::vector<int>{0, 2}));
  array.remove(1);
  array.remove(0);
  array.remove(0);
  EXPECT_EQ(array.count(), 0U);
}

TEST(Array, AtPastTheEndIsNull)
{
  Numbered a(0);
  Array array;
  EXPECT_EQ(array.at(0), nullptr);
  array.add(&a);
  EXPECT_EQ(array.at(0), &a);
  EXPECT_EQ(array.at(1), nullptr);
}

TEST(Array, ClearKeepsTheSortedMarkInitDoesNot)
{
  Numbered a(2), b(1);
  Array array;
  array.sorted(true);
  array.add(&a);
  array.clear();
  EXPECT_EQ(array.count(), 0U);
  array.add(&a);
  array.add(&b);
  EXPECT_EQ(numbers(array), (std::vector<int>{1, 2}));
  array.init();
  EXPECT_EQ(array.count(), 0U);
  array.add(&a);
  array.add(&b);
  EXPECT_EQ(numbers(array), (std::vector<int>{2, 1}));
}

TEST(Array, RecordsAreNeverDeleted)
{
  auto record = std::make_unique<Numbered>(1);
  {
    Array array;
    array.add(record.get());
    array.remove(0);
    array.add(record.get());
    array.clear();
    array.append(record.get());
  }
  EXPECT_EQ(record->number, 1);
}

TEST(Array, ThousandAddsAllocateAFewTimesAndFreeAll)
{
  Numbered record(1);
  const Ledger ledger;
  {
    Array array;
    for (int i = 0; i < 1000; ++i)
      array.add(&record);
    EXPECT_EQ(array.count(), 1000U);
    EXPECT_LE(ledger.allocations(), 8);
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(Array, WithoutMemoryTheRecordsStay)
{
  Numbered record(1);
  Array array;
  for (int i = 0; i < 8; ++i)
    array.add(&record);
  EXPECT_TRUE(failsWithoutMemory([&] { array.add(&record); }));
  EXPECT_TRUE(failsWithoutMemory([&] { array.append(&record); }));
  EXPECT_EQ(array.count(), 8U);
}

// --- StringList ----------------------------------------------------------------------------------

TEST(StringList, AddKeepsOrderAndDuplicates)
{
  StringList list;
  fill(list, {"b", "a", "b"});
  EXPECT_EQ(texts(list), (Texts{"b", "a", "b"}));
}

TEST(StringList, SortedAddIsInByteOrder)
{
  StringList list;
  list.sorted(true);
  fill(list, {"b", "B", "a", "", "b", "\xC3\xA9"});
  EXPECT_EQ(texts(list), (Texts{"", "B", "a", "b", "b", "\xC3\xA9"}));
}

TEST(StringList, ContainsComparesByteByByte)
{
  StringList list;
  fill(list, {"A1", ""});
  EXPECT_TRUE(list.contains("A1"));
  EXPECT_TRUE(list.contains(""));
  EXPECT_TRUE(list.contains(Text()));
  EXPECT_FALSE(list.contains("a1"));
  EXPECT_FALSE(list.contains("A1 "));
  EXPECT_FALSE(list.contains("A"));
  EXPECT_FALSE(StringList().contains(""));
}

TEST(StringList, AppendedOutOfOrderIsFoundInASortedList)
{
  StringList list;
  list.sorted(true);
  for (const char* text : {"m", "b", "z", "a"})
    list.append(new StringRec(text));
  EXPECT_EQ(texts(list), (Texts{"m", "b", "z", "a"}));
  for (const char* text : {"m", "b", "z", "a"})
    EXPECT_TRUE(list.contains(text)) << text;
  list.remove("a");
  EXPECT_EQ(texts(list), (Texts{"m", "b", "z"}));
}

TEST(StringList, RemoveDeletesEveryEqualText)
{
  NEEDS_ROUTED_NEW;
  const Ledger ledger;
  {
    StringList list;
    fill(list, {"a", "b", "a", "c", "a"});
    list.remove("x");
    list.remove("a");
    EXPECT_EQ(texts(list), (Texts{"b", "c"}));
    list.remove(list[0]); // the text of an element that goes
    EXPECT_EQ(texts(list), (Texts{"c"}));
    list.remove("c");
    EXPECT_EQ(list.count(), 0U);
    EXPECT_EQ(ledger.open(), 1); // the array itself
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(StringList, ClearDeletesTheTextsAndKeepsTheSortedMark)
{
  NEEDS_ROUTED_NEW;
  StringList list;
  list.sorted(true);
  fill(list, {"b", "a"});
  const Ledger ledger;
  list.clear();
  EXPECT_EQ(ledger.open(), -4); // two elements, two texts
  EXPECT_EQ(list.count(), 0U);
  fill(list, {"b", "a"});
  EXPECT_EQ(texts(list), (Texts{"a", "b"}));
}

TEST(StringList, OwnsWhatWasAppended)
{
  const Ledger ledger;
  {
    StringList list;
    list.append(new StringRec("a"));
    list.add("b");
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(StringList, OwnTextCanBeAddedAtEverySize)
{
  StringList list;
  list.add("a");
  for (int i = 1; i < 40; ++i)
    list.add(list[0]);
  EXPECT_EQ(texts(list), Texts(40, "a"));
}

TEST(StringList, CopiesAreApart)
{
  StringList list;
  list.append(new StringRec("b"));
  list.append(new StringRec("a"));
  list.sorted(true);
  StringList copy(list), assigned;
  fill(assigned, {"x", "y"});
  assigned = list;
  EXPECT_EQ(texts(copy), (Texts{"b", "a"})); // as they stand, though marked sorted
  EXPECT_EQ(texts(assigned), (Texts{"b", "a"}));
  EXPECT_NE(copy.at(0), list.at(0));
  list.clear();
  copy.add("c");
  assigned.add("0");
  EXPECT_EQ(texts(copy), (Texts{"b", "a", "c"}));
  EXPECT_EQ(texts(assigned), (Texts{"0", "b", "a"})); // the mark came along
  auto& same = copy;
  copy = same;
  EXPECT_EQ(texts(copy), (Texts{"b", "a", "c"}));
}

TEST(StringList, AssignedListHasItsRoomToo)
{
  NEEDS_ROUTED_NEW;
  StringList list, assigned;
  fill(list, Texts(9, "a"));
  assigned.add("b");
  assigned = list;
  for (int i = 0; i < 40; ++i)
    assigned.add("c");
  EXPECT_EQ(assigned.count(), 49U);
  StringList target;
  target = list;
  const LightweightString<char> text = "d";
  const Ledger ledger;
  target.add(text); // room is there
  EXPECT_EQ(ledger.allocations(), 1);
}

TEST(StringList, WithoutMemoryNothingLeaks)
{
  NEEDS_ROUTED_NEW;
  StringList list;
  fill(list, {"a", "b"});
  EXPECT_TRUE(failsWithoutMemory([&] { list.add("c"); }));
  EXPECT_EQ(texts(list), (Texts{"a", "b"}));
  EXPECT_EQ(failEachAllocation([&] {
              StringList other(list); // two elements and an array
              other.add("c");         // a text and an element
              other = list;           // as the first
            }),
            8);
}
