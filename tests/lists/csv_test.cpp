// SPDX-License-Identifier: Apache-2.0
#include "lists/csv.h"

#include <gtest/gtest.h>

using reeldb::lists::csvRow;

TEST(Csv, PlainFieldsGoAsTheyAre)
{
  EXPECT_EQ(csvRow({"a", "", " b;\t'c' "}), "a,, b;\t'c' \r\n");
}

TEST(Csv, FieldThatSpreadsheetsWouldRunStandsBehindAnApostrophe)
{
  EXPECT_EQ(csvRow({"=1+2", "+1", "-1", "@SUM(A1)", "\tx", "'A'"}), "'=1+2,'+1,'-1,'@SUM(A1),'\tx,''A'\r\n");
  EXPECT_EQ(csvRow({"=1,2"}), "\"'=1,2\"\r\n");
  EXPECT_EQ(csvRow({"a=1", "1-2"}), "a=1,1-2\r\n");
}

TEST(Csv, CommaQuoteAndLineEndsAreQuoted)
{
  EXPECT_EQ(csvRow({"a,b", "\"", "c\rd", "e\nf"}), "\"a,b\",\"\"\"\",\"c\rd\",\"e\nf\"\r\n");
}
