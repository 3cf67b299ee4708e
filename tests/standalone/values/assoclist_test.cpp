// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/containers.h"
#include "host/text.h"
#include "support/ledger.h"

namespace {

using Text = LightweightString<char>;
using Texts = std::vector<std::string>;

Texts keys(const AssocList& list)
{
  Texts result;
  for (AssocListIter iter(list); *iter; ++iter)
    result.emplace_back((*iter)->key.c_str());
  return result;
}

/// A text with a number behind it.
Text numbered(const char* text, int number)
{
  Text result(text);
  result += number;
  return result;
}

struct AssocListTest : testing::Test {
  AssocList list{new AssocListRep(false)};
};

} // namespace

TEST_F(AssocListTest, EntriesStandInTheOrderTheyWereMade)
{
  for (const char* key : {"z", "a", "m"})
    list[key].value = key;
  EXPECT_EQ(keys(list), (Texts{"z", "a", "m"}));
  EXPECT_STREQ(list.at(0).key.c_str(), "z");
  EXPECT_STREQ(list.at(2).value.c_str(), "m");
  EXPECT_EQ(list.rep()->count(), 3U);
}

TEST_F(AssocListTest, KeyIsMadeOnceAndKeepsItsPlace)
{
  list["z"].value = "1";
  list["a"].value = "2";
  list["z"].value = "3";
  EXPECT_EQ(keys(list), (Texts{"z", "a"}));
  EXPECT_STREQ(list.at(0).value.c_str(), "3");
  EXPECT_EQ(&list["a"], &list.at(1));
}

TEST_F(AssocListTest, NewEntryHasAnEmptyValue)
{
  EXPECT_TRUE(list["Tape"].value.empty());
  EXPECT_STREQ(list["Tape"].key.c_str(), "Tape");
}

TEST_F(AssocListTest, KeysAreComparedByteByByte)
{
  for (const char* key : {"dv", "DV", "dv ", "d"})
    list[key];
  list[Text("dv\0x", 4)];
  EXPECT_EQ(list.rep()->count(), 5U);
  EXPECT_FALSE(list.rep()->find("Dv"));
}

TEST_F(AssocListTest, NullAndEmptyKeyAreOne)
{
  list[Text()].value = "x";
  list[""].value = "y";
  EXPECT_EQ(list.rep()->count(), 1U);
  EXPECT_STREQ(list.rep()->find(nullptr)->value.c_str(), "y");
}

TEST_F(AssocListTest, FindNeverAdds)
{
  list["a"].value = "1";
  EXPECT_FALSE(list.rep()->find("b"));
  EXPECT_EQ(list.rep()->count(), 1U);
  EXPECT_EQ(list.rep()->find("a").get(), &list.at(0));
}

TEST_F(AssocListTest, FoundEntryOutlivesTheList)
{
  Zr::Ptr<AssocListRep::Entry> entry;
  {
    AssocList other(new AssocListRep(false));
    other["a"].value = "1";
    entry = other.rep()->find("a");
  }
  EXPECT_STREQ(entry->value.c_str(), "1");
}

TEST_F(AssocListTest, ManyKeysAreFound)
{
  for (int i = 0; i < 1000; ++i)
    list[numbered("type", i)].value = numbered("v", i);
  EXPECT_EQ(list.rep()->count(), 1000U);
  for (int i = 0; i < 1000; ++i) {
    const auto entry = list.rep()->find(numbered("type", i));
    ASSERT_TRUE(entry) << i;
    EXPECT_STREQ(entry->value.c_str(), numbered("v", i).c_str());
    EXPECT_EQ(entry.get(), &list.at(static_cast<unsigned>(i)));
  }
}

TEST_F(AssocListTest, CallersTextMayChangeAfterwards)
{
  Text key("videochannels");
  list[key].value = key;
  toUpper(key);
  EXPECT_TRUE(list.rep()->find("videochannels"));
  EXPECT_FALSE(list.rep()->find("VIDEOCHANNELS"));
  list.at(0).key = "other";
  EXPECT_TRUE(list.rep()->find("videochannels"));
}

TEST_F(AssocListTest, AtPastTheEndIsAlwaysEmpty)
{
  list["a"].value = "1";
  AssocListRep::Entry& nothing = list.at(1);
  EXPECT_TRUE(nothing.key.empty());
  EXPECT_TRUE(nothing.value.empty());
  nothing.key = "x";
  nothing.value = "y";
  EXPECT_TRUE(list.at(99).key.empty());
  EXPECT_TRUE(list.at(99).value.empty());
  {
    const Zr::Ptr<AssocListRep::Entry> holder(&list.at(99)); // does not delete it
  }
  EXPECT_TRUE(list.at(99).key.empty());
  EXPECT_EQ(list.rep()->count(), 1U);
  EXPECT_EQ(list.rep()->entry(1), nullptr);
}

TEST_F(AssocListTest, CopiesAndIteratorsShareTheBody)
{
  list["a"];
  const AssocList copy = list;
  AssocListIter iter(list);
  list["b"];
  EXPECT_EQ(copy.rep(), list.rep());
  EXPECT_EQ(keys(copy), (Texts{"a", "b"}));
  ++iter;
  ASSERT_NE(*iter, nullptr);
  EXPECT_STREQ((*iter)->key.c_str(), "b");
  EXPECT_EQ(*++iter, nullptr);
  EXPECT_EQ(*++iter, nullptr);
}

TEST_F(AssocListTest, IteratorKeepsTheBodyAlive)
{
  const Ledger ledger;
  {
    auto other = std::make_unique<AssocList>(new AssocListRep(false));
    (*other)["a"];
    AssocListIter iter(*other);
    other.reset();
    ASSERT_NE(*iter, nullptr);
    EXPECT_STREQ((*iter)->key.c_str(), "a");
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST_F(AssocListTest, DiscardAllLeavesAnEmptyListThatCanBeFilled)
{
  list["a"].value = "1";
  list.rep()->discardAll();
  EXPECT_EQ(list.rep()->count(), 0U);
  EXPECT_FALSE(list.rep()->find("a"));
  list["b"];
  EXPECT_TRUE(list["a"].value.empty());
  EXPECT_EQ(keys(list), (Texts{"b", "a"}));
}

TEST_F(AssocListTest, WithoutMemoryTheListStaysAndNothingLeaks)
{
  NEEDS_ROUTED_NEW;
  list["a"].value = "1";
  const Text key("b");
  int failures = 0; // the entry, its place in the order, its place in the index
  while (failsAt(failures + 1, [&] { list[key]; })) {
    ++failures;
    EXPECT_EQ(keys(list), (Texts{"a"})) << failures;
    EXPECT_FALSE(list.rep()->find(key)) << failures;
  }
  EXPECT_EQ(failures, 3);
  EXPECT_EQ(keys(list), (Texts{"a", "b"}));
  EXPECT_GT(failEachAllocation([] {
              AssocList other(new AssocListRep(false));
              for (int i = 0; i < 20; ++i)
                other[numbered("key", i)].value = "value";
            }),
            60);
}
