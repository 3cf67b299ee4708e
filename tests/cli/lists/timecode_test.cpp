// SPDX-License-Identifier: Apache-2.0
#include "lists/timecode.h"

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

TEST(TimecodeFault, EverySeparatorAndTwoOrThreeFrameDigitsAreGood)
{
  for (const char* good :
       {"01:02:03:04", "01:02:03;04", "01;02;03;04", "01.02.03.04", "01:02:03,04", "23:59:59:119", "99:00:00:00"})
    EXPECT_EQ(timecodeFault(good), "") << good;
}

TEST(TimecodeFault, MinutesAndSecondsAreBelowSixty)
{
  EXPECT_EQ(timecodeFault("01:60:00:00"), "minutes above 59");
  EXPECT_EQ(timecodeFault("01:59:60:00"), "seconds above 59");
}

TEST(TimecodeFault, AnyOtherShapeIsNone)
{
  for (const char* bad : {"", "1:02:03:04", "01:02:03", "01:02:03:4", "01:02:03:0004", "01:02:03:0a", "01:02::3:04",
                          "01-02-03-04", "01:02:03:04x", "0102030405", "::::::::::::"})
    EXPECT_EQ(timecodeFault(bad), "not hh:mm:ss:ff") << bad;
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
