// SPDX-License-Identifier: Apache-2.0
#include "lists/collector.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

Clip clipOf(std::string reel, int line = 1, Strings aliases = {})
{
  Clip clip;
  clip.reel = std::move(reel);
  clip.line = line;
  clip.aliases = std::move(aliases);
  return clip;
}

TEST(Collector, ClipsCarryTheFirstSpellingAndEachOtherOneIsReportedOnce)
{
  Collector collector(Format::Ale);
  for (const char* reel : {"Tape", "TAPE", "tape", "TAPE", "Tape"})
    EXPECT_TRUE(collector.clip(clipOf(reel), ""));
  EXPECT_EQ(collector.spelling("tAPE"), "Tape");
  EXPECT_EQ(collector.spelling("other"), "other");
  const List list = collector.finish();
  EXPECT_EQ(list.format, Format::Ale);
  EXPECT_EQ(reels(list), Strings(5, "Tape"));
  ASSERT_EQ(list.spellings.size(), 2u);
  EXPECT_EQ(list.spellings[0].reel, "Tape");
  EXPECT_EQ(list.spellings[0].other, "TAPE");
  EXPECT_EQ(list.spellings[1].other, "tape");
}

TEST(Collector, AliasesAreOtherNamesEachOnce)
{
  Collector collector(Format::Edl);
  collector.clip(clipOf("R1", 1, {"r1", "", "A", "AX", "BL", "a", "B"}), "");
  EXPECT_EQ(collector.finish().clips.at(0).aliases, (Strings{"A", "B"}));
}

TEST(Collector, SpecialIdentifiersMakeNoClip)
{
  Collector collector(Format::Edl);
  EXPECT_FALSE(collector.clip(clipOf("X*", 7), "line"));
  const List list = collector.finish();
  EXPECT_TRUE(list.clips.empty());
  ASSERT_EQ(list.specials.size(), 1u);
  EXPECT_EQ(list.specials[0].text, "X*");
  EXPECT_EQ(list.specials[0].lines, std::vector<int>{7});
}

TEST(Collector, SpecialsOfOneTextAndReasonAreOneEntry)
{
  Collector collector(Format::Edl);
  collector.special("BL", "black", 3);
  collector.special("AX", "one", 4);
  collector.special("AX", "two", 5);
  collector.special("bl", "black", 9);
  const List list = collector.finish();
  ASSERT_EQ(list.specials.size(), 3u);
  EXPECT_EQ(list.specials[0].text, "BL");
  EXPECT_EQ(list.specials[0].count, 2);
  EXPECT_EQ(list.specials[0].lines, (std::vector<int>{3, 9}));
  EXPECT_EQ(list.specials[1].reason, "one");
  EXPECT_EQ(list.specials[2].reason, "two");
}

TEST(Collector, IdentifiersHaveOneTo2047Bytes)
{
  Collector collector(Format::Edl);
  EXPECT_FALSE(collector.clip(clipOf("", 1), "empty"));
  EXPECT_TRUE(collector.clip(clipOf(std::string(2047, 'R'), 2), ""));
  EXPECT_FALSE(collector.clip(clipOf(std::string(2048, 'R'), 3), "long"));
  const List list = collector.finish();
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].reason, "no reel");
  EXPECT_EQ(list.rejected[0].text, "empty");
  EXPECT_EQ(list.rejected[1].reason, "reel identifier of 2048 bytes (at most 2047)");
}

TEST(Collector, RejectedLinesComeInOrderCleanAndCutBetweenCharacters)
{
  Collector collector(Format::Edl);
  collector.reject(9, "  a\tb \x1A", "late");
  collector.reject(2,
                   std::string(999, 'x') + "\xC3\xBC"
                                           "yy",
                   "early");
  collector.reject(3, std::string(1000, 'x'), "fits");
  const List list = collector.finish();
  ASSERT_EQ(list.rejected.size(), 3u);
  EXPECT_EQ(list.rejected[0].line, 2);
  EXPECT_EQ(list.rejected[0].text, std::string(999, 'x') + "...");
  EXPECT_EQ(list.rejected[1].text, std::string(1000, 'x'));
  EXPECT_EQ(list.rejected[2].text, "a b");
  EXPECT_EQ(list.rejected[2].reason, "late");
}

} // namespace
