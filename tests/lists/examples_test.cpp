// SPDX-License-Identifier: Apache-2.0
//
// The lists in examples/ show what the documents promise.
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "lists/list.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

List readExample(const std::string& name)
{
  const std::string bytes = fileBytes(std::string(REELDB_EXAMPLES) + "/" + name);
  EXPECT_FALSE(bytes.empty()) << name;
  List list = read(bytes);
  EXPECT_EQ(accountedLines(list), list.tally.lines);
  return list;
}

Strings specials(const List& list)
{
  Strings result;
  for (const Special& special : list.specials)
    result.push_back(special.text + ": " + special.reason);
  return result;
}

TEST(Examples, TheCutListHasEveryKindOfSource)
{
  const List list = readExample("cut-list.edl");
  EXPECT_EQ(list.format, Format::Edl);
  EXPECT_EQ(list.title, "HARBOUR LIGHT REEL 1 CUT 4");
  EXPECT_EQ(distinctReels(list),
            (std::set<std::string>{"B014C003_210607_H1KV", "PIER CAM 2", "\xC3\x86r\xC3\xB8-F\xC3\x86RGE 7",
                                   "K\xC3\x9CSTE_02", "A021C011_210609_H1KV", "lighthouse plan (final).tif",
                                   "Archive 1958 print", "SR007", "ARCHIVE1", "006-I", "A021C012_210609_H1KV",
                                   "DRONE_A", "B015C001_210607_H1KV", "credits_roll.mov"}));
  EXPECT_EQ(list.clips.size(), 17u);
  EXPECT_EQ(specials(list), (Strings{"BARS: colour bars", "BL: black", "AX: AX without a clip name or source file",
                                     "TITLES*2: a star denotes internally generated material", "GEN: generated"}));
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].line, 48);
  EXPECT_EQ(list.rejected[0].reason, "source in '07:61:00:00' is not a timecode (minutes above 59)");
  ASSERT_EQ(list.spellings.size(), 1u);
  EXPECT_EQ(list.spellings[0].other, "b014c003_210607_h1kv");
  ASSERT_EQ(list.ambiguous.size(), 1u);
  EXPECT_EQ(list.ambiguous[0].reel, "DRONE_A");
  EXPECT_EQ(list.ambiguous[0].sourceIds.size(), 2u);
}

TEST(Examples, TheCutListsWrappedNoteAndDissolveAreWhole)
{
  const List list = readExample("cut-list.edl");
  std::set<std::string> seen;
  for (const Clip& clip : list.clips) {
    if (clip.line == 50)
      seen.insert(clip.clipName);
    if (clip.line == 17 || clip.line == 18)
      seen.insert(clip.reel + " " + clip.clipName + " " + clip.sourceFile);
  }
  EXPECT_EQ(seen,
            (std::set<std::string>{"Morning at the quay: fishing boats come in one after the other, take two of three",
                                   "K\xC3\x9CSTE_02 Leuchtturm au\xC3\x9F"
                                   "en KUESTE_02.MXF",
                                   "A021C011_210609_H1KV 4C-2 A021C011_210609_H1KV"}));
}

TEST(Examples, TheLogHasEveryKindOfRow)
{
  const List list = readExample("camera-log.ale");
  EXPECT_EQ(list.format, Format::Ale);
  EXPECT_EQ(distinctReels(list), (std::set<std::string>{"A021C010_210609_H1KV", "A021C011_210609_H1KV", "006-I",
                                                        "\xC3\x86r\xC3\xB8-F\xC3\x86RGE 7", "quay timelapse.mov",
                                                        "slate_0009.jpg", "SR007", "SR008"}));
  EXPECT_EQ(specials(list), (Strings{"BARS: colour bars", "COMP*1: a star denotes internally generated material",
                                     "Lost: no tape and no source file"}));
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].reason, "End '06:10:75:00' is not a timecode (seconds above 59)");
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].line, 18);
  EXPECT_EQ(list.warnings[0].reason, "no 'Start', no 'End' (kept without them)");
  ASSERT_EQ(list.spellings.size(), 1u);
  EXPECT_EQ(list.spellings[0].other, "a021c011_210609_h1kv");
}

TEST(Examples, TheLatin1ListWithCrEndsIsReadAsUtf8)
{
  const std::string bytes = fileBytes(std::string(REELDB_EXAMPLES) + "/latin1-bars.edl");
  EXPECT_EQ(bytes.find('\n'), std::string::npos) << "its lines end with CR";
  EXPECT_TRUE(bytes.ends_with('\x1A'));
  const List list = readExample("latin1-bars.edl");
  EXPECT_EQ(list.title, "B\xC3\x84NDER F\xC3\x9CR DIE MAZ");
  EXPECT_EQ(distinctReels(list), (std::set<std::string>{"CAF\xC3\x89 1", "M\xC3\x9CLLER"}));
  EXPECT_EQ(clipNames(list), (Strings{"Caf\xC3\xA9, Theke", "Caf\xC3\xA9, Theke", "Frau M\xC3\xBCller", ""}));
  EXPECT_EQ(specials(list), (Strings{"BARS: colour bars", "BLACK: black"}));
  ASSERT_EQ(list.rejected.size(), 1u);
  EXPECT_EQ(list.rejected[0].line, 11);
}

} // namespace
