// SPDX-License-Identifier: Apache-2.0
#include "lists/text.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

std::vector<std::pair<int, std::string>> split(std::string_view text)
{
  std::vector<std::pair<int, std::string>> result;
  Lines lines(text);
  for (std::string_view line; lines.next(line);)
    result.emplace_back(lines.number(), line);
  return result;
}

using Numbered = std::vector<std::pair<int, std::string>>;

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

TEST(Decode, EndMarksNulsAndBlanksAtTheEndAreDropped)
{
  EXPECT_EQ(decode(std::string_view("A\r\n\x1A\x1A\0\0 \r\n\x1A", 11)), "A");
  EXPECT_EQ(decode(std::string_view("\0\x1A", 2)), "");
}

TEST(Decode, AnEndMarkInTheMiddleCutsNothing)
{
  EXPECT_EQ(decode("A\n\x1A\nB"), "A\n\x1A\nB");
}

TEST(Lines, CrLfAndCrlfEachEndOneLine)
{
  EXPECT_EQ(split("a\rb\nc\r\nd\n\re"), (Numbered{{1, "a"}, {2, "b"}, {3, "c"}, {4, "d"}, {5, ""}, {6, "e"}}));
}

TEST(Lines, LastLineNeedsNoEndAndAnEndAddsNoLine)
{
  EXPECT_EQ(split("a\r\n"), (Numbered{{1, "a"}}));
  EXPECT_EQ(split("\r"), (Numbered{{1, ""}}));
  EXPECT_EQ(split(""), Numbered{});
}

TEST(Trim, BlanksTabsAndControlsGo)
{
  EXPECT_EQ(trim(" \t a b\x1A\x7F "), "a b");
  EXPECT_EQ(trim(" \t "), "");
  EXPECT_EQ(trimLeft(" a "), "a ");
  EXPECT_EQ(trimRight(" a "), " a");
}

TEST(Clean, ControlsInsideBecomeBlanks)
{
  EXPECT_EQ(clean("A\tB\x01"
                  "C\x7F"
                  "D"),
            "A B C D");
  EXPECT_EQ(clean("A\xC2\x9B"
                  "B\xC2\x80\xC2\xA0"
                  "C"),
            "A B \xC2\xA0"
            "C");
}

TEST(Clean, OuterControlsGo)
{
  EXPECT_EQ(clean("\t\xC2\x85 A  B \x1B"), "A  B");
}

TEST(Shortened, CutsBetweenCharactersAndCleans)
{
  EXPECT_EQ(shortened("a\tb", 3), "a b");
  EXPECT_EQ(shortened("abcd", 3), "abc...");
  EXPECT_EQ(shortened("ab\xC3\xBC"
                      "c",
                      3),
            "ab...");
  EXPECT_EQ(inQuotes(std::string(40, 'q')), "'" + std::string(40, 'q') + "'");
  EXPECT_EQ(inQuotes(std::string(41, 'q')), "'" + std::string(40, 'q') + "...'");
}

TEST(Take, FirstAndLastWordsComeOffWithTheirBlanks)
{
  std::string_view text = "  one  two\tthree ";
  EXPECT_EQ(takeFirst(text), "one");
  EXPECT_EQ(takeLast(text), "three");
  EXPECT_EQ(text, "two");
  EXPECT_EQ(takeLast(text), "two");
  EXPECT_EQ(takeLast(text), "");
  EXPECT_EQ(takeFirst(text), "");
}

TEST(Fold, AsciiLettersOnly)
{
  EXPECT_EQ(fold("aZ9_\xC3\xBC"), "AZ9_\xC3\xBC");
}

TEST(SameName, IgnoresAsciiCaseAlone)
{
  EXPECT_TRUE(sameName("b014C", "B014c"));
  EXPECT_FALSE(sameName("b014", "b014c"));
  EXPECT_FALSE(sameName("\xC3\xBC", "\xC3\x9C"));
  EXPECT_FALSE(sameName("[", "{"));
}

TEST(StartsWithName, IgnoresCaseAndNeedsTheWholeStart)
{
  EXPECT_TRUE(startsWithName("fcm: x", "FCM"));
  EXPECT_FALSE(startsWithName("FC", "FCM"));
}

TEST(Length, CountsCodePoints)
{
  EXPECT_EQ(length("K\xC3\xBC\xF0\x9F\x98\x80"), 3u);
}

} // namespace
