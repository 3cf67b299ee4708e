// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "host/config.h"
#include "support/ledger.h"

TEST(StrpField, NewHoldsNoText)
{
  const strp_field field;
  EXPECT_EQ(field.text(), nullptr);
}

TEST(StrpField, EmptyTextIsAText)
{
  strp_field field;
  field.set("");
  EXPECT_STREQ(field.text(), "");
}

TEST(StrpField, SetCopiesAndReplaces)
{
  const Ledger ledger;
  {
    char text[] = "A001";
    strp_field field;
    field.set(text);
    text[0] = 'B';
    EXPECT_STREQ(field.text(), "A001");
    field.set("C");
    EXPECT_STREQ(field.text(), "C");
    EXPECT_EQ(ledger.open(), 1);
    field.set(nullptr);
    EXPECT_EQ(field.text(), nullptr);
    field.set("D");
  }
  EXPECT_EQ(ledger.open(), 0);
}

TEST(StrpField, PartOfItsOwnTextCanBeSet)
{
  strp_field field;
  field.set("A001");
  field.set(field.text() + 1);
  EXPECT_STREQ(field.text(), "001");
}

TEST(StrpField, CopiesAreApart)
{
  strp_field field;
  field.set("A001");
  strp_field copy(field), assigned;
  assigned = field;
  field.set("B");
  EXPECT_STREQ(copy.text(), "A001");
  EXPECT_STREQ(assigned.text(), "A001");
  auto& same = copy;
  copy = same;
  EXPECT_STREQ(copy.text(), "A001");
  copy = strp_field();
  EXPECT_EQ(copy.text(), nullptr);
}

TEST(StrpField, WithoutMemoryTheTextStays)
{
  strp_field field;
  field.set("A001");
  EXPECT_TRUE(failsWithoutMemory([&] { field.set("B002"); }));
  EXPECT_TRUE(failsWithoutMemory([&] { (void)strp_field(field); }));
  EXPECT_STREQ(field.text(), "A001");
}
