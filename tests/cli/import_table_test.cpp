// SPDX-License-Identifier: Apache-2.0
//
// The command line of imports of tables and of JSON.
#include <fstream>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class ImportTable : public FacilityTest {
protected:
  void write(const std::string& name, const std::string& text) { std::ofstream(path(name)) << text; }
};

TEST_F(ImportTable, ADryRunShowsEachChangeAndTheImportMakesIt)
{
  output({"create", "A001"});
  write("shelves.csv", "Shelf list\n\nTape No;Regal;Available;Colour\nA001;Shelf 1;no;red\nA002;2;maybe;\n;3;;\n");
  const Words map = {"--map", "Tape No=reel", "--map", "Regal=shelf"};
  Words words = {"import", "shelves.csv", "--dry-run"};
  words.insert(words.end(), map.begin(), map.end());
  const std::string before = readFile("projects/main.reels");
  const ProcessResult plan = reeldb(words);
  EXPECT_EQ(plan.out, "shelves.csv (sheet): 1 reel\n"
                      "  2 fields would be changed:\n"
                      "    A001: bin: Shelf 1 (was -)\n"
                      "    A001: available: no (was yes)\n"
                      "  columns not read: Colour\n"
                      "  1 reel already there\n"
                      "  2 lines would be rejected:\n"
                      "    line 5: available: \"maybe\" is neither yes nor no: A002;2;maybe;\n"
                      "    line 6: no reel: ;3;;\n"
                      "dry run: the project stays as it was\n");
  EXPECT_EQ(plan.code, 4);
  EXPECT_EQ(readFile("projects/main.reels"), before);
  words.erase(words.begin() + 2);
  words.emplace_back("--json");
  const ProcessResult result = reeldb(words);
  EXPECT_EQ(result.code, 4);
  const Json report = Json::parse(result.out);
  EXPECT_EQ(report.at("stored"), true);
  const Json& file = report.at("files").at(0);
  EXPECT_EQ(file.at("format"), "sheet");
  EXPECT_EQ(file.at("kept"), "no");
  EXPECT_EQ(file.at("unread"), Json({"Colour"}));
  EXPECT_EQ(file.at("reel_changes").at(0),
            Json({{"line", 4}, {"reel", "A001"}, {"field", "bin"}, {"from", ""}, {"to", "Shelf 1"}}));
  EXPECT_EQ(report.at("totals").at("reels_changed"), 1);
  EXPECT_EQ(reel("A001").at("bin"), "Shelf 1");
  output({"undo"});
  EXPECT_EQ(reel("A001").at("bin"), "");
  EXPECT_EQ(reel("A001").at("available"), true);
}

TEST_F(ImportTable, NewReelsHaveTheTypeOfTheirRowAndItsChannels)
{
  const Json types = json({"type", "list", "--json"});
  ASSERT_GE(types.size(), 2u);
  const Json& type = types.back();
  write("new.csv", "reel,type\nA001," + type.at("name").get<std::string>() + "\nA002,\n");
  output({"import", "new.csv"});
  EXPECT_EQ(reel("A001").at("type"), type.at("name"));
  EXPECT_EQ(reel("A001").at("audio_channels"), type.at("audio_channels"));
  EXPECT_EQ(reelIds(), (Words{"A001", "A002"}));
}

TEST_F(ImportTable, RejectedRowGivesNoWarningOfItsType)
{
  write("one.csv", "Reel,Type,Available\nA001,Nope,maybe\n");
  EXPECT_EQ(reeldb({"import", "one.csv"}).err, "");
  write("two.csv", "Reel,Type,Available\nA001,Nope,yes\n");
  EXPECT_NE(reeldb({"import", "two.csv"}).err.find("Nope: not in the reel type catalogue"), std::string::npos);
}

TEST_F(ImportTable, WhatTheExportsWroteChangesNothing)
{
  write("cut.edl",
        event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + event(2, "=B", "A2", "01:00:00:00", "01:00:01:00"));
  output({"import", "cut.edl"});
  output({"set", "A001", "bin==1+1", "0= x "});
  for (const Words& options : {Words{"--csv"}, Words{"--csv", "--reels"}, Words{"--json", "--reels"}}) {
    Words words = {"export", "--force", "-o", "written"};
    words.insert(words.end(), options.begin(), options.end());
    output(words);
    const std::string before = readFile("projects/main.reels");
    const std::string report = output({"import", "written"});
    EXPECT_NE(report.find("nothing new: the project stays as it was\n"), std::string::npos) << report;
    EXPECT_EQ(readFile("projects/main.reels"), before);
  }
}

TEST_F(ImportTable, LinesOfJsonComeFromStandardInput)
{
  setting_.input = "{\"id\": \"A001\", \"bin\": \"7\"}\n{\"reel\": \"A001\", \"clip\": \"one\"}\n";
  EXPECT_EQ(output({"import", "-"}), "standard input (json): 1 clip, 1 shot added\n"
                                     "  1 reel created: A001\n"
                                     "  1 field changed:\n"
                                     "    A001: bin: 7 (was -)\n");
  setting_.input = "{\"id\": \"A001\"}\n{\"id\": A002}\n";
  expectRefusal({"import", "-"}, "standard input: damaged JSON in line 2 (Invalid value.)", 3);
}

TEST_F(ImportTable, AKeptTableOfMappedClipsIsExportedAsAList)
{
  write("clips.csv", "Band,von,bis\nA001,01:00:00:00,01:00:01:00\n");
  output({"import", "clips.csv", "--map", "Band=reel", "--map", "von=in", "--map", "bis=out"});
  const std::string list = output({"export", "clips.csv"});
  EXPECT_NE(list.find("001  A001     V     C        01:00:00:00 01:00:01:00"), std::string::npos) << list;
}

TEST_F(ImportTable, MapsAreChecked)
{
  write("a.csv", "Tape No,shelf\nA001,1\n");
  expectRefusal({"import", "a.csv"},
                "a.csv: not a cut list, a log file or a timeline (it has no event line and no "
                "Heading or Column)",
                3);
  expectRefusal({"import", "a.csv", "--map", "Tape No"},
                "import: --map Tape No: not a title and what it means (use TITLE=FIELD, such as \"Tape No=reel\")", 2);
  expectRefusal(
      {"import", "a.csv", "--map", "Tape No=tape number"},
      "import: --map Tape No=tape number: \"tape number\" is neither a column that tables have nor a field of "
      "a reel",
      2);
}

TEST_F(ImportTable, AWholeProjectIsImportedAloneAndOnlyIntoAnUnusedOne)
{
  write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  output({"import", "cut.edl"});
  output({"export", "--json", "-o", "main.json"});
  expectRefusal({"import", "main.json"},
                "main: has had reels, shots or lists, and the file is a whole project (reeldb project new NAME --from "
                "FILE makes a project of it)");
  expectRefusal({"import", "main.json", "cut.edl"},
                "main.json: a whole project, which is imported alone; nothing imported");
  expectRefusal({"import", "main.json", "--replace"},
                "main.json: a whole project (--replace, --as, --type and --as-new are for lists)", 2);
}

} // namespace
