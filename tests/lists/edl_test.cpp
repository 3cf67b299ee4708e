// SPDX-License-Identifier: Apache-2.0
#include "lists/edl.h"

#include <string>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

List readWhole(const std::string& text)
{
  List list = readEdl(text);
  EXPECT_EQ(accountedLines(list), list.tally.lines) << "a line went missing";
  return list;
}

TEST(Edl, AClipCarriesAllThatItsEventSays)
{
  const List list = readWhole("TITLE:  A CUT \nFCM: DROP FRAME\n"
                              "002  TAPE 1   AA/V  C        01:00:00;00 01:00:01;02 10:00:00;00 10:00:01;02 \n"
                              "* FROM CLIP NAME:  SHOT 5 \n* SOURCE FILE: shot5.mov\n");
  EXPECT_EQ(list.format, Format::Edl);
  EXPECT_EQ(list.title, "A CUT");
  ASSERT_EQ(list.clips.size(), 1u);
  const Clip& clip = list.clips[0];
  EXPECT_EQ(clip.reel, "TAPE 1");
  EXPECT_EQ(clip.clipName, "SHOT 5");
  EXPECT_EQ(clip.sourceFile, "shot5.mov");
  EXPECT_EQ(clip.tracks, "AA/V");
  EXPECT_EQ(clip.sourceIn, "01:00:00;00");
  EXPECT_EQ(clip.sourceOut, "01:00:01;02");
  EXPECT_EQ(clip.recordIn, "10:00:00;00");
  EXPECT_EQ(clip.recordOut, "10:00:01;02");
  EXPECT_EQ(clip.aliases, Strings{"shot5.mov"});
  EXPECT_EQ(clip.line, 3);
  EXPECT_EQ(clip.videoChannels, 1);
  EXPECT_EQ(clip.audioChannels, 2);
  EXPECT_EQ(list.tally.headers, 2);
  EXPECT_EQ(list.tally.notes, 2);
}

TEST(EdlEvents, ALineCarriesWhatItSaysOfTheCut)
{
  const List list = readWhole("000012  A001C001_200303_R1AB             V     C        " + anyTimecodes + "\n" +
                              "012A    A001                             V     W001 025 " + anyTimecodes + "\n");
  ASSERT_EQ(list.clips.size(), 2u);
  const Event& cut = list.clips[0].event;
  EXPECT_EQ(cut.number, "000012");
  EXPECT_EQ(cut.part, 1);
  EXPECT_EQ(cut.reelText, "A001C001_200303_R1AB");
  EXPECT_EQ(cut.reelField, 32u);
  EXPECT_EQ(cut.transition, "C");
  EXPECT_EQ(cut.duration, "");
  EXPECT_FALSE(cut.speed);
  const Event& wipe = list.clips[1].event;
  EXPECT_EQ(wipe.number, "012A");
  EXPECT_EQ(wipe.part, 1);
  EXPECT_EQ(wipe.reelField, 32u);
  EXPECT_EQ(wipe.transition, "W001");
  EXPECT_EQ(wipe.duration, "025");
}

TEST(EdlEvents, TheReelTextIsKeptWhenTheReelHasAnotherName)
{
  const List list = readWhole("001  A021C012 V     C        " + anyTimecodes + "\n* REEL: A021C012_210609\n" +
                              "002       AX V     C        " + anyTimecodes + "\n* FROM CLIP NAME: still.png\n");
  ASSERT_EQ(reels(list), (Strings{"A021C012_210609", "still.png"}));
  EXPECT_EQ(list.clips[0].event.reelText, "A021C012");
  EXPECT_EQ(list.clips[1].event.reelText, "AX");
  EXPECT_EQ(list.clips[1].event.reelField, 8u);
}

TEST(EdlEvents, TheFieldIsThatOfTheWidestReelButBlackAndAx)
{
  EXPECT_EQ(readWhole("001  A001   V C " + anyTimecodes + "\n002  BL        V C " + anyTimecodes + "\n")
                .clips.at(0)
                .event.reelField,
            6u);
}

TEST(EdlEvents, TheLinesOfADissolveCountUp)
{
  const List list = readWhole(event("001", "A V C") + event("001", "B V D 024") + event("002", "B V C"));
  ASSERT_EQ(list.clips.size(), 3u);
  EXPECT_EQ(list.clips[0].event.part, 1);
  EXPECT_EQ(list.clips[0].event.transition, "C");
  EXPECT_EQ(list.clips[1].event.part, 2);
  EXPECT_EQ(list.clips[1].event.transition, "D");
  EXPECT_EQ(list.clips[1].event.duration, "024");
  EXPECT_EQ(list.clips[2].event.part, 1);
}

TEST(EdlEvents, ALineWithoutASourceIsASpecialClip)
{
  const List list = readWhole("FCM: DROP FRAME\n" + event("001", "BL V C") + event("001", "B V D 024") +
                              "* TO CLIP NAME: b\n" + event("002", "BARS V C") + "* FROM CLIP NAME: bars\n");
  ASSERT_EQ(list.specialClips.size(), 2u);
  const Clip& black = list.specialClips[0];
  EXPECT_EQ(black.reel, "BL");
  EXPECT_EQ(black.special, "black");
  EXPECT_EQ(black.line, 2);
  EXPECT_EQ(black.tracks, "V");
  EXPECT_EQ(black.sourceIn, "01:00:00:00");
  EXPECT_TRUE(black.dropFrame);
  EXPECT_EQ(black.event.number, "001");
  EXPECT_EQ(black.event.part, 1);
  EXPECT_EQ(list.clips.at(0).event.part, 2);
  EXPECT_EQ(list.clips.at(0).special, "");
  EXPECT_EQ(list.specialClips[1].clipName, "bars");
  Strings events;
  for (const Clip& clip : eventsOf(list))
    events.push_back(clip.reel);
  EXPECT_EQ(events, (Strings{"BL", "B", "BARS"}));
}

TEST(EdlEvents, ARateThatIsProvedIsAlsoThatOfBlack)
{
  const List list = readWhole("FCM: DROP FRAME\n001  A V C 01:00:00:45 01:00:01:00 10:00:00:00 10:00:01:00\n"
                              "002  BL V C 00:00:00:00 00:00:01:00 10:00:01:00 10:00:02:00\n");
  EXPECT_EQ(list.specialClips.at(0).frameRate, "59.94");
}

TEST(EdlEvents, ARejectedLineIsNotAPart)
{
  const List list = readWhole(event("001", "A V C") + event("001", "B\x01 V D 024") + event("001", "C1 V D 024"));
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(list.clips[1].event.part, 2);
}

TEST(EdlEvents, TheSpeedGoesToTheLineOfItsReel)
{
  const List list = readWhole(event("025", "A V C") + event("025", "B V D 022") +
                              "M2   B         -025.0                01:00:00:00\n* BLEND, DISSOLVE\n"
                              "M2   A         012.5                09:13:01:07\n");
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(list.clips[0].event.speed, (Speed{"012.5", "09:13:01:07"}));
  EXPECT_EQ(list.clips[1].event.speed, (Speed{"-025.0", "01:00:00:00"}));
  EXPECT_TRUE(list.warnings.empty());
}

TEST(EdlEvents, OfTwoLinesOfOneReelTheSpeedGoesToTheOneThatItsTimecodeBegins)
{
  const List list = readWhole("001  A V C     01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                              "001  A V D 010 02:00:00:00 02:00:01:00 10:00:01:00 10:00:02:00\n"
                              "M2   A 012.5 02:00:00:00\nM2   A 050.0 03:00:00:00\n");
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(list.clips[0].event.speed, (Speed{"050.0", "03:00:00:00"}));
  EXPECT_EQ(list.clips[1].event.speed, (Speed{"012.5", "02:00:00:00"}));
}

TEST(EdlEvents, ASpeedThatCannotBeUsedIsAWarning)
{
  const List list = readWhole(event("001", "A V C") + "M2 A 024.0 01:00:00:00\nM2 A 012.0 01:00:00:00\n"
                                                      "M2 B 024.0 01:00:00:00\nM2 A fast 01:00:00:00\n");
  EXPECT_EQ(list.clips.at(0).event.speed, (Speed{"024.0", "01:00:00:00"}));
  ASSERT_EQ(list.warnings.size(), 3u);
  EXPECT_EQ(list.warnings[0].line, 3);
  EXPECT_EQ(list.warnings[0].reason, "speed not used: the event above has no line of reel 'A' without a speed");
  EXPECT_EQ(list.warnings[1].reason, "speed not used: the event above has no line of reel 'B' without a speed");
  EXPECT_EQ(list.warnings[2].reason, "speed not used: 'fast' is not a number of frames per second");
  EXPECT_EQ(list.tally.statements, 4);
}

TEST(EdlEvents, NotesBelowAnEventLineNoteBelongToThatLineAlone)
{
  const List list = readWhole(event("001", "A V C") + event("001", "A V D 024") +
                              "* EVENT LINE: 2 OF 2\n* SOURCE FILE: two.mov\nM2 A 012.5 01:00:00:00\n"
                              "* FROM CLIP NAME: two\n* EVENT LINE: 1 OF 2\n* NO TIMECODE: SOURCE IN\n");
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(sourceFiles(list), (Strings{"", "two.mov"}));
  EXPECT_EQ(clipNames(list), (Strings{"", "two"}));
  EXPECT_EQ(list.clips[0].sourceIn, "");
  EXPECT_EQ(list.clips[1].sourceIn, "01:00:00:00");
  EXPECT_FALSE(list.clips[0].event.speed);
  EXPECT_TRUE(list.clips[1].event.speed);
}

TEST(EdlEvents, AnEventLineNoteEndsTheEvent)
{
  const List list = readWhole(event("001", "A V C") + "* EVENT LINE: 1 OF 1\n" + event("001", "B V D 024"));
  ASSERT_EQ(list.clips.size(), 2u);
  EXPECT_EQ(list.clips[1].event.part, 1);
}

TEST(EdlEvents, AnEventLineNoteThatDoesNotFitTheEventIsSkipped)
{
  for (const char* value : {"", "1", "3 OF 2", "0 OF 2", "1 OF 3", "1 OF", "x OF 2", "1 IN 2", "1 OF 2 3"}) {
    const List list = readWhole(event("001", "A V C") + event("001", "B V D 024") + "* EVENT LINE: " + value +
                                "\n* TO CLIP NAME: two\n* FROM CLIP NAME: one\n" + event("001", "C1 V D 024"));
    EXPECT_EQ(clipNames(list), (Strings{"one", "two", ""})) << value;
    EXPECT_EQ(list.clips.at(2).event.part, 3) << value;
  }
}

TEST(EdlEvents, NotesAndStatementsThatNoClipKeepsAreCounted)
{
  EXPECT_EQ(readWhole("TITLE: A\n* early\n" + event("001", "A V C") + "* LOC: x\n* FROM CLIP NAME: a\nAUD 3\n" +
                      "* REEL MAP: A = B\nM2 A 012.5\nM2 X 012.5\n")
                .tally.ignored,
            4);
}

TEST(EdlEvents, TheIdsOfTheSourceTableAreKeptWithTheirKind)
{
  const List list = readWhole(event("001", "A001C001 V C") + event("002", "A001C001 V C") + event("003", "B V C") +
                              ">>> SOURCE A001C001_X A001C001 060a2b340101010501010d4313000000-{0a21c012-2106-09aa}\n"
                              ">>> SOURCE B          B        4919975f.793b8d33\n");
  ASSERT_EQ(list.clips.size(), 3u);
  const SourceId umid = {"umid", "060a2b340101010501010d4313000000-{0a21c012-2106-09aa}"};
  EXPECT_EQ(list.clips[0].event.sourceIds, std::vector<SourceId>{umid});
  EXPECT_EQ(list.clips[1].event.sourceIds, std::vector<SourceId>{umid});
  EXPECT_EQ(list.clips[2].event.sourceIds, (std::vector<SourceId>{{"source table", "4919975f.793b8d33"}}));
}

TEST(Edl, ThreeFourAndSixDigitsAndNoTitleNoFcmNoTransitionAreNormal)
{
  const List list =
      readWhole(event("001", "A V C") + event("0002", "B V") + event("000003", "C12 A1234V") + event("4", "D A2 C"));
  EXPECT_EQ(reels(list), (Strings{"A", "B", "C12", "D"}));
  EXPECT_EQ(list.title, "");
  EXPECT_TRUE(list.rejected.empty());
}

TEST(Edl, HeadersOfOtherDialectsAreHeaders)
{
  const List list = readWhole("EP 107 MUSIC EDL\nSMPTE FRAME CODE\n\nRVTR=RVTR\n" + event("0001", "EP_107 A34 C"));
  EXPECT_EQ(list.tally.headers, 3);
  EXPECT_EQ(list.tally.blank, 1);
  EXPECT_EQ(list.title, "");
  EXPECT_TRUE(list.rejected.empty());
}

TEST(Edl, ATitleThatStartsWithANumberIsRejectedAlone)
{
  const List list = readWhole("107 MUSIC EDL\nSMPTE FRAME CODE\n" + event("0001", "EP_107 A34 C"));
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].line, 1);
  EXPECT_EQ(list.tally.headers, 1);
}

TEST(Edl, KnownStatementsAddNothing)
{
  const List list =
      readWhole(event("001", "R V C") + "M2   OTHER       -25.0                01:00:00:00\nFCM: NON-DROP FRAME\n"
                                        "AUD  3    4\nSPLIT:    AUDIO DELAY=  00:00:00:05\nGPI READY\n"
                                        "DLEDL: START TC: 00:00:00:00\nREM THE END\nREM\nEFFECTS NAME IS WIPE\n"
                                        "TITLE: SECOND\nm2 x 1\n");
  EXPECT_EQ(reels(list), Strings{"R"});
  EXPECT_EQ(list.tally.statements, 11);
  EXPECT_EQ(list.title, "SECOND");
  EXPECT_TRUE(list.rejected.empty());
}

TEST(Edl, TheFirstTitleCounts)
{
  EXPECT_EQ(readWhole("TITLE: ONE\nTITLE: TWO\n" + event("001", "R V C")).title, "ONE");
}

TEST(Edl, OneBadLineCostsThatLine)
{
  const List list = readWhole(event("001", "A V C") + "002  B V C 01:00:00:00\n" + event("003", "C1 V C"));
  EXPECT_EQ(reels(list), (Strings{"A", "C1"}));
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].line, 2);
  EXPECT_EQ(list.rejected[0].text, "002  B V C 01:00:00:00");
  EXPECT_EQ(list.rejected[0].reason, "fewer than four timecodes (1)");
}

TEST(Edl, OtherLinesInTheBodyAreRejected)
{
  const List list = readWhole(event("001", "A V C") +
                              "M2X\nHELLO\nFINAL CUT PRO REEL: 006-I\n>>> SOURCE\n>>> OTHER\n"
                              "O02 B V C " +
                              anyTimecodes + "\n");
  ASSERT_EQ(list.rejected.size(), 6u);
  const std::string unknown = "not an event, a note or a known statement";
  EXPECT_EQ(list.rejected[0].reason, unknown);
  EXPECT_EQ(list.rejected[1].reason, unknown);
  EXPECT_EQ(list.rejected[2].reason, "replaced reel without one of its two names");
  EXPECT_EQ(list.rejected[3].reason, "source row without a name");
  EXPECT_EQ(list.rejected[4].reason, unknown);
  EXPECT_EQ(list.rejected[5].reason, "no event number");
}

TEST(Edl, EventWithoutANumberIsNotAHeader)
{
  const List list = readWhole("TITLE: X\nO01 B V C " + anyTimecodes + "\n" + event("002", "A V C"));
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].reason, "no event number");
}

TEST(Edl, NotesOfARejectedEventReachNoOther)
{
  const List list = readWhole(event("001", "AX V C") + "002  AX V C 01:00:00:00\n* FROM CLIP NAME: second\n");
  EXPECT_TRUE(list.clips.empty());
  ASSERT_EQ(list.specials.size(), 1u);
  EXPECT_EQ(list.specials[0].reason, "AX without a clip name or source file");
}

TEST(Edl, NotesBeforeTheFirstEventBelongToNone)
{
  EXPECT_EQ(clipNames(readWhole("* FROM CLIP NAME: none\n" + event("001", "A V C"))), Strings{""});
}

TEST(Edl, BlankLinesAndStatementsDoNotPartAnEventFromItsNotes)
{
  EXPECT_EQ(clipNames(readWhole(event("001", "A V C") + "\nM2 A 000.0 01:00:00:00\n\n* FROM CLIP NAME: a\n")),
            Strings{"a"});
}

TEST(Edl, ADissolveHasTwoSources)
{
  const List list = readWhole("005  A V C        01:00:00:00 01:00:00:00 10:00:00:00 10:00:00:00\n"
                              "FCM: DROP FRAME\n"
                              "005  B V D    024 02:00:00:00 02:00:01:00 10:00:00:00 10:00:01:00\n"
                              "EFFECTS NAME IS CROSS DISSOLVE\n"
                              "* FROM CLIP NAME: a\n* TO CLIP NAME: b\n" +
                              event("006", "A V C"));
  EXPECT_EQ(reels(list), (Strings{"A", "B", "A"}));
  EXPECT_EQ(clipNames(list), (Strings{"a", "b", ""}));
}

TEST(Edl, AKeyHasTwoSources)
{
  const List list = readWhole(event("002", "AX V K B") + event("002", "AX V K 000") +
                              "* FROM CLIP NAME: back.mov\n* KEY CLIP NAME: front.mov\n");
  EXPECT_EQ(reels(list), (Strings{"back.mov", "front.mov"}));
}

TEST(Edl, BlackBarsAndGeneratorsAreCountedAndMakeNoClip)
{
  const List list = readWhole(event("001", "   BL   V C") + event("002", "black V C") + event("003", "BARS V C") +
                              event("004", "GEN V C") + event("005", "bl V C"));
  EXPECT_TRUE(list.clips.empty());
  ASSERT_EQ(list.specials.size(), 4u);
  EXPECT_EQ(list.specials[0].text, "BL");
  EXPECT_EQ(list.specials[0].reason, "black");
  EXPECT_EQ(list.specials[0].lines, (std::vector<int>{1, 5}));
  EXPECT_EQ(list.specials[1].text, "black");
  EXPECT_EQ(list.specials[2].reason, "colour bars");
  EXPECT_EQ(list.specials[3].reason, "generated");
}

TEST(Edl, BlackStaysBlackWhateverItsNotesSay)
{
  const List list = readWhole(event("001", "BL V C") + "* REEL: TAPE9\n>>> SOURCE BL BLACK_TAPE id\n");
  EXPECT_TRUE(list.clips.empty());
  EXPECT_EQ(list.specials.at(0).reason, "black");
}

TEST(Edl, AStarMakesNoReelButDoesNoHarmInAClipName)
{
  const List list =
      readWhole(event("001", "TITLES* V C") + event("002", "A V C") + "* FROM CLIP NAME: 3-1*\n" +
                event("003", "AX V C") + "* FROM CLIP NAME: 4-1*\n" + event("004", "B V C") + "* REEL: B*1\n");
  EXPECT_EQ(reels(list), (Strings{"A", "B"}));
  EXPECT_EQ(list.clips[0].clipName, "3-1*");
  ASSERT_EQ(list.specials.size(), 2u);
  EXPECT_EQ(list.specials[0].text, "TITLES*");
  EXPECT_EQ(list.specials[1].text, "4-1*");
  EXPECT_EQ(list.specials[0].reason, "a star denotes internally generated material");
}

TEST(Edl, AReelTextWithAStarAndAProperNameIsThatReel)
{
  EXPECT_EQ(reels(readWhole(event("001", "A*1 V C") + ">>> SOURCE A*1 A001C004 id\n")), Strings{"A001C004"});
}

TEST(Edl, AxIsItsFileElseItsClipName)
{
  const List list =
      readWhole(event("001", "AX V C") + "* FROM CLIP NAME: a\n* SOURCE FILE: f.mov\n" + event("002", "ax V C") +
                "* FROM CLIP NAME: a\n* FROM FILE: /vol/g.mov\n" + event("003", "AX V C") +
                "* FROM CLIP: /vol/h.mov\n" + event("004", "AX V C") + "* SOURCE FILE: (NULL)\n* FROM CLIP NAME: a\n" +
                event("005", "AX V C") + "* REEL RC1 IS CLIP c.mov\n" + event("006", "AX V C") + "* REEL: TAPE7\n");
  EXPECT_EQ(reels(list), (Strings{"f.mov", "g.mov", "h.mov", "a", "c.mov"})) << "a REEL note is not the name of AX";
  EXPECT_EQ(distinctReels(list).count("TAPE7"), 0u);
  EXPECT_EQ(list.clips[0].clipName, "a");
  EXPECT_EQ(list.clips[0].aliases, Strings{}) << "AX is no name";
  EXPECT_EQ(list.clips[4].aliases, Strings{"RC1"});
}

TEST(Edl, AxWithoutANameIsReported)
{
  const List list = readWhole(event("001", "AX V C") + event("002", "AX V C") + "* FROM CLIP NAME: AX\n");
  EXPECT_TRUE(list.clips.empty());
  ASSERT_EQ(list.specials.size(), 1u);
  EXPECT_EQ(list.specials[0].text, "AX");
  EXPECT_EQ(list.specials[0].count, 2);
}

TEST(Edl, AxCalledBlackIsBlack)
{
  const List list = readWhole(event("001", "AX V C") + "* FROM CLIP NAME: Black\n");
  EXPECT_TRUE(list.clips.empty());
  EXPECT_EQ(list.specials.at(0).text, "Black");
  EXPECT_EQ(list.specials.at(0).reason, "black");
}

TEST(Edl, SourceTableComesBeforeEverythingElse)
{
  const List list = readWhole(event("001", "A001 V C") + "* REEL: NOTE\nFINAL CUT PRO REEL: A-001 REPLACED BY: A001\n" +
                              event("002", "B001 V C") +
                              "* REEL: NOTE2\n>>> SOURCE A001_LONG  A001 id1\n"
                              "* SOURCE FILE: of the row\n>>> SOURCE B001 B001 id2\n");
  EXPECT_EQ(reels(list), (Strings{"A001_LONG", "B001"}));
  EXPECT_EQ(list.clips[0].aliases, (Strings{"A001", "NOTE", "of the row"}));
  EXPECT_EQ(list.clips[1].aliases, Strings{"NOTE2"});
  EXPECT_EQ(sourceFiles(list), (Strings{"", ""})) << "a note below a row is the row's";
  EXPECT_TRUE(list.ambiguous.empty());
}

TEST(Edl, ReplacedReelComesBeforeTheReelNoteWhereverItStands)
{
  const List list = readWhole(event("001", "006i V C") + "* REEL: NOTE\n" + event("002", "006I V C") +
                              "FINAL CUT PRO REEL: 006-I REPLACED BY: 006I\n");
  EXPECT_EQ(reels(list), (Strings{"006-I", "006-I"}));
  EXPECT_EQ(list.clips[0].aliases, (Strings{"006i", "NOTE"}));
  EXPECT_EQ(list.clips[1].aliases, Strings{"006I"});
}

TEST(Edl, AReelThatReplacesSeveralStaysAndIsReported)
{
  const List list = readWhole(event("001", "006I V C") + "FINAL CUT PRO REEL: 006-I REPLACED BY: 006I\n"
                                                         "FINAL CUT PRO REEL: 006_I REPLACED BY: 006I\n"
                                                         "FINAL CUT PRO REEL: 006-i REPLACED BY: 006I\n");
  EXPECT_EQ(reels(list), Strings{"006I"});
  ASSERT_EQ(list.ambiguous.size(), 1u);
  EXPECT_EQ(list.ambiguous[0].reason, "the name replaces several reels of the list");
  EXPECT_EQ(list.ambiguous[0].names, (Strings{"006-I", "006_I"}));
}

TEST(Edl, ReelNoteIsTheNameOnlyIfTheReelTextIsCut)
{
  const List cut = readWhole(event("001", "SR0071 A2 C") + "* REEL: SR0071_DAY03\n" + event("002", "SR007 A2 C"));
  EXPECT_EQ(reels(cut), (Strings{"SR0071_DAY03", "SR007"}));
  EXPECT_EQ(cut.clips[0].aliases, Strings{"SR0071"});
  const List column = readWhole(event("001", "SR007 A2 C") + "* REEL: SR007_DAY03\n" + event("002", "B001C002 V C") +
                                "* REEL: LUT_NIGHT\n");
  EXPECT_EQ(reels(column), (Strings{"SR007", "B001C002"}));
  EXPECT_EQ(column.clips[0].aliases, Strings{"SR007_DAY03"});
}

TEST(Edl, ReelIsClipMakesNoReel)
{
  const List list = readWhole(event("001", "KASS1 A1234V C") + "* REEL RC100009 IS CLIP 28661.mov\n");
  EXPECT_EQ(reels(list), Strings{"KASS1"});
  EXPECT_EQ(list.clips[0].clipName, "28661.mov");
  EXPECT_EQ(list.clips[0].aliases, Strings{"RC100009"});
}

TEST(Edl, ACutNameThatFitsSeveralSourcesStaysAndIsReportedOnce)
{
  const List list = readWhole(event("001", "A001 V C") + event("002", "a001 V C") +
                              "* REEL: NOTE\n"
                              ">>> SOURCE A001_ONE A001 id1\n>>> SOURCE A001_TWO A001 id2\n");
  EXPECT_EQ(reels(list), (Strings{"A001", "A001"}));
  EXPECT_EQ(list.clips[0].aliases, Strings{}) << "they are names of other sources";
  ASSERT_EQ(list.ambiguous.size(), 1u);
  EXPECT_EQ(list.ambiguous[0].reel, "A001");
  EXPECT_EQ(list.ambiguous[0].reason, "the name is cut and fits several sources of the list");
  EXPECT_EQ(list.ambiguous[0].names, (Strings{"A001_ONE", "A001_TWO"}));
  EXPECT_EQ(list.ambiguous[0].sourceIds, (Strings{"id1", "id2"}));
}

TEST(Edl, SourcesThatShareANameAreTwoReelsAndReported)
{
  const List list = readWhole(event("001", "GFX V C") + event("002", "GFX_L V C") + event("003", "B V C") +
                              ">>> SOURCE GFX_LONG GFX id1\n>>> SOURCE GFX_LONG GFX_L id2\n>>> SOURCE B B id3\n"
                              ">>> SOURCE C C id4\n>>> SOURCE C C id5\n");
  EXPECT_EQ(reels(list), (Strings{"GFX_LONG", "GFX_L", "B"}));
  ASSERT_EQ(list.ambiguous.size(), 1u) << "C is no reel of this list";
  EXPECT_EQ(list.ambiguous[0].reel, "GFX_LONG");
  EXPECT_EQ(list.ambiguous[0].reason, "several sources of the list have the name");
  EXPECT_EQ(list.ambiguous[0].names, (Strings{"GFX_LONG", "GFX_L"}));
  EXPECT_EQ(list.ambiguous[0].sourceIds, (Strings{"id1", "id2"}));
}

TEST(Edl, SpellingsThatDifferInCaseAreOneReel)
{
  const List list =
      readWhole(event("001", "B014c003 V C") + event("002", "B014C003 V C") + event("003", "B014C003 V C"));
  EXPECT_EQ(reels(list), Strings(3, "B014c003"));
  ASSERT_EQ(list.spellings.size(), 1u);
  EXPECT_EQ(list.spellings[0].reel, "B014c003");
  EXPECT_EQ(list.spellings[0].other, "B014C003");
}

TEST(Edl, TabsInsideNamesBecomeBlanks)
{
  const List list = readWhole(event("001", "A\tB V C") + "* FROM CLIP NAME: x\ty\n");
  EXPECT_EQ(reels(list), Strings{"A B"});
  EXPECT_EQ(list.clips[0].clipName, "x y");
}

TEST(Edl, SourceFileOrReelNoteAxNamesNoSource)
{
  const List list = readWhole(event("001", "AX V C") + "* FROM CLIP NAME: REALNAME\n* SOURCE FILE: AX\n" +
                              event("002", "TAPE9 V C") + "* REEL: AX\n");
  EXPECT_EQ(reels(list), (Strings{"REALNAME", "TAPE9"}));
  EXPECT_TRUE(list.specials.empty());
}

TEST(Edl, ControlCharactersInNamesCostTheirEvent)
{
  const List list =
      readWhole("TITLE: A \x1B CUT\n" +
                event("001", "A\x01"
                             "B V C") +
                event("002", "\x1B[31mA V C") + event("003", "A V C") + "* FROM CLIP NAME: x\x7Fy\n* COMMENT: z\x01\n" +
                event("004", "A V C") + "* SOURCE FILE: f\x02\n" + event("005", "A V C") + "* REEL: A\vB\n" +
                event("006", "B V C") + "* COMMENT: \x01\n" + event("007", "C1\x02 V C"));
  EXPECT_EQ(list.title, "A \\x1b CUT");
  EXPECT_EQ(reels(list), Strings{"B"});
  ASSERT_EQ(list.rejected.size(), 6u);
  EXPECT_EQ(list.rejected[0].line, 2);
  EXPECT_EQ(list.rejected[0].text, "001  A\\x01B V C " + anyTimecodes);
  EXPECT_EQ(list.rejected[0].reason, "reel 'A\\x01B' holds a control character (\\x01)");
  EXPECT_EQ(list.rejected[1].reason, "reel '\\x1b[31mA' holds a control character (\\x1b)");
  EXPECT_EQ(list.rejected[2].line, 4);
  EXPECT_EQ(list.rejected[2].reason, "clip name 'x\\x7fy' holds a control character (\\x7f)");
  EXPECT_EQ(list.rejected[3].reason, "source file 'f\\x02' holds a control character (\\x02)");
  EXPECT_EQ(list.rejected[4].reason, "other name of the reel 'A\\x0bB' holds a control character (\\x0b)");
  EXPECT_EQ(list.rejected[5].reason, "reel 'C1\\x02' holds a control character (\\x02)");
}

TEST(Edl, ControlCharactersInOtherFieldsAreNotFields)
{
  const List list =
      readWhole(event("001", "A V\x01 C") + "002  A V C 01:00:00:00\x01 01:00:01:00 10:00:00:00 10:00:01:00\n");
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].reason, "unknown channels 'V\\x01'");
  EXPECT_EQ(list.rejected[1].reason, "source in '01:00:00:00\\x01' is not a timecode (not hh:mm:ss:ff)");
}

TEST(Edl, ControlCharactersInTheTablesCostTheirLine)
{
  const List list =
      readWhole(event("001", "A V C") + ">>> SOURCE A\x01LONG A id\nFINAL CUT PRO REEL: A\x02 REPLACED BY: A\n");
  EXPECT_EQ(reels(list), Strings{"A"});
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].reason, "source row with a control character (\\x01)");
  EXPECT_EQ(list.rejected[1].reason, "replaced reel with a control character (\\x02)");
}

TEST(Edl, PaddingAroundLinesIsRemoved)
{
  const List list = readWhole(std::string("\f\0", 2) + "TITLE: X\x1A\n" + "\f\n" + std::string("\0\0 ", 3) +
                              event("001", "A V C") + std::string("* FROM CLIP NAME: a\0 \0\n", 23));
  EXPECT_EQ(list.title, "X");
  EXPECT_EQ(reels(list), Strings{"A"});
  EXPECT_EQ(clipNames(list), Strings{"a"});
  EXPECT_EQ(list.tally.blank, 1);
}

TEST(Edl, NamesOfMoreThan2047BytesCostTheirEvent)
{
  const List list = readWhole(event("001", "AX V C") + "* SOURCE FILE: " + std::string(2048, 'f') + "\n" +
                              event("002", "AX V C") + "* SOURCE FILE: " + std::string(2047, 'f') + "\n" +
                              event("003", "A V C") + "* FROM CLIP NAME: " + std::string(2048, 'n') + "\n");
  EXPECT_EQ(list.clips.size(), 1u);
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].line, 1);
  EXPECT_EQ(list.rejected[0].text, "001  AX V C " + anyTimecodes);
  EXPECT_EQ(list.rejected[0].reason, "source file '" + std::string(40, 'f') + "...' has 2048 bytes (at most 2047)");
  EXPECT_EQ(list.rejected[1].line, 5);
  EXPECT_EQ(list.rejected[1].reason, "clip name '" + std::string(40, 'n') + "...' has 2048 bytes (at most 2047)");
}

TEST(Edl, AReplacedReelOfMoreThan2047BytesIsRejected)
{
  const List list =
      readWhole(event("001", "A V C") + "FINAL CUT PRO REEL: " + std::string(2048, 'r') + " REPLACED BY: A\n");
  EXPECT_EQ(reels(list), Strings{"A"});
  EXPECT_EQ(list.rejected.at(0).reason,
            "replaced reel '" + std::string(40, 'r') + "...' has 2048 bytes (at most 2047)");
}

TEST(Edl, ATitleOfAnyLengthIsShownCut)
{
  EXPECT_EQ(readWhole("TITLE: " + std::string(1001, 't') + "\n" + event("001", "A V C")).title,
            std::string(1000, 't') + "...");
}

TEST(Edl, ReversedEventsAndMidnightAreKeptWithAWarning)
{
  const List list = readWhole("001  A V C 02:00:00:00 01:00:00:00 10:00:00:00 10:00:01:00\nM2 A -025.0 02:00:00:00\n"
                              "002  B V C 23:59:50:00 00:00:10:00 10:00:01:00 10:00:21:00\n"
                              "003  BL V C 00:00:01:00 00:00:00:00 10:00:21:00 10:00:22:00\n");
  EXPECT_EQ(reels(list), (Strings{"A", "B"}));
  EXPECT_TRUE(list.rejected.empty());
  ASSERT_EQ(list.warnings.size(), 2u);
  EXPECT_EQ(list.warnings[0].line, 1);
  EXPECT_EQ(list.warnings[0].text, "001  A V C 02:00:00:00 01:00:00:00 10:00:00:00 10:00:01:00");
  EXPECT_EQ(list.warnings[1].line, 3);
}

TEST(Edl, SourceRowsOfWhichNoUseCanBeMadeAreRejected)
{
  const List list = readWhole(">>> SOURCE NOBODY\n" + event("001", "A001 V C") + "* REEL: NOTE\n" +
                              event("002", "B001 V C") + event("003", "B001_X V C") +
                              ">>> SOURCE A001\n>>> SOURCE C001\n>>> SOURCE B001_LONG B001\n>>> SOURCE B001_X OTHER\n"
                              ">>> SOURCE D001_LONG D001\n>>> SOURCE E001 E001 id5\n");
  EXPECT_EQ(reels(list), (Strings{"A001", "B001_LONG", "B001_X"})) << "a single name is that reel's own";
  ASSERT_EQ(list.rejected.size(), 4u);
  EXPECT_EQ(list.rejected[0].line, 1);
  EXPECT_EQ(list.rejected[0].text, ">>> SOURCE NOBODY");
  EXPECT_EQ(list.rejected[0].reason, "source row with one name, and no event has the reel 'NOBODY'");
  EXPECT_EQ(list.rejected[1].line, 7);
  EXPECT_EQ(list.rejected[1].reason, "source row with one name, and no event has the reel 'C001'");
  EXPECT_EQ(list.rejected[2].line, 9);
  EXPECT_EQ(list.rejected[2].reason,
            "source row without an id, and 'B001_X' and 'OTHER' are not two forms of one name");
  EXPECT_EQ(list.rejected[3].line, 10);
  EXPECT_EQ(list.rejected[3].reason, "source row without an id, and no event has the reels 'D001_LONG' and 'D001'");
  EXPECT_EQ(list.tally.statements, 3);
  EXPECT_EQ(list.tally.headers, 0);
}

TEST(Edl, AProblemThatTheWriterReportsIsAWarning)
{
  const List list = readWhole("001  R V C 01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                              "* PROBLEM WITH EDIT: CLIP HAD NO REEL NAME.\n");
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].line, 2);
  EXPECT_EQ(list.warnings[0].text, "* PROBLEM WITH EDIT: CLIP HAD NO REEL NAME.");
  EXPECT_EQ(list.warnings[0].reason, "the program that wrote the list reports a problem with the event above");
  EXPECT_EQ(list.clips.size(), 1u);
}

TEST(Edl, AWrappedClipNameIsWhole)
{
  std::string note = "* FROM CLIP NAME:  ";
  note += std::string(80 - note.size(), 'n');
  const List list = readWhole(event("001", "A V C") + note + "\n* and more\n* SOURCE FILE: f\n");
  EXPECT_EQ(list.clips[0].clipName, note.substr(19) + "and more");
  EXPECT_EQ(list.clips[0].sourceFile, "f");
}

TEST(Edl, ChannelTenInOneEventMakesTwelveAChannelInAll)
{
  EXPECT_EQ(readWhole(event("001", "A A12 C")).clips[0].audioChannels, 2);
  EXPECT_EQ(readWhole(event("001", "A A12 C") + event("002", "A A10 C")).clips[0].audioChannels, 1);
}

TEST(Edl, OneLineOfMegabytesCostsThatLine)
{
  const std::string many(std::size_t{4} << 20, 'R');
  const List list =
      readWhole(event("001", "A V C") + event("002", many + " V C") + "003 " + many + "\n" + event("004", "B V C"));
  EXPECT_EQ(reels(list), (Strings{"A", "B"}));
  ASSERT_EQ(list.rejected.size(), 2u);
  EXPECT_EQ(list.rejected[0].text.size(), 1003u);
  EXPECT_EQ(list.rejected[0].reason,
            "reel '" + std::string(40, 'R') + "...' has " + std::to_string(many.size()) + " characters (at most 129)");
}

TEST(Edl, MarkersWithoutAStarAreNotes)
{
  const List list = readWhole(event("001", "A V C") + "LOC: 00:00:01:00 YELLOW X|D:464\n--\n" + event("002", "B V C") +
                              "|C:Blue |M:m |D:1\n");
  EXPECT_EQ(reels(list), (Strings{"A", "B"}));
  EXPECT_TRUE(list.rejected.empty());
  EXPECT_EQ(list.tally.notes, 3);
}

TEST(Edl, FileOfNotesIsAnEmptyList)
{
  const List list = readWhole("* a note\n|C:Blue |M:m |D:1\n");
  EXPECT_TRUE(list.clips.empty());
  EXPECT_EQ(list.tally.notes, 2);
}

TEST(Edl, OneReelTextForAllClipsIsADoubt)
{
  const std::string two = event("001", "001 V C") + event("002", "001 V C");
  EXPECT_TRUE(readWhole(two).ambiguous.empty());
  const List list = readWhole(two + event("003", "001 V C"));
  ASSERT_EQ(list.ambiguous.size(), 1u);
  EXPECT_EQ(list.ambiguous[0].reel, "001");
  EXPECT_TRUE(readWhole(two + event("003", "B V C")).ambiguous.empty());
}

TEST(Edl, TwoOwnNamesOfOneReelTextAreTwoReels)
{
  const List list =
      readWhole(event("001", "FKI_LEAD V C") + "* SOURCE FILE: FKI_LEADER_HEAD.MOV\n" + event("002", "FKI_LEAD V C") +
                "* SOURCE FILE: FKI_LEADER_TAIL.MOV\n" + event("003", "FKI_LEAD V C"));
  EXPECT_EQ(reels(list), (Strings{"FKI_LEADER_HEAD.MOV", "FKI_LEADER_TAIL.MOV", "FKI_LEAD"}));
  EXPECT_EQ(list.clips[0].evidence, NameEvidence::SourceFile);
  EXPECT_FALSE(list.clips[0].mayBeCut);
  EXPECT_TRUE(list.clips[2].mayBeCut);
}

TEST(Edl, SourceFilesBehindAReelTextThatIsNotCutAreADoubt)
{
  const std::string one = event("001", "ACC112   V C") + "* SOURCE FILE: ACC112 WARBIRDS\n";
  EXPECT_TRUE(readWhole(one).ambiguous.empty());
  const List list = readWhole(one + event("002", "ACC112   V C") + "* SOURCE FILE: ACC112 TAKE 2\n");
  EXPECT_EQ(reels(list), (Strings{"ACC112", "ACC112"}));
  ASSERT_EQ(list.ambiguous.size(), 1u);
  EXPECT_EQ(list.ambiguous[0].names, (Strings{"ACC112 WARBIRDS", "ACC112 TAKE 2"}));
}

TEST(Edl, SourceIdsStayWithTheClip)
{
  const List list = readWhole(
      event("001", "A001C001 V C") + event("002", "B V C") + event("003", "C1 V C") +
      ">>> SOURCE A001C001_LONG A001C001 060a2b340101010101010f00-13-00-00-00-{53c08d51-33fd-b737-060e2b347f7f2a80}\n"
      "* SOURCE FILE: A001C001_LONG_AND_WHOLE\n>>> SOURCE B B id2\n>>> SOURCE B B id3\n");
  EXPECT_EQ(list.clips.at(0).reel, "A001C001_LONG_AND_WHOLE");
  EXPECT_EQ(list.clips.at(0).sourceId, "060a2b340101010101010f00-13-00-00-00-{53c08d51-33fd-b737-060e2b347f7f2a80}");
  EXPECT_EQ(list.clips.at(1).sourceId, "") << "the table does not say which of the two";
  EXPECT_EQ(list.clips.at(2).sourceId, "");
  EXPECT_EQ(readWhole(event("001", "A V C") + ">>> SOURCE A A 4919975f.793b8d33\n").clips.at(0).sourceId, "")
      << "it counts only within its list";
}

TEST(Edl, SourceIdsOfAReelFromTheMapStayWithTheClip)
{
  const std::string id = "060a2b340101010101010f00-13-00-00-00-{53c08d51-33fd-b737-060e2b347f7f2a80}";
  const std::string row = ">>> SOURCE A A " + id + "\n";
  const Clip clip = readWhole("* REEL MAP: A = A001\n" + event("001", "A V C") + row).clips.at(0);
  EXPECT_EQ(clip.reel, "A001");
  EXPECT_EQ(clip.sourceId, id);
  EXPECT_EQ(
      readWhole("* REEL MAP: A = A001\n* REEL MAP: A = B001\n" + event("001", "A V C") + row).clips.at(0).sourceId, "")
      << "the map does not say which reel has the id";
}

} // namespace
