// SPDX-License-Identifier: Apache-2.0
#include "lists/ale.h"

#include <string>

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
  EXPECT_EQ(list.clips[0].aliases, (Strings{"id", "r", "c", "l", "s", "f"}));
  EXPECT_EQ(list.clips[1].aliases, Strings{"l"});
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

TEST(Ale, ARowsTapeGoesBeforeTheHeadingsTapeBeforeTheSourceFile)
{
  const std::string titles = "Name|Tape|Source File|Source File Path";
  EXPECT_EQ(reels(readWhole(log(titles, "a|T1|f.mov|\nb||f.mov|\n", "TAPE|T9\n"))), (Strings{"T1", "T9"}));
  EXPECT_EQ(reels(readWhole(log(titles, "a||f.mov|/p/f.mov\nb|||/p/f.mov\n"))), (Strings{"f.mov", "/p/f.mov"}));
}

TEST(Ale, ARowWithoutTapeAndFileIsReported)
{
  const List list = readWhole(log("Name|Tape|Source File", "Lost| |\nLost\nAlso\n"));
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

TEST(Ale, MissingTracksAreOnePicture)
{
  for (const std::string& text : {log("Name|Tape", "a|T\n"), log("Name|Tape|Tracks", "a|T|\n")}) {
    const Clip clip = readWhole(text).clips.at(0);
    EXPECT_EQ(clip.tracks, "V");
    EXPECT_EQ(clip.videoChannels, 1);
    EXPECT_EQ(clip.audioChannels, 0);
  }
}

TEST(Ale, TracksAreNumbersAndUnknownOnesAreKeptUncounted)
{
  const List list = readWhole(log("Name|Tape|Tracks", "a|T|VA1A12\nb|T|A1-4\nc|T|D\n"));
  EXPECT_EQ(list.clips[0].audioChannels, 2);
  EXPECT_EQ(list.clips[1].tracks, "A1-4");
  EXPECT_EQ(list.clips[1].audioChannels, 0);
  EXPECT_EQ(list.clips[2].tracks, "D");
  EXPECT_EQ(list.clips[2].videoChannels, 0);
}

TEST(Ale, MissingStartAndEndAreEmpty)
{
  for (const std::string& text : {log("Name|Tape", "a|T\n"), log("Name|Tape|Start|End", "a|T||\n")}) {
    const List list = readWhole(text);
    ASSERT_EQ(list.clips.size(), 1u);
    EXPECT_EQ(list.clips[0].sourceIn, "");
    EXPECT_EQ(list.clips[0].sourceOut, "");
  }
}

TEST(Ale, ABadTimecodeCostsThatRow)
{
  const List list = readWhole(log("Name|Tape|Start|End", "a|T|01:00:00:00|10:00:00\nb|T|1:00|x\n"
                                                         "c|T|01:00:00:00|01:00:75:00\nd|T|01:00:00:00|01:00:00:10\n"));
  EXPECT_EQ(clipNames(list), Strings{"d"});
  ASSERT_EQ(list.rejected.size(), 3u);
  EXPECT_EQ(list.rejected[0].line, 8);
  EXPECT_EQ(list.rejected[0].text, "a T 01:00:00:00 10:00:00");
  EXPECT_EQ(list.rejected[0].reason, "End '10:00:00' is no timecode (not hh:mm:ss:ff)");
  EXPECT_EQ(list.rejected[1].reason, "Start '1:00' is no timecode (not hh:mm:ss:ff)");
  EXPECT_EQ(list.rejected[2].reason, "End '01:00:75:00' is no timecode (seconds above 59)");
}

TEST(Ale, ALongBadTimecodeIsShownCutBetweenCharacters)
{
  const std::string bad = std::string(39, 'x') + "\xC3\xBC";
  EXPECT_EQ(readWhole(log("Name|Tape|Start", "a|T|" + bad + "\n")).rejected.at(0).reason,
            "Start '" + std::string(39, 'x') + "...' is no timecode (not hh:mm:ss:ff)");
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

TEST(Ale, AnIdentifierOfMoreThan2047BytesIsRejected)
{
  const List list = readWhole(log("Name|Tape", "a|" + std::string(2048, 'T') + "\nb|T\n"));
  EXPECT_EQ(reels(list), Strings{"T"});
  EXPECT_EQ(list.rejected.at(0).reason, "reel identifier of 2048 bytes (at most 2047)");
}

TEST(Ale, ControlCharactersInACellBecomeBlanks)
{
  EXPECT_EQ(reels(readWhole(log("Name|Tape", "a|T\x01"
                                             "1\n"))),
            Strings{"T 1"});
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
