// SPDX-License-Identifier: Apache-2.0
#include "base/display_text.h"

#include <gtest/gtest.h>

using namespace reeldb::base;

namespace {

TEST(DisplayText, PlainTextStays)
{
  EXPECT_EQ(displayText("A001 caf\xc3\xa9 \xe3\x83\x86 \\n~"), "A001 caf\xc3\xa9 \xe3\x83\x86 \\n~");
  EXPECT_EQ(displayText("\xc2\xa0\xf0\x9f\x8e\x9e"), "\xc2\xa0\xf0\x9f\x8e\x9e");
  EXPECT_EQ(displayText(""), "");
}

TEST(DisplayText, ControlCharactersAreEscaped)
{
  EXPECT_EQ(displayText("a\nb\rc\td\x1b[31m\x7f\x01"), "a\\nb\\rc\\td\\x1b[31m\\x7f\\x01");
  EXPECT_EQ(displayText(std::string_view("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(displayText("\xc2\x80\xc2\x9b\xc2\x9f\xc2\xa0"), "\\u0080\\u009b\\u009f\xc2\xa0");
}

TEST(DisplayText, MarksOfDirectionAndLineSeparatorsAreEscaped)
{
  EXPECT_EQ(displayText("a\xe2\x80\xae"
                        "b\xe2\x81\xa6\xe2\x80\xa8\xe2\x80\xa9\xd8\x9c\xe2\x80\x8e"),
            "a\\u202eb\\u2066\\u2028\\u2029\\u061c\\u200e");
  EXPECT_EQ(displayText("\xe2\x80\x8d\xe2\x80\xaa\xe2\x80\xaf\xe2\x81\xa9\xe2\x81\xaa"),
            "\xe2\x80\x8d\\u202a\xe2\x80\xaf\\u2069\xe2\x81\xaa");
}

TEST(DisplayText, BytesThatAreNotUtf8AreEscapedUnlikeTheCharacterOfThatNumber)
{
  EXPECT_EQ(displayText("a\xff\xc3"), "a\\xff\\xc3");
  EXPECT_EQ(displayText("\x9b\xc2\x9b"), "\\x9b\\u009b");
  EXPECT_EQ(displayText("\xed\xa0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(displayText("\xc3("), "\\xc3(");
}

TEST(DisplayText, SecondTimeChangesNothing)
{
  const std::string once = displayText("a\x1b\xff\xe2\x80\xae\\");
  EXPECT_EQ(displayText(once), once);
}

TEST(IsShownEscaped, ControlsMarksOfDirectionAndLineEndsOnly)
{
  for (const char32_t c :
       {0x00u, 0x1Fu, 0x7Fu, 0x9Fu, 0x061Cu, 0x200Eu, 0x200Fu, 0x2028u, 0x2029u, 0x202Au, 0x202Eu, 0x2066u, 0x2069u})
    EXPECT_TRUE(isShownEscaped(c)) << static_cast<unsigned>(c);
  for (const char32_t c :
       {0x20u, 0x7Eu, 0xA0u, 0x061Bu, 0x061Du, 0x200Du, 0x2010u, 0x2027u, 0x202Fu, 0x2065u, 0x206Au, 0x1F39Eu})
    EXPECT_FALSE(isShownEscaped(c)) << static_cast<unsigned>(c);
}

TEST(TextFlaw, PlainTextHasNone)
{
  EXPECT_EQ(textFlaw(""), "");
  EXPECT_EQ(textFlaw("M\xc3\x9cLLER \xe2\x80\x8f~"), "");
}

TEST(TextFlaw, ControlCharactersAreOne)
{
  for (const std::string_view text :
       {std::string_view("a\x01"), std::string_view("\x1f"), std::string_view("\n"), std::string_view("a\x7f"),
        std::string_view("\xc2\x80"), std::string_view("\xc2\x9f"), std::string_view("a\0", 2)}) {
    EXPECT_EQ(textFlaw(text), "it holds a control character") << displayText(text);
    EXPECT_TRUE(holdsControlCharacter(text)) << displayText(text);
  }
  EXPECT_EQ(textFlaw(" \xc2\xa0"), "");
}

TEST(TextFlaw, BytesThatAreNotUtf8AreAFlaw)
{
  for (const char* text : {"\xff", "a\xc3", "\xed\xa0\x80", "\x1b\xff"})
    EXPECT_EQ(textFlaw(text), "it is not UTF-8") << displayText(text);
  EXPECT_FALSE(holdsControlCharacter("\xff\x9b"));
  EXPECT_TRUE(holdsControlCharacter("\xff\x1b"));
}

} // namespace
