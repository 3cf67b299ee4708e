// SPDX-License-Identifier: Apache-2.0
#include "app/names.h"

#include <gtest/gtest.h>

using namespace reeldb::app;

namespace {

using Reasons = std::vector<Reason>;

std::vector<std::string> reelsOf(const std::vector<Candidate>& candidates)
{
  std::vector<std::string> reels;
  for (const Candidate& candidate : candidates)
    reels.push_back(candidate.reel);
  return reels;
}

TEST(ReelNames, IdentifierIsExactAndInOtherCaseDiffersInCase)
{
  ReelNames names;
  names.addReel("A001", {});
  ASSERT_EQ(names.find("A001").size(), 1u);
  EXPECT_EQ(names.find(" A001 ").front().reasons, Reasons{Reason::Exact});
  EXPECT_EQ(names.find("a001").front().reasons, Reasons{Reason::Case});
  EXPECT_EQ(names.find("a001").front().reel, "A001");
  EXPECT_TRUE(names.find("A00").empty());
  EXPECT_TRUE(names.find("").empty());
}

TEST(ReelNames, TabMeansABlankUnlessAReelHasIt)
{
  ReelNames names;
  names.addReel("A B", {});
  EXPECT_EQ(names.find("A\tB").front().reasons, Reasons{Reason::Exact});
  names.addReel("A\tB", {});
  EXPECT_EQ(names.find("A\tB").front().reel, "A\tB");
}

TEST(ReelNames, OfTwoReelsThatDifferInCaseTheExactOneComesFirst)
{
  ReelNames names;
  names.addReel("a001", {});
  names.addReel("A001", {});
  const auto found = names.find("A001");
  EXPECT_EQ(reelsOf(found), (std::vector<std::string>{"A001", "a001"}));
  EXPECT_EQ(theOne(found)->reel, "A001");
}

TEST(ReelNames, StartOfSixEightOr32CharactersIsACutForm)
{
  ReelNames names;
  const std::string id = "A021C012_210609_H1KV_" + std::string(20, 'x');
  names.addReel(id, {});
  for (const std::size_t length : {6u, 8u, 32u}) {
    const auto found = names.find(id.substr(0, length));
    ASSERT_EQ(found.size(), 1u) << length;
    EXPECT_EQ(found.front().reasons, Reasons{Reason::Cut});
    EXPECT_TRUE(names.find(id.substr(0, length + 1)).empty());
    EXPECT_TRUE(names.find(id.substr(0, length - 1)).empty());
  }
  EXPECT_EQ(names.find("a021c012").front().reel, id);
}

TEST(ReelNames, WholeNameIsNotACutForm)
{
  ReelNames names;
  names.addReel("A021C012", {});
  EXPECT_EQ(names.find("A021C012").front().reasons, Reasons{Reason::Exact});
}

TEST(ReelNames, CutCountsCharactersAndDropsTheBlankAtItsEnd)
{
  ReelNames names;
  names.addReel("\xc3\x86r\xc3\xb8-F\xc3\x86RGE 7", {}); // 11 characters
  names.addReel("HARBOUR WIDE", {});                     // the eighth is the blank
  EXPECT_EQ(names.find("\xc3\x86r\xc3\xb8-F\xc3\x86").front().reasons, Reasons{Reason::Cut});
  EXPECT_EQ(names.find("HARBOUR").front().reel, "HARBOUR WIDE");
}

TEST(ReelNames, CutFormOfSeveralReelsListsAllAndMeansNoSingleOne)
{
  ReelNames names;
  names.addReel("A021C012_1", {});
  names.addReel("A021C012_2", {});
  const auto found = names.find("A021C012");
  EXPECT_EQ(reelsOf(found), (std::vector<std::string>{"A021C012_1", "A021C012_2"}));
  EXPECT_EQ(theOne(found), nullptr);
}

TEST(ReelNames, StrongerReasonsComeFirstWhateverTheOrderOfTheReels)
{
  ReelNames names;
  names.addReel("R1", {"A021C012"});
  names.addReel("R2", {});
  names.addReel("A021C012_2", {});
  names.addReel("a021c012", {});
  names.addAlias("A021c012", "r2");
  const auto found = names.find("A021C012");
  EXPECT_EQ(reelsOf(found), (std::vector<std::string>{"a021c012", "A021C012_2", "R2", "R1"}));
  EXPECT_EQ(found[2].reasons, Reasons{Reason::Alias});
  EXPECT_EQ(found[3].reasons, Reasons{Reason::OldName});
  EXPECT_EQ(theOne(found)->reel, "a021c012");
}

TEST(ReelNames, ReelIsListedOnceWithAllItsReasons)
{
  ReelNames names;
  names.addReel("A021C012_2", {"a021c012"});
  names.addReel("B", {});
  for (const char* reel : {"A021C012_2", "B", "A021C012_2"})
    names.addAlias("A021C012", reel);
  const auto found = names.find("A021C012");
  EXPECT_EQ(reelsOf(found), (std::vector<std::string>{"A021C012_2", "B"}));
  EXPECT_EQ(found.front().reasons, (Reasons{Reason::Cut, Reason::Alias, Reason::OldName}));
}

TEST(ReelNames, WhatAFieldLeavesOfANameIsACutForm)
{
  ReelNames names;
  names.addReel("Boone_Smith/2", {});
  EXPECT_EQ(names.find("BOONESMI").front().reasons, Reasons{Reason::Cut});
  EXPECT_EQ(names.find("BOONES").front().reasons, Reasons{Reason::Cut});
  EXPECT_EQ(names.find("boone_smith_2").front().reasons, Reasons{Reason::Cut});
  EXPECT_TRUE(names.find("BOONESM").empty()) << "no field has seven characters";
}

TEST(ReelNames, CutFormOfAnOldNameIsAnOldName)
{
  ReelNames names;
  names.addReel("B1", {"TAPEONE_LONG"});
  names.addReel("TAPEONE_LENGTHY", {});
  const auto found = names.find("TAPEON");
  EXPECT_EQ(reelsOf(found), (std::vector<std::string>{"TAPEONE_LENGTHY", "B1"}));
  EXPECT_EQ(found.back().reasons, Reasons{Reason::OldName});
  EXPECT_EQ(reelsOf(names.find("TAPEONE_LONG")), std::vector<std::string>{"B1"});
}

TEST(ReelNames, OldNameThatIsTheCurrentNameIsNotAReason)
{
  ReelNames names;
  names.addReel("A001", {"a001", "B001"});
  EXPECT_EQ(names.find("A001").front().reasons, Reasons{Reason::Exact});
  EXPECT_EQ(names.find("b001").front().reasons, Reasons{Reason::OldName});
}

TEST(ReelNames, AliasOfAReelWithoutRecordSaysSo)
{
  ReelNames names;
  names.addReel("A001", {});
  names.addAlias("X", "GONE");
  names.addAlias("X", "gone");
  const auto found = names.find("x");
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found.front().reel, "GONE");
  EXPECT_FALSE(found.front().isThere);
  EXPECT_TRUE(names.find("A001").front().isThere);
}

} // namespace
