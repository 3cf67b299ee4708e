// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_event.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

EventLine fields(std::string_view number, std::string_view reel, Transition transition,
                 std::string_view recordIn = "10:00:00:00")
{
  EventLine line;
  line.number = number;
  line.reel = reel;
  line.channels = "V";
  line.transition = transition;
  line.timecodes[2] = recordIn;
  return line;
}

struct Line {
  const char* reel;
  Transition transition;
};

struct Said {
  NoteKind kind;
  const char* value;
};

/// "clip name|source file|reel note" of each line.
Strings deal(const std::vector<Line>& lines, const std::vector<Said>& notes)
{
  EdlEvent event;
  int number = 0;
  for (const Line& line : lines)
    event.add(++number, "", fields("001", line.reel, line.transition));
  for (const Said& said : notes)
    event.note({said.kind, said.value, ""});
  Strings result;
  for (const EventSource& source : event.finish())
    result.push_back(source.clipName + "|" + source.sourceFile + "|" + source.reelNote);
  return result;
}

using enum Transition;
constexpr auto from = NoteKind::FromClipName;
constexpr auto to = NoteKind::ToClipName;
constexpr auto keyName = NoteKind::KeyClipName;
constexpr auto file = NoteKind::SourceFile;

TEST(EdlEvent, TakesTransitionsOfItsNumber)
{
  EdlEvent event;
  EXPECT_FALSE(event.takes(fields("001", "A", Into)));
  event.add(1, "", fields("001", "A", Cut));
  EXPECT_TRUE(event.takes(fields("001", "B", Into)));
  EXPECT_TRUE(event.takes(fields("001", "B", Key)));
  EXPECT_TRUE(event.takes(fields("001", "B", Background)));
  EXPECT_FALSE(event.takes(fields("002", "B", Into)));
  event.note({from, "a", ""});
  EXPECT_TRUE(event.takes(fields("001", "B", Into)));
}

TEST(EdlEvent, TakesACutOnlyAsTheOtherTracksOfTheCutAbove)
{
  EdlEvent event;
  event.add(1, "", fields("001", "A", Cut));
  EXPECT_TRUE(event.takes(fields("001", "a", Cut)));
  EXPECT_FALSE(event.takes(fields("001", "B", Cut)));
  EXPECT_FALSE(event.takes(fields("001", "A", Cut, "10:00:05:00")));
  event.note({NoteKind::Other, "", ""});
  EXPECT_FALSE(event.takes(fields("001", "A", Cut)));
}

TEST(EdlEvent, TakesNoMoreThan16Lines)
{
  EdlEvent event;
  for (int i = 0; i < 16; ++i) {
    EXPECT_TRUE(i == 0 || event.takes(fields("001", "A", Into)));
    event.add(i, "", fields("001", "A", Into));
  }
  EXPECT_FALSE(event.takes(fields("001", "A", Into)));
}

TEST(EdlEvent, FinishKeepsLinesAndEmptiesTheEvent)
{
  EdlEvent event;
  event.add(4, "text", fields("001", "A", Cut));
  event.note({from, "a", ""});
  const auto sources = event.finish();
  ASSERT_EQ(sources.size(), 1u);
  EXPECT_EQ(sources[0].line, 4);
  EXPECT_EQ(sources[0].text, "text");
  EXPECT_EQ(sources[0].fields.reel, "A");
  EXPECT_TRUE(event.empty());
  event.add(5, "", fields("002", "B", Cut));
  EXPECT_TRUE(event.takes(fields("002", "B", Cut))) << "the note was of the event before";
  EXPECT_EQ(event.finish().at(0).clipName, "");
}

TEST(EdlEvent, NamesOfADissolveGoFromAndTo)
{
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{from, "a"}, {to, "b"}}), (Strings{"a||", "b||"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{to, "b"}, {from, "a"}}), (Strings{"a||", "b||"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{to, "b"}}), (Strings{"||", "b||"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{from, "a"}}), (Strings{"a||", "||"}));
}

TEST(EdlEvent, ASecondFromNameIsForTheSideWithout)
{
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{from, "a"}, {from, "b"}}), (Strings{"a||", "b||"}));
}

TEST(EdlEvent, NamesOfAKeyGoToBackgroundAndKey)
{
  EXPECT_EQ(deal({{"AX", Background}, {"AX", Key}}, {{from, "a"}, {keyName, "k"}}), (Strings{"a||", "k||"}));
  EXPECT_EQ(deal({{"AX", Background}, {"AX", Key}}, {{from, "a"}, {to, "k"}}), (Strings{"a||", "k||"}));
}

TEST(EdlEvent, BlackPassesItsNameOn)
{
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{from, "b"}}), (Strings{"||", "b||"}));
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{from, "BL"}, {to, "b"}}), (Strings{"BL||", "b||"}));
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{from, "BL"}}), (Strings{"BL||", "||"}));
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{from, "a"}, {to, "b"}}), (Strings{"a||", "b||"}));
  EXPECT_EQ(deal({{"A", Cut}, {"BL", Into}}, {{from, "a"}, {to, "BL"}}), (Strings{"a||", "BL||"}));
}

TEST(EdlEvent, ALineAloneTakesItsOwnNameThenAnyOther)
{
  EXPECT_EQ(deal({{"A", Cut}}, {{from, "a"}, {to, "b"}}), Strings{"a||"});
  EXPECT_EQ(deal({{"A", Cut}}, {{to, "b"}}), Strings{"b||"});
  EXPECT_EQ(deal({{"B", Into}}, {{from, "a"}, {to, "b"}}), Strings{"b||"});
  EXPECT_EQ(deal({{"B", Into}}, {{from, "b"}}), Strings{"b||"});
  EXPECT_EQ(deal({{"B", Key}}, {{keyName, "k"}, {from, "a"}}), Strings{"k||"});
}

TEST(EdlEvent, TwoSourceFilesGoInOrder)
{
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{from, "a"}, {file, "fa"}, {to, "b"}, {file, "fb"}}),
            (Strings{"a|fa|", "b|fb|"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{from, "a"}, {to, "b"}, {file, "fa"}, {file, "fb"}}),
            (Strings{"a|fa|", "b|fb|"}));
}

TEST(EdlEvent, TwoSourceFilesGoInOrderEvenToBlackAndToOneReel)
{
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{file, "x"}, {file, "f"}}), (Strings{"|x|", "|f|"}));
  EXPECT_EQ(deal({{"A", Cut}, {"A", Into}}, {{file, "x"}, {file, "f"}}), (Strings{"|x|", "|f|"}));
}

TEST(EdlEvent, OneSourceFileIsForTheFirstSide)
{
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{from, "a"}, {to, "b"}, {file, "f"}}), (Strings{"a|f|", "b||"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{file, "f"}}), (Strings{"|f|", "||"}));
}

TEST(EdlEvent, SingleSourceFileSkipsBlackAndTheNamelessSide)
{
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{to, "b"}, {file, "f"}}), (Strings{"||", "b|f|"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{to, "b"}, {file, "f"}}), (Strings{"||", "b|f|"}));
}

TEST(EdlEvent, ANullSourceFileIsBlacksOwn)
{
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{to, "b"}, {file, ""}}), (Strings{"||", "b||"}));
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{to, "b"}, {file, ""}, {file, "f"}}), (Strings{"||", "b|f|"}));
}

TEST(EdlEvent, OneSourceFileServesBothSidesOfTheSameReel)
{
  EXPECT_EQ(deal({{"A", Cut}, {"a", Into}}, {{from, "x"}, {to, "y"}, {file, "f"}}), (Strings{"x|f|", "y|f|"}));
}

TEST(EdlEvent, AxSidesShareASourceFileOnlyAsTheSameClip)
{
  EXPECT_EQ(deal({{"AX", Cut}, {"AX", Into}}, {{from, "x"}, {to, "y"}, {file, "f"}}), (Strings{"x|f|", "y||"}));
  EXPECT_EQ(deal({{"AX", Cut}, {"AX", Into}}, {{from, "x"}, {to, "x"}, {file, "f"}}), (Strings{"x|f|", "x|f|"}));
}

TEST(EdlEvent, PathsGoByTheirSideAndAfterSourceFiles)
{
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{NoteKind::FromFile, "/a"}, {NoteKind::ToFile, "/b"}}),
            (Strings{"|/a|", "|/b|"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{file, "f"}, {NoteKind::FromFile, "/a"}}), (Strings{"|f|", "||"}));
  EXPECT_EQ(deal({{"AX", Cut}}, {{NoteKind::FromFile, "/a"}}), Strings{"|/a|"});
}

TEST(EdlEvent, ReelNotesGoInOrderOrToTheReelTheyLengthen)
{
  constexpr auto reel = NoteKind::Reel;
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{reel, "LA"}, {reel, "LB"}}), (Strings{"||LA", "||LB"}));
  EXPECT_EQ(deal({{"A", Cut}, {"B", Into}}, {{reel, "L"}}), (Strings{"||L", "||"}));
  EXPECT_EQ(deal({{"A001", Cut}, {"B002", Into}}, {{reel, "b002_long"}}), (Strings{"||", "||b002_long"}));
  EXPECT_EQ(deal({{"A", Cut}, {"A", Into}}, {{reel, "L"}}), (Strings{"||L", "||L"}));
  EXPECT_EQ(deal({{"BL", Cut}, {"B", Into}}, {{reel, "L"}}), (Strings{"||", "||L"}));
}

TEST(EdlEvent, ReelIsClipGivesAnAliasAndANameToTheNameless)
{
  EdlEvent event;
  event.add(1, "", fields("001", "A", Cut));
  event.note({NoteKind::ReelIsClip, "c.mov", "RC1"});
  auto sources = event.finish();
  EXPECT_EQ(sources.at(0).otherReel, "RC1");
  EXPECT_EQ(sources.at(0).clipName, "c.mov");

  event.add(1, "", fields("001", "A", Cut));
  event.note({from, "named", ""});
  event.note({NoteKind::ReelIsClip, "c.mov", "RC1"});
  sources = event.finish();
  EXPECT_EQ(sources.at(0).otherReel, "RC1");
  EXPECT_EQ(sources.at(0).clipName, "named");
}

TEST(EdlEvent, PictureAndSoundOfOneCutShareAllNotes)
{
  EXPECT_EQ(deal({{"A", Cut}, {"A", Cut}}, {{from, "a"}, {file, "f"}}), (Strings{"a|f|", "a|f|"}));
}

} // namespace
