// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <vector>

#include "host/containers.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Containers);

using Text = LightweightString<char>;
using Names = std::vector<std::string>;

/// An element with a rank, by which it is compared.
class Ranked : public ArrayRec {
public:
  explicit Ranked(int rank) : rank_(rank) {}
  int compare(const ArrayRec& other) const override { return rank_ - static_cast<const Ranked&>(other).rank_; }

private:
  int rank_;
};

std::vector<const ArrayRec*> recordsOf(const Array& array)
{
  std::vector<const ArrayRec*> records;
  for (unsigned i = 0; i < array.count(); ++i)
    records.push_back(array.at(i));
  return records;
}

/// An element whose comparison claims that all are equal.
class Element : public ArrayRec {
public:
  explicit Element(int& alive) : alive_(alive) { ++alive_; }
  ~Element() override { --alive_; }
  int compare(const ArrayRec&) const override { return 0; }

private:
  int& alive_;
};

Names namesOf(const StringList& list)
{
  Names names;
  for (unsigned i = 0; i < list.count(); ++i)
    names.push_back(list[i].c_str());
  return names;
}

TEST_P(Containers, ElementsAreEqualToThemselvesAloneUnlessTheySayOtherwise)
{
  PROMISE("host/containers.h", "Compares addresses unless overridden.");
  const ArrayRec a, b;
  EXPECT_TRUE(a == a);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a != b);
  GrowString text;
  a.printOn(text);
  EXPECT_STREQ(text, "");
}

TEST_P(Containers, ElementsHaveAnOrder)
{
  PROMISE("host/containers.h", "Negative, 0 or positive if this record comes before, with or after the other.");
  const ArrayRec a, b;
  EXPECT_EQ(a.compare(a), 0);
  EXPECT_NE(a.compare(b), 0);
  EXPECT_EQ(a.compare(b) < 0, b.compare(a) > 0);
}

TEST_P(Containers, AnArrayNeitherOwnsNorCompares)
{
  PROMISE("host/containers.h", "It does not own them, and compares them only if it is marked sorted.");
  int alive = 0;
  {
    Element first(alive), second(alive), third(alive);
    Array array;
    array.add(&first);
    array.add(&second);
    array.add(&third);
    EXPECT_EQ(array.at(0), &first);
    array.remove(1);
    ASSERT_EQ(array.count(), 2u);
    EXPECT_EQ(array.at(1), &third);
    array.clear();
    EXPECT_EQ(array.count(), 0u);
    EXPECT_EQ(alive, 3);
  }
  EXPECT_EQ(alive, 0);
}

using Records = std::vector<const ArrayRec*>;

TEST_P(Containers, ASortedArrayAddsARecordBehindItsEquals)
{
  PROMISE("host/containers.h", "if marked sorted, at its position behind equal records; else at the end");
  Ranked low(1), high(3), first(2), second(2), third(2);
  Array array;
  array.sorted(true);
  for (Ranked* record : {&high, &first, &low, &second, &third})
    array.add(record);
  EXPECT_EQ(recordsOf(array), (Records{&low, &first, &second, &third, &high}));
}

TEST_P(Containers, AnAppendedRecordIsLastInASortedArrayToo)
{
  PROMISE("host/containers.h", "at the end, sorted or not");
  Ranked low(1), high(3);
  Array array;
  array.sorted(true);
  array.append(&high);
  array.append(&low);
  EXPECT_EQ(recordsOf(array), (Records{&high, &low}));
}

TEST_P(Containers, AnInitializedArrayIsEmptyAndNotSorted)
{
  PROMISE("host/containers.h", "count 0, not marked sorted");
  Ranked low(1), high(3);
  Array array;
  array.sorted(true);
  array.add(&high);
  array.init();
  EXPECT_EQ(array.count(), 0u);
  array.add(&high);
  array.add(&low);
  EXPECT_EQ(recordsOf(array), (Records{&high, &low}));
}

TEST_P(Containers, TheMarkMovesNoRecord)
{
  PROMISE("host/containers.h", "sets or clears the mark; does not move any record");
  Ranked low(1), high(3);
  Array array;
  array.add(&high);
  array.add(&low);
  array.sorted(true);
  EXPECT_EQ(recordsOf(array), (Records{&high, &low}));
  array.sorted(false);
  Ranked middle(2);
  array.add(&middle);
  EXPECT_EQ(recordsOf(array), (Records{&high, &low, &middle}));
}

TEST_P(Containers, PastTheEndOfAnArrayThereIsNoRecord)
{
  PROMISE("host/containers.h", "moves later records up; an index past the end does nothing");
  Ranked one(1);
  Array array;
  EXPECT_EQ(array.at(0), nullptr);
  array.add(&one);
  array.remove(1);
  EXPECT_EQ(array.count(), 1u);
  EXPECT_EQ(array.at(1), nullptr);
}

TEST_P(Containers, AListOfStringsOwnsWhatCameInEitherWay)
{
  PROMISE("host/containers.h", "A list of strings that owns its elements, also those that were added through Array.");
  StringList list;
  list.add("b");
  list.append(new StringRec("a"));
  EXPECT_EQ(namesOf(list), (Names{"b", "a"}));
  list.clear();
  EXPECT_EQ(list.count(), 0u);
}

TEST_P(Containers, AListOfStringsKeepsDuplicatesAndRemovesAllOfThem)
{
  PROMISE("host/containers.h", "removes every equal element; may be the text of an element");
  StringList list;
  list.sorted(true);
  list.add("B");
  list.add("a");
  list.add("B");
  EXPECT_EQ(namesOf(list), (Names{"B", "B", "a"}));
  list.remove("b");
  EXPECT_EQ(list.count(), 3u);
  list.remove("B");
  EXPECT_EQ(namesOf(list), Names{"a"});
}

// Catalogues are appended to lists that may be marked sorted: looking for a text must not rely on the order.
TEST_P(Containers, ATextIsFoundInAListThatIsNotInOrder)
{
  PROMISE("host/containers.h", "at the end, sorted or not");
  StringList list;
  list.sorted(true);
  list.append(new StringRec("b"));
  list.append(new StringRec("a"));
  EXPECT_TRUE(list.contains("a"));
  EXPECT_TRUE(list.contains("b"));
  EXPECT_FALSE(list.contains("A"));
  list.remove("b");
  EXPECT_EQ(namesOf(list), Names{"a"});
}

TEST_P(Containers, AClearedListIsStillSorted)
{
  PROMISE("host/containers.h", "deletes the elements; the sorted mark is kept");
  StringList list;
  list.sorted(true);
  list.clear();
  list.add("b");
  list.add("a");
  EXPECT_EQ(namesOf(list), (Names{"a", "b"}));
}

TEST_P(Containers, AnUnsortedListKeepsTheOrder)
{
  PROMISE("host/containers.h", "A list of records in order.");
  StringList list;
  list.add("b");
  list.add("a");
  EXPECT_EQ(namesOf(list), (Names{"b", "a"}));
}

TEST_P(Containers, ACopiedListIsItsOwn)
{
  PROMISE("host/containers.h", "copies the elements in their order, and the sorted mark");
  StringList list;
  list.add("a");
  StringList copy(list);
  copy.add("b");
  list.clear();
  EXPECT_EQ(namesOf(copy), (Names{"a", "b"}));
  list = copy;
  copy.clear();
  EXPECT_EQ(namesOf(list), (Names{"a", "b"}));
}

TEST_P(Containers, ACopiedListHasTheSortedMark)
{
  PROMISE("host/containers.h", "copies the elements in their order, and the sorted mark");
  StringList list;
  list.sorted(true);
  list.add("b");
  StringList copy(list), assigned;
  assigned = list;
  copy.add("a");
  assigned.add("a");
  EXPECT_EQ(namesOf(copy), (Names{"a", "b"}));
  EXPECT_EQ(namesOf(assigned), (Names{"a", "b"}));
}

TEST_P(Containers, AKeyedListKeepsTheOrderInWhichKeysCame)
{
  PROMISE("host/containers.h", "entries in order of creation, keys compared byte by byte");
  AssocList list(new AssocListRep(false));
  list["z"].value = "1";
  list["a"].value = "2";
  list["z"].value = "3";
  ASSERT_EQ(list.rep()->count(), 2u);
  EXPECT_STREQ(list.at(0).key.c_str(), "z");
  EXPECT_STREQ(list.at(0).value.c_str(), "3");
  EXPECT_STREQ(list.at(1).key.c_str(), "a");
}

TEST_P(Containers, KeysAreTakenLetterForLetter)
{
  PROMISE("host/containers.h", "entries in order of creation, keys compared byte by byte");
  AssocList list(new AssocListRep(false));
  list["dv"].value = "1";
  EXPECT_FALSE(list.rep()->find("DV"));
  EXPECT_TRUE(list.rep()->find("dv"));
}

TEST_P(Containers, FindingAddsNothingAndIndexingDoes)
{
  PROMISE("host/containers.h", "null if absent; never adds");
  AssocList list(new AssocListRep(false));
  EXPECT_FALSE(list.rep()->find("new"));
  EXPECT_EQ(list.rep()->count(), 0u);
  EXPECT_STREQ(list["new"].value.c_str(), "");
  EXPECT_EQ(list.rep()->count(), 1u);
}

TEST_P(Containers, PastTheEndOfAKeyedListIsAnEmptyEntry)
{
  PROMISE("host/containers.h", "past the end: an entry that is always empty");
  const AssocList list(new AssocListRep(false));
  EXPECT_STREQ(list.at(99).key.c_str(), "");
  EXPECT_STREQ(list.at(99).value.c_str(), "");
  EXPECT_EQ(list.rep()->entry(99), nullptr);
  EXPECT_EQ(list.rep()->count(), 0u);
}

TEST_P(Containers, WhatIsWrittenPastTheEndOfAKeyedListIsForgotten)
{
  PROMISE("host/containers.h", "past the end: an entry that is always empty");
  const AssocList list(new AssocListRep(false));
  list.at(99).key = "key";
  list.at(99).value = "value";
  EXPECT_STREQ(list.at(99).key.c_str(), "");
  EXPECT_STREQ(list.at(99).value.c_str(), "");
}

TEST_P(Containers, ADiscardedKeyedListIsEmptyForEveryHolder)
{
  PROMISE("host/containers.h", "removes all entries, for every holder of the body");
  AssocList list(new AssocListRep(false));
  list["a"].value = "1";
  const AssocList other(list);
  const Zr::Ptr<AssocListRep::Entry> held = list.rep()->find("a");
  list.rep()->discardAll();
  EXPECT_EQ(list.rep()->count(), 0u);
  EXPECT_EQ(other.rep()->count(), 0u);
  EXPECT_EQ(list.rep()->entry(0), nullptr);
  EXPECT_FALSE(list.rep()->find("a"));
  ASSERT_TRUE(held);
  EXPECT_STREQ(held->value.c_str(), "1");
  list["b"];
  EXPECT_EQ(other.rep()->count(), 1u);
}

TEST_P(Containers, AnIteratorComesToEntriesThatAreAddedMeanwhile)
{
  PROMISE("host/containers.h",
          "Walks an AssocList from its first entry to its last, including entries that are added meanwhile.");
  AssocList list(new AssocListRep(false));
  list["a"];
  Names keys;
  for (AssocListIter i(list); *i; ++i) {
    keys.push_back((*i)->key.c_str());
    if (keys.size() == 1)
      list["b"];
  }
  EXPECT_EQ(keys, (Names{"a", "b"}));
}

TEST_P(Containers, AnIteratorWalksEveryEntryAndThenReturnsNull)
{
  PROMISE("host/containers.h", "Walks an AssocList from its first entry to its last");
  AssocList list(new AssocListRep(false));
  list["b"];
  list["a"];
  Names keys;
  AssocListIter i(list);
  for (; *i; ++i)
    keys.push_back((*i)->key.c_str());
  EXPECT_EQ(keys, (Names{"b", "a"}));
  EXPECT_EQ(*i, nullptr);
}

} // namespace
