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
  for (const Text& text : {Text(), Text(static_cast<const char*>(nullptr)), Text(""), Text("abc", 0)}) {
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.length(), 0u);
    EXPECT_STREQ(text.c_str(), "");
  }
}

TEST_P(Strings, AreConvertedFromCharactersByThemselves)
{
  const Text text = "Live";
  EXPECT_STREQ(text.c_str(), "Live");
  EXPECT_EQ(text.length(), 4u);
}

TEST_P(Strings, TakeAPartByLength)
{
  EXPECT_STREQ(Text("A001_C002", 4).c_str(), "A001");
}

TEST_P(Strings, ACopyKeepsItsTextWhenTheOtherChanges)
{
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
  Text original("tape");
  const Text copy(original);
  original.writable()[0] = 'T';
  EXPECT_STREQ(original.c_str(), "Tape");
  EXPECT_STREQ(copy.c_str(), "tape");
}

TEST_P(Strings, AssigningAStringToItselfChangesNothing)
{
  Text text("R1");
  const Text& same = text;
  text = same;
  EXPECT_STREQ(text.c_str(), "R1");
}

TEST_P(Strings, AssigningNothingEmpties)
{
  Text text("R1");
  text = static_cast<const char*>(nullptr);
  EXPECT_TRUE(text.empty());
}

TEST_P(Strings, AMovedFromStringIsEmpty)
{
  Text from("R1");
  const Text to(std::move(from));
  EXPECT_STREQ(to.c_str(), "R1");
  EXPECT_TRUE(from.empty());
}

TEST_P(Strings, AddUp)
{
  EXPECT_STREQ((Text("a") + Text("b")).c_str(), "ab");
  EXPECT_STREQ(("a" + Text("b")).c_str(), "ab");
  EXPECT_STREQ((Text("a") + "b").c_str(), "ab");
  EXPECT_STREQ((Text() + Text()).c_str(), "");
  EXPECT_EQ(std::wstring((Wide(L"a") + Wide(L"\u00e9")).c_str()), L"a\u00e9");
  EXPECT_EQ(std::wstring((Wide(L"a") + L"b").c_str()), L"ab");
}

TEST_P(Strings, AppendingAStringToItselfDoublesIt)
{
  Text text("ab");
  text.append(text);
  EXPECT_STREQ(text.c_str(), "abab");
  text.append(text.c_str());
  EXPECT_STREQ(text.c_str(), "abababab");
}

TEST_P(Strings, NumbersAreAppendedInDecimal)
{
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

TEST_P(Strings, WideOnesHoldOneCodePointAnElement)
{
  const Wide text(L"\U0001F39E");
  EXPECT_EQ(text.length(), 1u);
  EXPECT_EQ(text.c_str()[0], wchar_t(0x1F39E));
}

TEST_P(Strings, ACopyMayEndOnAnotherThread)
{
  const Text text("shared");
  std::thread other([copy = text]() mutable { copy = Text(); });
  for (int i = 0; i < 1000; ++i)
    const Text again(text);
  other.join();
  EXPECT_STREQ(text.c_str(), "shared");
}

} // namespace
