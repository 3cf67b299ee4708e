// SPDX-License-Identifier: Apache-2.0
#include "lists/timing.h"

#include <gtest/gtest.h>

#include "lists/write.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

constexpr FrameRate rate24 = {24, false}, rate25 = {25, false}, rate2997 = {30, true}, rate5994 = {60, true};

std::string line(const std::string& number, const std::string& sourceIn, const std::string& sourceOut)
{
  return number + "  A001 V C " + sourceIn + " " + sourceOut + " 10:00:00:00 10:00:01:00\n";
}

std::string log(const std::string& heading, const std::string& titles, const std::string& rows)
{
  return "Heading\nFIELD_DELIM\tTABS\n" + heading + "\nColumn\nName\tTape\tTracks\tStart\tEnd" + titles + "\n\nData\n" +
         rows;
}

std::vector<bool> dropFrames(const List& list)
{
  std::vector<bool> result;
  for (const Clip& clip : list.clips)
    result.push_back(clip.dropFrame);
  return result;
}

Strings rates(const List& list)
{
  Strings result;
  for (const Clip& clip : list.clips)
    result.push_back(clip.frameRate);
  return result;
}

/// "LINE: REASON: TEXT"; empty if the list does not contradict the rate.
std::string against(const List& list, FrameRate project)
{
  const auto warning = contradiction(list, project);
  return warning ? std::to_string(warning->line) + ": " + warning->reason + ": " + warning->text : "";
}

TEST(DropFrameOfCutList, StatementHoldsUntilTheNext)
{
  const List list =
      read("TITLE: X\n" + line("001", "01:00:00:00", "01:00:01:00") + "FCM: DROP FRAME\n" +
           line("002", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: ONE\n" +
           line("003", "01:00:00:00", "01:00:01:00") + "FCM: NON-DROP FRAME\n" +
           line("004", "01:00:00:00", "01:00:01:00") + "fcm:   drop\n" + line("005", "01:00:00:00", "01:00:01:00"));
  EXPECT_EQ(dropFrames(list), (std::vector<bool>{false, true, true, false, true}));
  ASSERT_TRUE(list.timing.dropFrame);
  EXPECT_EQ(list.timing.dropFrame->line, 3);
  EXPECT_EQ(list.timing.dropFrame->text, "FCM: DROP FRAME");
  EXPECT_EQ(list.tally.statements, 3);
  EXPECT_EQ(accountedLines(list), list.tally.lines);
}

TEST(DropFrameOfCutList, SemicolonSaysItWithoutAndAgainstTheStatement)
{
  const List list = read("TITLE: X\nFCM: NON-DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:00") +
                         line("002", "01:00:00;00", "01:00:01;00") +
                         "003  A001 V C 01:00:00:00 01:00:01:00 10:00:00:00 10:00:01;00\n");
  EXPECT_EQ(dropFrames(list), (std::vector<bool>{false, true, true}));
  ASSERT_TRUE(list.timing.dropFrame);
  EXPECT_EQ(list.timing.dropFrame->line, 4);
}

TEST(DropFrameOfCutList, OtherWordsAndATitleEndNothingAndEverything)
{
  const std::string events = line("001", "01:00:00:00", "01:00:01:00");
  EXPECT_EQ(dropFrames(read("TITLE: X\nFCM: DROP FRAME\nFCM: SMPTE\n" + events)), std::vector<bool>{true});
  EXPECT_EQ(dropFrames(read("TITLE: X\nFCM: DROP FRAME\nTITLE: Y\n" + events)), std::vector<bool>{false});
}

TEST(DropFrameOfCutList, LabelThatDoesNotExistIsKeptWithAWarning)
{
  const List list = read("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:01:00:01", "01:01:01:00") +
                         line("002", "01:10:00:00", "01:11:00:02"));
  EXPECT_EQ(list.clips.size(), 2u);
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].line, 3);
  EXPECT_EQ(list.warnings[0].reason,
            "source in 01:01:00:01 does not exist (drop frame leaves out the first 2 frames of "
            "this minute; kept as it is)");
}

TEST(DropFrameOfCutList, LabelsAreCheckedAtTheRateThatFramesProve)
{
  const std::string events = "TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:02:00:01", "01:02:05:00") +
                             line("002", "01:02:00:03", "01:02:05:00") + line("003", "01:02:00:04", "01:02:05:00");
  const std::string ofFour = " does not exist (drop frame leaves out the first 4 frames of this minute; kept as it is)";
  const auto reasons = [](const std::string& text) {
    Strings result;
    for (const Warning& warning : read(text).warnings)
      result.push_back(warning.reason);
    return result;
  };
  EXPECT_EQ(reasons(events),
            Strings{"source in 01:02:00:01 does not exist (drop frame leaves out the first 2 frames of this minute; "
                    "kept as it is)"});
  EXPECT_EQ(reasons(events + line("004", "01:03:00:56", "01:03:05:00")),
            (Strings{"source in 01:02:00:01" + ofFour, "source in 01:02:00:03" + ofFour}));
  EXPECT_EQ(reasons("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:02:00:03", "01:02:05:00") +
                    "* FRAME RATE: 29.97\n" + line("002", "01:03:00:56", "01:03:05:00")),
            Strings())
      << "the event has a rate of its own";
}

TEST(RateOfCutList, DropFrameAbove29FramesIs5994)
{
  const List list = read("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:00") +
                         line("002", "01:00:00:00", "01:00:01:31") + line("003", "01:00:00:00", "01:00:01:59"));
  EXPECT_EQ(rates(list), (Strings{"59.94", "59.94", "59.94"}));
  ASSERT_EQ(list.timing.rates.size(), 1u);
  EXPECT_EQ(list.timing.rates[0].says, "59.94");
  EXPECT_EQ(list.timing.rates[0].line, 4);
}

TEST(RateOfCutList, FramesAloneProveNoRate)
{
  EXPECT_EQ(rates(read("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:29"))), Strings{""});
  EXPECT_EQ(rates(read("TITLE: X\nFCM: NON-DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:59"))), Strings{""});
  EXPECT_EQ(rates(read("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:30", "01:00:01:100"))), Strings{""});
}

TEST(RateOfCutList, NoteBeforeTheEventsIsForAllAndOneBelowAnEventForThat)
{
  const List list = read("TITLE: X\n* FRAME RATE: 23.976\n" + line("001", "01:00:00:00", "01:00:01:00") +
                         line("002", "01:00:00:00", "01:00:01:00") + "* FRAME RATE: 25\n" +
                         line("003", "01:00:00:00", "01:00:01:00") + "* FRAME RATE: FAST\n");
  EXPECT_EQ(rates(list), (Strings{"23.98", "25", ""}));
  ASSERT_EQ(list.timing.rates.size(), 2u);
  EXPECT_EQ(list.timing.rates[0].line, 3);
  EXPECT_EQ(list.timing.rates[1].says, "25");
  EXPECT_EQ(list.timing.rates[1].line, 4);
}

TEST(RateOfLog, HeadingIsTheRateOfRowsWithoutAColumn)
{
  const List list = read(log("FPS\t23.976\n", "", "a\tT1\tV\t01:00:00:00\t01:00:01:00\n"));
  EXPECT_EQ(rates(list), Strings{"23.98"});
  ASSERT_EQ(list.timing.rates.size(), 1u);
  EXPECT_EQ(list.timing.rates[0].line, 3);
  EXPECT_EQ(list.timing.rates[0].text, "FPS 23.976");
}

TEST(RateOfLog, HeadingMayBeAFraction)
{
  const List list = read(log("FPS\t24000/1001\n", "", "a\tT1\tV\t01:00:00:00\t01:00:01:00\n"));
  EXPECT_EQ(rates(list), Strings{"23.98"});
  EXPECT_EQ(list.headingRate, "23.98");
  const std::string faster = "a\tT1\tV\t01:00:00:00\t01:00:01:24\n";
  ASSERT_EQ(read(log("FPS\t24000/1001\n", "", faster)).warnings.size(), 1u);
}

TEST(RateOfLog, UnknownRatesAreWarnedAboutAndNamedAsUnread)
{
  const List list = read(log("FPS\t100\n", "\tFPS",
                             "a\tT1\tV\t01:00:00:00\t01:00:01:00\tabc\n"
                             "b\tT2\tV\t01:00:00:00\t01:00:01:00\t26\n"
                             "c\tT3\tV\t01:00:00:00\t01:00:01:00\t25\n"));
  EXPECT_EQ(rates(list), (Strings{"", "", "25"}));
  EXPECT_EQ(list.headingRate, "");
  Strings reasons;
  for (const Warning& warning : list.warnings)
    reasons.push_back(warning.reason);
  EXPECT_EQ(reasons, (Strings{"unknown frame rate '100' (the rows are kept without it)",
                              "unknown frame rate 'abc' (the row is kept without it)",
                              "unknown frame rate '26' (the row is kept without it)"}));
  EXPECT_EQ(list.unread, (Strings{"FPS 100", "FPS"}));
}

TEST(RateOfLog, ColumnGoesBeforeTheHeadingAlsoWhereItIsEmpty)
{
  const List list = read(log("FPS\t24\n", "\tFPS",
                             "a\tT1\tV\t01:00:00:00\t01:00:01:00\t29.97\n"
                             "b\tT2\tV\t01:00:00:00\t01:00:01:00\t\n"
                             "c\tT3\tV\t01:00:00:00\t01:00:01:00\t24.00\n"));
  EXPECT_EQ(rates(list), (Strings{"29.97", "", "24"}));
}

TEST(RateOfLog, FramesAreCheckedAgainstTheRateOfTheRow)
{
  const List list = read(log("FPS\t24\n", "\tFPS",
                             "a\tT1\tV\t01:00:00:00\t01:00:01:59\t59.94\n"
                             "b\tT2\tV\t01:00:00:00\t01:00:01:29\t25\n"));
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].reason, "End 01:00:01:29 counts more than the 25 frames per second of the row (kept as it "
                                     "is)");
}

TEST(RateOfLog, FormatOfTapesThatCountMoreTakesTheHeadingsRateAway)
{
  const std::string row = "a\tT1\tV\t01:00:00:00\t01:00:01:00\n";
  EXPECT_EQ(rates(read(log("FPS\t24\nVIDEO_FORMAT\tNTSC\n", "", row))), Strings{""});
  EXPECT_EQ(rates(read(log("FPS\t29.97\nVIDEO_FORMAT\tNTSC\n", "", row))), Strings{"29.97"});
}

TEST(RateOfLog, RateThatTheFramesOfTheRowRefuteIsNotKept)
{
  const List list = read(log("VIDEO_FORMAT\tNTSC\n", "\tFPS",
                             "a\tT1\tV\t01:00:00:00\t01:00:01:24\t24\nb\tT2\tV\t01:00:00:00\t01:00:01:23\t24\n"));
  EXPECT_EQ(rates(list), (Strings{"", "24"}));
  EXPECT_TRUE(list.warnings.empty());
  ASSERT_TRUE(list.timing.mostFrames);
  EXPECT_EQ(list.timing.mostFrames->line, 9);
}

TEST(RateOfLog, RateThatIsNotKnownIsWarnedOf)
{
  const List list = read(log("FPS\t12.5\n", "", "a\tT1\tV\t01:00:00:00\t01:00:01:00\n"));
  EXPECT_EQ(rates(list), Strings{""});
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].line, 3);
  EXPECT_EQ(list.warnings[0].reason, "unknown frame rate '12.5' (the rows are kept without it)");
}

TEST(RateOfLog, SemicolonIsDropFrame)
{
  const List list = read(log("", "", "a\tT1\tV\t01:00:00;00\t01:00:01;00\nb\tT2\tV\t01:00:00:00\t01:00:01:00\n"));
  EXPECT_EQ(dropFrames(list), (std::vector<bool>{true, false}));
}

TEST(FrameNumbers, StandInPlaceOfSourceTimecodes)
{
  const List list = read("TITLE: X\n001  A001 V C 1009 1064 00:00:00:00 00:00:02:07\n"
                         "002  A001 V C 999 1000 00:00:00:00 00:00:02:07\n");
  EXPECT_TRUE(list.rejected.empty());
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(list.clips[0].sourceIn, "1009");
  EXPECT_EQ(list.clips[0].sourceOut, "1064");
  EXPECT_EQ(list.clips[0].recordOut, "00:00:02:07");
  EXPECT_TRUE(list.warnings.empty());
  ASSERT_TRUE(list.timing.mostFrames);
  EXPECT_EQ(list.timing.mostFrames->says, "record out 00:00:02:07");
}

TEST(FrameNumbers, InBehindOutIsWarnedOf)
{
  const List list = read("TITLE: X\n001  A001 V C 1009 999 00:00:00:00 00:00:02:07\n");
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].reason, "source in 1009 is after source out 999 (backwards, or past midnight)");
}

TEST(FrameNumbers, OnlyBothOfTheSourceAreRead)
{
  for (const char* timecodes : {"1009 01:00:00:00 00:00:00:00 00:00:02:07", "01:00:00:00 1009 00:00:00:00 00:00:02:07",
                                "01:00:00:00 01:00:01:00 1009 1064", "1234567890 1234567891 00:00:00:00 00:00:02:07"})
    EXPECT_EQ(read(std::string("TITLE: X\n001  A001 V C ") + timecodes + "\n").rejected.size(), 1u) << timecodes;
}

TEST(FrameNumbers, DurationIsNotTakenForOne)
{
  const List list = read("TITLE: X\n001  A001 V D 012 1009 1041 00:00:00:00 00:00:02:07\n"
                         "002  A001 V D 012 1009 00:00:00:00 00:00:02:07\n"
                         "003  A001 V K B 1009 1041 00:00:00:00 00:00:02:07\n");
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(list.clips[0].sourceIn, "1009");
  EXPECT_EQ(list.clips[1].line, 4);
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].reason, "fewer than four timecodes (2)");
}

TEST(FrameNumbers, LogHasThemInBothColumnsOrNot)
{
  const List list = read(log("FPS\t25\n", "", "a\tT1\tV\t1009\t1064\nb\tT2\tV\t1009\t01:00:00:00\nc\tT3\tV\t1009\t\n"));
  ASSERT_EQ(list.clips.size(), 1u);
  EXPECT_EQ(list.clips[0].sourceOut, "1064");
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_NE(list.rejected[0].reason.find("'1009'"), std::string::npos);
}

TEST(Contradiction, RateThatTheListGives)
{
  const List list = read(log("FPS\t23.98\n", "", "a\tT1\tV\t01:00:00:00\t01:00:01:00\n"));
  EXPECT_EQ(against(list, rate25), "3: frame rate 23.98 (the project has 25): FPS 23.98");
  EXPECT_EQ(against(list, {24, true}), "");
  EXPECT_NE(against(list, rate24), "");
}

TEST(Contradiction, MoreFramesThanTheProjectCounts)
{
  const List list = read("TITLE: X\n" + line("001", "01:00:00:24", "01:00:01:00") +
                         line("002", "01:00:00:00", "01:00:01:28") + line("003", "01:00:00:28", "01:00:01:00"));
  EXPECT_EQ(against(list, rate25),
            "3: source out 01:00:01:28 counts more than the 25 frames per second of the project (kept as it is): "
            "002  A001 V C 01:00:00:00 01:00:01:28 10:00:00:00 10:00:01:00");
  EXPECT_EQ(against(list, {30, false}), "");
}

TEST(Contradiction, LastFrameThatTheProjectCountsDoesNotContradict)
{
  const List list = read("TITLE: X\n" + line("001", "01:00:00:24", "01:00:01:00"));
  EXPECT_EQ(against(list, rate25), "");
  EXPECT_NE(against(list, rate24), "");
}

TEST(Contradiction, DropFrameWhereTheProjectHasNone)
{
  const List list = read("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:00"));
  EXPECT_EQ(against(list, rate25),
            "2: drop frame (the project has 25 frames per second, without drop frame): FCM: DROP FRAME");
  EXPECT_EQ(against(list, rate2997), "");
  EXPECT_EQ(against(list, rate5994), "");
}

TEST(Contradiction, ListThatSaysNothingContradictsNoRate)
{
  const List list = read("TITLE: X\nFCM: NON-DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:00"));
  for (const FrameRate rate : frameRates)
    EXPECT_EQ(against(list, rate), "") << rateName(rate);
}

/// What the clips say of their timecodes, written in either format and read again.
void expectSameTiming(const std::string& text, const std::string& project)
{
  const List list = read(text);
  for (const std::string& written : {writeEdl("T", list.clips, 8).text, writeAle(project, list.clips).text}) {
    const List again = read(written);
    EXPECT_TRUE(again.rejected.empty()) << written;
    ASSERT_EQ(again.clips.size(), list.clips.size()) << written;
    EXPECT_EQ(rates(again), rates(list)) << written;
    EXPECT_EQ(dropFrames(again), dropFrames(list)) << written;
    for (std::size_t i = 0; i < list.clips.size(); ++i) {
      EXPECT_EQ(again.clips[i].sourceIn, list.clips[i].sourceIn) << written;
      EXPECT_EQ(again.clips[i].sourceOut, list.clips[i].sourceOut) << written;
      EXPECT_EQ(again.clips[i].recordIn, list.clips[i].recordIn) << written;
    }
  }
}

TEST(WrittenTiming, ComesBackFromEitherFormat)
{
  expectSameTiming("TITLE: X\n" + line("001", "01:00:00:00", "01:00:01:00"), "25");
  expectSameTiming("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:00") +
                       line("002", "01:00:00;00", "01:00:01:00") + "FCM: NON-DROP FRAME\n" +
                       line("003", "01:00:00:00", "01:00:01:00"),
                   "29.97");
  expectSameTiming("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:31"), "25");
  expectSameTiming("TITLE: X\n001  A001 V C 1009 1064 00:00:00:00 00:00:02:07\n", "25");
  expectSameTiming(log("FPS\t23.976\n", "", "a\tT1\tV\t01:00:00:00\t01:00:01:00\n"), "25");
  expectSameTiming(log("", "\tFPS",
                       "a\tT1\tV\t01:00:00;00\t01:00:01;00\t29.97\nb\tT2\tV\t01:00:00:00\t01:00:01:00\t\n"
                       "c\tT3\tV\t1009\t1064\t24\n"),
                   "25");
}

TEST(WrittenTiming, CutListSaysARateThatAllHaveOnce)
{
  const List list =
      read(log("FPS\t24\n", "", "a\tT1\tV\t01:00:00:00\t01:00:01:00\nb\tT2\tV\t01:00:00:00\t01:00:01:00\n"));
  EXPECT_EQ(writeEdl("T", list.clips, 8).text.substr(0, 54),
            "TITLE: T\nFCM: NON-DROP FRAME\n* FRAME RATE: 24\n001  T1 ");
}

TEST(WrittenTiming, LogOfOneRateHasItInTheHeading)
{
  const List list = read("TITLE: X\nFCM: DROP FRAME\n" + line("001", "01:00:00:00", "01:00:01:31"));
  const std::string text = writeAle("25", list.clips).text;
  EXPECT_NE(text.find("\nFPS\t59.94\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\t01:00:00;00\t01:00:01;31\t"), std::string::npos) << text;
  EXPECT_EQ(text.find("\tFPS"), std::string::npos) << text;
}

TEST(WrittenTiming, FrameNumberNeverStandsForARecordTimecode)
{
  const List list = read(log("", "", "c\tT3\tV\t1009\t1064\n"));
  const std::string text = writeEdl("T", list.clips, 8).text;
  EXPECT_NE(text.find(" 1009        1064        00:00:00:00 00:00:00:00\n"), std::string::npos) << text;
}

TEST(WrittenTiming, OneFrameNumberAloneIsLeftOut)
{
  List list = read(log("", "", "c\tT3\tV\t1009\t1064\n"));
  list.clips[0].sourceOut.clear();
  const Written written = writeEdl("T", list.clips, 8);
  EXPECT_EQ(written.clips, 0u);
  EXPECT_EQ(written.leftOut.size(), 1u);
}

} // namespace
