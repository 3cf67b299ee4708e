// SPDX-License-Identifier: Apache-2.0
#include "base/ascii.h"

#include <gtest/gtest.h>

namespace {

using namespace reeldb::base;

// The neighbours of the letters in ASCII, and a letter beyond it.
constexpr const char* lower = "az@[`{09 _\xC3\x89";
constexpr const char* upper = "AZ@[`{09 _\xC3\x89";

TEST(ToLower, LettersAToZOnly)
{
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(toLower(c), byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 32) : c) << byte;
    EXPECT_EQ(toUpper(c), byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 32) : c) << byte;
  }
}

TEST(Fold, LettersAToZInLowerCaseAllOtherBytesAsTheyAre)
{
  EXPECT_EQ(fold(upper), lower);
  EXPECT_EQ(fold(lower), lower);
  EXPECT_EQ(fold(std::string_view("A\0B", 3)), std::string("a\0b", 3));
  EXPECT_EQ(fold(""), "");
}

TEST(UpperCase, LettersAToZInUpperCaseAllOtherBytesAsTheyAre)
{
  EXPECT_EQ(upperCase(lower), upper);
  EXPECT_EQ(upperCase(upper), upper);
  EXPECT_EQ(upperCase(""), "");
}

TEST(SameName, AsciiCaseIsIgnored)
{
  EXPECT_TRUE(sameName("b014C", "B014c"));
  EXPECT_TRUE(sameName("", ""));
}

TEST(SameName, AnyOtherDifferenceCounts)
{
  EXPECT_FALSE(sameName("b014", "b014c"));
  EXPECT_FALSE(sameName("b014c", "b014"));
  EXPECT_FALSE(sameName("\xC3\xBC", "\xC3\x9C"));
  EXPECT_FALSE(sameName("[", "{"));
}

TEST(StartsWithName, AsciiCaseIsIgnored)
{
  EXPECT_TRUE(startsWithName("fcm: x", "FCM"));
  EXPECT_TRUE(startsWithName("FCM", "fcm"));
  EXPECT_TRUE(startsWithName("x", ""));
}

TEST(StartsWithName, WholeStartIsNeeded)
{
  EXPECT_FALSE(startsWithName("FC", "FCM"));
  EXPECT_FALSE(startsWithName("FCX", "FCM"));
}

} // namespace
