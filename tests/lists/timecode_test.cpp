// SPDX-License-Identifier: Apache-2.0
#include "lists/timecode.h"

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

TEST(TimecodeFault, EverySeparatorAndTwoOrThreeFrameDigitsAreGood)
{
  for (const char* good : {"01:02:03:04", "01:02:03;04", "01;02;03;04", "01.02.03.04", "01:02:03,04", "00:00:00:00",
                           "23:59:59:59", "23:59:59:119"})
    EXPECT_EQ(timecodeFault(good), "") << good;
}

TEST(TimecodeFault, EveryPartHasItsEnd)
{
  EXPECT_EQ(timecodeFault("24:00:00:00"), "hours above 23");
  EXPECT_EQ(timecodeFault("99:00:00:00"), "hours above 23");
  EXPECT_EQ(timecodeFault("01:60:00:00"), "minutes above 59");
  EXPECT_EQ(timecodeFault("01:59:60:00"), "seconds above 59");
  EXPECT_EQ(timecodeFault("01:59:59:60"), "frames above 59");
  EXPECT_EQ(timecodeFault("01:59:59;99"), "frames above 59");
  EXPECT_EQ(timecodeFault("01:59:59:120"), "frames above 119");
}

TEST(TimecodeFault, AnyOtherShapeIsNotATimecode)
{
  for (const char* bad : {"", "1:02:03:04", "01:02:03", "01:02:03:4", "01:02:03:0004", "01:02:03:0a", "01:02::3:04",
                          "01-02-03-04", "01:02:03:04x", "0102030405", "::::::::::::"})
    EXPECT_EQ(timecodeFault(bad), "not hh:mm:ss:ff") << bad;
}

TEST(FramesOf, TwoAndThreeDigits)
{
  EXPECT_EQ(framesOf("01:02:03:04"), 4);
  EXPECT_EQ(framesOf("01:02:03;29"), 29);
  EXPECT_EQ(framesOf("01:02:03:119"), 119);
}

TEST(IsAfter, EveryPartCountsAndTheSeparatorsDoNot)
{
  EXPECT_FALSE(isAfter("01:02:03:04", "01:02:03;04"));
  EXPECT_TRUE(isAfter("02:00:00:00", "01:59:59:24"));
  EXPECT_FALSE(isAfter("01:59:59:24", "02:00:00:00"));
  EXPECT_TRUE(isAfter("01:03:00:00", "01:02:59:24"));
  EXPECT_TRUE(isAfter("01.02.04.00", "01:02:03:24"));
  EXPECT_TRUE(isAfter("01:02:03;05", "01:02:03:04"));
  EXPECT_FALSE(isAfter("01:02:03:04", "01:02:03:05"));
}

TEST(IsAfter, FramesOfTwoAndThreeDigitsCompareAsNumbers)
{
  EXPECT_FALSE(isAfter("01:02:03:24", "01:02:03:024"));
  EXPECT_TRUE(isAfter("01:02:03:100", "01:02:03:59"));
  EXPECT_FALSE(isAfter("01:02:03:59", "01:02:03:100"));
}

TEST(LooksLikeTimecode, GoodBadAndGarbledOnesDo)
{
  for (const char* like : {"01:02:03:04", "01:99:03:04", "O1:02:03:04", "01:02:03", "01.02.03.04", "1;2;3"})
    EXPECT_TRUE(looksLikeTimecode(like)) << like;
}

TEST(LooksLikeTimecode, NamesAndNumbersDoNot)
{
  for (const char* unlike : {"", "025", "REEL", "a.b.c.mov", "C:", "1.2.3", "..."})
    EXPECT_FALSE(looksLikeTimecode(unlike)) << unlike;
}

} // namespace
