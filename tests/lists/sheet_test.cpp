// SPDX-License-Identifier: Apache-2.0
#include "lists/sheet.h"

#include <gtest/gtest.h>

#include "lists/detect.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

/// The values of a row: "bin=Shelf 1".
Strings values(const List& list, std::size_t row)
{
  Strings result;
  for (const ReelValue& value : list.reels.at(row).values)
    result.push_back(list.fields.at(value.field) + "=" + value.text);
  return result;
}

Strings namesOfRows(const List& list)
{
  Strings result;
  for (const ReelRow& row : list.reels)
    result.push_back(row.reel);
  return result;
}

TEST(Sheet, ReelsHaveTheFieldsOfTheirRows)
{
  const List list = read("Reel,Type,Shelf,Available,Scene\r\nA001,Tape 2ch,Shelf 1,yes,12\r\nA002,,,no,\r\n");
  EXPECT_EQ(list.format, Format::Sheet);
  EXPECT_TRUE(list.clips.empty());
  EXPECT_EQ(list.fields, (Strings{"type", "bin", "available", "Scene"}));
  EXPECT_EQ(namesOfRows(list), (Strings{"A001", "A002"}));
  EXPECT_EQ(values(list, 0), (Strings{"type=Tape 2ch", "bin=Shelf 1", "available=yes", "Scene=12"}));
  EXPECT_EQ(values(list, 1), Strings{"available=no"}); // an empty cell is no value
  EXPECT_EQ(list.reels[0].line, 2);
  EXPECT_EQ(list.reels[0].text, "A001,Tape 2ch,Shelf 1,yes,12");
  EXPECT_EQ(list.tally.lines, 3);
  EXPECT_EQ(list.tally.headers, 1);
}

TEST(Sheet, TitlesCountInAnyCaseAndWithUnderscores)
{
  for (const char* title : {"reel", "TAPE", "Tape Name", "reel_name", "TapeID", "Roll", "tape-id"})
    EXPECT_EQ(namesOfRows(read(std::string(title) + ",BIN\nA001,1\n")), Strings{"A001"}) << title;
  EXPECT_EQ(read("tape,format,location\nA,b,c\n").fields, (Strings{"type", "bin"}));
  EXPECT_EQ(read("id,label_mapping,last_device,user_field_3,inhibit\nA,b,c,d,e\n").fields,
            (Strings{"label-map", "last-device", "user-field.3", "inhibit"}));
}

TEST(Sheet, SemicolonsAndTabsPartCells)
{
  EXPECT_EQ(values(read("reel;shelf;type\nA001;1,5;x\n"), 0), (Strings{"bin=1,5", "type=x"}));
  EXPECT_EQ(values(read("reel\tshelf\nA001\ta;b\n"), 0), Strings{"bin=a;b"});
}

TEST(Sheet, TheTitlesMayStandBelowOtherRows)
{
  std::string text = "Tapes of the year\n\nby shelf, not by date\n";
  EXPECT_EQ(namesOfRows(read(text + "reel,shelf\nA001,1\n")), Strings{"A001"});
  for (int i = 0; i < 15; ++i)
    text += "x,y\n";
  const List list = read(text + "a,b\nreel,shelf\nA001,1\n");
  EXPECT_EQ(namesOfRows(list), Strings{"A001"});
  EXPECT_EQ(list.reels[0].line, 21);
  EXPECT_EQ(detectText(text + "a,b\nc,d\nreel,shelf\nA001,1\n"), std::nullopt); // row 21
}

TEST(Sheet, QuotesHoldDelimitersQuotesAndLineEnds)
{
  const List list = read("reel,aliases,shelf\n\"A001\",\"one\r\ntwo\n\nthree\",\"a \"\"b\"\", c\"\nA002,,2\n");
  ASSERT_EQ(list.reels.size(), 2u);
  EXPECT_EQ(list.reels[0].aliases, (Strings{"one", "two", "three"}));
  EXPECT_EQ(values(list, 0), Strings{"bin=a \"b\", c"});
  EXPECT_EQ(list.reels[1].line, 6);
}

TEST(Sheet, AnOpenQuoteIsRejectedWithAllThatFollows)
{
  const List list = read("reel,shelf\nA001,1\nA002,\"2\nA003,3\n");
  EXPECT_EQ(namesOfRows(list), Strings{"A001"});
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].line, 3);
  EXPECT_EQ(list.rejected[0].reason, "a quote is not closed (all that follows is in this cell)");
}

TEST(Sheet, AHyphenRemovesAndAnApostropheGuards)
{
  const List list = read("reel,shelf,type,aliases\nA001,-,'-,-\nA002,'=1+2,'''x,\nA003,'90s,--,\n");
  EXPECT_EQ(values(list, 0), (Strings{"bin=", "type=-"}));
  EXPECT_TRUE(list.reels[0].clearsAliases);
  EXPECT_EQ(values(list, 1), (Strings{"bin==1+2", "type=''x"}));
  EXPECT_FALSE(list.reels[1].clearsAliases);
  EXPECT_EQ(values(list, 2), (Strings{"bin='90s", "type=--"}));
}

TEST(Sheet, ASecondRowOfAReelAddsWhatTheFirstLacks)
{
  const List list = read("reel,shelf,type,alias\nA001,1,,x\nB002,1,,\na001,2,t,y\nA001,1,t,\n");
  EXPECT_EQ(namesOfRows(list), (Strings{"A001", "B002"}));
  EXPECT_EQ(values(list, 0), (Strings{"bin=1", "type=t"}));
  EXPECT_EQ(list.reels[0].aliases, (Strings{"x", "y"}));
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].line, 4);
  EXPECT_EQ(list.warnings[0].reason, "A001: bin '2' differs from '1' in line 2, which counts");
}

TEST(Sheet, RowsWithoutAReelAreRejectedWithTheirLine)
{
  const List list = read("reel,shelf\n,1\nBL,1\nA*1,1\nax,1\n,\nA001,1,2\n");
  EXPECT_TRUE(list.reels.empty());
  ASSERT_EQ(list.rejected.size(), 5u);
  EXPECT_EQ(list.rejected[0].line, 2);
  EXPECT_EQ(list.rejected[0].reason, "no reel");
  EXPECT_EQ(list.rejected[1].reason, "'BL' is not a reel (black)");
  EXPECT_EQ(list.rejected[3].reason, "'ax' is not a reel (a source without a tape)");
  EXPECT_EQ(list.rejected[4].line, 7);
  EXPECT_EQ(list.rejected[4].reason, "row has 3 cells, more than the 2 titles");
}

TEST(Sheet, RowsWithInAndOutAreClips)
{
  const List list = read("Tape,Clip Name,In,Out,Tracks,FPS,Shelf,Sound Roll\n"
                         "A001,1-2,01:00:00:00,01:00:01:00,VA2,\"23,976\",3,SR7\n"
                         "A001,1-3,01:00:02:00,01:00:03:00,,,,\n"
                         "A002,,,,,,4,\n"
                         "A003,x,01:00:99:00,01:00:03:00,,,,\n");
  EXPECT_EQ(reels(list), (Strings{"A001", "SR7", "A001"}));
  EXPECT_EQ(list.clips[0].frameRate, "23.98");
  EXPECT_EQ(list.clips[0].videoChannels, 1);
  EXPECT_EQ(list.clips[0].audioChannels, 1);
  EXPECT_EQ(list.clips[1].soundOf, "A001");
  EXPECT_EQ(list.clips[2].tracks, "V");
  EXPECT_EQ(namesOfRows(list), (Strings{"A001", "A002"}));
  EXPECT_EQ(values(list, 0), Strings{"bin=3"});
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].line, 5);
}

TEST(Sheet, AClipWithoutAReelIsNamedByItsFileOrItself)
{
  EXPECT_EQ(reels(read("source file,start,end\n/x/A001C002.mov,1,2\n")), Strings{"A001C002.mov"});
  EXPECT_EQ(reels(read("name,start,end\nA001C002.mov,1,2\n")), Strings{"A001C002.mov"});
}

TEST(Sheet, ColumnsThatNothingTakesAreNamed)
{
  const List list = read("reel,clip,shelf,bin,,empty clip\nA001,c,1,2,x,\n");
  EXPECT_EQ(list.unread, (Strings{"clip", "bin", "column 5"}));
  EXPECT_EQ(values(list, 0), Strings{"bin=1"});
}

TEST(Sheet, AMapNamesColumns)
{
  const std::string text = "Tape No,Regal,Nummer\nA001,7,12\n";
  EXPECT_EQ(detectText(text), std::nullopt);
  const List list = read(text, {.titles = {{"tape no", "reel"}, {"Regal", "shelf"}, {"Nummer", "Scene"}}});
  EXPECT_EQ(namesOfRows(list), Strings{"A001"});
  EXPECT_EQ(values(list, 0), (Strings{"bin=7", "Scene=12"}));
  EXPECT_TRUE(isSheetTitle("Tape Name"));
  EXPECT_FALSE(isSheetTitle("Tape No"));
}

TEST(Sheet, Utf16AndMarksAreDecoded)
{
  std::string bytes = "\xFF\xFE";
  for (const char c : std::string("reel;shelf\r\nK\xDC;1\r\n")) {
    bytes += c;
    bytes += '\0';
  }
  EXPECT_EQ(namesOfRows(read(bytes)), Strings{"K\xC3\x9C"});
  EXPECT_EQ(namesOfRows(read("\xEF\xBB\xBFreel,shelf\nA001,1\n")), Strings{"A001"});
  EXPECT_EQ(namesOfRows(read("reel,shelf\rA001,1\rA002,2\r")), (Strings{"A001", "A002"}));
}

TEST(Sheet, OtherTextsAreNotTables)
{
  for (const char* text : {"id,name,email\n1,a,b\n", "title,date\nx,y\n", "TITLE: reel, tape, shelf\n", "one\ntwo\n",
                           "a tape, a reel and a clip\n", "Clips\nclip\nname\n"})
    EXPECT_NE(detectText(text), Format::Sheet) << text;
  EXPECT_EQ(detectText("TITLE: x\n" + event("001", "R V C") + "* reel,shelf,type\n"), Format::Edl);
  EXPECT_EQ(detectText("Column\nName\tTape\tStart\tEnd\n"), Format::Ale);
}

} // namespace
