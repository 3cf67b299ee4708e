// SPDX-License-Identifier: Apache-2.0
#include "lists/ale.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

List readWhole(const std::string& text)
{
  List list = readAle(text);
  EXPECT_EQ(accountedLines(list), list.tally.lines) << "a line went missing";
  return list;
}

/// A log with these titles and rows, tabs written as '|'.
std::string log(const std::string& titles, const std::string& rows, const std::string& heading = "")
{
  std::string text = "Heading\nFIELD_DELIM|TABS\n" + heading + "\nColumn\n" + titles + "\n\nData\n" + rows;
  for (char& c : text)
    c = c == '|' ? '\t' : c;
  return text;
}

std::string failure(const std::string& text)
{
  try {
    readAle(text);
  } catch (const Error& error) {
    return error.what();
  }
  return "read";
}

TEST(StartsLog, HeadingOrColumnInTheFirstCell)
{
  EXPECT_TRUE(startsLog("Heading"));
  EXPECT_TRUE(startsLog(" heading \tFPS\t25"));
  EXPECT_TRUE(startsLog("Column"));
  EXPECT_FALSE(startsLog("Headings"));
  EXPECT_FALSE(startsLog("Data"));
  EXPECT_FALSE(startsLog("x\tHeading"));
}

TEST(Ale, AClipCarriesAllThatItsRowSays)
{
  const List list = readWhole(
      log("Tape|Name|Start|End|Tracks|Source File|Reel #", " T 1 |4C-2|01:00:00;00|01:00:10;00|VA1A2|f.mov|7\n"));
  EXPECT_EQ(list.format, Format::Ale);
  ASSERT_EQ(list.clips.size(), 1u);
  const Clip& clip = list.clips[0];
  EXPECT_EQ(clip.reel, "T 1");
  EXPECT_EQ(clip.clipName, "4C-2");
  EXPECT_EQ(clip.sourceFile, "f.mov");
  EXPECT_EQ(clip.tracks, "VA1A2");
  EXPECT_EQ(clip.sourceIn, "01:00:00;00");
  EXPECT_EQ(clip.sourceOut, "01:00:10;00");
  EXPECT_EQ(clip.recordIn, "");
  EXPECT_EQ(clip.recordOut, "");
  EXPECT_EQ(clip.aliases, (Strings{"7", "f.mov"}));
  EXPECT_EQ(clip.line, 8);
  EXPECT_EQ(clip.videoChannels, 1);
  EXPECT_EQ(clip.audioChannels, 2);
}

TEST(Ale, AllOtherNamesOfASourceAreAliases)
{
  const List list = readWhole(log("Name|Tape|TapeID|Reel #|Camroll|Labroll|Soundroll|Source File|UNC",
                                  "n|T1|id|r|c|l|s|f|u\nn|T1|t1|||l|l||\n"));
  EXPECT_EQ(reels(list), (Strings{"T1", "s", "T1", "l"}));
  EXPECT_EQ(list.clips[0].aliases, (Strings{"id", "r", "l", "f", "c"}));
  EXPECT_EQ(list.clips[1].aliases, Strings{});
  EXPECT_EQ(list.clips[2].aliases, Strings{"l"});
}

TEST(Ale, SoundRollIsASourceOfItsOwnOnTheAudioTracks)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|End|Soundroll", "one|T1|VA1A2|01:00:00;00|01:00:10;00|SR7\n"
                                                                          "two|t1|V|02:00:00;00|02:00:10;00|SR7\n"));
  ASSERT_EQ(reels(list), (Strings{"T1", "SR7", "T1", "SR7"}));
  const Clip &picture = list.clips[0], &sound = list.clips[1];
  EXPECT_EQ(picture.tracks, "VA1A2");
  EXPECT_EQ(picture.soundOf, "");
  EXPECT_EQ(sound.soundOf, "T1");
  EXPECT_EQ(sound.evidence, NameEvidence::SoundRoll);
  EXPECT_EQ(sound.tracks, "A1A2");
  EXPECT_EQ(sound.audioChannels, 2);
  EXPECT_EQ(sound.videoChannels, 0);
  EXPECT_EQ(sound.clipName, "one");
  EXPECT_EQ(sound.sourceIn, "01:00:00;00");
  EXPECT_EQ(sound.sourceOut, "01:00:10;00");
  EXPECT_TRUE(sound.dropFrame);
  EXPECT_EQ(sound.line, picture.line);
  EXPECT_EQ(sound.event.part, 2);
  EXPECT_EQ(list.clips[3].soundOf, "T1") << "in the spelling that came first";
  EXPECT_EQ(list.clips[3].tracks, "A1") << "a picture without sound has sound elsewhere";
}

TEST(Ale, SoundHasTimecodesOfItsOwnFromSoundTcOn)
{
  const std::string titles = "Name|Tape|Tracks|Start|End|Soundroll|Sound TC";
  const List list = readWhole(log(titles,
                                  "a|T1|VA1|01:00:00:00|01:00:10:05|SR7|09:59:59:20\n"
                                  "b|T1|VA1|01:00:00:00|01:00:10:05|SR7|\n"
                                  "c|T1|VA1|01:00:00:00|01:00:10:05||09:59:59:20\n",
                                  "FPS|25\n"));
  ASSERT_EQ(reels(list), (Strings{"T1", "SR7", "T1", "SR7", "T1"}));
  EXPECT_EQ(list.clips[0].sourceIn, "01:00:00:00");
  EXPECT_EQ(list.clips[1].sourceIn, "09:59:59:20");
  EXPECT_EQ(list.clips[1].sourceOut, "10:00:10:00");
  EXPECT_EQ(list.clips[3].sourceIn, "01:00:00:00");
  EXPECT_EQ(list.warnings.size(), 0u);
  const List drop = readWhole(log(titles,
                                  "a|T1|VA1|01:00:00;00|01:00:10;00|SR7|01:00:59;29\n"
                                  "b|T1|VA1|01:00:00;00|01:00:10;00|SR7|01:00:59:29\n",
                                  "FPS|29.97\n"));
  EXPECT_EQ(drop.clips[1].sourceOut, "01:01:10;01"); // two labels of the minute are left out
  EXPECT_EQ(drop.clips[3].sourceOut, "01:01:10:01"); // separators as in the cell
}

TEST(Ale, SoundTcThatCannotBeReadLeavesTheTimecodesOfTheRow)
{
  const std::string titles = "Name|Tape|Tracks|Start|End|Soundroll|Sound TC";
  for (const auto& [cell, heading, why] :
       {std::tuple("soon", "FPS|25\n", "not hh:mm:ss:ff"), std::tuple("01:00:00:25", "FPS|25\n", "frames above 24"),
        std::tuple("23:59:55:00", "FPS|25\n", "after the last frame of the day"),
        std::tuple("02:00:00:00", "", "the log says no frame rate")}) {
    const List list =
        readWhole(log(titles, std::string("a|T1|VA1|01:00:00:00|01:00:10:00|SR7|") + cell + "\n", heading));
    ASSERT_EQ(reels(list), (Strings{"T1", "SR7"}));
    EXPECT_EQ(list.clips[1].sourceIn, "01:00:00:00") << cell;
    EXPECT_EQ(list.clips[1].sourceOut, "01:00:10:00") << cell;
    ASSERT_EQ(list.warnings.size(), 1u) << cell;
    EXPECT_TRUE(list.warnings[0].reason.starts_with(std::string("Sound TC '") + cell + "': "))
        << list.warnings[0].reason;
    EXPECT_NE(list.warnings[0].reason.find(why), std::string::npos) << list.warnings[0].reason;
  }
}

TEST(Ale, SoundRollThatIsTheTapeOrNoReelIsNoFurtherSource)
{
  const List list = readWhole(log("Name|Tape|Soundroll", "a|T1|t1\nb|T1|AX\nc|T1|BL\nd|T1|SR*\n"));
  EXPECT_EQ(reels(list), (Strings{"T1", "T1", "T1", "T1"}));
}

TEST(Ale, CameraRollIsAReelWithoutTapeAndFileAndElseAGroupOrAnotherName)
{
  const List list =
      readWhole(log("Name|Tape|Source File|Camroll", "a|||A012\nb|A012C001_X||a012\nc||A012C002.mov|A012\n"
                                                     "d|3NY004||XA007\ne|AX||A013\n"));
  EXPECT_EQ(reels(list), (Strings{"A012", "A012C001_X", "A012C002.mov", "3NY004", "A013"}));
  EXPECT_EQ(list.clips[0].evidence, NameEvidence::CameraRoll);
  EXPECT_EQ(list.clips[1].cameraRoll, "a012");
  EXPECT_EQ(list.clips[1].aliases, Strings{});
  EXPECT_EQ(list.clips[2].cameraRoll, "A012");
  EXPECT_EQ(list.clips[2].evidence, NameEvidence::SourceFile);
  EXPECT_EQ(list.clips[3].cameraRoll, "");
  EXPECT_EQ(list.clips[3].aliases, Strings{"XA007"});
  EXPECT_EQ(list.clips[4].evidence, NameEvidence::CameraRoll);
}

TEST(Ale, RowWithRollsAloneHasTwoSources)
{
  const List list = readWhole(log("Name|Tape|Tracks|Camroll|Soundroll", "12A-1||VA1|A012|SR007\n12A-2||VA1||SR007\n"));
  EXPECT_EQ(reels(list), (Strings{"A012", "SR007", "SR007"}));
  EXPECT_EQ(list.clips[1].soundOf, "A012");
  EXPECT_EQ(list.clips[2].soundOf, "");
  EXPECT_EQ(list.clips[2].tracks, "A1");
  EXPECT_TRUE(list.specials.empty());
  ASSERT_EQ(list.warnings.size(), 2u); // the first is about Start and End
  EXPECT_EQ(list.warnings[1].reason, "no tape, no source file and no camera roll (only its sound roll is kept)");
}

TEST(Ale, FaultOfASoundRollCostsTheRow)
{
  const List list = readWhole(log("Name|Tape|Soundroll", "a|T1|" + std::string(2048, 's') + "\nb|T1|SR\v7\nc|T1|\n"));
  EXPECT_EQ(reels(list), Strings{"T1"});
  EXPECT_EQ(list.rejected.size(), 2u);
}

TEST(Ale, HeadingsAndColumnsThatNoClipKeepsAreNamed)
{
  const List list = readWhole(log("Name|Tape|Scene|Take|Reel Also Called 1|Tape|Empty", "n|T1|||x|T2\nm|T1|7\n",
                                  "VIDEO_FORMAT|PAL\nAUDIO_FORMAT|48kHz\nFPS|25\nTAPE|T3\nFILM_FORMAT|\n"));
  EXPECT_EQ(list.unread, (Strings{"VIDEO_FORMAT PAL", "Scene", "Tape"}));
}

TEST(Ale, BlankLinesAreOptionalAndEveryLineEndWorks)
{
  for (const char* end : {"\n", "\r\n", "\r"}) {
    std::string text;
    for (const char* line :
         {"Heading", "FIELD_DELIM\tTABS", "FPS\t25", "Column", "Name\tTape", "Data", "a\tT1", "b\tT2"})
      text += std::string(line) + end;
    EXPECT_EQ(reels(readWhole(text)), (Strings{"T1", "T2"}));
  }
}

TEST(Ale, AHeadingOnOneLineIsRead)
{
  const std::string body = "\nColumn\nName\tTape\nData\na\t\n";
  EXPECT_EQ(reels(readWhole("Heading\nFIELD_DELIM\tTABS\tFPS\t25\tTAPE\tT9" + body)), Strings{"T9"});
  EXPECT_EQ(reels(readWhole("Heading\tFIELD_DELIM\tTABS\tTAPE\tT9" + body)), Strings{"T9"});
  EXPECT_EQ(reels(readWhole("Heading\nFIELD_DELIM TABS\nTAPE   T 9 " + body)), Strings{"T 9"});
}

TEST(Ale, WithoutAHeadingTheColumnsAreEnough)
{
  EXPECT_EQ(reels(readWhole("Column\nName\tTape\nData\na\tT1\n")), Strings{"T1"});
}

TEST(Ale, RowsTapeComesBeforeTheHeadingsTapeBeforeTheSourceFile)
{
  const std::string titles = "Name|Tape|Source File|Source File Path";
  EXPECT_EQ(reels(readWhole(log(titles, "a|T1|f.mov|\nb||f.mov|\n", "TAPE|T9\n"))), (Strings{"T1", "T9"}));
  EXPECT_EQ(reels(readWhole(log(titles, "a||f.mov|/p/f.mov\nb|||/p/f.mov\n"))), (Strings{"f.mov", "f.mov"}));
}

TEST(Ale, TheTapeIsTheReelTextOfTheRow)
{
  const List list = readWhole(log("Name|Tape|Source File", "a|T1|\nb|AX|f.mov\nc|BL|\nd||f.mov\n"));
  ASSERT_EQ(reels(list), (Strings{"T1", "f.mov", "f.mov"}));
  EXPECT_EQ(list.clips[0].event.reelText, "T1");
  EXPECT_EQ(list.clips[1].event.reelText, "AX");
  EXPECT_EQ(list.clips[2].event.reelText, "");
  ASSERT_EQ(list.specialClips.size(), 1u);
  EXPECT_EQ(list.specialClips[0].event.reelText, "BL");
  EXPECT_EQ(list.specialClips[0].clipName, "c");
}

TEST(Ale, ARowWithoutTapeAndFileIsReported)
{
  const List list = readWhole(log("Name|Tape|Source File", "Lost| |\nLost|\nAlso||\n"));
  EXPECT_TRUE(list.clips.empty());
  ASSERT_EQ(list.specials.size(), 2u);
  EXPECT_EQ(list.specials[0].text, "Lost");
  EXPECT_EQ(list.specials[0].reason, "no tape and no source file");
  EXPECT_EQ(list.specials[0].lines, (std::vector<int>{8, 9}));
  EXPECT_EQ(list.specials[1].text, "Also");
}

TEST(Ale, PlaceholdersStarsAndAxAreAsInCutLists)
{
  const List list =
      readWhole(log("Name|Tape|Source File", "a|BL|\nb|bars|\nc|GEN|\nd|X*|\ne|AX|f.mov\ng|ax|\nAX|AX|\n"));
  EXPECT_EQ(reels(list), (Strings{"f.mov", "g"}));
  EXPECT_EQ(list.clips[0].aliases, Strings{});
  ASSERT_EQ(list.specials.size(), 5u);
  EXPECT_EQ(list.specials[0].reason, "black");
  EXPECT_EQ(list.specials[1].reason, "colour bars");
  EXPECT_EQ(list.specials[2].reason, "generated");
  EXPECT_EQ(list.specials[3].reason, "a star denotes internally generated material");
  EXPECT_EQ(list.specials[4].reason, "AX without a clip name or source file");
}

TEST(Ale, AxForASourceFileIsNotAReelWhateverTheTapeSays)
{
  const List list = readWhole(log("Name|Tape|Source File", "a||AX\nb|AX|ax\nc|T|AX\n"));
  EXPECT_EQ(reels(list), Strings{"T"});
  ASSERT_EQ(list.specials.size(), 1u);
  EXPECT_EQ(list.specials[0].text, "AX");
  EXPECT_EQ(list.specials[0].reason, "AX without a clip name or source file");
  EXPECT_EQ(list.specials[0].lines, (std::vector<int>{8, 9}));
}

TEST(Ale, MissingTracksAreOnePicture)
{
  for (const std::string& text : {log("Name|Tape", "a|T\n"), log("Name|Tape|Tracks", "a|T|\n")}) {
    const Clip clip = readWhole(text).clips.at(0);
    EXPECT_EQ(clip.tracks, "V");
    EXPECT_EQ(clip.videoChannels, 1);
    EXPECT_EQ(clip.audioChannels, 0);
  }
}

TEST(Ale, TracksAreNumbersAndMayBeRanges)
{
  const List list = readWhole(log("Name|Tape|Tracks", "a|T|VA1A12\nb|T|V1 A1-8\nc|T|D\nd|T|va1a2\n"));
  EXPECT_EQ(list.clips[0].audioChannels, 2);
  EXPECT_EQ(list.clips[1].tracks, "V1 A1-8");
  EXPECT_EQ(list.clips[1].audioChannels, 8);
  EXPECT_EQ(list.clips[2].tracks, "D");
  EXPECT_EQ(list.clips[2].videoChannels, 0);
  EXPECT_EQ(list.clips[3].tracks, "va1a2");
  EXPECT_EQ(list.clips[3].audioChannels, 2);
}

TEST(Ale, UnknownTracksCostThatRow)
{
  const List list = readWhole(log("Name|Tape|Tracks", "a|T|XYZ\nb|T|V\nc|T|A2-1\n"));
  EXPECT_EQ(clipNames(list), Strings{"b"});
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].line, 8);
  EXPECT_EQ(list.rejected[0].text, "a T XYZ");
  EXPECT_EQ(list.rejected[0].reason, "unknown tracks 'XYZ'");
  EXPECT_EQ(list.rejected[1].reason, "unknown tracks 'A2-1'");
}

TEST(Ale, EmptyStartAndEndAreKeptWithAWarning)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|End", "a|T|V||\nb|T|V|01:00:00:00|\nc|BL|V||\n"
                                                                "d|T|V|01:00:00:00|01:00:01:00\n"));
  EXPECT_EQ(clipNames(list), (Strings{"a", "b", "d"}));
  EXPECT_EQ(list.clips[0].sourceIn, "");
  EXPECT_EQ(list.clips[0].sourceOut, "");
  EXPECT_TRUE(list.rejected.empty());
  ASSERT_EQ(list.warnings.size(), 2u) << "black has no clip to lack times";
  EXPECT_EQ(list.warnings[0].line, 8);
  EXPECT_EQ(list.warnings[0].text, "a T V");
  EXPECT_EQ(list.warnings[0].reason, "no 'Start', no 'End' (kept without them)");
  EXPECT_EQ(list.warnings[1].line, 9);
  EXPECT_EQ(list.warnings[1].reason, "no 'End' (kept without it)");
}

TEST(Ale, MissingRequiredColumnsAreWarnedAboutOnce)
{
  const List list = readWhole(log("Name|Tape", "a|T\nb|T\n"));
  EXPECT_EQ(clipNames(list), (Strings{"a", "b"}));
  ASSERT_EQ(list.warnings.size(), 2u);
  EXPECT_EQ(list.warnings[0].line, 5);
  EXPECT_EQ(list.warnings[0].text, "Name Tape");
  EXPECT_EQ(list.warnings[0].reason, "no column 'Start', no column 'End' (the rows are kept without them)");
  EXPECT_EQ(list.warnings[1].line, 5);
  EXPECT_EQ(list.warnings[1].reason, "no column 'Tracks' (the rows are kept as V)");
}

TEST(Ale, OneMissingTimeColumnIsNamedAlone)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|Duration", "a|T|V|01:00:00:00|00:00:01:00\n"));
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].reason, "no column 'End' (the rows are kept without it)");
}

TEST(Ale, AnEndBeforeItsStartIsKeptWithAWarning)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|End", "a|T|V|23:59:00:00|00:01:00:00\n"));
  EXPECT_EQ(list.clips.size(), 1u);
  EXPECT_EQ(list.warnings.at(0).reason,
            "source in 23:59:00:00 is after source out 00:01:00:00 (backwards, or past midnight)");
}

/// What the timecode is warned of in a log with this heading.
std::string frameWarning(const std::string& heading, const std::string& end)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|End", "a|T|V|00:00:00:00|" + end + "\n", heading));
  EXPECT_EQ(list.clips.size(), 1u) << "the row is kept";
  return list.warnings.empty() ? "" : list.warnings.at(0).reason;
}

TEST(Ale, FramesBeyondTheHeadingsRateAreKeptWithAWarning)
{
  EXPECT_EQ(frameWarning("FPS|25\n", "01:00:00:24"), "");
  EXPECT_EQ(frameWarning("FPS|25\n", "01:00:00:25"),
            "End 01:00:00:25 counts more than the 25 frames per second of the heading (kept as it is)");
  EXPECT_EQ(frameWarning("FPS|29.97\n", "01:00:00;29"), "");
  EXPECT_EQ(frameWarning("FPS|29.97\n", "01:00:00;30"),
            "End 01:00:00;30 counts more than the 30 frames per second of the heading (kept as it is)");
  EXPECT_EQ(frameWarning("FPS|25.00\n", "01:00:00:25").substr(0, 37), "End 01:00:00:25 counts more than the ");
  EXPECT_EQ(frameWarning("FPS|120\n", "01:00:00:119"), "");
}

TEST(Ale, TapesOfAFormatKeepTheirOwnCount)
{
  EXPECT_EQ(frameWarning("VIDEO_FORMAT|NTSC\nFPS|24\n", "23:59:59:29"), "");
  EXPECT_NE(frameWarning("VIDEO_FORMAT|NTSC\nFPS|24\n", "23:59:59:30"), "");
  EXPECT_EQ(frameWarning("FPS|24\nVIDEO_FORMAT|PAL\n", "23:59:59:24"), "");
  EXPECT_NE(frameWarning("FPS|24\nVIDEO_FORMAT|PAL\n", "23:59:59:25"), "");
}

TEST(Ale, WithoutARateInTheHeadingFramesAreNotCompared)
{
  for (const char* heading : {"", "FPS|\n", "VIDEO_FORMAT|1080\n"})
    EXPECT_EQ(frameWarning(heading, "01:00:00:59"), "") << heading;
  for (const char* rate : {"fast", "25 or so", "-25", "1000", "99999999999999999999"})
    EXPECT_EQ(frameWarning("FPS|" + std::string(rate) + "\n", "01:00:00:59"),
              "unknown frame rate '" + std::string(rate) + "' (the rows are kept without it)");
}

TEST(Ale, ARowThatEndsBeforeANeededCellIsRejected)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|End|Source File|Comments",
                                  "a\nb|T\nc|T|V|01:00:00:00\nd|T|V|01:00:00:00|01:00:01:00\n"
                                  "e||V|01:00:00:00|01:00:01:00\n"));
  EXPECT_EQ(clipNames(list), Strings{"d"});
  ASSERT_EQ(list.rejected.size(), 3u);
  EXPECT_EQ(list.rejected[0].line, 8);
  EXPECT_EQ(list.rejected[0].text, "a");
  EXPECT_EQ(list.rejected[0].reason, "row has 1 of 7 cells (no 'Start', no 'End', no 'Tape')");
  EXPECT_EQ(list.rejected[1].reason, "row has 2 of 7 cells (no 'Start', no 'End')");
  EXPECT_EQ(list.rejected[2].reason, "row has 4 of 7 cells (no 'End')");
  ASSERT_EQ(list.specials.size(), 1u) << "its tape cell is there, and empty";
  EXPECT_EQ(list.specials[0].text, "e");
}

TEST(Ale, ATapeThatIsCutOffIsNeededWhenNothingElseNamesTheSource)
{
  const std::string titles = "Start|End|Name|Source File|Tape|Tracks";
  const std::string start = "01:00:00:00|01:00:01:00|";
  EXPECT_EQ(readWhole(log(titles, start + "a\n")).rejected.at(0).reason, "row has 3 of 6 cells (no 'Tape')");
  EXPECT_EQ(reels(readWhole(log(titles, start + "a\n", "TAPE|T9\n"))), Strings{"T9"});
  EXPECT_EQ(reels(readWhole(log(titles, start + "a|f.mov\n"))), Strings{"f.mov"});
  EXPECT_EQ(readWhole(log(titles, "01:00:00:00|01:00:01:00\n")).rejected.at(0).reason,
            "row has 2 of 6 cells (no 'Name', no 'Tape')");
  EXPECT_EQ(readWhole(log("Name|Start|End|Source File|x|", "a|01:00:00:00|01:00:01:00\n")).rejected.at(0).reason,
            "row has 3 of 5 cells (no 'Source File')")
      << "without a Tape column; titles end with the last one";
}

TEST(Ale, EmptyCellsAtTheEndOfTheLastRowAreCells)
{
  const List list = readWhole(log("Name|Tape|Tracks|Start|End", "a|T|V||"));
  EXPECT_EQ(clipNames(list), Strings{"a"});
  EXPECT_TRUE(list.rejected.empty());
}

TEST(Ale, ABadTimecodeCostsThatRow)
{
  const List list = readWhole(log("Name|Tape|Start|End", "a|T|01:00:00:00|10:00:00\nb|T|1:00|x\n"
                                                         "c|T|01:00:00:00|01:00:75:00\nd|T|01:00:00:00|01:00:00:10\n"));
  EXPECT_EQ(clipNames(list), Strings{"d"});
  ASSERT_EQ(list.rejected.size(), 3u);
  EXPECT_EQ(list.rejected[0].line, 8);
  EXPECT_EQ(list.rejected[0].text, "a T 01:00:00:00 10:00:00");
  EXPECT_EQ(list.rejected[0].reason, "End '10:00:00' is not a timecode (not hh:mm:ss:ff)");
  EXPECT_EQ(list.rejected[1].reason, "Start '1:00' is not a timecode (not hh:mm:ss:ff)");
  EXPECT_EQ(list.rejected[2].reason, "End '01:00:75:00' is not a timecode (seconds above 59)");
}

TEST(Ale, TimecodesOutOfRangeCostThatRow)
{
  const List list = readWhole(log("Name|Tape|Start|End", "a|T|24:00:00:00|24:00:01:00\n"
                                                         "b|T|01:00:00:00|01:00:00:60\n"));
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].reason, "Start '24:00:00:00' is not a timecode (hours above 23)");
  EXPECT_EQ(list.rejected[1].reason, "End '01:00:00:60' is not a timecode (frames above 59)");
}

TEST(Ale, ALongBadTimecodeIsShownCutBetweenCharacters)
{
  const std::string bad = std::string(39, 'x') + "\xC3\xBC";
  EXPECT_EQ(readWhole(log("Name|Tape|Start", "a|T|" + bad + "\n")).rejected.at(0).reason,
            "Start '" + std::string(39, 'x') + "...' is not a timecode (not hh:mm:ss:ff)");
}

TEST(Ale, RaggedRowsAreFine)
{
  const List list = readWhole(log("Name|Tape|Tracks|Camroll", "a|T1\nb|T2|A1|c|extra|cells\n"));
  EXPECT_EQ(reels(list), (Strings{"T1", "T2"}));
  EXPECT_EQ(list.clips[1].aliases, Strings{"c"});
}

TEST(Ale, RowsOfBlanksAreBlank)
{
  const List list = readWhole(log("Name|Tape", "\n|\n | |\na|T1\n"));
  EXPECT_EQ(list.clips.size(), 1u);
  EXPECT_EQ(list.tally.blank, 5);
}

TEST(Ale, ARowNamedLikeASectionIsARow)
{
  EXPECT_EQ(clipNames(readWhole(log("Name|Tape", "Heading|T1\nColumn|T1\nData|T1\nData\n", "TAPE|T9\n"))),
            (Strings{"Heading", "Column", "Data", "Data"}));
}

TEST(Ale, TheCaseOfTitlesCountsAndTheFirstOfTwoIsRead)
{
  EXPECT_EQ(reels(readWhole(log("Name|tape|Tape|Tape", "a|wrong|right|second\n"))), Strings{"right"});
}

TEST(Ale, SpellingsThatDifferInCaseAreOneReel)
{
  const List list = readWhole(log("Name|Tape", "a|Tape1\nb|TAPE1\n"));
  EXPECT_EQ(reels(list), Strings(2, "Tape1"));
  ASSERT_EQ(list.spellings.size(), 1u);
  EXPECT_EQ(list.spellings[0].other, "TAPE1");
}

TEST(Ale, NamesOfMoreThan2047BytesCostThatRow)
{
  const List list =
      readWhole(log("Name|Tape", "a|" + std::string(2048, 'T') + "\n" + std::string(2048, 'n') + "|T\nb|T\n"));
  EXPECT_EQ(clipNames(list), Strings{"b"});
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].reason, "reel '" + std::string(40, 'T') + "...' has 2048 bytes (at most 2047)");
  EXPECT_EQ(list.rejected[1].reason, "clip name '" + std::string(40, 'n') + "...' has 2048 bytes (at most 2047)");
}

TEST(Ale, ControlCharactersInNamesCostThatRowAndInOtherCellsNothing)
{
  const List list = readWhole(log("Name|Tape|Camroll|Tracks|Comments",
                                  "a|T\x01"
                                  "1|||\nb\x1B|T|||\nc|T|x\vy||\nd|T||V\x02|\ne|T|c|V|line\vline\n"));
  EXPECT_EQ(clipNames(list), Strings{"e"});
  ASSERT_EQ(list.rejected.size(), 4u);
  EXPECT_EQ(list.rejected[0].text, "a T\\x011");
  EXPECT_EQ(list.rejected[0].reason, "reel 'T\\x011' holds a control character (\\x01)");
  EXPECT_EQ(list.rejected[1].reason, "clip name 'b\\x1b' holds a control character (\\x1b)");
  EXPECT_EQ(list.rejected[2].reason, "other name of the reel 'x\\x0by' holds a control character (\\x0b)");
  EXPECT_EQ(list.rejected[3].reason, "unknown tracks 'V\\x02'");
}

TEST(Ale, WithoutSectionsOrTheNameColumnNothingCanBeRead)
{
  EXPECT_EQ(failure("Heading\nFPS\t25\n"), "log file without a Column section and its titles");
  EXPECT_EQ(failure("Heading\n\nColumn\n"), "log file without a Column section and its titles");
  EXPECT_EQ(failure("Heading\n\nColumn\nName\tTape\n"), "log file without a Data section");
  EXPECT_EQ(failure(log("Tape|Start", "")), "log file without a column 'Name'");
  EXPECT_EQ(failure(log("NAME|Tape", "")), "log file without a column 'Name' (the case of column titles counts)");
  EXPECT_EQ(failure("Heading\nFIELD_DELIM\tCOMMAS\nColumn\nName\nData\n"),
            "log file with the field delimiter 'COMMAS' (only TABS is understood)");
}

TEST(Ale, ALogWithoutRowsIsEmpty)
{
  const List list = readWhole(log("Name|Tape", ""));
  EXPECT_TRUE(list.clips.empty());
  EXPECT_TRUE(list.rejected.empty());
}

} // namespace
