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

TEST(Lines, CrLfAndCrlfEachEndOneLine)
{
  EXPECT_EQ(split("a\rb\nc\r\nd\n\re"), (Numbered{{1, "a"}, {2, "b"}, {3, "c"}, {4, "d"}, {5, ""}, {6, "e"}}));
}

TEST(Lines, LongLinesEndWhereTheyEnd)
{
  for (const std::size_t size : {4095U, 4096U, 4097U, 9000U}) {
    const std::string line(size, 'x');
    for (const char* end : {"\r", "\n", "\r\n"})
      EXPECT_EQ(split(line + end + "a"), (Numbered{{1, line}, {2, "a"}})) << size;
  }
}

TEST(Lines, LastLineNeedsNoEndAndAnEndAddsNoLine)
{
  EXPECT_EQ(split("a\r\n"), (Numbered{{1, "a"}}));
  EXPECT_EQ(split("\r"), (Numbered{{1, ""}}));
  EXPECT_EQ(split(""), Numbered{});
}

TEST(Lines, PaddingAtEitherEndIsRemovedAndBlanksNextToTheTextStay)
{
  EXPECT_EQ(split(std::string_view("\f  a \t\0 \x1A\n\0\0 \f\n b \0c\n", 20)),
            (Numbered{{1, "  a \t"}, {2, ""}, {3, std::string(" b \0c", 5)}}));
}

TEST(Trim, BlanksAndTabsGo)
{
  EXPECT_EQ(trim(" \t a b \t "), "a b");
  EXPECT_EQ(trim("\x01 a \x1B"), "\x01 a \x1B") << "other controls are not blanks";
  EXPECT_EQ(trim(" \t "), "");
  EXPECT_EQ(trimLeft(" a "), "a ");
  EXPECT_EQ(trimRight(" a "), " a");
}

TEST(Clean, TabsBecomeBlanksAndOuterBlanksGo)
{
  EXPECT_EQ(clean("\t A\tB\x01 C\t "), "A B\x01 C");
}

TEST(FirstControl, IsFoundUnlikeTabsAndLetters)
{
  EXPECT_EQ(firstControl("a\tb \xC3\xBC\xC2\xA0"), "");
  EXPECT_EQ(firstControl("a\x01\x02"), "\x01");
  EXPECT_EQ(firstControl("a\x7F"), "\x7F");
  EXPECT_EQ(firstControl("\xC3\xBC\xC2\x9B"), "") << "a byte of Latin-1";
}

TEST(Shortened, CutsBetweenCharactersCleansAndEscapes)
{
  EXPECT_EQ(shortened("a\tb", 3), "a b");
  EXPECT_EQ(shortened("a\x1B", 2), "a\\x1b");
  EXPECT_EQ(shortened("a\x1B, long", 2), "a\\x1b...");
  EXPECT_EQ(shortened("a\xC2\x9B", 3), "a\\u009b") << "a control character of Latin-1";
  EXPECT_EQ(shortened("a\xE2\x80\xAE", 4), "a\\u202e") << "a mark of direction";
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

TEST(Length, CountsCodePoints)
{
  EXPECT_EQ(length("K\xC3\xBC\xF0\x9F\x98\x80"), 3u);
}

} // namespace
