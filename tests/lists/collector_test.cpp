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

TEST(Collector, ASpecialIsKeptWithoutTheNamesThatNoClipCanHave)
{
  Collector collector(Format::Edl);
  Clip clip = clipOf("BL", 3, {"other"});
  clip.clipName = "a\x01";
  clip.sourceFile = "file";
  clip.event.number = std::string(2048, '1');
  collector.special(clip, "black");
  const List list = collector.finish();
  ASSERT_EQ(list.specialClips.size(), 1u);
  EXPECT_EQ(list.specialClips[0].special, "black");
  EXPECT_EQ(list.specialClips[0].clipName, "");
  EXPECT_EQ(list.specialClips[0].sourceFile, "file");
  EXPECT_EQ(list.specialClips[0].event.number, "");
  EXPECT_TRUE(list.specialClips[0].aliases.empty());
}

TEST(Collector, AnEventWithANumberThatCannotBeKeptIsRejected)
{
  Collector collector(Format::Edl);
  Clip clip = clipOf("R");
  clip.event.number = std::string(2048, '1');
  EXPECT_FALSE(collector.clip(clip, "line"));
  EXPECT_EQ(collector.finish().rejected.at(0).reason,
            "event number '" + std::string(40, '1') + "...' has 2048 bytes (at most 2047)");
}

TEST(Collector, SpecialsOfOneTextAndReasonAreOneEntry)
{
  Collector collector(Format::Edl);
  collector.special(clipOf("BL", 3), "black");
  collector.special(clipOf("AX", 4), "one");
  collector.special(clipOf("AX", 5), "two");
  collector.special(clipOf("bl", 9), "black");
  const List list = collector.finish();
  ASSERT_EQ(list.specials.size(), 3u);
  EXPECT_EQ(list.specials[0].text, "BL");
  EXPECT_EQ(list.specials[0].count, 2);
  EXPECT_EQ(list.specials[0].lines, (std::vector<int>{3, 9}));
  EXPECT_EQ(list.specials[1].reason, "one");
  EXPECT_EQ(list.specials[2].reason, "two");
}

TEST(Collector, NamesHaveAtMost2047Bytes)
{
  Collector collector(Format::Ale);
  Clip name = clipOf("R", 1);
  name.clipName = std::string(2048, 'n');
  Clip file = clipOf("R", 2);
  file.sourceFile = std::string(3000, 'f');
  Clip fits = clipOf("R", 4, {std::string(2047, 'a')});
  fits.clipName = std::string(2047, 'n');
  fits.sourceFile = std::string(2047, 'f');
  EXPECT_FALSE(collector.clip(name, "one"));
  EXPECT_FALSE(collector.clip(file, "two"));
  EXPECT_FALSE(collector.clip(clipOf("R", 3, {"A", std::string(2048, 'a')}), "three"));
  EXPECT_TRUE(collector.clip(fits, "four"));
  const List list = collector.finish();
  ASSERT_EQ(list.rejected.size(), 3u);
  EXPECT_EQ(list.rejected[0].text, "one");
  EXPECT_EQ(list.rejected[0].reason, "clip name '" + std::string(40, 'n') + "...' has 2048 bytes (at most 2047)");
  EXPECT_EQ(list.rejected[1].reason, "source file '" + std::string(40, 'f') + "...' has 3000 bytes (at most 2047)");
  EXPECT_EQ(list.rejected[2].reason,
            "other name of the reel '" + std::string(40, 'a') + "...' has 2048 bytes (at most 2047)");
  EXPECT_EQ(list.clips.at(0).clipName.size(), 2047u);
}

TEST(Collector, NamesHoldNoControlCharacters)
{
  Collector collector(Format::Edl);
  Clip name = clipOf("R", 2);
  name.clipName = std::string("a\0b", 3);
  Clip file = clipOf("R", 3);
  file.sourceFile = "f\x7F";
  EXPECT_FALSE(collector.clip(clipOf("A\x1B[2J*", 1), "the \x1B line"));
  EXPECT_FALSE(collector.clip(name, ""));
  EXPECT_FALSE(collector.clip(file, ""));
  EXPECT_FALSE(collector.clip(clipOf("R", 4, {"\x1B"}), ""));
  const List list = collector.finish();
  EXPECT_TRUE(list.specials.empty());
  ASSERT_EQ(list.rejected.size(), 4u);
  EXPECT_EQ(list.rejected[0].text, "the \\x1b line");
  EXPECT_EQ(list.rejected[0].reason, "reel 'A\\x1b[2J*' holds a control character (\\x1b)");
  EXPECT_EQ(list.rejected[1].reason, "clip name 'a\\x00b' holds a control character (\\x00)");
  EXPECT_EQ(list.rejected[2].reason, "source file 'f\\x7f' holds a control character (\\x7f)");
  EXPECT_EQ(list.rejected[3].reason, "other name of the reel '\\x1b' holds a control character (\\x1b)");
}

TEST(Collector, AReelNamedByItsClipOrFileIsFaultyByThatField)
{
  Collector collector(Format::Edl);
  Clip name = clipOf("a\x01", 1);
  name.clipName = name.reel;
  Clip file = clipOf("b\x01", 2);
  file.sourceFile = file.reel;
  EXPECT_FALSE(collector.clip(name, ""));
  EXPECT_FALSE(collector.clip(file, ""));
  const List list = collector.finish();
  EXPECT_EQ(list.rejected.at(0).reason, "clip name 'a\\x01' holds a control character (\\x01)");
  EXPECT_EQ(list.rejected.at(1).reason, "source file 'b\\x01' holds a control character (\\x01)");
}

TEST(Collector, AnInPointBehindItsOutPointIsKeptWithAWarning)
{
  const auto timed = [](int line, const char* in, const char* out, const char* recordIn, const char* recordOut) {
    Clip clip = clipOf("R", line);
    clip.sourceIn = in;
    clip.sourceOut = out;
    clip.recordIn = recordIn;
    clip.recordOut = recordOut;
    return clip;
  };
  Collector collector(Format::Edl);
  EXPECT_TRUE(collector.clip(timed(9, "23:59:50:00", "00:00:10:00", "10:00:00:00", "10:00:20:00"), "past"));
  EXPECT_TRUE(collector.clip(timed(3, "01:00:00:00", "01:00:01:00", "10:00:01:00", "10:00:00:00"), " back\t"));
  EXPECT_TRUE(collector.clip(timed(4, "01:00:00:00", "01:00:00:00", "10:00:00:00", "10:00:00:00"), "same"));
  EXPECT_TRUE(collector.clip(timed(5, "01:00:00:00", "", "", "10:00:00:00"), "half"));
  collector.special(clipOf("BL", 6), "black");
  const List list = collector.finish();
  EXPECT_EQ(list.clips.size(), 4u);
  EXPECT_TRUE(list.rejected.empty());
  ASSERT_EQ(list.warnings.size(), 2u) << "in the order of the lines";
  EXPECT_EQ(list.warnings[0].line, 3);
  EXPECT_EQ(list.warnings[0].text, "back");
  EXPECT_EQ(list.warnings[0].reason,
            "record in 10:00:01:00 is after record out 10:00:00:00 (backwards, or past midnight)");
  EXPECT_EQ(list.warnings[1].line, 9);
  EXPECT_EQ(list.warnings[1].reason,
            "source in 23:59:50:00 is after source out 00:00:10:00 (backwards, or past midnight)");
}

TEST(Collector, SpecialTextsAreEscapedAndCut)
{
  Collector collector(Format::Ale);
  collector.special(clipOf("Lost\x1B", 1), "no tape and no source file");
  collector.special(clipOf(std::string(1001, 'L'), 2), "no tape and no source file");
  collector.special(clipOf(std::string(1002, 'L'), 3), "no tape and no source file");
  const List list = collector.finish();
  ASSERT_EQ(list.specials.size(), 3u) << "the whole texts differ";
  EXPECT_EQ(list.specials[0].text, "Lost\\x1b");
  EXPECT_EQ(list.specials[1].text, std::string(1000, 'L') + "...");
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
  EXPECT_EQ(list.rejected[1].reason, "reel '" + std::string(40, 'R') + "...' has 2048 bytes (at most 2047)");
}

TEST(Collector, RejectedLinesComeInOrderCleanAndCutBetweenCharacters)
{
  Collector collector(Format::Edl);
  collector.reject(9, "  a\tb ", "late");
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
