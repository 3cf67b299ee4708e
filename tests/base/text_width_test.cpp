// SPDX-License-Identifier: Apache-2.0
#include "base/text_width.h"

#include <clocale>
#include <strings.h>

#include <gtest/gtest.h>

using namespace reeldb::base;

namespace {

using Lines = std::vector<std::string>;

TEST(DisplayWidth, CountsColumns)
{
  EXPECT_EQ(displayWidth(""), 0u);
  EXPECT_EQ(displayWidth("abc"), 3u);
  EXPECT_EQ(displayWidth("\xc3\xa9"), 1u);
  EXPECT_EQ(displayWidth("e\xcc\x81"), 1u);
  EXPECT_EQ(displayWidth("\xe3\x83\x86"), 2u);
}

TEST(DisplayWidth, LeavesTheLocaleAsItWas)
{
  const std::string before = setlocale(LC_ALL, nullptr);
  displayWidth("\xe3\x83\x86");
  EXPECT_EQ(setlocale(LC_ALL, nullptr), before);
  EXPECT_NE(strcasecmp("\xc9", "\xe9"), 0);
}

TEST(WrapToWidth, TextThatFitsIsOneLine)
{
  EXPECT_EQ(wrapToWidth("", 3), Lines{""});
  EXPECT_EQ(wrapToWidth("a b", 3), Lines{"a b"});
}

TEST(WrapToWidth, LinesBreakAtTheLastBlankThatFits)
{
  EXPECT_EQ(wrapToWidth("one two three", 8), (Lines{"one two", "three"}));
  EXPECT_EQ(wrapToWidth("one two", 4), (Lines{"one", "two"}));
  EXPECT_EQ(wrapToWidth("one two", 3), (Lines{"one", "two"}));
}

TEST(WrapToWidth, LongWordBreaksAnywhere)
{
  EXPECT_EQ(wrapToWidth("abcdefgh", 3), (Lines{"abc", "def", "gh"}));
  EXPECT_EQ(wrapToWidth("a bcdefgh", 3), (Lines{"a", "bcd", "efg", "h"}));
}

TEST(WrapToWidth, WideCharactersCountTwiceAndStayWhole)
{
  EXPECT_EQ(wrapToWidth("\xe3\x83\x86\xe3\x83\x86", 3), (Lines{"\xe3\x83\x86", "\xe3\x83\x86"}));
  EXPECT_EQ(wrapToWidth("\xe3\x83\x86x", 1), (Lines{"\xe3\x83\x86", "x"}));
}

TEST(CutToWidth, TextThatFitsStays)
{
  EXPECT_EQ(cutToWidth("abc", 3), "abc");
  EXPECT_EQ(cutToWidth("\xe3\x83\x86x", 3), "\xe3\x83\x86x");
}

TEST(CutToWidth, LongerTextEndsInAnEllipsisAndFits)
{
  EXPECT_EQ(cutToWidth("abcd", 3), "ab\xe2\x80\xa6");
  EXPECT_EQ(cutToWidth("\xe3\x83\x86\xe3\x83\x86", 3), "\xe3\x83\x86\xe2\x80\xa6");
  EXPECT_EQ(cutToWidth("\xe3\x83\x86\xe3\x83\x86\xe3\x83\x86", 4), "\xe3\x83\x86\xe2\x80\xa6");
  EXPECT_EQ(cutToWidth("ab", 1), "\xe2\x80\xa6");
}

TEST(ShortText, IsCutAt80Columns)
{
  EXPECT_EQ(shortText(std::string(80, 'x')), std::string(80, 'x'));
  EXPECT_EQ(shortText(std::string(81, 'x')), std::string(79, 'x') + "\xe2\x80\xa6");
}

} // namespace
