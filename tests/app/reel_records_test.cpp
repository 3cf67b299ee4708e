// SPDX-License-Identifier: Apache-2.0
#include "app/reel_records.h"

#include <clocale>

#include <gtest/gtest.h>

using namespace reeldb::app;

namespace {

using Names = std::vector<std::string>;

TEST(SimilarNames, LettersAndDigitsDecide)
{
  const Names all = {"A001", "A-001", "a 0_01.", "A0011", "B001", "001A"};
  EXPECT_EQ(similarNames("a001", all), (Names{"A001", "A-001", "a 0_01."}));
  EXPECT_EQ(similarNames("A 002", all), Names{});
}

TEST(SimilarNames, CaseOfLettersBeyondAsciiDoesNotCount)
{
  EXPECT_EQ(similarNames("m\xc3\xbcller", {"M\xc3\x9cLLER", "MULLER"}), Names{"M\xc3\x9cLLER"});
  EXPECT_EQ(similarNames("\xce\xa9", {"\xcf\x89"}), Names{"\xcf\x89"});
}

TEST(SimilarNames, NameWithoutLettersAndDigitsIsLikeNoOther)
{
  EXPECT_EQ(similarNames("--", {"-", "", " "}), Names{});
  EXPECT_EQ(similarNames("", {""}), Names{});
}

TEST(SimilarNames, BytesThatAreNotUtf8DoNotCount)
{
  EXPECT_EQ(similarNames("a\xff"
                         "1",
                         {"a1", "A\x1b"
                                "1\xc3"}),
            (Names{"a1", "A\x1b"
                         "1\xc3"}));
}

TEST(SimilarNames, LeavesTheLocaleAsItWas)
{
  const std::string before = setlocale(LC_ALL, nullptr);
  similarNames("\xc3\x9c", {"x"});
  EXPECT_EQ(setlocale(LC_ALL, nullptr), before);
}

} // namespace
