// SPDX-License-Identifier: Apache-2.0
#include "host/lwstring.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/ledger.h"

namespace {

/// The tests run for both kinds of characters; the texts are ASCII.
template <class CharT>
class Strings : public testing::Test {
protected:
  using String = LightweightString<CharT>;
  using Text = std::basic_string<CharT>;
  static Text t(const std::string& ascii) { return Text(ascii.begin(), ascii.end()); }
  static String s(const std::string& ascii) { return String(t(ascii).c_str()); }
  static std::string plain(const String& string)
  {
    EXPECT_EQ(string.c_str()[string.length()], CharT()) << "no NUL at the end";
    std::string ascii;
    for (std::size_t i = 0; i < string.length(); ++i)
      ascii.push_back(static_cast<char>(string.c_str()[i]));
    return ascii;
  }
};
using BothKinds = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Strings, BothKinds);

using Narrow = LightweightString<char>;

} // namespace

// --- Construction --------------------------------------------------------------------------------

TYPED_TEST(Strings, NullAndEmptyTextGiveNoBody)
{
  const Ledger ledger;
  const TypeParam* const null = nullptr;
  const TypeParam nothing[1] = {};
  LightweightString<TypeParam> none, fromNull(null), fromEmpty(nothing), fromNullAndLength(null, 0),
      fromNoLength(nothing, 0);
  for (auto* string : {&none, &fromNull, &fromEmpty, &fromNullAndLength, &fromNoLength}) {
    EXPECT_TRUE(string->empty());
    EXPECT_EQ(string->length(), 0U);
    ASSERT_NE(string->c_str(), nullptr);
    EXPECT_EQ(string->c_str()[0], TypeParam());
    EXPECT_EQ(string->writable(), nullptr);
  }
  EXPECT_EQ(ledger.allocations(), 0);
}

TYPED_TEST(Strings, TextIsCopiedWithOneAllocation)
{
  const auto text = this->t("A001");
  const Ledger ledger;
  const LightweightString<TypeParam> string(text.c_str());
  EXPECT_EQ(ledger.allocations(), 1);
  EXPECT_EQ(this->plain(string), "A001");
  EXPECT_NE(string.c_str(), text.c_str());
  EXPECT_FALSE(string.empty());
}

TYPED_TEST(Strings, LengthCountsAndNulsInsideStay)
{
  const auto text = this->t(std::string("ab\0cd", 5));
  const LightweightString<TypeParam> string(text.data(), 5);
  EXPECT_EQ(this->plain(string), std::string("ab\0cd", 5));
  const LightweightString<TypeParam> part(text.data(), 1);
  EXPECT_EQ(this->plain(part), "a");
}

TYPED_TEST(Strings, EndlessLengthIsOutOfMemory)
{
  const TypeParam text[2] = {};
  EXPECT_THROW(LightweightString<TypeParam>(text, SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(LightweightString<TypeParam>(text, SIZE_MAX / sizeof(TypeParam)), std::bad_alloc);
}

// --- Copies share --------------------------------------------------------------------------------

TYPED_TEST(Strings, CopySharesTheBodyAndCountsIt)
{
  auto first = this->s("A001");
  const Ledger ledger;
  {
    const auto second = first;
    EXPECT_EQ(second.c_str(), first.c_str());
    EXPECT_EQ(ledger.allocations(), 0);
    EXPECT_EQ(ledger.countsUp(), 1);
  }
  EXPECT_EQ(ledger.countsDown(), 1);
  EXPECT_EQ(this->plain(first), "A001");
}

TYPED_TEST(Strings, LastHolderFreesTheBody)
{
  const Ledger ledger;
  {
    auto first = std::make_unique<LightweightString<TypeParam>>(this->s("A001"));
    const auto second = *first;
    first.reset();
    EXPECT_EQ(this->plain(second), "A001");
    EXPECT_EQ(ledger.open(), 1);
  }
  EXPECT_EQ(ledger.open(), 0);
}

TYPED_TEST(Strings, MoveLeavesTheSourceEmptyAndCountsNothing)
{
  auto first = this->s("A001");
  const Ledger ledger;
  auto second = std::move(first);
  EXPECT_TRUE(first.empty());
  auto third = this->s("");
  third = std::move(second);
  EXPECT_TRUE(second.empty());
  EXPECT_EQ(this->plain(third), "A001");
  EXPECT_EQ(ledger.countsUp(), 0);
  EXPECT_EQ(ledger.countsDown(), 0);
}

TYPED_TEST(Strings, MoveAssignmentFreesThePreviousText)
{
  const Ledger ledger;
  {
    auto first = this->s("A001"), second = this->s("B002");
    first = std::move(second);
    EXPECT_EQ(ledger.open(), 1);
    EXPECT_EQ(this->plain(first), "B002");
  }
  EXPECT_EQ(ledger.open(), 0);
}

TYPED_TEST(Strings, AssignmentSharesAndFreesThePreviousText)
{
  const Ledger ledger;
  {
    auto first = this->s("A001");
    const auto second = this->s("B002");
    first = second;
    EXPECT_EQ(first.c_str(), second.c_str());
    EXPECT_EQ(ledger.open(), 1);
  }
  EXPECT_EQ(ledger.open(), 0);
}

TYPED_TEST(Strings, SelfAssignmentDoesNothing)
{
  auto string = this->s("A001");
  auto& same = string;
  const Ledger ledger;
  string = same;
  EXPECT_EQ(ledger.countsUp(), 0);
  string = std::move(same);
  EXPECT_EQ(this->plain(string), "A001");
  EXPECT_EQ(ledger.countsDown(), 0);
}

// --- Assignment of a text ------------------------------------------------------------------------

TYPED_TEST(Strings, ShorterTextReusesAnUnsharedBody)
{
  auto string = this->s("longer text");
  const auto shorter = this->t("short"), longAgain = this->t("LONGER TEXT");
  const auto* body = string.c_str();
  const Ledger ledger;
  string = shorter.c_str();
  EXPECT_EQ(string.c_str(), body);
  EXPECT_STREQ(string.c_str(), shorter.c_str());
  EXPECT_EQ(string.length(), 5U);
  string = longAgain.c_str();
  EXPECT_EQ(string.c_str(), body);
  EXPECT_EQ(ledger.allocations(), 0);
  EXPECT_EQ(this->plain(string), "LONGER TEXT");
}

TYPED_TEST(Strings, TextAssignedToASharedBodyLeavesTheOtherHolderAlone)
{
  auto string = this->s("longer text");
  const auto other = string;
  const auto shorter = this->t("short");
  string = shorter.c_str();
  EXPECT_EQ(this->plain(string), "short");
  EXPECT_EQ(this->plain(other), "longer text");
}

TYPED_TEST(Strings, LongerTextTakesANewBody)
{
  auto string = this->s("short");
  const auto longer = this->t("a text that is a good deal longer");
  const Ledger ledger;
  string = longer.c_str();
  EXPECT_EQ(ledger.allocations(), 1);
  EXPECT_EQ(ledger.open(), 0);
  EXPECT_EQ(this->plain(string), "a text that is a good deal longer");
}

TYPED_TEST(Strings, PartOfItsOwnTextCanBeAssigned)
{
  auto unshared = this->s("A001");
  unshared = unshared.c_str() + 1;
  EXPECT_EQ(this->plain(unshared), "001");
  unshared = unshared.c_str();
  EXPECT_EQ(this->plain(unshared), "001");

  auto shared = this->s("A001");
  const auto other = shared;
  shared = shared.c_str() + 1;
  EXPECT_EQ(this->plain(shared), "001");
  EXPECT_EQ(this->plain(other), "A001");
}

TYPED_TEST(Strings, NullOrEmptyTextAssignedFreesTheBody)
{
  const TypeParam* const null = nullptr;
  const Ledger ledger;
  auto first = this->s("A001"), second = this->s("A001"), third = this->s("A001");
  first = null;
  second = second.c_str() + 4;
  third = LightweightString<TypeParam>();
  for (const auto* string : {&first, &second, &third})
    EXPECT_TRUE(string->empty());
  EXPECT_EQ(ledger.open(), 0);
}

// --- Writing in place ----------------------------------------------------------------------------

TYPED_TEST(Strings, WritableDetachesASharedBodyOnce)
{
  auto string = this->s("A001");
  const auto other = string;
  TypeParam* text = string.writable();
  text[0] = TypeParam('B');
  EXPECT_EQ(this->plain(string), "B001");
  EXPECT_EQ(this->plain(other), "A001");
  EXPECT_EQ(string.writable(), text);
}

TYPED_TEST(Strings, WritableOfAnUnsharedBodyIsTheBody)
{
  auto string = this->s("A001");
  const Ledger ledger;
  EXPECT_EQ(string.writable(), string.c_str());
  EXPECT_EQ(ledger.allocations(), 0);
}

// --- Appending -----------------------------------------------------------------------------------

TYPED_TEST(Strings, AppendPutsTheTextBehind)
{
  auto string = this->s("reel");
  const auto more = this->t("_id");
  EXPECT_EQ(&string.append(more.c_str()), &string);
  string.append(this->s("!"));
  EXPECT_EQ(this->plain(string), "reel_id!");
}

TYPED_TEST(Strings, AppendOfNothingChangesNothing)
{
  auto string = this->s("A001");
  const TypeParam* const null = nullptr;
  const TypeParam nothing[1] = {};
  const Ledger ledger;
  string.append(null).append(nothing).append(LightweightString<TypeParam>());
  EXPECT_EQ(this->plain(string), "A001");
  EXPECT_EQ(ledger.allocations(), 0);
  LightweightString<TypeParam> none;
  none.append(null).append(nothing).append(none);
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(none.writable(), nullptr);
}

TYPED_TEST(Strings, AppendToTheEmptyStringSharesTheOther)
{
  const auto other = this->s("A001");
  LightweightString<TypeParam> string;
  string.append(other);
  EXPECT_EQ(string.c_str(), other.c_str());
  LightweightString<TypeParam> fromText;
  fromText.append(other.c_str());
  EXPECT_EQ(this->plain(fromText), "A001");
}

TYPED_TEST(Strings, AppendToASharedBodyLeavesTheOtherHolderAlone)
{
  auto string = this->s("A001");
  string.append(this->s("-"));
  string.append(this->s("x")); // room is left behind this text
  const auto other = string;
  const auto more = this->t("y");
  string.append(more.c_str());
  EXPECT_EQ(this->plain(string), "A001-xy");
  EXPECT_EQ(this->plain(other), "A001-x");
}

TYPED_TEST(Strings, StringAppendedToItselfIsDoubled)
{
  auto string = this->s("A0");
  for (int i = 0; i < 4; ++i)
    string.append(string);
  EXPECT_EQ(this->plain(string), "A0A0A0A0A0A0A0A0A0A0A0A0A0A0A0A0");
  auto fromText = this->s("A0");
  for (int i = 0; i < 3; ++i)
    fromText.append(fromText.c_str());
  EXPECT_EQ(this->plain(fromText), "A0A0A0A0A0A0A0A0");
  fromText.append(fromText.c_str() + 13);
  EXPECT_EQ(this->plain(fromText), "A0A0A0A0A0A0A0A00A0");
}

TYPED_TEST(Strings, AppendedNulsInsideStay)
{
  const auto text = this->t(std::string("b\0c", 3));
  auto string = this->s("a");
  string.append(LightweightString<TypeParam>(text.data(), 3));
  string.append(string);
  EXPECT_EQ(this->plain(string), std::string("ab\0cab\0c", 8));
}

TYPED_TEST(Strings, AThousandAppendsAllocateAFewTimes)
{
  const auto x = this->t("x");
  const Ledger ledger;
  LightweightString<TypeParam> string;
  for (int i = 0; i < 1000; ++i)
    string.append(x.c_str());
  EXPECT_LE(ledger.allocations(), 11);
  EXPECT_EQ(this->plain(string), std::string(1000, 'x'));
}

// --- Concatenation -------------------------------------------------------------------------------

TYPED_TEST(Strings, SumLeavesBothSidesAlone)
{
  const auto left = this->s("ab"), right = this->s("cd");
  const Ledger ledger;
  const auto sum = left + right;
  EXPECT_EQ(ledger.allocations(), 1);
  EXPECT_EQ(this->plain(sum), "abcd");
  EXPECT_EQ(this->plain(left), "ab");
  EXPECT_EQ(this->plain(right), "cd");
}

TYPED_TEST(Strings, SumWithAnEmptySideSharesTheOther)
{
  const auto text = this->s("ab");
  const LightweightString<TypeParam> none;
  EXPECT_EQ((text + none).c_str(), text.c_str());
  EXPECT_EQ((none + text).c_str(), text.c_str());
  EXPECT_TRUE((none + none).empty());
}

TEST(NarrowStrings, SumWithAPlainText)
{
  const Narrow text("cd");
  const char* const null = nullptr;
  EXPECT_STREQ(("ab" + text).c_str(), "abcd");
  EXPECT_STREQ((text + "ef").c_str(), "cdef");
  EXPECT_STREQ((null + text).c_str(), "cd");
  EXPECT_STREQ((text + null).c_str(), "cd");
  EXPECT_STREQ(text.c_str(), "cd");
}

TEST(WideStrings, SumWithAPlainText)
{
  const LightweightString<wchar_t> text(L"dir/");
  EXPECT_STREQ((text + L"reeltype.dat").c_str(), L"dir/reeltype.dat");
  EXPECT_STREQ(text.c_str(), L"dir/");
}

TEST(NarrowStrings, NumberIsAppendedInDecimal)
{
  const std::pair<int, const char*> table[] = {
      {0, "n0"}, {7, "n7"}, {-42, "n-42"}, {INT_MAX, "n2147483647"}, {'x', "n120"}, {INT_MIN, "n-2147483648"}};
  for (const auto& [number, expected] : table) {
    Narrow text("n");
    EXPECT_EQ(&(text += number), &text);
    EXPECT_STREQ(text.c_str(), expected);
  }
  Narrow none;
  none += 12;
  EXPECT_STREQ(none.c_str(), "12");
}

// --- No memory -----------------------------------------------------------------------------------

TYPED_TEST(Strings, WithoutMemoryEveryChangeFailsAndTheTextStays)
{
  const auto longer = this->t("a text that is a good deal longer");
  auto string = this->s("A001");
  EXPECT_TRUE(failsWithoutMemory([&] { string = longer.c_str(); }));
  EXPECT_TRUE(failsWithoutMemory([&] { string.append(longer.c_str()); }));
  EXPECT_TRUE(failsWithoutMemory([&] { string.append(string); }));
  EXPECT_TRUE(failsWithoutMemory([&] { (void)(string + string); }));
  EXPECT_EQ(this->plain(string), "A001");
  const auto other = string;
  EXPECT_TRUE(failsWithoutMemory([&] { string.writable(); }));
  EXPECT_TRUE(failsWithoutMemory([&] { string = string.c_str() + 1; }));
  EXPECT_EQ(string.c_str(), other.c_str());
  EXPECT_EQ(this->plain(string), "A001");
  EXPECT_TRUE(failsWithoutMemory([&] { (void)LightweightString<TypeParam>(longer.c_str()); }));
}

TYPED_TEST(Strings, WithoutMemoryNothingLeaks)
{
  const auto a = this->t("some text"), b = this->t(" and some more text that needs room");
  EXPECT_EQ(failEachAllocation([&] {
              LightweightString<TypeParam> string(a.c_str());
              string.append(b.c_str());
              const auto other = string;
              string.append(other);
              string.writable();
            }),
            3);
}

// --- Threads -------------------------------------------------------------------------------------

TEST(StringThreads, CopiesOnManyThreadsFreeTheBodyOnce)
{
  const Ledger ledger;
  {
    const Narrow text("A001");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([copy = text] {
        for (int i = 0; i < 10000; ++i) {
          Narrow other = copy;
          const Narrow another = other;
          other = Narrow();
        }
      });
    for (std::thread& thread : threads)
      thread.join();
    EXPECT_STREQ(text.c_str(), "A001");
  }
  EXPECT_EQ(ledger.open(), 0);
  EXPECT_EQ(ledger.countsUp() + 1, ledger.countsDown());
}

TEST(StringThreads, TextIsReusedOnlyAfterTheOtherThreadHasReadIt)
{
  for (int round = 0; round < 200; ++round) {
    Narrow text("before");
    std::atomic<bool> intact = false;
    std::thread reader([copy = std::make_unique<Narrow>(text), &intact]() mutable {
      intact = std::string(copy->c_str()) == "before";
      copy.reset();
    });
    text.writable()[0] = 'B'; // in place or in a body of its own, as the reader comes first or last
    text = "after";
    reader.join();
    EXPECT_TRUE(intact);
    EXPECT_STREQ(text.c_str(), "after");
  }
}
