// SPDX-License-Identifier: Apache-2.0
#include "base/number.h"

#include <gtest/gtest.h>

using reeldb::base::parseNumber;

namespace {

TEST(ParseNumber, DigitsGiveTheirValueInBase10)
{
  EXPECT_EQ(parseNumber("0"), 0);
  EXPECT_EQ(parseNumber("010"), 10);
  EXPECT_EQ(parseNumber("2147483647"), 2147483647);
}

TEST(ParseNumber, AnythingElseGivesNone)
{
  for (const char* text : {"", " 1", "1 ", "-1", "+1", "1x", "0x1", "2147483648", "\xd9\xa1"})
    EXPECT_FALSE(parseNumber(text)) << text;
}

} // namespace
