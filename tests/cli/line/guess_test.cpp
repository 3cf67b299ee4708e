// SPDX-License-Identifier: Apache-2.0
#include "line/guess.h"

#include <gtest/gtest.h>

using reeldb::cli::guess;

namespace {

const std::vector<std::string> words = {"list", "label-map", "shots", "show", "set", "type"};

TEST(Guess, OneEditIsForgiven)
{
  EXPECT_EQ(guess("lst", words), "list");
  EXPECT_EQ(guess("lists", words), "list");
  EXPECT_EQ(guess("lisp", words), "list");
  EXPECT_EQ(guess("lsit", words), "list");
}

TEST(Guess, LetterCaseDoesNotCount)
{
  EXPECT_EQ(guess("LIST", words), "list");
}

TEST(Guess, LongWordsMayHaveMoreEdits)
{
  EXPECT_EQ(guess("labelmpa", words), "label-map");
  EXPECT_EQ(guess("label-map-for", words), "label-map");
}

TEST(Guess, ShortWordsMustBeNear)
{
  EXPECT_EQ(guess("xx", words), "");
  EXPECT_EQ(guess("lt", words), "");
}

TEST(Guess, NearestWordWinsAndTheFirstOfTwo)
{
  EXPECT_EQ(guess("show", words), "show");
  EXPECT_EQ(guess("shos", words), "shots");
}

TEST(Guess, NothingTypedOrNothingLikeItIsNotGuessed)
{
  EXPECT_EQ(guess("", words), "");
  EXPECT_EQ(guess("frobnicate", words), "");
  EXPECT_EQ(guess(std::string(1000, 'x'), words), "");
}

} // namespace
