// SPDX-License-Identifier: Apache-2.0
#include "lists/csv.h"

#include <gtest/gtest.h>

using reeldb::lists::csvRow;

TEST(Csv, PlainFieldsGoAsTheyAre)
{
  EXPECT_EQ(csvRow({"a", "", " b;\t'c' "}), "a,, b;\t'c' \r\n");
}

TEST(Csv, CommaQuoteAndLineEndsAreQuoted)
{
  EXPECT_EQ(csvRow({"a,b", "\"", "c\rd", "e\nf"}), "\"a,b\",\"\"\"\",\"c\rd\",\"e\nf\"\r\n");
}
