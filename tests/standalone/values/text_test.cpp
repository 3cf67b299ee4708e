// SPDX-License-Identifier: Apache-2.0
#include "host/text.h"

#include <gtest/gtest.h>

#include <string>

#include "support/ledger.h"

namespace {

using Narrow = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

std::string utf8(const std::wstring& wide)
{
  const Narrow bytes = toUTF8(Wide(wide.data(), wide.size()));
  return {bytes.c_str(), bytes.length()};
}

std::wstring wide(const std::string& bytes)
{
  const Wide text = fromUTF8(Narrow(bytes.data(), bytes.size()));
  return {text.c_str(), text.length()};
}

} // namespace

TEST(ToUtf8, EachLengthOfSequence)
{
  EXPECT_EQ(utf8(L"A7"), "A7");
  EXPECT_EQ(utf8(L"\u00e9\u07ff"), "\xC3\xA9\xDF\xBF");
  EXPECT_EQ(utf8(L"\u0800\u20ac\uffff"), "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF");
  EXPECT_EQ(utf8(L"\U0001f600\U0010ffff"), "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF");
}

TEST(ToUtf8, ValueOutsideUnicodeBecomesReplacement)
{
  for (const wchar_t bad : {wchar_t(0x110000), wchar_t(-1), wchar_t(0xD800), wchar_t(0xDFFF)})
    EXPECT_EQ(utf8({L'a', bad, L'b'}), "a\xEF\xBF\xBD"
                                       "b")
        << static_cast<long>(bad);
  EXPECT_EQ(utf8({wchar_t(0xD7FF), wchar_t(0xE000)}), "\xED\x9F\xBF\xEE\x80\x80");
}

TEST(ToUtf8, EmptyGivesNoBodyAndNulsStay)
{
  Narrow none = toUTF8(Wide());
  EXPECT_EQ(none.writable(), nullptr);
  EXPECT_EQ(utf8(std::wstring(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(FromUtf8, EachLengthOfSequence)
{
  EXPECT_EQ(wide("A7"), L"A7");
  EXPECT_EQ(wide("\xC3\xA9\xDF\xBF"), L"\u00e9\u07ff");
  EXPECT_EQ(wide("\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF"), L"\u0800\u20ac\uffff");
  EXPECT_EQ(wide("\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"), L"\U0001f600\U0010ffff");
}

TEST(FromUtf8, EachMalformedByteBecomesOneReplacement)
{
  const struct {
    const char* bytes;
    const wchar_t* expected;
  } table[] = {
      {"\x80", L"\ufffd"},                               // a trail byte alone
      {"a\xC3", L"a\ufffd"},                             // cut at the end
      {"\xC3z", L"\ufffdz"},                             // cut by a letter
      {"\xE2\x82", L"\ufffd\ufffd"},                     // two of three
      {"\xF0\x9F\x98z", L"\ufffd\ufffd\ufffdz"},         // three of four
      {"\xC0\xAF", L"\ufffd\ufffd"},                     // overlong
      {"\xE0\x80\xAF", L"\ufffd\ufffd\ufffd"},           // overlong
      {"\xED\xA0\x80", L"\ufffd\ufffd\ufffd"},           // a surrogate
      {"\xF4\x90\x80\x80", L"\ufffd\ufffd\ufffd\ufffd"}, // past U+10FFFF
      {"\xFF\xFE", L"\ufffd\ufffd"},                     // never in UTF-8
      {"\xE2\xC3\xA9", L"\ufffd\u00e9"},                 // a good sequence right behind
      {"\xC3\xA9\xA9\xC3\xA9", L"\u00e9\ufffd\u00e9"},   // between good ones
  };
  for (const auto& row : table)
    EXPECT_EQ(wide(row.bytes), row.expected) << testing::PrintToString(std::string(row.bytes));
}

TEST(FromUtf8, EmptyGivesNoBodyAndNulsStay)
{
  Wide none = fromUTF8(Narrow());
  EXPECT_EQ(none.writable(), nullptr);
  EXPECT_EQ(wide(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(Utf8, EveryCodePointComesBack)
{
  for (wchar_t c = 1; c <= 0x10FFFF; c = c == 0xD7FF ? 0xE000 : c + 1)
    if (const std::wstring text(1, c); wide(utf8(text)) != text)
      FAIL() << "U+" << std::hex << static_cast<long>(c);
}

TEST(ToUpper, LettersOfAsciiOnly)
{
  Narrow text("az`{AZ09 \xC3\xA9\xE4");
  toUpper(text);
  EXPECT_STREQ(text.c_str(), "AZ`{AZ09 \xC3\xA9\xE4");
  Narrow none;
  toUpper(none);
  EXPECT_TRUE(none.empty());
}

TEST(ToUpper, SharedBodyStaysAsItIs)
{
  Narrow text("VideoChannels");
  const Narrow other = text;
  toUpper(text);
  EXPECT_STREQ(text.c_str(), "VIDEOCHANNELS");
  EXPECT_STREQ(other.c_str(), "VideoChannels");
}

TEST(TrimTrailingSpaces, OnlyBlanksAtTheEndGo)
{
  const std::pair<const char*, const char*> table[] = {{"R1", "R1"},      {"R1 ", "R1"},    {"R1   ", "R1"},
                                                       {" R 1 ", " R 1"}, {"R1\t", "R1\t"}, {"R1 \t ", "R1 \t"},
                                                       {"\n ", "\n"}};
  for (const auto& [input, expected] : table) {
    Narrow text(input);
    trimTrailingSpaces(text);
    EXPECT_STREQ(text.c_str(), expected);
    EXPECT_EQ(text.length(), std::string(expected).size());
  }
}

TEST(TrimTrailingSpaces, OnlyBlanksGivesEmpty)
{
  Narrow blanks("   "), none;
  trimTrailingSpaces(blanks);
  trimTrailingSpaces(none);
  EXPECT_TRUE(blanks.empty());
  EXPECT_TRUE(none.empty());
}

TEST(TrimTrailingSpaces, SharedBodyStaysAsItIs)
{
  Narrow text("R1 ");
  const Narrow other = text;
  trimTrailingSpaces(text);
  EXPECT_STREQ(text.c_str(), "R1");
  EXPECT_STREQ(other.c_str(), "R1 ");
}

TEST(TrimTrailingSpaces, NothingToTrimKeepsTheBodyShared)
{
  Narrow text("R1");
  const Narrow other = text;
  trimTrailingSpaces(text);
  EXPECT_EQ(text.c_str(), other.c_str());
}

TEST(WStringFromAscii, EachByteIsWidenedUndecoded)
{
  const Wide text = Zr::WStringFromAscii("a\xC3\xA9\x80\xFF");
  EXPECT_EQ(std::wstring(text.c_str()), std::wstring({L'a', 0xC3, 0xA9, 0x80, 0xFF}));
  EXPECT_EQ(text.length(), 5U);
}

TEST(WStringFromAscii, NullAndEmptyGiveNoBody)
{
  EXPECT_EQ(Zr::WStringFromAscii(nullptr).writable(), nullptr);
  EXPECT_EQ(Zr::WStringFromAscii("").writable(), nullptr);
}

TEST(Conversions, WithoutMemoryNothingLeaks)
{
  NEEDS_ROUTED_NEW;
  EXPECT_GT(failEachAllocation([] {
              const Wide text = Zr::WStringFromAscii("a text of more characters than fit a small buffer");
              Narrow bytes = toUTF8(text);
              const Wide back = fromUTF8(bytes);
              const Narrow other = bytes;
              toUpper(bytes);
            }),
            6);
}
