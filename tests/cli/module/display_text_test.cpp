// SPDX-License-Identifier: Apache-2.0
#include "module/display_text.h"

#include <clocale>
#include <strings.h>

#include <gtest/gtest.h>

using namespace reeldb::cli;

namespace {

TEST(DisplayText, PlainTextStays)
{
  EXPECT_EQ(displayText("A001 caf\xc3\xa9 \xe3\x83\x86 \\n"), "A001 caf\xc3\xa9 \xe3\x83\x86 \\n");
}

TEST(DisplayText, ControlCharactersAreEscaped)
{
  EXPECT_EQ(displayText("a\nb\rc\td\x1b[31m\x7f\x01"), "a\\nb\\rc\\td\\x1b[31m\\x7f\\x01");
  EXPECT_EQ(displayText(std::string_view("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(displayText("\xc2\x80\xc2\x9b\xc2\x9f\xc2\xa0"), "\\x80\\x9b\\x9f\xc2\xa0");
}

TEST(DisplayText, MarksOfDirectionAndLineSeparatorsAreEscaped)
{
  EXPECT_EQ(displayText("a\xe2\x80\xae"
                        "b\xe2\x81\xa6\xe2\x80\xa8"),
            "a\\u202eb\\u2066\\u2028");
}

TEST(DisplayText, BytesThatAreNoUtf8AreEscaped)
{
  EXPECT_EQ(displayText("a\xff\xc3"), "a\\xff\\xc3");
  EXPECT_EQ(displayText("\xed\xa0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(displayText("\xc3("), "\\xc3(");
}

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
