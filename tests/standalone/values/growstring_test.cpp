// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "host/text.h"
#include "support/ledger.h"

TEST(GrowString, NewIsEmptyWithoutMemory)
{
  const Ledger ledger;
  const GrowString text;
  EXPECT_STREQ(text, "");
  EXPECT_EQ(ledger.allocations(), 0);
}

TEST(GrowString, OneCharacterNeedsNoMemoryAndIsItsOwn)
{
  const Ledger ledger;
  GrowString one, same;
  one.append('x');
  same = "x";
  const GrowString copy(same);
  EXPECT_EQ(ledger.allocations(), 0);
  one.append('y');
  EXPECT_STREQ(one, "xy");
  EXPECT_STREQ(same, "x");
  EXPECT_STREQ(copy, "x");
  same.append("");
  EXPECT_STREQ(same, "x");
  one = "z";
  EXPECT_STREQ(one, "z");
  same = "";
  EXPECT_STREQ(same, "");
  same.append('\xff');
  EXPECT_STREQ(same, "\xff");
}

TEST(GrowString, AssignedTextReplaces)
{
  GrowString text;
  text = "first, rather long for a buffer that starts small";
  text = "second";
  EXPECT_STREQ(text, "second");
  text = static_cast<const char*>(nullptr);
  EXPECT_STREQ(text, "");
  text.append("x");
  EXPECT_STREQ(text, "x");
}

TEST(GrowString, AppendPutsBehind)
{
  GrowString text;
  text.append('a');
  text.append("bc");
  text.append("");
  text.append(static_cast<const char*>(nullptr));
  text.append('d');
  EXPECT_STREQ(text, "abcd");
}

TEST(GrowString, NumberIsAppendedInDecimal)
{
  GrowString text;
  EXPECT_EQ(&(text << 0U), &text);
  text << 42U << UINT_MAX;
  EXPECT_STREQ(text, "0424294967295");
}

TEST(GrowString, PartOfItsOwnTextCanBeAssignedAndAppended)
{
  GrowString text;
  text = "0123456789";
  text = text + 3;
  EXPECT_STREQ(text, "3456789");
  for (int i = 0; i < 4; ++i) // passes the size of the buffer
    text.append(text + 1);
  EXPECT_EQ(std::string(text).size(), 97U);
  EXPECT_EQ(std::string(text).substr(0, 20), "34567894567894567894");
}

TEST(GrowString, CopiesAreApart)
{
  GrowString text;
  text = "reel";
  GrowString copy(text);
  copy.append("!");
  text.append("?");
  EXPECT_STREQ(text, "reel?");
  EXPECT_STREQ(copy, "reel!");
  copy = text;
  text = "x";
  EXPECT_STREQ(copy, "reel?");
  GrowString& same = copy;
  copy = same;
  EXPECT_STREQ(copy, "reel?");
  const GrowString none;
  const GrowString copyOfNone(none);
  EXPECT_STREQ(copyOfNone, "");
}

TEST(GrowString, AThousandAppendsAllocateAFewTimesAndFreeAll)
{
  const Ledger ledger;
  {
    GrowString text;
    for (int i = 0; i < 1000; ++i)
      text.append('x');
    EXPECT_LE(ledger.allocations(), 7);
    EXPECT_EQ(std::string(text), std::string(1000, 'x'));
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(GrowString, WithoutMemoryTheTextStaysAndNothingLeaks)
{
  const std::string longer(100, 'y');
  GrowString text;
  text = "kept";
  EXPECT_TRUE(failsWithoutMemory([&] { text = longer.c_str(); }));
  EXPECT_TRUE(failsWithoutMemory([&] { text.append(longer.c_str()); }));
  EXPECT_STREQ(text, "kept");
  EXPECT_EQ(failEachAllocation([&] {
              GrowString first;
              first = "ab";
              first.append(longer.c_str());
              const GrowString second(first);
            }),
            3);
}
