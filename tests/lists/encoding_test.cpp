// SPDX-License-Identifier: Apache-2.0
#include "lists/encoding.h"

#include <string>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

TEST(Decode, Utf8StaysAsItIs)
{
  EXPECT_EQ(decode("K\xC3\xBCste"), "K\xC3\xBCste");
}

TEST(Decode, ByteOrderMarkIsDropped)
{
  EXPECT_EQ(decode("\xEF\xBB\xBFTITLE"), "TITLE");
}

TEST(Decode, OneBadByteMakesAllOfItLatin1)
{
  EXPECT_EQ(decode("\xC3\xBC and \xFC"), "\xC3\x83\xC2\xBC and \xC3\xBC");
}

TEST(Decode, ByteOrderMarkBeforeLatin1IsDropped)
{
  EXPECT_EQ(decode("\xEF\xBB\xBF\xE9"), "\xC3\xA9");
}

TEST(Decode, Utf16LittleEndian)
{
  EXPECT_EQ(decode(std::string_view("\xFF\xFE\x41\x00\xFC\x00\x3D\xD8\x00\xDE", 10)), "A\xC3\xBC\xF0\x9F\x98\x80");
}

TEST(Decode, Utf16BigEndian)
{
  EXPECT_EQ(decode(std::string_view("\xFE\xFF\x00\x41\x00\xFC", 6)), "A\xC3\xBC");
}

TEST(Decode, Utf16WithLoneSurrogatesAndHalfAUnitGivesReplacements)
{
  EXPECT_EQ(decode(std::string_view("\xFF\xFE\x00\xDC\x41\x00\x00\xD8\x42\x00\x43", 11)), "\xEF\xBF\xBD"
                                                                                          "A"
                                                                                          "\xEF\xBF\xBD"
                                                                                          "B"
                                                                                          "\xEF\xBF\xBD");
  EXPECT_EQ(decode(std::string_view("\xFF\xFE\x00\xD8", 4)), "\xEF\xBF\xBD");
}

TEST(Decode, EveryByteIsItsOwnCharacterInLatin1)
{
  EXPECT_EQ(decode("DAVE\x92S"), "DAVE\xC2\x92S");
  EXPECT_EQ(decode("\x80\x9F\xA0\xFF"), "\xC2\x80\xC2\x9F\xC2\xA0\xC3\xBF");
}

TEST(Decode, BlanksOfTheLastLineStay)
{
  EXPECT_EQ(decode(std::string_view("A \t\t\r\n \x1A\0", 9)), "A \t\t");
}

TEST(Decode, EndMarksNulsAndBlanksAtTheEndAreDropped)
{
  EXPECT_EQ(decode(std::string_view("A\r\n\x1A\x1A\0\0 \r\n\x1A", 11)), "A");
  EXPECT_EQ(decode(std::string_view("\0\x1A", 2)), "");
}

TEST(Decode, AnEndMarkInTheMiddleCutsNothing)
{
  EXPECT_EQ(decode("A\n\x1A\nB"), "A\n\x1A\nB");
}

std::string utf16(std::string_view text, bool bigEndian)
{
  std::string bytes;
  for (char c : text)
    bytes += bigEndian ? std::string(1, '\0') + c : c + std::string(1, '\0');
  return bytes;
}

TEST(IsUnmarkedUtf16, EitherByteOrderAndAnyLength)
{
  for (const bool bigEndian : {false, true}) {
    EXPECT_TRUE(isUnmarkedUtf16(utf16("TITLE: X\r\n", bigEndian)));
    EXPECT_TRUE(isUnmarkedUtf16(utf16(std::string(1000, 'x'), bigEndian)));
    EXPECT_TRUE(isUnmarkedUtf16(utf16("TITLE", bigEndian) + "x")) << "half a unit at the end";
  }
}

TEST(IsUnmarkedUtf16, OtherBytesAreNot)
{
  EXPECT_FALSE(isUnmarkedUtf16(""));
  EXPECT_FALSE(isUnmarkedUtf16("x"));
  EXPECT_FALSE(isUnmarkedUtf16("TITLE: X"));
  EXPECT_FALSE(isUnmarkedUtf16(std::string(64, '\0')));
  EXPECT_FALSE(isUnmarkedUtf16(utf16("TIT", false) + "LE"));
}

} // namespace
