// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <string>
#include <thread>

#include "host/lwstring.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Strings);

using Text = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

TEST_P(Strings, NothingNullAndTheEmptyTextAreAlike)
{
  PROMISE("host/lwstring.h", "A string without a body is empty, and behaves in every respect like one of length zero.");
  for (const Text& text : {Text(), Text(static_cast<const char*>(nullptr)), Text(""), Text("abc", 0)}) {
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.length(), 0u);
    EXPECT_STREQ(text.c_str(), "");
  }
}

TEST_P(Strings, AreConvertedFromCharactersByThemselves)
{
  PROMISE("host/lwstring.h", "copies the text; null or \"\" gives no body. Implicit by design.");
  const Text text = "Live";
  EXPECT_STREQ(text.c_str(), "Live");
  EXPECT_EQ(text.length(), 4u);
}

TEST_P(Strings, TakeAPartByLength)
{
  PROMISE("host/lwstring.h", "Copies @p len elements; null or a length of 0 gives no body.");
  EXPECT_STREQ(Text("A001_C002", 4).c_str(), "A001");
}

TEST_P(Strings, ACopyKeepsItsTextWhenTheOtherChanges)
{
  PROMISE("host/lwstring.h", "A string that shares its text with its copies.");
  Text original("tape");
  const Text copy(original);
  original.append(" two");
  EXPECT_STREQ(copy.c_str(), "tape");
  EXPECT_STREQ(original.c_str(), "tape two");
  Text other(copy);
  other = "x";
  EXPECT_STREQ(copy.c_str(), "tape");
}

TEST_P(Strings, WritableDetachesFromCopies)
{
  PROMISE("host/lwstring.h", "Detaches a shared body first, so no other string changes.");
  Text original("tape");
  const Text copy(original);
  original.writable()[0] = 'T';
  EXPECT_STREQ(original.c_str(), "Tape");
  EXPECT_STREQ(copy.c_str(), "tape");
}

TEST_P(Strings, AssigningAStringToItselfChangesNothing)
{
  PROMISE("host/lwstring.h", "A string that shares its text with its copies.");
  Text text("R1");
  const Text& same = text;
  text = same;
  EXPECT_STREQ(text.c_str(), "R1");
}

TEST_P(Strings, AssigningNothingEmpties)
{
  PROMISE("host/lwstring.h", "copies the text; null or \"\" gives no body.");
  Text text("R1");
  text = static_cast<const char*>(nullptr);
  EXPECT_TRUE(text.empty());
}

TEST_P(Strings, AMovedFromStringIsEmpty)
{
  PROMISE("host/lwstring.h", "takes the body; @p other becomes empty");
  Text from("R1");
  const Text to(std::move(from));
  EXPECT_STREQ(to.c_str(), "R1");
  EXPECT_TRUE(from.empty());
}

TEST_P(Strings, AMoveTakesTheText)
{
  PROMISE("host/lwstring.h", "takes the body; a self-move changes nothing");
  Text from("R1"), to("R2");
  to = std::move(from);
  EXPECT_STREQ(to.c_str(), "R1");
  Text& same = to;
  to = std::move(same);
  EXPECT_STREQ(to.c_str(), "R1");
}

TEST_P(Strings, WithoutATextThereIsNothingToWrite)
{
  PROMISE("host/lwstring.h", "Null without a body.");
  EXPECT_EQ(Text().writable(), nullptr);
  Text text("R1");
  text.append(static_cast<const char*>(nullptr));
  EXPECT_STREQ(text.c_str(), "R1");
}

TEST_P(Strings, AWideCopyKeepsItsText)
{
  PROMISE("host/lwstring.h", "A string that shares its text with its copies.");
  Wide original(L"Deck");
  const Wide copy(original);
  original.append(L" 2");
  EXPECT_EQ(std::wstring(copy.c_str()), L"Deck");
}

TEST_P(Strings, AddUp)
{
  PROMISE("host/lwstring.h", "Concatenates the two texts.");
  EXPECT_STREQ((Text("a") + Text("b")).c_str(), "ab");
  EXPECT_STREQ(("a" + Text("b")).c_str(), "ab");
  EXPECT_STREQ((Text("a") + "b").c_str(), "ab");
  EXPECT_STREQ((Text() + Text()).c_str(), "");
  EXPECT_EQ(std::wstring((Wide(L"a") + Wide(L"\u00e9")).c_str()), L"a\u00e9");
  EXPECT_EQ(std::wstring((Wide(L"a") + L"b").c_str()), L"ab");
}

TEST_P(Strings, AppendingAStringToItselfDoublesIt)
{
  PROMISE("host/lwstring.h", "@p text may be this string");
  Text text("ab");
  text.append(text);
  EXPECT_STREQ(text.c_str(), "abab");
  text.append(text.c_str());
  EXPECT_STREQ(text.c_str(), "abababab");
}

TEST_P(Strings, NumbersAreAppendedInDecimal)
{
  PROMISE("host/lwstring.h",
          "Appends the decimal form of a number. A character is a number too: `s += 'x'` appends \"120\".");
  Text text("reel_userfield");
  text += 0;
  text += -1;
  EXPECT_STREQ(text.c_str(), "reel_userfield0-1");
  Text least;
  least += INT_MIN;
  EXPECT_EQ(std::string(least.c_str()), std::to_string(INT_MIN));
  Text character;
  character += 'x';
  EXPECT_STREQ(character.c_str(), "120");
}

TEST_P(Strings, ElementOfAWideOneHoldsOneCodePoint)
{
  PROMISE("host/lwstring.h", "device and file names wide (one 32-bit code point each)");
  const Wide text(L"\U0001F39E");
  EXPECT_EQ(text.length(), 1u);
  EXPECT_EQ(text.c_str()[0], wchar_t(0x1F39E));
}

TEST_P(Strings, ACopyMayEndOnAnotherThread)
{
  PROMISE("host/lwstring.h", "OS()->refCounts() counts the references, so a copy may be used on another thread");
  const Text text("shared");
  std::thread other([copy = text]() mutable { copy = Text(); });
  for (int i = 0; i < 1000; ++i)
    const Text again(text);
  other.join();
  EXPECT_STREQ(text.c_str(), "shared");
}

} // namespace
