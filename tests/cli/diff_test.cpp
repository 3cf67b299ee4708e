// SPDX-License-Identifier: Apache-2.0
#include <optional>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

std::string clip(int number, const std::string& reel, const std::string& in, const std::string& name)
{
  return event(number, reel, "V", in, "23:00:00:00") + "* FROM CLIP NAME: " + name + "\n";
}

class Diff : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("one.edl", clip(1, "A001", "01:00:00:00", "ONE") + clip(2, "A001", "02:00:00:00", "TWO") +
                              clip(3, "B001", "01:00:00:00", "THREE"));
    dir_.write("rushes.ale", "Heading\nFIELD_DELIM\tTABS\n\nColumn\nName\tTracks\tStart\tEnd\tTape\n\nData\n"
                             "shot\tV\t01:00:00:00\t01:00:05:00\tA001\n");
    ASSERT_EQ(reeldb({"import", "one.edl", "rushes.ale"}).code, 0);
  }

  /// The text of a diff whose exit code is that one.
  std::string text(Words words, int code = 1)
  {
    words.insert(words.begin(), "diff");
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  /// The diff as JSON, with the exit code that goes with it; the project keeps its bytes.
  Json diff(Words words, std::optional<int> code = {})
  {
    const std::string before = readFile("projects/main.reels");
    words.insert(words.begin(), {"diff", "--json"});
    const ProcessResult result = reeldb(words);
    const Json report = Json::parse(result.out);
    EXPECT_EQ(result.code, code.value_or(report.at("equal") ? 0 : 1));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(readFile("projects/main.reels"), before);
    return report;
  }
};

Words clipsOf(const Json& shots)
{
  Words names;
  for (const Json& shot : shots)
    names.push_back(shot.at("clip"));
  return names;
}

TEST_F(Diff, ListThatWasImportedHasNoDifferences)
{
  EXPECT_EQ(output({"diff", "one.edl"}), "no differences\n");
  EXPECT_EQ(output({"diff", "--gone", "one.edl", "rushes.ale"}), "no differences\n");
  EXPECT_EQ(diff({"one.edl"}), Json::parse(R"({"files": ["one.edl"], "equal": true, "reels_new": [], "reels_gone": null,
              "spellings": [], "names": [], "moved": [], "shots_added": [], "shots_gone": [], "rejected": [],
              "shots_trimmed": [], "shots_changed": [], "versions": [1]})"));
}

TEST_F(Diff, NewVersionReportsNewReelsNewShotsAndMissingShots)
{
  dir_.write("two.edl", clip(1, "A001", "01:00:00:00", "ONE") + clip(2, "A001", "03:00:00:00", "FOUR") +
                            clip(3, "C001", "01:00:00:00", "FIVE"));
  EXPECT_EQ(text({"two.edl"}), "1 reel new:\n"
                               "  C001\n"
                               "2 shots added:\n"
                               "  REEL  CLIP  TRACKS  SOURCE IN    SOURCE OUT   RECORD IN    RECORD OUT\n"
                               "  A001  FOUR  V       03:00:00:00  23:00:00:00  01:00:00:00  01:00:01:00\n"
                               "  C001  FIVE  V       01:00:00:00  23:00:00:00  01:00:00:00  01:00:01:00\n"
                               "1 shot no longer there:\n"
                               "  REEL  CLIP  TRACKS  SOURCE IN    SOURCE OUT   RECORD IN    RECORD OUT\n"
                               "  A001  TWO   V       02:00:00:00  23:00:00:00  01:00:00:00  01:00:01:00\n"
                               "two.edl: compared with all shots of its reels (the project keeps no earlier version of "
                               "it; --as LIST names one)\n");
  const Json report = diff({"two.edl"});
  EXPECT_EQ(report.at("equal"), false);
  EXPECT_EQ(report.at("reels_new"), Json::parse(R"([{"reel": "C001", "candidates": [], "perhaps": []}])"));
  EXPECT_EQ(clipsOf(report.at("shots_added")), (Words{"FOUR", "FIVE"}));
  EXPECT_EQ(clipsOf(report.at("shots_gone")), Words{"TWO"});
}

TEST_F(Diff, GoneReportsReelsThatNoFileNamesWithTheirShots)
{
  dir_.write("two.edl", clip(1, "A001", "01:00:00:00", "ONE") + clip(2, "A001", "02:00:00:00", "TWO"));
  EXPECT_EQ(diff({"two.edl"}).at("equal"), true);
  const Json report = diff({"--gone", "two.edl"});
  EXPECT_EQ(report.at("reels_gone"), Words{"B001"});
  EXPECT_EQ(clipsOf(report.at("shots_gone")), Words{"THREE"});
  EXPECT_NE(text({"--gone", "two.edl"}).find("1 reel gone:\n  B001\n"), std::string::npos);
}

TEST_F(Diff, SeveralFilesAreTakenTogether)
{
  dir_.write("a.edl", clip(1, "A001", "01:00:00:00", "ONE"));
  dir_.write("b.edl", clip(1, "A001", "02:00:00:00", "TWO") + clip(2, "B001", "01:00:00:00", "THREE"));
  EXPECT_EQ(diff({"--gone", "a.edl", "b.edl"}).at("equal"), true);
  EXPECT_EQ(clipsOf(diff({"a.edl"}).at("shots_gone")), Words{"TWO"});
}

TEST_F(Diff, LogIsComparedWithTheShotsOfLogs)
{
  dir_.write("new.ale", "Heading\nFIELD_DELIM\tTABS\n\nColumn\nName\tTracks\tStart\tEnd\tTape\n\nData\n"
                        "other\tV\t01:00:00:00\t01:00:05:00\tA001\n");
  const Json report = diff({"--gone", "new.ale"});
  EXPECT_EQ(clipsOf(report.at("shots_added")), Words{"other"});
  EXPECT_EQ(clipsOf(report.at("shots_gone")), Words{"shot"});
  EXPECT_EQ(report.at("reels_gone"), Words{});
}

TEST_F(Diff, OtherSpellingIsReportedAndMakesNoReel)
{
  dir_.write("two.edl", clip(1, "a001", "01:00:00:00", "ONE") + clip(2, "A001", "02:00:00:00", "TWO"));
  const Json report = diff({"two.edl"});
  EXPECT_EQ(report.at("reels_new"), Json::array());
  EXPECT_EQ(report.at("spellings"), Json::parse(R"([{"reel": "A001", "other": "a001"}])"));
  EXPECT_EQ(report.at("shots_added"), Json::array());
  EXPECT_EQ(report.at("shots_gone"), Json::array());
  dir_.write("two.edl", clip(1, "a001", "01:00:00:00", "ONE") + clip(2, "a001", "02:00:00:00", "TWO"));
  EXPECT_EQ(text({"two.edl"}).substr(0, 42), "same reel, other spelling:\n  a001 is A001\n");
}

TEST_F(Diff, OldNameOfAReelIsThatReel)
{
  ASSERT_EQ(reeldb({"rename", "B001", "C001_210609_H1KV"}).code, 0);
  EXPECT_EQ(output({"diff", "one.edl"}), "no differences\n");
  dir_.write("two.edl", clip(1, "B001", "01:00:00:00", "SIX"));
  EXPECT_EQ(text({"two.edl"}).find("reel new"), std::string::npos);
  EXPECT_NE(text({"two.edl"}).find("  B001 is C001_210609_H1KV (decided)\n"), std::string::npos);
}

TEST_F(Diff, ShotTwiceInTheListIsAddedOnce)
{
  dir_.write("two.edl", clip(1, "C001", "01:00:00:00", "X") + clip(2, "c001", "01:00:00:00", "X"));
  EXPECT_EQ(diff({"two.edl"}).at("shots_added").size(), 1u);
  EXPECT_EQ(diff({"two.edl", "two.edl"}).at("reels_new").size(), 1u);
}

TEST_F(Diff, RejectedLinesAreReportedAndMakeTheExitCodeFour)
{
  dir_.write("bad.edl", readFile("one.edl") + "004  A001  V  C  01:00:00:00\n");
  const ProcessResult result = reeldb({"diff", "bad.edl"});
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.out, "no differences\n");
  EXPECT_EQ(result.err, "reeldb: bad.edl: line 7 rejected: fewer than four timecodes (1) (004  A001  V  C  "
                        "01:00:00:00)\n");
  const Json report = diff({"bad.edl"}, 4);
  EXPECT_EQ(report.at("rejected").at(0).at("file"), "bad.edl");
  EXPECT_EQ(report.at("rejected").at(0).at("line"), 7);
}

TEST_F(Diff, UnchangedListAmongOthersOfItsReelsHasNoDifferences)
{
  for (const char* name : {"two.edl", "three.edl", "four.edl"})
    dir_.write(name, clip(1, "A001", "05:00:00:00", name) + clip(2, "B001", "05:00:00:00", name));
  output({"import", "two.edl", "three.edl", "four.edl"});
  for (const char* name : {"one.edl", "two.edl", "three.edl", "four.edl", "rushes.ale"})
    EXPECT_EQ(text({name}, 0), "no differences\n");
  EXPECT_EQ(diff({"one.edl", "three.edl"}).at("versions"), Json::parse("[1, 4]"));
}

TEST_F(Diff, NewVersionIsComparedWithItsListAlone)
{
  dir_.write("two.edl", clip(1, "A001", "05:00:00:00", "OTHER"));
  output({"import", "two.edl"});
  dir_.write("one.edl", clip(1, "A001", "01:00:00:05", "ONE") + clip(2, "A001", "02:00:00:00", "TWO") +
                            clip(3, "C001", "01:00:00:00", "FIVE"));
  const Json report = diff({"one.edl"});
  EXPECT_EQ(report.at("reels_new"), Json::parse(R"([{"reel": "C001", "candidates": [], "perhaps": []}])"));
  EXPECT_EQ(clipsOf(report.at("shots_added")), Words{"FIVE"});
  EXPECT_EQ(clipsOf(report.at("shots_gone")), Words{"THREE"});
  EXPECT_EQ(report.at("shots_trimmed").at(0).at("from").at("source_in"), "01:00:00:00");
  EXPECT_EQ(report.at("shots_trimmed").at(0).at("to").at("source_in"), "01:00:00:05");
  EXPECT_EQ(report.at("shots_changed"), Json::array());
  EXPECT_NE(text({"one.edl"})
                .find("1 shot trimmed:\n"
                      "  REEL  CLIP  TRACKS  SOURCE IN    SOURCE OUT   RECORD IN    RECORD OUT   WAS\n"
                      "  A001  ONE   V       01:00:00:05  23:00:00:00  01:00:00:00  01:00:01:00  "
                      "source in 01:00:00:00\n"),
            std::string::npos);
}

TEST_F(Diff, ListWithoutAVersionBesideOneWithAVersionIsComparedAlone)
{
  dir_.write("other.edl", clip(1, "C001", "05:00:00:00", "OTHER"));
  output({"import", "other.edl"});
  dir_.write("one.edl", readFile("one.edl") + clip(4, "C001", "01:00:00:00", "FIVE"));
  dir_.write("unknown.edl", clip(1, "B001", "01:00:00:00", "THREE"));
  const Json report = diff({"one.edl", "unknown.edl"});
  EXPECT_EQ(report.at("versions"), Json::parse("[1, null]"));
  EXPECT_EQ(clipsOf(report.at("shots_added")), Words{"FIVE"});
  EXPECT_EQ(clipsOf(report.at("shots_gone")), Words{}); // not OTHER, which is in neither list
}

TEST_F(Diff, ShotsAtAnotherPlaceOfTheCutAreADifference)
{
  std::string moved = readFile("one.edl");
  for (std::size_t at = 0; (at = moved.find("01:00:00:00 01:00:01:00", at)) != std::string::npos; ++at)
    moved.replace(at, 23, "09:00:00:00 09:00:01:00");
  dir_.write("one.edl", moved);
  const Json report = diff({"one.edl"});
  EXPECT_EQ(report.at("shots_changed").size(), 3u);
  EXPECT_EQ(report.at("shots_added"), Json::array());
  EXPECT_EQ(text({"one.edl"}).substr(0, 30), "3 shots elsewhere in the cut:\n");
}

TEST_F(Diff, WhatAShotWasIsNamed)
{
  std::string list = readFile("one.edl");
  const std::size_t cut = list.find("  C  ");
  ASSERT_NE(cut, std::string::npos) << list;
  list.replace(cut, 5, "  D  012 ");
  list.replace(list.rfind("01:00:00:00 01:00:01:00"), 23, "01:00:00:00 01:00:02:00");
  dir_.write("one.edl", list);
  const std::string report = text({"one.edl"});
  EXPECT_NE(report.find("  transition C, duration -\n"), std::string::npos) << report;
  EXPECT_NE(report.find("  record out 01:00:01:00\n"), std::string::npos) << report;
}

TEST_F(Diff, AsNamesTheListToCompareWith)
{
  dir_.write("two.edl", clip(1, "A001", "01:00:00:00", "ONE"));
  EXPECT_EQ(clipsOf(diff({"--as", "one.edl", "two.edl"}).at("shots_gone")), (Words{"TWO", "THREE"}));
  expectRefusal({"diff", "--as", "nosuch", "two.edl"}, "nosuch: no such list (reeldb list-file list shows them)");
  expectRefusal({"diff", "--as", "1", "one.edl", "two.edl"}, "diff: --as compares one file with one list", 2);
}

TEST_F(Diff, FileThatCannotBeReadIsRefused)
{
  expectRefusal({"diff", "one.edl", "none.edl"}, "none.edl: cannot be opened (No such file or directory)");
}

} // namespace
