// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_line.h"

#include <string>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

/// "reel|channels|transition" of "001 <fields> <timecodes>", or the fault.
std::string read(const std::string& fields)
{
  const std::string line = "001  " + fields + " " + anyTimecodes;
  EventLine event;
  const std::string fault = parseEvent(line, event);
  if (!fault.empty())
    return fault;
  const char* names[] = {"cut", "into", "background", "key"};
  return std::string(event.reel) + "|" + std::string(event.channels) + "|" +
         names[static_cast<std::size_t>(event.transition)];
}

std::string fault(const std::string& line)
{
  EventLine event;
  return parseEvent(line, event);
}

TEST(BeginsLikeEvent, NumbersOfThreeDigitsAndMorePerhapsWithALetter)
{
  for (const char* line : {"001 X", "  0001 X", "000001", "123456789 X", "001A X", "\t042 X"})
    EXPECT_TRUE(beginsLikeEvent(line)) << line;
}

TEST(BeginsLikeEvent, ShorterNumbersOnlyWithATimecode)
{
  EXPECT_TRUE(beginsLikeEvent("1  REEL V C 01:00:00:00"));
  EXPECT_FALSE(beginsLikeEvent("24 FPS"));
}

TEST(BeginsLikeEvent, OtherLinesDoNot)
{
  for (const char* line : {"", "TITLE: 001", "001AB X", "A001 X", "01:00:00:00 x", "001-2 X", "* 001"})
    EXPECT_FALSE(beginsLikeEvent(line)) << line;
}

TEST(CountTimecodes, GoodAndBadOnesCount)
{
  EXPECT_EQ(countTimecodes("001 R V C 01:00:00:00 x 01:99:00:00 0x:00:00:00"), 3u);
  EXPECT_EQ(countTimecodes("EFFECTS NAME IS"), 0u);
}

/// "code|duration" of "001 <fields> <timecodes>", or the fault.
std::string transition(const std::string& fields)
{
  const std::string line = "001  " + fields + " " + anyTimecodes;
  EventLine event;
  const std::string fault = parseEvent(line, event);
  return fault.empty() ? event.transitionCode + "|" + std::string(event.duration) : fault;
}

TEST(ParseEvent, TheCodeOfATransitionIsInCapitalsWithoutBlanksAndTheDurationAsWritten)
{
  EXPECT_EQ(transition("R V C"), "C|");
  EXPECT_EQ(transition("R V d 024"), "D|024");
  EXPECT_EQ(transition("R V w001 25"), "W001|25");
  EXPECT_EQ(transition("R V K B"), "KB|");
  EXPECT_EQ(transition("R V kb 000"), "KB|000");
  EXPECT_EQ(transition("R V K  O 012"), "KO|012");
  EXPECT_EQ(transition("R V K 0"), "K|0");
}

TEST(ParseEvent, AnEventWithoutATransitionIsACut)
{
  EXPECT_EQ(transition("R V"), "C|");
  EXPECT_EQ(transition("R V 010"), "C|010");
  EXPECT_EQ(transition("K B"), "C|");
}

TEST(ParseEvent, TheReelColumnGoesUpToTheTracks)
{
  const auto column = [](const std::string& line) {
    EventLine event;
    EXPECT_EQ(parseEvent(line + " " + anyTimecodes, event), "");
    return event.reelColumn;
  };
  EXPECT_EQ(column("001  A001     V     C       "), 8u);
  EXPECT_EQ(column("001  A001C001 V     C       "), 8u);
  EXPECT_EQ(column("001  R\u00C9EL V C"), 4u);
  EXPECT_EQ(column("001       AX V     C"), 2u);
}

TEST(ParseEvent, AllFieldsOfAFullLine)
{
  EventLine event;
  ASSERT_EQ(parseEvent("  0012A\tTAPE 7   AA/V  D    024 01:00:00:00 01:00:01;02 10.00.00.00 10:00:01,119 ", event),
            "");
  EXPECT_EQ(event.number, "0012A");
  EXPECT_EQ(event.reel, "TAPE 7");
  EXPECT_EQ(event.channels, "AA/V");
  EXPECT_EQ(event.transition, Transition::Into);
  EXPECT_EQ(event.timecodes[0], "01:00:00:00");
  EXPECT_EQ(event.timecodes[1], "01:00:01;02");
  EXPECT_EQ(event.timecodes[2], "10.00.00.00");
  EXPECT_EQ(event.timecodes[3], "10:00:01,119");
}

TEST(ParseEvent, EveryTransition)
{
  EXPECT_EQ(read("R V C"), "R|V|cut");
  EXPECT_EQ(read("R V c"), "R|V|cut");
  EXPECT_EQ(read("R V D 024"), "R|V|into");
  EXPECT_EQ(read("R V W001 025"), "R|V|into");
  EXPECT_EQ(read("R V W 025"), "R|V|into");
  EXPECT_EQ(read("R V K B"), "R|V|background");
  EXPECT_EQ(read("R V KB"), "R|V|background");
  EXPECT_EQ(read("R V K B 000"), "R|V|background");
  EXPECT_EQ(read("R V K 000"), "R|V|key");
  EXPECT_EQ(read("R V K O"), "R|V|key");
  EXPECT_EQ(read("R V KO 010"), "R|V|key");
}

TEST(ParseEvent, MissingTransitionIsACut)
{
  EXPECT_EQ(read("R V"), "R|V|cut");
  EXPECT_EQ(read("R B"), "R|B|cut");
  EXPECT_EQ(read("K B"), "K|B|cut");
  EXPECT_EQ(read("R A1234V"), "R|A1234V|cut");
  EXPECT_EQ(read("R V 024"), "R|V|cut");
}

TEST(ParseEvent, ReelsHoldBlanksAndWordsThatLookLikeFields)
{
  EXPECT_EQ(read("   PIER  CAM 2   V C"), "PIER  CAM 2|V|cut");
  EXPECT_EQ(read("CAM A V C"), "CAM A|V|cut");
  EXPECT_EQ(read("V V C"), "V|V|cut");
  EXPECT_EQ(read("TAPE C V"), "TAPE C|V|cut");
  EXPECT_EQ(read("W001 B D 010"), "W001|B|into");
  EXPECT_EQ(read("01:00:00:00 V C"), "01:00:00:00|V|cut");
  EXPECT_EQ(read("* V C"), "*|V|cut");
  EXPECT_EQ(read("   BL    NONE C"), "BL|NONE|cut");
}

TEST(ParseEvent, ReelsOf129CharactersFitAndLongerOnesDoNot)
{
  std::string reel;
  for (int i = 0; i < 129; ++i)
    reel += "\xC3\xBC";
  EXPECT_EQ(read(reel + " V C"), reel + "|V|cut");
  EXPECT_EQ(read(reel + "x V C"), "reel '" + reel.substr(0, 40) + "...' has 130 characters (at most 129)");
}

TEST(ParseEvent, MissingFieldsAreNamed)
{
  EXPECT_EQ(read("V C"), "no reel");
  EXPECT_EQ(read("V"), "no reel");
  EXPECT_EQ(read(""), "no reel and no channels");
  EXPECT_EQ(read("C"), "no reel and no channels");
  EXPECT_EQ(read("TAPE C"), "unknown channels 'TAPE'");
  EXPECT_EQ(read("TAPE X9 C"), "unknown channels 'X9'");
  EXPECT_EQ(read("TAPE V C 01:00:00:00"), "more than four timecodes ('01:00:00:00' stands before the source in)");
}

TEST(ParseEvent, TheBadTimecodeIsNamed)
{
  EXPECT_EQ(fault("001 R V C 01:00:00:00 01:60:00:00 10:00:00:00 10:00:01:00"),
            "source out '01:60:00:00' is not a timecode (minutes above 59)");
  EXPECT_EQ(fault("001 R V C 0l:00:00:00 01:60:00:00 10:00:00:00 10:00:01:00"),
            "source in '0l:00:00:00' is not a timecode (not hh:mm:ss:ff)");
  EXPECT_EQ(fault("001 R V C 01:00:00:00 01:00:00:00 10:00:61:00 10:00:01:00"),
            "record in '10:00:61:00' is not a timecode (seconds above 59)");
  EXPECT_EQ(fault("001 R V C 24:00:00:00 24:00:01:00 10:00:00:00 10:00:01:00"),
            "source in '24:00:00:00' is not a timecode (hours above 23)");
  EXPECT_EQ(fault("001 R V C 01:00:00:00 01:00:01:00 10:00:00:00 10:00:00;60"),
            "record out '10:00:00;60' is not a timecode (frames above 59)");
  EXPECT_EQ(fault("001 R V C 01:00:00:00 01:00:00:00 10:00:00:00 10:00:01"),
            "record out '10:00:01' is not a timecode (not hh:mm:ss:ff)");
}

TEST(ParseEvent, FewerThanFourTimecodesAreCounted)
{
  EXPECT_EQ(fault("001 R V C 01:00:00:00 01:00:01:00 10:00:00:00"), "fewer than four timecodes (3)");
  EXPECT_EQ(fault("001 R V C 01:00:00:00 01:00:01:00 10:00:00:00 soon"), "fewer than four timecodes (3)");
  EXPECT_EQ(fault("001 R V C"), "fewer than four timecodes (0)");
  EXPECT_EQ(fault("001"), "fewer than four timecodes (0)");
}

TEST(ParseEvent, TextAfterOrBetweenTheTimecodesIsRejected)
{
  EXPECT_EQ(fault("001 R V C " + anyTimecodes + " junk"), "text after the record out ('junk')");
  EXPECT_EQ(fault("001 R V C 01:00:00:00 x 01:00:01:00 10:00:00:00 10:00:01:00"), "other text between the timecodes");
  EXPECT_EQ(fault("001 R V C " + anyTimecodes + " " + std::string(50, 'j')),
            "text after the record out ('" + std::string(40, 'j') + "...')");
}

} // namespace
