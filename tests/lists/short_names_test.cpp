// SPDX-License-Identifier: Apache-2.0
#include "lists/short_names.h"

#include <set>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "lists/text.h"
#include "support.h"

using reeldb::base::fold;
using namespace reeldb::lists;
using reeldb::lists::test::Strings;

namespace {

Strings names(const Strings& reels, std::size_t field)
{
  return shortReelNames(reels, field).value_or(Strings{"too many"});
}

TEST(ShortNames, FieldFormIsWhatTheFieldLeaves)
{
  EXPECT_EQ(fieldForm("a-1_long name", 6), "A1LONG");
  EXPECT_EQ(fieldForm("a-1_long name", 8), "A1LONGNA");
  EXPECT_EQ(fieldForm("a-1_long n\xC3\xA4me", 32), "a-1_long_n_me");
  EXPECT_EQ(fieldForm(std::string(130, 'x'), 129), std::string(129, 'x'));
  EXPECT_EQ(fieldForm("--", 8), "");
}

TEST(ShortNames, NameThatFitsStays)
{
  EXPECT_EQ(names({"A001", "12345678", "B"}, 8), (Strings{"A001", "12345678", "B"}));
  EXPECT_EQ(names({"a_b.c-d&E"}, 32), Strings{"a_b.c-d&E"});
}

TEST(ShortNames, NarrowFieldTakesCapitalsAndDigitsAndLeavesTheRestOut)
{
  EXPECT_EQ(names({"a001"}, 6), Strings{"A001"});
  EXPECT_EQ(names({"PIER CAM 2"}, 8), Strings{"PIERCAM2"});
  EXPECT_EQ(names({"\xc3\x86r\xc3\xb8-F\xc3\x86RGE 7"}, 8), Strings{"RFRGE7"});
}

TEST(ShortNames, WideFieldReplacesEachCharacterItDoesNotKnow)
{
  EXPECT_EQ(names({"\xc3\x86r\xc3\xb8-F 7*"}, 32), Strings{"_r_-F_7_"});
}

TEST(ShortNames, LongNameIsCutWhenNoOtherIsCutToTheSame)
{
  EXPECT_EQ(names({"A021C012_210609_H1KV", "A021C013_210609_H1KV"}, 8), (Strings{"A021C012", "A021C013"}));
}

TEST(ShortNames, NamesThatWouldBeCutToTheSameAreNumbered)
{
  EXPECT_EQ(names({"A021C012_1", "a021c012_2", "X"}, 8), (Strings{"A021C011", "A021C013", "X"}));
  EXPECT_EQ(names({std::string(32, 'x') + "1", std::string(32, 'X') + "2"}, 32),
            (Strings{std::string(30, 'x') + "_1", std::string(30, 'X') + "_2"}));
}

TEST(ShortNames, ReelWithTheCutNameKeepsIt)
{
  EXPECT_EQ(names({"A021C012_210609", "A021C012"}, 8), (Strings{"A021C011", "A021C012"}));
}

TEST(ShortNames, NumberNeverMakesWhatAnotherReelWouldBeCutTo)
{
  EXPECT_EQ(names({"A021C01Z_1", "A021C01Z_2", "A021C011_2", "A021C012_2"}, 8),
            (Strings{"A021C013", "A021C014", "A021C011", "A021C012"}));
}

TEST(ShortNames, NameThatStandsForNoReelIsNotGiven)
{
  EXPECT_EQ(names({"b-l", "A X", "BARS", "gen", "Black"}, 8), (Strings{"BL1", "AX1", "BARS1", "GEN1", "BLACK1"}));
}

TEST(ShortNames, NameOfNothingThatCanBeWrittenIsMadeUp)
{
  EXPECT_EQ(names({"\xe6\x97\xa5", "\xe6\x9c\xac"}, 6), (Strings{"REEL1", "REEL2"}));
}

TEST(ShortNames, DigitsCountAroundTheNumbersThatAreThere)
{
  EXPECT_EQ(names({"A", "002", "B", "2", "999", "000"}, 3), (Strings{"001", "002", "003", "004", "005", "006"}));
}

TEST(ShortNames, DigitsEndAt998)
{
  Strings reels;
  for (int i = 0; i < 998; ++i)
    reels.push_back("T" + std::to_string(i));
  EXPECT_EQ(names(reels, 3).back(), "998");
  reels.push_back("one more");
  EXPECT_EQ(shortReelNames(reels, 3), std::nullopt);
}

TEST(ShortNames, ManyAlikeStayUniqueAndWithinTheField)
{
  Strings reels;
  for (int i = 0; i < 20000; ++i)
    reels.push_back("A_VERY_LONG_NAME_THAT_IS_THE_SAME_FOR_ALL_OF_THEM_" + std::to_string(i));
  for (const std::size_t field : {6u, 8u, 32u}) {
    std::set<std::string> seen;
    for (const std::string& name : names(reels, field)) {
      EXPECT_LE(name.size(), field);
      EXPECT_TRUE(seen.insert(fold(name)).second) << name;
    }
    EXPECT_EQ(seen.size(), reels.size());
  }
}

} // namespace
