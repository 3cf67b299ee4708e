// SPDX-License-Identifier: Apache-2.0
#include "base/pattern.h"

#include <string>

#include <gtest/gtest.h>

using reeldb::base::isPattern;
using reeldb::base::matches;

TEST(Pattern, IsATextWithAStar)
{
  EXPECT_TRUE(isPattern("A*"));
  EXPECT_TRUE(isPattern("*"));
  EXPECT_FALSE(isPattern("A?[1]"));
  EXPECT_FALSE(isPattern(""));
}

TEST(Matches, TextWithoutAStarMatchesItselfInAnyCase)
{
  EXPECT_TRUE(matches("A001", "a001"));
  EXPECT_FALSE(matches("A001", "A00"));
  EXPECT_FALSE(matches("A00", "A001"));
  EXPECT_TRUE(matches("", ""));
  EXPECT_FALSE(matches("", "a"));
  EXPECT_TRUE(matches("a?[b]\\", "A?[B]\\"));
  EXPECT_FALSE(matches("ab", "a?"));
}

TEST(Matches, StarStandsForAnyBytes)
{
  EXPECT_TRUE(matches("", "*"));
  EXPECT_TRUE(matches("A001", "A*"));
  EXPECT_TRUE(matches("A", "A*"));
  EXPECT_TRUE(matches("A001.MOV", "*.mov"));
  EXPECT_TRUE(matches("A001C002", "*c*"));
  EXPECT_FALSE(matches("A001", "*C*"));
  EXPECT_TRUE(matches("abcabd", "*ab*d"));
  EXPECT_FALSE(matches("abcabc", "*ab*d"));
  EXPECT_TRUE(matches("aXbYb", "a*b"));
  EXPECT_TRUE(matches("a", "***a***"));
  EXPECT_FALSE(matches("b", "a*"));
}

TEST(Matches, ManyStarsEndSoon)
{
  std::string pattern;
  for (int i = 0; i < 50; ++i)
    pattern += "a*";
  EXPECT_FALSE(matches(std::string(5000, 'a'), pattern + "b"));
}
