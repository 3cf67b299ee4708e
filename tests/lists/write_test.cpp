// SPDX-License-Identifier: Apache-2.0
#include "lists/write.h"

#include <tuple>

#include <gtest/gtest.h>

#include "lists/names.h"
#include "lists/short_names.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

Clip clipOf(const std::string& reel, const std::string& name, const std::string& tracks, int video, int audio)
{
  Clip clip;
  clip.reel = reel;
  clip.clipName = name;
  clip.tracks = tracks;
  clip.sourceIn = "01:00:00:00";
  clip.sourceOut = "01:00:01:00";
  clip.recordIn = "10:00:00:00";
  clip.recordOut = "10:00:01:00";
  clip.videoChannels = video;
  clip.audioChannels = audio;
  return clip;
}

auto valuesOf(const Clip& clip)
{
  return std::tuple(clip.reel, clip.clipName, clip.sourceFile, clip.tracks, clip.sourceIn, clip.sourceOut,
                    clip.recordIn, clip.recordOut, clip.aliases, clip.videoChannels, clip.audioChannels);
}

void expectSame(const List& list, const std::vector<Clip>& clips)
{
  EXPECT_TRUE(list.rejected.empty());
  EXPECT_TRUE(list.specials.empty());
  EXPECT_TRUE(list.ambiguous.empty());
  EXPECT_EQ(accountedLines(list), list.tally.lines);
  ASSERT_EQ(list.clips.size(), clips.size());
  for (std::size_t i = 0; i < clips.size(); ++i)
    EXPECT_EQ(valuesOf(list.clips[i]), valuesOf(clips[i])) << i;
}

void expectRoundTrips(const std::vector<Clip>& clips)
{
  for (const std::size_t field : reelFields) {
    SCOPED_TRACE(field);
    const Written written = writeEdl("TEST", clips, field);
    EXPECT_EQ(written.clips, clips.size());
    EXPECT_EQ(written.remarks, Strings{});
    expectSame(read(written.text), clips);
  }
  SCOPED_TRACE("log");
  expectSame(read(writeAle("25", clips).text), clips);
}

TEST(Write, ReelsOfAnySpellingComeBack)
{
  std::vector<Clip> clips;
  for (const char* reel :
       {"A021C012_210609_H1KV", "A021C012_210610_H1KV", "\xc3\x86r\xc3\xb8 7", "\xe6\x97\xa5", "a001",
        "lighthouse plan (final).tif", "x = y", "REEL 1 IS CLIP 2", "(NULL)", "V", "001", "C", "K B"})
    clips.push_back(clipOf(reel, "", "V", 1, 0));
  expectRoundTrips(clips);
}

TEST(Write, LongNamesAreNotReadAsWrappedNotes)
{
  std::vector<Clip> clips = {clipOf(std::string(120, 'x') + " y", std::string(70, 'n') + " m", "V", 1, 0),
                             clipOf(std::string(120, 'x') + " z", std::string(66, 'n'), "V", 1, 0)};
  clips.front().sourceFile = std::string(64, 's') + " t.mov";
  clips.front().aliases = {std::string(64, 'a') + " b", clips.front().sourceFile};
  clips.back().aliases = {std::string(64, 'a') + " c"};
  expectSame(read(writeEdl("", clips, 8).text), clips);
  expectSame(read(writeAle("25", clips).text), clips);
}

TEST(Write, OtherNamesComeBackInTheirOrder)
{
  Clip clip = clipOf("A021C012_210609_H1KV", "ONE", "V", 1, 0);
  clip.aliases = {"A021C012", "one.mov", "SR007"};
  clip.sourceFile = "one.mov";
  expectRoundTrips({clip});
}

TEST(Write, TracksOfTheOtherFormatComeBackWithTheirChannels)
{
  expectRoundTrips({clipOf("A", "", "VA1A2", 1, 2), clipOf("B", "", "V1 A1-8", 1, 8), clipOf("C1", "", "AA/V", 1, 2),
                    clipOf("D1", "", "A1234V", 1, 4), clipOf("E", "", "NONE", 0, 0), clipOf("F", "", "D", 0, 0),
                    clipOf("G", "", "B", 1, 1)});
}

TEST(Write, ChannelNumbersThatReadTwoWaysComeBackAsTheyWere)
{
  expectRoundTrips({clipOf("A", "", "A12", 0, 2), clipOf("B", "", "A12", 0, 1), clipOf("C1", "", "A10", 0, 1)});
}

TEST(Write, SoundOnTimecodesOfItsOwnIsInTheRowOfItsPicture)
{
  std::string log = "Heading\nFIELD_DELIM|TABS\nFPS|29.97\n\nColumn\nName|Tape|Tracks|Start|End|Soundroll|Sound TC\n\n"
                    "Data\na|T1|VA1|01:00:00;00|01:00:10;00|SR7|01:00:59:29\n"
                    "b|T1|VA1|01:00:00;00|01:00:10;00|SR7|\nc|T1|VA1|01:00:00:00|01:00:10:00|SR7|02:00:00:00\n";
  std::replace(log.begin(), log.end(), '|', '\t');
  const List list = read(log);
  ASSERT_EQ(list.clips.size(), 6u);
  const std::string text = writeAle("29.97", list.clips).text;
  for (const char* const row : {"\tSR7\t01:00:59;29\tSound TC\n", "\tSR7\t\t\n", "\tSR7\t02:00:00:00\t\n"})
    EXPECT_NE(text.find(row), std::string::npos) << text;
  const List again = read(text);
  ASSERT_EQ(again.clips.size(), list.clips.size());
  for (std::size_t i = 0; i < again.clips.size(); ++i) {
    EXPECT_EQ(again.clips[i].reel, list.clips[i].reel) << text;
    EXPECT_EQ(again.clips[i].sourceIn, list.clips[i].sourceIn) << text;
    EXPECT_EQ(again.clips[i].sourceOut, list.clips[i].sourceOut) << text;
  }
  std::vector<Clip> longer(list.clips.begin(), list.clips.begin() + 2);
  longer[1].sourceOut = "01:01:10:02"; // one frame
  EXPECT_EQ(read(writeAle("29.97", longer).text).clips[1].sourceOut, "01:01:10:02");
}

TEST(Write, TimecodesThatAreNotThereComeBackEmpty)
{
  Clip source = clipOf("A", "", "V", 1, 0), none = clipOf("B", "", "V", 1, 0), half = clipOf("C1", "", "V", 1, 0);
  source.recordIn = source.recordOut = "";
  none.sourceIn = none.sourceOut = none.recordIn = none.recordOut = "";
  half.sourceOut = half.recordIn = "";
  expectRoundTrips({source, none, half});
  const std::string text = writeEdl("", {source}, 8).text;
  EXPECT_NE(text.find(" 01:00:00:00 01:00:01:00 01:00:00:00 01:00:01:00\n* NO TIMECODE: RECORD IN, RECORD OUT\n"),
            std::string::npos)
      << text;
}

TEST(Write, DropFrameIsSaidWhereItChanges)
{
  Clip drop = clipOf("A", "", "V", 1, 0);
  drop.sourceIn = "01:00:00;00";
  const std::string text = writeEdl("", {clipOf("A", "", "V", 1, 0), drop, drop}, 8).text;
  EXPECT_EQ(text.find("FCM: NON-DROP FRAME\n001"), text.find("FCM"));
  const std::size_t change = text.find("\nFCM: DROP FRAME\n002");
  ASSERT_NE(change, std::string::npos) << text;
  EXPECT_EQ(text.find("FCM", change + 4), std::string::npos);
}

TEST(Write, MoreEventsThanTheDeviceTakesAreWrittenAndWarnedAbout)
{
  std::vector<Clip> clips(1000, clipOf("A", "", "V", 1, 0));
  const Written written = writeEdl("", clips, 8);
  EXPECT_EQ(written.remarks,
            Strings{"1000 events: more than the 999 of lists with a reel field of 8 (other programs may "
                    "not read all events)"});
  EXPECT_EQ(read(written.text).clips.size(), 1000u);
  EXPECT_EQ(writeEdl("", clips, 6).remarks, Strings{});
  EXPECT_EQ(writeEdl("", clips, 32).remarks, Strings{});
}

TEST(Write, ClipNamesLongerThanLogsHaveAreWrittenAndWarnedAbout)
{
  const std::vector<Clip> clips = {clipOf("A", std::string(33, 'n'), "V", 1, 0),
                                   clipOf("A", std::string(32, 'n'), "V", 1, 0)};
  const Written written = writeAle("25", clips);
  EXPECT_EQ(written.remarks, Strings{"clip names longer than 32 characters: 1 (other programs may cut them)"});
  expectSame(read(written.text), clips);
}

TEST(Write, ClipWithoutAReelIsLeftOut)
{
  const Written written = writeEdl("", {clipOf("", "ONE", "V", 1, 0)}, 8);
  EXPECT_EQ(written.clips, 0u);
  EXPECT_EQ(written.leftOut, Strings{"clip 'ONE' of reel '': left out (it has no reel)"});
}

TEST(Write, TextThatIsNotUtf8IsReadAsLatin1AndWarnedAbout)
{
  const Written written = writeAle("25", {clipOf("K\xdcSTE", "", "V", 1, 0)});
  EXPECT_EQ(read(written.text).clips.at(0).reel, "K\xc3\x9cSTE");
  EXPECT_EQ(written.remarks.size(), 1u);
}

/// The text that is written of a list's events, with a reel field of 8. They must be read as the same events.
std::string writtenBack(const std::string& text)
{
  const List list = read(text);
  const std::vector<Clip> events = eventsOf(list);
  const Written written = writeEdl(list.title, events, 8);
  EXPECT_EQ(written.remarks, Strings{});
  EXPECT_EQ(written.leftOut, Strings{});
  EXPECT_EQ(written.clips, events.size());
  EXPECT_EQ(eventTexts(eventsOf(read(written.text))), eventTexts(events)) << written.text;
  return written.text;
}

TEST(WriteEdlEvents, NumbersTransitionsAndDurationsAreThoseOfTheList)
{
  EXPECT_EQ(writtenBack("TITLE: A\nFCM: NON-DROP FRAME\n"
                        "007  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                        "012A A001     V     W001 025 01:00:00:00 01:00:01:00 10:00:01:00 10:00:02:00\n"),
            "TITLE: A\nFCM: NON-DROP FRAME\n"
            "007  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
            "012A  A001     V     W001 025 01:00:00:00 01:00:01:00 10:00:01:00 10:00:02:00\n");
}

TEST(WriteEdlEvents, ADissolveHasTwoLinesWithTheirNotes)
{
  const std::string text = writtenBack("TITLE: A\n" + event("025", "A001 V C") + event("025", "B001 V D 022") +
                                       "M2 A001 -025.0 09:13:01:07\n* FROM CLIP NAME: one\n* TO CLIP NAME: two\n"
                                       "* SOURCE FILE: one.mov\n* SOURCE FILE: two.mov\n" +
                                       event("026", "B001 V C"));
  EXPECT_NE(text.find("025  A001     V     C        " + anyTimecodes + "\n025  B001     V     D    022 " +
                      anyTimecodes +
                      "\n* EVENT LINE: 1 OF 2\n"
                      "M2   A001     -025.0                 09:13:01:07\n"
                      "* FROM CLIP NAME: one\n* REEL ALSO CALLED: one.mov\n* SOURCE FILE: one.mov\n"
                      "* EVENT LINE: 2 OF 2\n* TO CLIP NAME: two\n* REEL ALSO CALLED: two.mov\n* SOURCE FILE: two.mov\n"
                      "026  B001 "),
            std::string::npos)
      << text;
}

TEST(WriteEdlEvents, AKeyHasItsBackgroundAndItsName)
{
  const std::string text = writtenBack("TITLE: A\n" + event("002", "A001 V K B") + event("002", "B001 V K    000") +
                                       "* FROM CLIP NAME: back\n* KEY CLIP NAME: over\n");
  EXPECT_NE(text.find(" K B "), std::string::npos) << text;
  EXPECT_NE(text.find(" K    000 "), std::string::npos) << text;
  EXPECT_NE(text.find("* KEY CLIP NAME: over\n"), std::string::npos) << text;
}

TEST(WriteEdlEvents, EventsOfOneNumberStayApart)
{
  // Without the note, the second would be read as a part of the first: a wipe, and sound that begins with the picture.
  writtenBack("TITLE: A\n" + event("001", "A001 V C") + "* FROM CLIP NAME: a\n001 broken 01:00:00:00\n" +
              event("001", "B001 V W001 010"));
  const std::string text =
      writtenBack("TITLE: A\n" + event("001", "A001 V C") + "* LOC: x\n" + event("001", "A001 A C"));
  EXPECT_NE(text.find("* EVENT LINE: 1 OF 1\n001 "), std::string::npos) << text;
}

TEST(WriteEdlEvents, PictureAndSoundWithoutARecordInStayOneEvent)
{
  const std::string text = writtenBack("TITLE: A\n"
                                       "001  A001 V C 01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                                       "001  A001 A C 02:00:00:00 02:00:01:00 10:00:00:00 10:00:01:00\n"
                                       "* NO TIMECODE: RECORD IN\n");
  EXPECT_NE(text.find("* EVENT LINE: 2 OF 2\n"), std::string::npos) << text;
}

TEST(WriteEdlEvents, BlackAndAxStayWhatTheyAre)
{
  const std::string text =
      writtenBack("TITLE: A\n" + event("001", "BL V C") + event("001", "AX V D 024") + "* TO CLIP NAME: still.png\n" +
                  event("002", "AX V C") + "* FROM CLIP NAME: a\n* SOURCE FILE: a.mov\n" + event("003", "AX V C"));
  EXPECT_NE(text.find("001  BL       V     C "), std::string::npos) << text;
  EXPECT_NE(text.find("001  AX       V     D    024 "), std::string::npos) << text;
  EXPECT_NE(text.find("003  AX       V     C "), std::string::npos) << text;
  EXPECT_EQ(text.find("REEL MAP"), std::string::npos) << text;
}

TEST(WriteEdlEvents, GapsAreBlackAndNamedClipsWithoutASourceAreGenerated)
{
  Clip gap, title;
  gap.reel = "gap";
  gap.special = gapReason;
  title.reel = title.clipName = "Opening";
  title.special = nestedReason;
  for (Clip* clip : {&gap, &title}) {
    clip->tracks = "V";
    clip->sourceIn = clip->recordIn = "01:00:00:00";
    clip->sourceOut = clip->recordOut = "01:00:01:00";
  }
  const List list = read(writeEdl("cut", {gap, title}, 8).text);
  ASSERT_EQ(list.specialClips.size(), 2U);
  EXPECT_EQ(list.specialClips[0].special, "black");
  EXPECT_EQ(list.specialClips[1].special, "generated");
  EXPECT_EQ(list.specialClips[1].clipName, "Opening");
  EXPECT_TRUE(list.clips.empty());
}

TEST(WriteEdlEvents, AStarIsSpecialAgain)
{
  const std::string text = writtenBack("TITLE: A\n" + event("001", "TITLE*2 V C") + "* FROM CLIP NAME: a\n" +
                                       event("002", "A001 V C") + "* REEL: MATTE*\n" + event("003", "A001 V C"));
  EXPECT_NE(text.find("* REEL MAP: TITLE2 = TITLE*2\n"), std::string::npos) << text;
}

TEST(WriteEdlEvents, AReelKeepsItsTextWhereThatIsItsAlone)
{
  const std::string text = writtenBack("TITLE: A\n" + event("001", "A021C012 V C") + "* REEL: A021C012_210609_H1KV\n" +
                                       event("002", "A021C013 V C") + "* REEL: A021C013_210609_H1KV\n" +
                                       event("003", "A021C013 V C") + "* REEL: A021C013_210610_H1KV\n");
  EXPECT_NE(text.find("* REEL MAP: A021C012 = A021C012_210609_H1KV\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("A021C013 ="), std::string::npos) << text;
}

TEST(WriteEdlEvents, ATextThatCameInAFieldOfThisWidthStaysAsItIs)
{
  const std::string list = "TITLE: A\nFCM: NON-DROP FRAME\n"
                           "001  BOONE_SM V     C        " +
                           anyTimecodes + "\n" + "002  Z686_5A. V     C        " + anyTimecodes + "\n" +
                           "003  tape 1   V     C        " + anyTimecodes + "\n";
  EXPECT_EQ(writtenBack(list), "TITLE: A\nFCM: NON-DROP FRAME\n* REEL MAP: TAPE1 = tape 1\n" +
                                   list.substr(list.find("001"), list.find("003") - list.find("001")) +
                                   "003  TAPE1    V     C        " + anyTimecodes + "\n");
  const std::string wide = writeEdl("A", eventsOf(read(list)), 6).text;
  EXPECT_NE(wide.find("* REEL MAP: BOONES = BOONE_SM\n"), std::string::npos) << wide;
}

TEST(WriteEdlEvents, NamesStayDistinctWhenTextsStay)
{
  Clip own = clipOf("AB_CD", "", "V", 1, 0), other = clipOf("ABCD", "", "V", 1, 0),
       lower = clipOf("abcd x", "", "V", 1, 0);
  for (Clip* clip : {&own, &other, &lower}) {
    clip->event.reelText = clip->reel;
    clip->event.reelField = 8;
  }
  const Written written = writeEdl("", {own, other, lower}, 8);
  EXPECT_EQ(reels(read(written.text)), (Strings{"AB_CD", "ABCD", "abcd x"})) << written.text;
  EXPECT_NE(written.text.find("001  AB_CD "), std::string::npos) << written.text;
  EXPECT_NE(written.text.find("002  ABCD "), std::string::npos) << written.text;
  own.reel = "AB-CD"; // renamed since
  own.event.reelText = "AX";
  EXPECT_EQ(writeEdl("", {own}, 8).text.find("001  AB-CD "), std::string::npos);
}

TEST(WriteEdlEvents, LinesWithoutNotesDoNotSayWhereNotesBelong)
{
  const std::string text =
      writtenBack("TITLE: A\n" + event("025", "A001 V C") + event("025", "B001 V D 022") + event("026", "B001 V C"));
  EXPECT_EQ(text.find("EVENT LINE"), std::string::npos) << text;
}

TEST(WriteEdlEvents, SourceIdsAreATable)
{
  const std::string table = "060a2b340101010501010d4313000000-{0a21c012-2106-09aa}";
  const std::string text =
      writtenBack("TITLE: A\n" + event("001", "A001 V C") + event("002", "B001 V C") + ">>> SOURCE A001_LONG  A001  " +
                  table + "\n" + ">>> SOURCE B001  B001  4919975f 793b8d33\n");
  EXPECT_NE(text.find(">>> SOURCE A001     A001     " + table + "\n"), std::string::npos) << text;
  EXPECT_NE(text.find(">>> SOURCE B001     B001     4919975f 793b8d33\n"), std::string::npos) << text;
}

TEST(WriteEdlEvents, IdsThatDifferBetweenTheEventsOfAReelAreWarnedAbout)
{
  Clip one = clipOf("A001", "", "V", 1, 0), other = one;
  one.event.sourceIds = {{"source table", "11111111.22222222"}};
  EXPECT_EQ(writeEdl("", {one, other, one}, 8).remarks,
            Strings{"reel 'A001': its events have different source ids (a list gives all of them to each event)"});
}

TEST(WriteEdlEvents, DropFrameAndTheProvenRateComeBack)
{
  const std::string text = writtenBack("TITLE: A\nFCM: DROP FRAME\n"
                                       "001  A001 V C 01:00:00:45 01:00:01:00 10:00:00:00 10:00:01:00\n"
                                       "002  BL   V C 00:00:00:00 00:00:01:00 10:00:01:00 10:00:02:00\n"
                                       "FCM: NON-DROP FRAME\n" +
                                       event("003", "A001 V C"));
  EXPECT_NE(text.find("* FRAME RATE: 59.94\n002  BL "), std::string::npos) << text;
  EXPECT_NE(text.find("FCM: NON-DROP FRAME\n003 "), std::string::npos) << text;
}

TEST(WriteEdlEvents, AnEventThatNoListCanHoldIsLeftOut)
{
  Clip number = clipOf("A", "ONE", "V", 1, 0), code = number, duration = number, speed = number, from = number;
  number.event.number = "first";
  code.event.transition = "D 2";
  duration.event.duration = "long";
  speed.event.speed = Speed{"fast", ""};
  from.event.speed = Speed{"24.0", "noon"};
  Clip row;
  row.clipName = row.reel = "Lost";
  row.special = "no tape and no source file";
  EXPECT_EQ(writeEdl("", {number, code, duration, speed, from, row}, 8).leftOut,
            (Strings{"row 'Lost': left out (no tape and no source file)",
                     "clip 'ONE' of reel 'A': left out ('first' is not an event number)",
                     "clip 'ONE' of reel 'A': left out ('D 2' is not a transition)",
                     "clip 'ONE' of reel 'A': left out ('long' is not a duration)",
                     "clip 'ONE' of reel 'A': left out ('fast' is not a speed)",
                     "clip 'ONE' of reel 'A': left out ('noon' is not a timecode)"}));
}

TEST(WriteEdlEvents, WhatIsLeftOfTwoEventsDoesNotBecomeOne)
{
  Clip first = clipOf("A", "", "V", 1, 0), lost = clipOf("", "", "V", 1, 0), second = clipOf("B", "", "V", 1, 0);
  first.event.number = "001";
  lost.event.number = second.event.number = "002";
  second.event.part = 2;
  second.event.transition = "D";
  const std::string text = writeEdl("", {first, lost, second}, 8).text;
  EXPECT_NE(text.find("\n001  A "), std::string::npos) << text;
  EXPECT_NE(text.find("\n002  B "), std::string::npos) << text;
}

TEST(WriteAleEvents, WhatALogCannotSayOfTheCutIsWarnedAbout)
{
  const List list = read("TITLE: A\n" + event("001", "BL V C") + event("001", "A001 V D 024") +
                         "M2 A001 012.5 01:00:00:00\n>>> SOURCE A001 A001 4919975f.793b8d33\n");
  const Written written = writeAle("25", eventsOf(list));
  EXPECT_EQ(written.remarks, (Strings{"event numbers not written: 2 (a log file cannot hold them)",
                                      "transitions not written: 1 (a log file cannot hold them)",
                                      "speeds not written: 1 (a log file cannot hold them)",
                                      "source ids not written: 1 (a log file cannot hold them)"}));
  const List again = read(written.text);
  EXPECT_EQ(reels(again), Strings{"A001"});
  EXPECT_EQ(specialLines(again), 1);
}

TEST(WriteAleEvents, RowsWithoutASourceComeBack)
{
  const List list = read("Column\nName\tTape\tTracks\tStart\tEnd\tSource File\nData\n"
                         "Lost\t\tV\t01:00:00:00\t01:00:01:00\t\nBlack\tBL\tV\t\t\t\nax\tAX\tV\t\t\t\n"
                         "one\tA*\tV\t\t\t\nAX\tAX\tV\t\t\t\n");
  const std::vector<Clip> events = eventsOf(list);
  ASSERT_EQ(list.specialClips.size(), 5u);
  EXPECT_EQ(eventTexts(eventsOf(read(writeAle("25", events).text))), eventTexts(events));
}

TEST(WriteAleEvents, ARowWithoutASourceStaysOneWhateverItsName)
{
  const List list = read("Column\nName\tTape\tTracks\tStart\tEnd\nData\n*\t\tV\t\t\nBL\t\tV\t\t\n");
  const std::vector<Clip> events = eventsOf(list);
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(eventTexts(eventsOf(read(writeAle("25", events).text))), eventTexts(events));
  EXPECT_EQ(writeEdl("", events, 8).leftOut.size(), 2u);
}

TEST(Write, ANameThatBeginsWithAByteOrderMarkKeepsIt)
{
  expectRoundTrips({clipOf("\xef\xbb\xbf"
                           "006I",
                           "\xef\xbb\xbf", "V", 1, 0)});
}

TEST(ReelMap, GivesTheReelOfANameAnywhereAndTheNameIsNotAnAlias)
{
  const List list =
      read("TITLE: X\n" + event("001", "A1 V C") + event("002", "a1 V C") + "*reel map: A1 =  LONG A 1\n" +
           ">>> SOURCE A1_TABLE    A1 060a2b340101010501010d4313000000\n");
  EXPECT_EQ(reels(list), (Strings{"LONG A 1", "LONG A 1"}));
  EXPECT_EQ(list.clips[0].aliases, Strings{});
  EXPECT_TRUE(list.spellings.empty());
}

TEST(ReelMap, TwoReelsForOneNameAreAmbiguous)
{
  const List list =
      read("TITLE: X\n* REEL MAP: A1 = ONE\n* REEL MAP: A1 = TWO\n* REEL MAP: A1 = one\n" + event("001", "A1 V C"));
  EXPECT_EQ(reels(list), Strings{"A1"});
  ASSERT_EQ(list.ambiguous.size(), 1u);
  EXPECT_EQ(list.ambiguous[0].names, (Strings{"ONE", "TWO"}));
  EXPECT_EQ(list.ambiguous[0].reason, "the map of the list gives the name to several reels");
}

TEST(ReelMap, NoteThatIsNotAMapIsSkipped)
{
  EXPECT_EQ(reels(read("TITLE: X\n* REEL MAP: A1 ONE\n* REEL MAP: A1 =\n* REEL MAP\n" + event("001", "A1 V C"))),
            Strings{"A1"});
}

TEST(ReelMap, BlackStaysBlack)
{
  const List list = read("TITLE: X\n* REEL MAP: BL = ONE\n" + event("001", "BL V C"));
  EXPECT_EQ(specialLines(list), 1);
}

TEST(WriteEdl, TextThatMeansNoValueIsWarnedAbout)
{
  Clip clip = clipOf("A", "(null)", "V", 1, 0);
  clip.sourceFile = "(NULL)";
  EXPECT_EQ(writeEdl("", {clip, clip}, 8).remarks,
            (std::vector<std::string>{
                "'(null)': an import will not read it back (in a cut list it means that there is no value)",
                "'(NULL)': an import will not read it back (in a cut list it means that there is no value)"}));
  EXPECT_TRUE(writeAle("25", {clip}).remarks.empty());
}

} // namespace
