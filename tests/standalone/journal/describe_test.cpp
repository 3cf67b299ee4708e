// SPDX-License-Identifier: Apache-2.0
#include "journal/describe.h"

#include <gtest/gtest.h>

namespace {

using reelhost::describe;
using reelhost::describeAll;
using reelhost::quoted;
using reelhost::Word;

TEST(Describe, TextsAreQuotedWithEscapes)
{
  EXPECT_EQ(quoted("R1"), "\"R1\"");
  EXPECT_EQ(quoted("a\"b\\c\n\r\t"), "\"a\\\"b\\\\c\\n\\r\\t\"");
  EXPECT_EQ(quoted("\x01\x1f\x7f\xff\xc2\x9b\xe2\x80\xae"), "\"\\x01\\x1f\\x7f\\xff\\u009b\\u202e\"");
  EXPECT_EQ(quoted("caf\xC3\xA9"), "\"caf\xC3\xA9\"");
}

TEST(Describe, TextsOfEveryKindAreAlike)
{
  EXPECT_EQ(describe("a"), "\"a\"");
  EXPECT_EQ(describe(L"\u00e9"), "\"\xC3\xA9\"");
  EXPECT_EQ(describe(std::string("a")), "\"a\"");
  EXPECT_EQ(describe(LightweightString<char>("a")), "\"a\"");
  EXPECT_EQ(describe(LightweightString<wchar_t>(L"a")), "\"a\"");
  EXPECT_EQ(describe(static_cast<const char*>(nullptr)), "null");
  EXPECT_EQ(describe(static_cast<const wchar_t*>(nullptr)), "null");
  strp_field field;
  EXPECT_EQ(describe(field), "null");
  field.set("a");
  EXPECT_EQ(describe(field), "\"a\"");
}

TEST(Describe, NumbersAndTruths)
{
  EXPECT_EQ(describe(-5), "-5");
  EXPECT_EQ(describe(4294967295u), "4294967295");
  EXPECT_EQ(describe(EditChanType(2)), "2");
  EXPECT_EQ(describe(-1.0), "-1.0");
  EXPECT_EQ(describe(0.5), "0.5");
  EXPECT_EQ(describe(true), "true");
  EXPECT_EQ(describe(false), "false");
}

TEST(Describe, CookiesAndWhatHoldsThem)
{
  const Cookie cookie("P0001000", false);
  EXPECT_EQ(describe(cookie), "P0001000");
  CookieVec cookies;
  EXPECT_EQ(describe(cookies), "0 logs");
  cookies.add(cookie);
  EXPECT_EQ(describe(cookies), "1 log");
  StringList list;
  EXPECT_EQ(describe(list), "[]");
  list.add("a");
  list.add("b");
  EXPECT_EQ(describe(list), "[\"a\", \"b\"]");
}

TEST(Describe, ObjectsAreThereOrNot)
{
  EXPECT_EQ(describe(static_cast<const Edit*>(nullptr)), "not opened");
  EXPECT_EQ(describe(static_cast<const projdb*>(nullptr)), "null");
  EXPECT_EQ(describe(static_cast<const dbrecord*>(nullptr)), "null");
  EXPECT_EQ(describe(Zr::Ptr<Cel>()), "null");
  EXPECT_EQ(describe(Zr::Ptr<Cel>(new Cel)), "object");
  EXPECT_EQ(describe(IdStamp(5)), "IdStamp 5");
}

TEST(Describe, ArgumentsAreDividedByCommas)
{
  EXPECT_EQ(describeAll(1), "1");
  EXPECT_EQ(describeAll("a", Word{"char*"}, nullptr == nullptr), "\"a\", char*, true");
  EXPECT_EQ(reelhost::noArguments(), "");
}

} // namespace
