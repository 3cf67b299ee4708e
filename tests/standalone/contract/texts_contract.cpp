// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <string>
#include <vector>

#include "host/text.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Texts);

using Text = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

std::wstring wide(const Wide& text)
{
  return text.c_str();
}

TEST_P(Texts, Utf8GoesToWideAndBack)
{
  PROMISE("host/text.h", "UTF-8 to wide.");
  const std::string utf8 = "Caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\x9E";
  EXPECT_EQ(wide(fromUTF8(utf8.c_str())), L"Caf\u00e9 \u20ac \U0001F39E");
  EXPECT_EQ(std::string(toUTF8(fromUTF8(utf8.c_str())).c_str()), utf8);
  EXPECT_TRUE(fromUTF8("").empty());
  EXPECT_TRUE(toUTF8(L"").empty());
}

TEST_P(Texts, EachMalformedByteBecomesAReplacement)
{
  PROMISE("host/text.h", "Each byte that is not part of a well-formed sequence becomes U+FFFD.");
  EXPECT_EQ(wide(fromUTF8("a\xC3")), L"a\uFFFD");
  EXPECT_EQ(wide(fromUTF8("\xFF\xFE!")), L"\uFFFD\uFFFD!");
}

// What a byte begins does not swallow the byte that does not belong to it.
TEST_P(Texts, ASequenceThatBreaksOffIsReplacedByteByByte)
{
  PROMISE("host/text.h", "Each byte that is not part of a well-formed sequence becomes U+FFFD.");
  EXPECT_EQ(wide(fromUTF8("\xC3\x41")), L"\uFFFDA");
  EXPECT_EQ(wide(fromUTF8("\xE2\x82\x41")), L"\uFFFD\uFFFDA");
  EXPECT_EQ(wide(fromUTF8("\xF0\x9F\x8E\x41")), L"\uFFFD\uFFFD\uFFFDA");
  EXPECT_EQ(wide(fromUTF8("\xE2\xC3\xA9")), L"\uFFFD\u00e9");
}

// Two spellings of one identifier must not become one text.
TEST_P(Texts, WhatIsSpeltTooLongOrIsNotACharacterIsReplacedByteByByte)
{
  PROMISE("host/text.h", "Each byte that is not part of a well-formed sequence becomes U+FFFD.");
  EXPECT_EQ(wide(fromUTF8("\xC1\x81!")), std::wstring(2, L'\uFFFD') + L"!");         // A in two bytes
  EXPECT_EQ(wide(fromUTF8("\xE0\x80\xAF!")), std::wstring(3, L'\uFFFD') + L"!");     // / in three
  EXPECT_EQ(wide(fromUTF8("\xE0\x9F\xBF!")), std::wstring(3, L'\uFFFD') + L"!");     // U+07FF in three
  EXPECT_EQ(wide(fromUTF8("\xF0\x8F\xBF\xBF!")), std::wstring(4, L'\uFFFD') + L"!"); // U+FFFF in four
  EXPECT_EQ(wide(fromUTF8("\xED\xA0\x80!")), std::wstring(3, L'\uFFFD') + L"!");     // a surrogate
  EXPECT_EQ(wide(fromUTF8("\xF4\x90\x80\x80!")), std::wstring(4, L'\uFFFD') + L"!"); // past U+10FFFF
  EXPECT_EQ(wide(fromUTF8("\xE0\xA0\x80\xED\x9F\xBF")), L"\u0800\uD7FF");            // the nearest that are well formed
  EXPECT_EQ(wide(fromUTF8("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF")), L"\U00010000\U0010FFFF");
}

TEST_P(Texts, WideValuesOutsideUnicodeBecomeReplacements)
{
  PROMISE("host/text.h", "A value outside Unicode, or a surrogate, becomes U+FFFD.");
  const wchar_t text[] = {0x110000, 0xD800, 'x', 0};
  EXPECT_EQ(std::string(toUTF8(text).c_str()), "\xEF\xBF\xBD\xEF\xBF\xBDx");
}

TEST_P(Texts, ToUpperTouchesAsciiLettersAndNoOtherString)
{
  PROMISE("host/text.h",
          "Upper-cases the ASCII letters in place; detaches a shared body first, so no other string changes.");
  Text text("a\xC3\xA9z1_");
  const Text copy(text);
  toUpper(text);
  EXPECT_STREQ(text.c_str(), "A\xC3\xA9Z1_");
  EXPECT_STREQ(copy.c_str(), "a\xC3\xA9z1_");
  Text none;
  toUpper(none);
  EXPECT_TRUE(none.empty());
}

TEST_P(Texts, ToUpperChangesOnlyAsciiLetters)
{
  PROMISE("host/text.h", "Upper-cases the ASCII letters in place");
  std::string before, after;
  for (int byte = 1; byte < 256; ++byte) {
    before += static_cast<char>(byte);
    after += static_cast<char>(byte >= 'a' && byte <= 'z' ? byte - 'a' + 'A' : byte);
  }
  Text text(before.c_str());
  toUpper(text);
  EXPECT_EQ(std::string(text.c_str()), after);
  Text euro("\xE2\x82\xAC");
  toUpper(euro);
  EXPECT_STREQ(euro.c_str(), "\xE2\x82\xAC");
}

TEST_P(Texts, TrailingBlanksGoAndNoOtherStringChanges)
{
  PROMISE("host/text.h", "Removes trailing blanks (0x20 only) in place; detaches a shared body first.");
  Text text(" R1\t  ");
  const Text copy(text);
  trimTrailingSpaces(text);
  EXPECT_STREQ(text.c_str(), " R1\t");
  EXPECT_STREQ(copy.c_str(), " R1\t  ");
  Text blanks("   ");
  trimTrailingSpaces(blanks);
  EXPECT_TRUE(blanks.empty());
  EXPECT_EQ(blanks.length(), 0u);
}

// Identifiers are UTF-8 by convention, and this function decodes nothing: each byte is one character.
TEST_P(Texts, WideningTakesByteByByte)
{
  PROMISE("host/text.h", "Widens byte by byte (0x00 to 0xFF); nothing is decoded. Null gives the empty string.");
  EXPECT_EQ(wide(Zr::WStringFromAscii("R\xC3\xA9")), L"R\u00C3\u00A9");
  EXPECT_TRUE(Zr::WStringFromAscii(nullptr).empty());
}

TEST_P(Texts, AResourceTextStandsBetweenItsPadding)
{
  PROMISE("host/text.h",
          "The text resource @p id in the user's language, between @p before and @p after; either may be null.");
  const std::wstring text = host().textOfResource(codes::wordForReel);
  EXPECT_EQ(wide(paddedResourceStrW(codes::wordForReel, nullptr, L" ", ResStrFmt(0))), text + L" ");
  EXPECT_EQ(wide(paddedResourceStrW(codes::wordForReel, L"<", L">", ResStrFmt(0))), L"<" + text + L">");
  EXPECT_EQ(wide(paddedResourceStrW(codes::wordForReel, nullptr, nullptr, ResStrFmt(0))), text);
}

TEST_P(Texts, ThePrintTakesAFormatAndReturnsTheLength)
{
  PROMISE("host/text.h", "Returns the number of bytes, or a negative number on failure.");
  EXPECT_EQ(vorn_printf("%s %d\n", "label map", 14), 13);
}

TEST_P(Texts, ABufferGrows)
{
  PROMISE("host/text.h", "replaces the text; null gives the empty text");
  GrowString buffer;
  EXPECT_STREQ(buffer, "");
  buffer.append("Tape ");
  buffer.append('x');
  buffer << 4294967295u;
  EXPECT_STREQ(buffer, "Tape x4294967295");
  const GrowString copy(buffer);
  buffer = static_cast<const char*>(nullptr);
  EXPECT_STREQ(buffer, "");
  EXPECT_STREQ(copy, "Tape x4294967295");
}

/// The pieces of a text between separators, as the reader of type files takes them.
std::vector<std::string> pieces(const char* text, const char* separators, bool joinCrLf)
{
  ByteStream stream{Text(text)};
  stream.separators = separators;
  stream.joinCrLf = joinCrLf;
  std::vector<std::string> all;
  while (!stream.atEnd()) {
    GrowString piece;
    stream >> piece;
    all.push_back(static_cast<const char*>(piece));
  }
  return all;
}

TEST_P(Texts, AStreamTakesOneSeparatorAfterEachPiece)
{
  PROMISE("host/text.h", "Replaces the text of the buffer with the characters up to the next separator or the end. "
                         "Consumes that one separator.");
  using Pieces = std::vector<std::string>;
  EXPECT_EQ(pieces("a=1  b=2", " ", false), (Pieces{"a=1", "", "b=2"}));
  EXPECT_EQ(pieces("a:b\n", "\r\n", true), (Pieces{"a:b"})); // nothing after the last separator
  EXPECT_EQ(pieces("a\r\nb", "\r\n", true), (Pieces{"a", "b"}));
  EXPECT_EQ(pieces("a\r\nb", "\r\n", false), (Pieces{"a", "", "b"}));
  EXPECT_EQ(pieces("a\n\rb", "\r\n", true), (Pieces{"a", "", "b"}));
  EXPECT_EQ(pieces("", " ", false), Pieces{});
  EXPECT_EQ(pieces("a b", "", false), (Pieces{"a b"})); // no separators by default
}

TEST_P(Texts, AStreamOverABufferReadsIt)
{
  PROMISE("host/text.h", "borrows the buffer, which must not change while it is read");
  GrowString buffer;
  buffer.append("a b");
  ByteStream stream(buffer);
  stream.separators = " ";
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "a");
  stream >> piece;
  EXPECT_STREQ(piece, "b");
  EXPECT_TRUE(stream.atEnd());
  stream >> piece;
  EXPECT_STREQ(piece, "");
  EXPECT_STREQ(buffer, "a b");
}

TEST_P(Texts, ABufferMayAppendItsOwnText)
{
  PROMISE("host/text.h", "null appends nothing; may lie in this buffer");
  GrowString buffer;
  buffer.append("0123456789");
  for (int i = 0; i < 5; ++i)
    buffer.append(buffer);
  EXPECT_EQ(std::string(static_cast<const char*>(buffer)).size(), 320u);
  buffer.append(static_cast<const char*>(nullptr));
  EXPECT_EQ(std::string(static_cast<const char*>(buffer)).size(), 320u);
}

TEST_P(Texts, AStreamOverAFileEndsWhereTheFileDoes)
{
  PROMISE("host/text.h", "borrows the file and never closes it; a read error counts as the end");
  std::FILE* const file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  std::fputs("x\ny", file);
  std::rewind(file);
  ByteStream stream(file);
  stream.separators = "\n";
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "x");
  EXPECT_FALSE(stream.atEnd());
  stream >> piece;
  EXPECT_STREQ(piece, "y");
  EXPECT_TRUE(stream.atEnd());
  EXPECT_EQ(std::fclose(file), 0); // the stream has not closed it
}

// A folder opens for reading and then fails to be read.
TEST_P(Texts, AFileThatCannotBeReadIsAtItsEnd)
{
  PROMISE("host/text.h", "borrows the file and never closes it; a read error counts as the end");
  std::FILE* const folder = std::fopen(".", "r");
  ASSERT_NE(folder, nullptr);
  const ByteStream stream(folder);
  EXPECT_TRUE(stream.atEnd());
  std::fclose(folder);
}

} // namespace
