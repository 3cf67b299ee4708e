// SPDX-License-Identifier: Apache-2.0
#include "host/cookie.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace {

Zr::UUID uuid(const std::string& bytes)
{
  Zr::UUID id;
  std::memcpy(id.bytes, bytes.data(), std::min(bytes.size(), sizeof id.bytes));
  return id;
}

Zr::UUID counting()
{
  Zr::UUID id;
  for (unsigned char i = 0; i < 16; ++i)
    id.bytes[i] = i;
  return id;
}

std::string text(const Cookie& cookie)
{
  return cookie.asString(false).c_str();
}

} // namespace

// --- UUID ----------------------------------------------------------------------------------------

TEST(Uuid, NewIsZero)
{
  for (const unsigned char byte : Zr::UUID().bytes)
    EXPECT_EQ(byte, 0);
}

TEST(Uuid, CompareGivesTheSignOfTheByteOrder)
{
  EXPECT_EQ(uuid("a").compare(uuid("a")), 0);
  EXPECT_EQ(uuid("a").compare(uuid("z")), -1);
  EXPECT_EQ(uuid("z").compare(uuid("a")), 1);
  EXPECT_EQ(uuid("\x80").compare(uuid("\x7F")), 1);
  EXPECT_EQ(uuid("0123456789abcdef").compare(uuid("0123456789abcdeg")), -1);
}

TEST(Uuid, CopyIsEqual)
{
  const Zr::UUID id = counting();
  Zr::UUID copy = id, assigned;
  assigned = id;
  assigned = *&assigned;
  EXPECT_EQ(copy.compare(id), 0);
  EXPECT_EQ(assigned.compare(id), 0);
}

// --- Cookie --------------------------------------------------------------------------------------

TEST(Cookie, NewIsInvalid)
{
  EXPECT_FALSE(Cookie().valid());
  EXPECT_EQ(Cookie().kind(), 'I');
}

TEST(Cookie, InvalidateGivesTheStateOfANewOne)
{
  Cookie cookie(counting(), 7, 'E');
  cookie.invalidate();
  EXPECT_FALSE(cookie.valid());
  EXPECT_EQ(cookie.compare(Cookie()), 0);
  EXPECT_EQ(text(cookie), text(Cookie()));
}

TEST(Cookie, AllInvalidOnesAreEqual)
{
  EXPECT_EQ(Cookie(counting(), 7, 'I').compare(Cookie()), 0);
  EXPECT_EQ(Cookie("Iabc", false).compare(Cookie("I{000102030405060708090a0b0c0d0e0f.0001}", false)), 0);
  EXPECT_EQ(text(Cookie("Iabc", false)), text(Cookie()));
}

TEST(Cookie, CompareLooksAtBytesTagAndKind)
{
  const Cookie cookie(counting(), 7, 'E');
  EXPECT_EQ(cookie.compare(Cookie(counting(), 7, 'E')), 0);
  const Cookie others[] = {Cookie(uuid("x"), 7, 'E'), Cookie(counting(), 8, 'E'), Cookie(counting(), 7, 'P'), Cookie()};
  for (const Cookie& other : others) {
    EXPECT_NE(cookie.compare(other), 0) << text(other);
    EXPECT_EQ(cookie.compare(other) < 0, other.compare(cookie) > 0) << text(other);
  }
}

TEST(CookieText, ProjectNameIsItsBytes)
{
  const Cookie cookie("P0001000", false);
  EXPECT_TRUE(cookie.valid());
  EXPECT_EQ(cookie.kind(), 'P');
  EXPECT_EQ(cookie.compare(Cookie(uuid("0001000"), 0, 'P')), 0);
  EXPECT_EQ(text(cookie), "P0001000");
}

TEST(CookieText, EachFormBothWays)
{
  const std::pair<Cookie, const char*> table[] = {
      {Cookie(uuid("a"), 0, 'E'), "Ea"},
      {Cookie(uuid("0AZaz9"), 0, 'P'), "P0AZaz9"},
      {Cookie(uuid("0123456789abcdef"), 0, 'E'), "E0123456789abcdef"},
      {Cookie(uuid("I"), 0, 'E'), "EI"},
      {Cookie(counting(), 0x1AF, 'E'), "E{000102030405060708090a0b0c0d0e0f.01af}"},
      {Cookie(counting(), 0, 'E'), "E{000102030405060708090a0b0c0d0e0f.0000}"},
      {Cookie(uuid("a"), 1, 'E'), "E{61000000000000000000000000000000.0001}"}, // a tag: no name
      {Cookie(uuid("a"), 0xFFFF, 'E'), "E{61000000000000000000000000000000.ffff}"},
      {Cookie(uuid("a b"), 0, 'E'), "E{61206200000000000000000000000000.0000}"},
      {Cookie(uuid("a_"), 0, 'E'), "E{615f0000000000000000000000000000.0000}"},
      {Cookie(uuid("\xE9"), 0, 'E'), "E{e9000000000000000000000000000000.0000}"},
      {Cookie(uuid(std::string("a\0b", 3)), 0, 'E'), "E{61006200000000000000000000000000.0000}"},
      {Cookie(uuid("0123456789abcde\xFF"), 0, 'E'), "E{303132333435363738396162636465ff.0000}"},
      {Cookie(Zr::UUID(), 0, 'E'), "E{00000000000000000000000000000000.0000}"},
      {Cookie(uuid("a"), 0, '{'), "{a"},
      {Cookie(), "I{00000000000000000000000000000000.0000}"},
  };
  for (const auto& [cookie, expected] : table) {
    EXPECT_EQ(text(cookie), expected);
    const Cookie back(expected, false);
    EXPECT_EQ(back.compare(cookie), 0) << expected;
    EXPECT_EQ(back.kind(), cookie.kind()) << expected;
  }
}

TEST(CookieText, WhatIsNotATextOfACookieGivesAnInvalidOne)
{
  const char* const table[] = {
      "",
      "P",
      "P ",
      "P0001000 ",
      "P0001-000",
      "Pa\xE9",
      "E0123456789abcdefg", // too long for a name
      "{",
      "E{",
      "E{}",
      "E{00}",
      "E{000102030405060708090a0b0c0d0e0f}",       // no tag
      "E{000102030405060708090a0b0c0d0e0f.01a}",   // short
      "E{000102030405060708090a0b0c0d0e0f.01aff}", // long
      "E{000102030405060708090a0b0c0d0e0f.01af} ", // more behind
      "E{000102030405060708090a0b0c0d0e0f:01af}",  // no point
      "E{000102030405060708090a0b0c0d0e0f.01af)",  // no brace
      "E{000102030405060708090a0b0c0d0e0g.01af}",  // no digit
      "E{000102030405060708090a0b0c0d0e-1.01af}",  //
      "E{000102030405060708090a0b0c0d0e0f.+1af}",  //
      "E{000102030405060708090A0B0C0D0E0F.01AF}",  // capitals: the same Cookie would have two texts
      "E{61000000000000000000000000000000.0000}",  // has a name: likewise
  };
  for (const char* bad : table)
    EXPECT_EQ(Cookie(bad, false).compare(Cookie()), 0) << bad;
  EXPECT_FALSE(Cookie(nullptr, false).valid());
  EXPECT_FALSE(Cookie(std::string(100000, 'a').c_str(), false).valid());
}

// --- IdStamp -------------------------------------------------------------------------------------

TEST(IdStamp, OnlyZeroIsInvalid)
{
  EXPECT_FALSE(IdStamp().valid());
  EXPECT_FALSE(IdStamp(0).valid());
  const IdStamp stamp(3);
  EXPECT_TRUE(stamp.valid());
  IdStamp copy = stamp, assigned;
  assigned = stamp;
  EXPECT_TRUE(copy.valid());
  EXPECT_TRUE(assigned.valid());
}
