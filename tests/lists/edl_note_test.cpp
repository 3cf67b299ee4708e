// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_note.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

std::vector<Note> notes(const std::vector<std::string>& lines)
{
  NoteJoiner joiner;
  std::vector<Note> result;
  for (const std::string& line : lines) {
    if (auto note = joiner.line(line))
      result.push_back(std::move(*note));
  }
  if (auto note = joiner.flush())
    result.push_back(std::move(*note));
  return result;
}

Note note(const std::string& line)
{
  return notes({line}).at(0);
}

TEST(IsNote, AStarInFront)
{
  EXPECT_TRUE(isNote("* X"));
  EXPECT_TRUE(isNote("  *X"));
  EXPECT_TRUE(isNote("*"));
  EXPECT_FALSE(isNote("X *"));
  EXPECT_FALSE(isNote(""));
}

TEST(Note, EveryKeyWithAndWithoutTheBlankAndInAnyCase)
{
  EXPECT_EQ(note("* FROM CLIP NAME:  A B ").kind, NoteKind::FromClipName);
  EXPECT_EQ(note("* FROM CLIP NAME:  A B ").value, "A B");
  EXPECT_EQ(note("*FROM CLIP NAME:A").kind, NoteKind::FromClipName);
  EXPECT_EQ(note("*FROM CLIP NAME:A").value, "A");
  EXPECT_EQ(note("   * FROM CLIP NAME: A").value, "A");
  EXPECT_EQ(note("* from clip name : A").kind, NoteKind::FromClipName);
  EXPECT_EQ(note("* TO CLIP NAME: A").kind, NoteKind::ToClipName);
  EXPECT_EQ(note("* KEY CLIP NAME: A").kind, NoteKind::KeyClipName);
  EXPECT_EQ(note("* SOURCE FILE: C:\\a\\b.mov").kind, NoteKind::SourceFile);
  EXPECT_EQ(note("* SOURCE FILE: C:\\a\\b.mov").value, "C:\\a\\b.mov");
  EXPECT_EQ(note("* FROM FILE: A").kind, NoteKind::FromFile);
  EXPECT_EQ(note("* FROM CLIP: A").kind, NoteKind::FromFile);
  EXPECT_EQ(note("* TO FILE: A").kind, NoteKind::ToFile);
  EXPECT_EQ(note("* TO CLIP: A").kind, NoteKind::ToFile);
  EXPECT_EQ(note("* REEL: A").kind, NoteKind::Reel);
}

TEST(Note, OtherNotesCarryNothing)
{
  for (const char* line : {"*", "**", "** FREEZE FRAME", "* LOC: 01:00:00:00 RED  X", "* ASC_SOP (1 1 1)(0 0 0)(1 1 1)",
                           "* FROM CLIP IS A STILL", "* REEL TO REEL", "* COMMENT: REEL: X", "* XFROM CLIP NAME: X"}) {
    EXPECT_EQ(note(line).kind, NoteKind::Other) << line;
    EXPECT_EQ(note(line).value, "") << line;
  }
}

TEST(Note, NullIsNotAValueAndTabsAreBlanks)
{
  EXPECT_EQ(note("* SOURCE FILE: (NULL)").kind, NoteKind::SourceFile);
  EXPECT_EQ(note("* SOURCE FILE: (NULL)").value, "");
  EXPECT_EQ(note("* SOURCE FILE:\ta\tb\x1B").value, "a b\x1B") << "for the clip to judge";
}

TEST(Note, ReelIsClipWithAndWithoutColon)
{
  for (const char* line : {"* REEL RC 1 IS CLIP a b.mov", "* REEL: RC 1 is clip a b.mov"}) {
    const Note read = note(line);
    EXPECT_EQ(read.kind, NoteKind::ReelIsClip) << line;
    EXPECT_EQ(read.reel, "RC 1") << line;
    EXPECT_EQ(read.value, "a b.mov") << line;
  }
}

/// A FROM CLIP NAME note of exactly `width` characters whose name is x and y in turns.
std::string wide(std::size_t width)
{
  std::string line = "* FROM CLIP NAME: ";
  while (line.size() < width)
    line += line.size() % 2 == 0 ? 'x' : 'y';
  return line;
}

TEST(NoteJoiner, LineOf80ColumnsContinuesInTheNext)
{
  const std::string first = wide(80);
  const auto read = notes({first, "* rest of it.mov", "* SOURCE FILE: f"});
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0].value, first.substr(18) + "rest of it.mov");
  EXPECT_EQ(read[1].value, "f");
}

TEST(NoteJoiner, TheBlankInColumn80IsKeptWrittenOrNot)
{
  const std::string first = wide(79);
  EXPECT_EQ(notes({first + " ", "* rest"}).at(0).value, first.substr(18) + " rest");
  EXPECT_EQ(notes({first, "* rest"}).at(0).value, first.substr(18) + " rest");
}

TEST(NoteJoiner, ColumnsAreCharacters)
{
  std::string line = wide(79);
  line += "\xC3\xBC";
  EXPECT_EQ(notes({line, "* rest"}).at(0).value, line.substr(18) + "rest");
}

TEST(NoteJoiner, AThirdLineJoinsWhenTheSecondIsFullToo)
{
  const std::string second = "* " + std::string(78, 'z');
  const auto read = notes({wide(80), second, "* end"});
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].value, wide(80).substr(18) + std::string(78, 'z') + "end");
}

TEST(NoteJoiner, AThirdLineDoesNotJoinWhenTheSecondIsShort)
{
  const auto read = notes({wide(80), "* Rest", "* other"});
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0].value, wide(80).substr(18) + "Rest");
}

TEST(NoteJoiner, CapitalsAloneDoNotOpenANote)
{
  for (const char* next : {"REST", "Rest: of it", "rest: of it"})
    EXPECT_EQ(notes({wide(80), std::string("* ") + next}).at(0).value, wide(80).substr(18) + next);
}

TEST(NoteJoiner, LineContinuesIfTheNextWordDidNotFit)
{
  const auto joined = [](std::size_t width, const std::string& next) {
    return notes({wide(width), "* " + next + " of it"}).at(0).value == wide(width).substr(18) + " " + next + " of it";
  };
  EXPECT_TRUE(joined(79, "r"));
  EXPECT_TRUE(joined(76, "rest"));
  EXPECT_FALSE(joined(75, "rest")) << "76 to 80 were free for it";
  EXPECT_TRUE(joined(75, "rest\xC3\xBC")) << "columns are characters";
  EXPECT_TRUE(joined(60, std::string(20, 'r')));
  EXPECT_FALSE(joined(60, std::string(19, 'r')));
  EXPECT_FALSE(joined(59, std::string(70, 'r'))) << "no line is that short because of its wrapping";
}

TEST(NoteJoiner, LongerLineContinuesToo)
{
  for (std::size_t width : {82u, 120u})
    EXPECT_EQ(notes({wide(width), "* rest"}).at(0).value, wide(width).substr(18) + " rest") << width;
  EXPECT_EQ(notes({wide(82) + " ", "* rest"}).at(0).value, wide(82).substr(18) + " rest") << "one blank is enough";
}

TEST(NoteJoiner, AWideLineWithNothingBehindTheStarTakesWhatFollows)
{
  EXPECT_EQ(notes({std::string(79, ' ') + "*", "* FROM CLIP NAME: A"}).at(1).value, "A");
  EXPECT_EQ(notes({std::string(70, ' ') + "*", "* elevenchars"}).size(), 1u);
}

TEST(NoteJoiner, ANoteOfItsOwnDoesNotJoin)
{
  for (const char* next :
       {"* TO CLIP NAME: B", "* PATCH R: FROM SOURCE 1 TO RECORD 2", "* A12 VOL = +3.0 DB", "* Z_9: X", "*", "* ",
        "*nothing", "* BLEND, DISSOLVE", "* REEL X IS CLIP Y", "* ASC_SAT 1", "* * FREEZE FRAME", "** FREEZE FRAME"})
    EXPECT_EQ(notes({wide(80), next}).at(0).value, wide(80).substr(18)) << next;
}

TEST(NoteJoiner, NothingToFlushTwice)
{
  NoteJoiner joiner;
  EXPECT_FALSE(joiner.flush());
  EXPECT_FALSE(joiner.line("* REEL: A"));
  EXPECT_TRUE(joiner.flush());
  EXPECT_FALSE(joiner.flush());
}

TEST(ReportsProblem, OfNotesThatSayItOnly)
{
  EXPECT_TRUE(reportsProblem("* PROBLEM WITH EDIT: CLIP HAD NO REEL NAME."));
  EXPECT_TRUE(reportsProblem("  *problem with edit"));
  EXPECT_FALSE(reportsProblem("* COMMENT: PROBLEM WITH EDIT"));
  EXPECT_FALSE(reportsProblem("* FROM CLIP NAME: PROBLEM WITH EDIT"));
}

TEST(NoteJoiner, NamesWrappedBehind63CharactersArePutTogetherAsTheyAre)
{
  const std::string name = "ELIMINATION PROCESS WITH DRUMS AND STRINGS, LONG VERSION, TIME (BED NO DRONE).MP3";
  for (const char* key : {"* FROM CLIP NAME:  ", "* TO CLIP NAME:  ", "*FROM CLIP NAME: "})
    for (const char* end : {"", " "}) {
      NoteJoiner joiner;
      EXPECT_FALSE(joiner.line(key + name.substr(0, 63) + end));
      EXPECT_FALSE(joiner.line("* " + name.substr(63) + end));
      const auto note = joiner.flush();
      ASSERT_TRUE(note);
      EXPECT_EQ(note->value, name) << key;
    }
}

TEST(NoteJoiner, BlankAtTheEndOf63CharactersIsKept)
{
  const std::string name = std::string(58, 'A') + " BED" + " NO DRONE.MP3";
  NoteJoiner joiner;
  joiner.line("* FROM CLIP NAME:  " + name.substr(0, 63));
  joiner.line("* " + name.substr(63));
  EXPECT_EQ(joiner.flush()->value, name);
}

TEST(NoteJoiner, NameOverThreeLinesIsWhole)
{
  std::string name;
  for (int i = 0; i < 30; ++i)
    name += "WORD" + std::to_string(i);
  NoteJoiner joiner;
  joiner.line("* FROM CLIP NAME:  " + name.substr(0, 63));
  joiner.line("* " + name.substr(63, 63));
  joiner.line("* " + name.substr(126));
  EXPECT_EQ(joiner.flush()->value, name);
}

TEST(IsMarker, FieldsLocatorsAndRules)
{
  for (const char* line : {"|C:ResolveColorBlue |M:text |D:1", "DD509_0020|D:97", "LOC: 00:00:01:00 YELLOW X", " -- "})
    EXPECT_TRUE(isMarker(line)) << line;
  for (const char* line : {"", "a|b", "a|1:", "LOCATION: X", "- x", "|C"})
    EXPECT_FALSE(isMarker(line)) << line;
}

} // namespace
