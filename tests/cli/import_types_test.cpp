// SPDX-License-Identifier: Apache-2.0
//
// The types of the reels that import makes, and their channels.
#include <map>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

using Types = std::map<std::string, std::string>;

class ImportTypes : public CommandTest {
protected:
  void SetUp() override
  {
    ASSERT_EQ(reeldb({"init"}).code, 0);
    dir_.write("cut.edl", event(1, "A001", "B", "01:00:00:00", "01:00:01:00") +
                              event(2, "SR007", "A2", "01:00:00:00", "01:00:01:00") +
                              event(3, "RAIN.WAV", "A", "01:00:00:00", "01:00:01:00") +
                              event(4, "TITLE.PNG", "V", "01:00:00:00", "01:00:01:00") +
                              event(5, "DRONE.MOV", "B", "01:00:00:00", "01:00:01:00") +
                              event(6, "A002", "A", "01:00:00:00", "01:00:01:00") +
                              event(7, "A002", "V", "01:00:02:00", "01:00:03:00") +
                              event(8, "WIND", "V", "01:00:00:00", "01:00:01:00") + "* SOURCE FILE: WIND.WAV\n");
  }

  /// The type of each reel. Expects that each has the channels of its type.
  Types types()
  {
    std::map<std::string, Json> catalogue;
    for (const Json& type : json({"type", "list", "--json"}))
      catalogue[type.at("name")] = type;
    Types result;
    for (const Json& reel : json({"list", "--json"})) {
      const std::string id = reel.at("id"), type = reel.at("type");
      EXPECT_EQ(reel.at("video_channels"), catalogue[type].at("video_channels")) << id;
      EXPECT_EQ(reel.at("audio_channels"), catalogue[type].at("audio_channels")) << id;
      result[id] = type;
    }
    return result;
  }

  void addToFacility(const std::string& toml) { dir_.write("facility.toml", readFile("facility.toml") + toml); }
};

TEST_F(ImportTypes, EachReelHasTheTypeThatItsNameAndTracksSayAndItsChannels)
{
  const Json report = json({"import", "--json", "cut.edl"}).at("files").at(0);
  EXPECT_EQ(types(), (Types{{"A001", "Tape 2ch"},
                            {"A002", "Tape 2ch"},
                            {"SR007", "Audio only"},
                            {"RAIN.WAV", "Sound file"},
                            {"WIND", "Sound file"},
                            {"TITLE.PNG", "Still"},
                            {"DRONE.MOV", "File"}}));
  EXPECT_EQ(report.at("types"), Json::parse(R"([{"type": "Audio only", "reels": ["SR007"]},
                                                {"type": "Sound file", "reels": ["RAIN.WAV", "WIND"]},
                                                {"type": "Still", "reels": ["TITLE.PNG"]},
                                                {"type": "File", "reels": ["DRONE.MOV"]}])"));
}

TEST_F(ImportTypes, TextReportHasTheTypesThatAreNotTheDefault)
{
  const std::string text = output({"import", "--dry-run", "cut.edl"});
  EXPECT_NE(text.find("\n  2 reels of type Sound file would be created: RAIN.WAV, WIND\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\n  2 reels would be created: A001, A002\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("of type Tape 2ch"), std::string::npos) << text;
}

TEST_F(ImportTypes, DefaultTypeOfTheProjectStaysAsItIs)
{
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(json({"create", "B001", "--json"}).at("type"), "Tape 2ch");
  const Json state = json({"export", "--json", "--history"});
  EXPECT_EQ(state.at("options").at("reeldb_defaultType"), "Tape 2ch");
  ASSERT_EQ(reeldb({"undo", "--any"}).code, 0);
  ASSERT_EQ(reeldb({"undo", "--any"}).code, 0);
  EXPECT_EQ(types(), Types{});
}

TEST_F(ImportTypes, FurtherShotsThatAgreeWithTheTypeChangeNothing)
{
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  const Types before = types();
  dir_.write("more.edl", event(1, "SR007", "A", "02:00:00:00", "02:00:01:00") +
                             event(2, "A001", "A", "02:00:00:00", "02:00:01:00"));
  const Json report = json({"import", "--json", "more.edl"});
  EXPECT_EQ(report.at("files").at(0).at("types"), Json::array());
  EXPECT_EQ(report.at("type_changes"), Json::array());
  EXPECT_EQ(types(), before);
}

TEST_F(ImportTypes, TypeFollowsFromAllShotsInWhateverOrderTheyComeAndUndoTakesThatBack)
{
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  const Types before = types();
  dir_.write("more.edl", event(1, "SR007", "V", "02:00:00:00", "02:00:01:00") +
                             event(2, "A001", "V", "02:00:00:00", "02:00:01:00") + "* SOURCE FILE: A001.TIF\n");
  const std::string dryRun = output({"import", "--dry-run", "more.edl"});
  EXPECT_NE(dryRun.find("SR007 would be changed: type Tape 2ch (was Audio only)\n"), std::string::npos) << dryRun;
  EXPECT_EQ(types(), before);
  const Json changes = json({"import", "--json", "more.edl"}).at("type_changes");
  EXPECT_EQ(changes, Json::parse(R"([{"reel": "A001", "from": "Tape 2ch", "to": "Still"},
                                     {"reel": "SR007", "from": "Audio only", "to": "Tape 2ch"}])"));
  Types after = before;
  after["A001"] = "Still";
  after["SR007"] = "Tape 2ch";
  EXPECT_EQ(types(), after);
  EXPECT_EQ(reeldb({"project", "check"}).code, 0);
  ASSERT_EQ(reeldb({"undo"}).code, 0);
  EXPECT_EQ(types(), before);
  ASSERT_EQ(reeldb({"undo"}).code, 0);
  ASSERT_EQ(reeldb({"import", "more.edl"}).code, 0);
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(types(), after);
}

TEST_F(ImportTypes, TypeOfAReelThatOneImportBringsFollowsFromAllOfItsLists)
{
  dir_.write("more.edl", event(1, "SR007", "V", "02:00:00:00", "02:00:01:00"));
  const Json report = json({"import", "--json", "cut.edl", "more.edl"});
  EXPECT_EQ(report.at("type_changes"), Json::array());
  EXPECT_EQ(types().at("SR007"), "Tape 2ch");
}

TEST_F(ImportTypes, TypeThatNoRuleGaveStays)
{
  ASSERT_EQ(reeldb({"import", "--type", "Tape 8ch", "cut.edl"}).code, 0);
  dir_.write("more.edl", event(1, "SR007", "V", "02:00:00:00", "02:00:01:00") +
                             event(2, "A002", "V", "02:00:00:00", "02:00:01:00") + "* SOURCE FILE: A002.TIF\n");
  EXPECT_EQ(json({"import", "--json", "more.edl"}).at("type_changes"), Json::array());
  EXPECT_EQ(types().at("SR007"), "Tape 8ch");
  EXPECT_EQ(types().at("A002"), "Tape 8ch");
}

TEST_F(ImportTypes, TypeOfAReelThatAPersonChangedStays)
{
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  ASSERT_EQ(reeldb({"set", "SR007", "bin=Shelf 3"}).code, 0);
  dir_.write("more.edl", event(1, "SR007", "V", "02:00:00:00", "02:00:01:00"));
  EXPECT_EQ(json({"import", "--json", "more.edl"}).at("type_changes"), Json::array());
  EXPECT_EQ(types().at("SR007"), "Audio only");
  EXPECT_EQ(json({"show", "SR007", "--json"}).at("bin"), "Shelf 3");
}

TEST_F(ImportTypes, ReelOfOneListKeepsThatWhenItsTypeChanges)
{
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  dir_.write("other.edl", event(1, "SR007", "A", "03:00:00:00", "03:00:01:00"));
  ASSERT_EQ(reeldb({"import", "--as-new", "SR007=DAY2", "other.edl"}).code, 0);
  dir_.write("day2.edl", event(1, "DAY2", "V", "04:00:00:00", "04:00:01:00"));
  ASSERT_EQ(reeldb({"import", "day2.edl"}).code, 0);
  EXPECT_EQ(types().at("DAY2"), "Tape 2ch");
  EXPECT_EQ(json({"import", "--json", "other.edl"}).at("files").at(0).at("names").at(0).at("reel"), "DAY2");
}

TEST_F(ImportTypes, ShotsOfAReplacedVersionSayNoTypeAnyMore)
{
  dir_.write("v1.edl", event(1, "SR009", "A", "01:00:00:00", "01:00:01:00") +
                           event(2, "SR009", "V", "01:00:02:00", "01:00:03:00"));
  ASSERT_EQ(reeldb({"import", "v1.edl"}).code, 0);
  EXPECT_EQ(types().at("SR009"), "Tape 2ch");
  dir_.write("v2.edl", event(1, "SR009", "A", "01:00:00:00", "01:00:01:00") +
                           event(2, "SR009", "A", "01:00:05:00", "01:00:06:00"));
  ASSERT_EQ(reeldb({"import", "--as", "1", "v2.edl"}).code, 0);
  EXPECT_EQ(types().at("SR009"), "Audio only");
}

TEST_F(ImportTypes, PatternOfARuleFitsAnyNameWithOrWithoutItsEnding)
{
  addToFacility("[[type_rule]]\ntype = \"Disc\"\nname = \"A003\"\n"
                "[[type_rule]]\ntype = \"Film 35\"\nname = \"A004.MOV\"\n");
  dir_.write("files.edl", event(1, "A003.MOV", "V", "01:00:00:00", "01:00:01:00") +
                              event(2, "A004", "V", "01:00:00:00", "01:00:01:00") + "* SOURCE FILE: A004.MOV\n");
  ASSERT_EQ(reeldb({"import", "files.edl"}).code, 0);
  EXPECT_EQ(types(), (Types{{"A003.MOV", "Disc"}, {"A004", "Film 35"}}));
}

TEST_F(ImportTypes, RulesOfTheFacilityComeFirstAndTheFirstThatFitsDecides)
{
  addToFacility("[[type_rule]]\ntype = \"Disc\"\nname = \"a0?1\"\n"
                "[[type_rule]]\ntype = \"Tape 8ch\"\nname = \"A*\"\n"
                "[[type_rule]]\ntype = \"Film 35\"\nextensions = [\"WAV\", \"png\"]\ntracks = \"video\"\n"
                "[[type_rule]]\ntype = \"Tape 4ch\"\ntracks = \"both\"\n");
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(types(), (Types{{"A001", "Disc"},
                            {"A002", "Tape 8ch"},
                            {"SR007", "Audio only"},
                            {"RAIN.WAV", "Sound file"}, // audio alone
                            {"WIND", "Film 35"},        // by its file
                            {"TITLE.PNG", "Film 35"},
                            {"DRONE.MOV", "Tape 4ch"}}));
}

TEST_F(ImportTypes, RuleWithAnUnknownTypeIsAnErrorWithFileAndLine)
{
  addToFacility("[[type_rule]]\nname = \"A*\"\ntype = \"Betacam\"\n");
  const ProcessResult result = reeldb({"import", "cut.edl"});
  EXPECT_EQ(result.code, 3);
  const std::string before = ": type_rule.type: \"Betacam\" is not a type of devicedata/reeltype.dat\n";
  EXPECT_NE(result.err.find("facility.toml:"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find(before), std::string::npos) << result.err;
}

TEST_F(ImportTypes, ChosenTypeHoldsForAllNewReels)
{
  const Json report = json({"import", "--json", "--type", "Tape 8ch", "cut.edl"}).at("files").at(0);
  for (const auto& [reel, type] : types())
    EXPECT_EQ(type, "Tape 8ch") << reel;
  EXPECT_EQ(report.at("types").at(0).at("reels").size(), 7u);
  dir_.write("more.edl", event(1, "A009", "V", "02:00:00:00", "02:00:01:00"));
  ASSERT_EQ(reeldb({"import", "more.edl"}).code, 0);
  EXPECT_EQ(types().at("A009"), "Tape 2ch");
}

TEST_F(ImportTypes, ChosenTypeMustBeInTheCatalogue)
{
  const ProcessResult result = reeldb({"import", "--type", "Betacam", "cut.edl"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: Betacam: no such reel type (reeldb type list shows the catalogue)\n");
  EXPECT_EQ(types(), Types{});
}

TEST_F(ImportTypes, BuiltInRuleForATypeThatTheFacilityDoesNotHaveIsLeftOut)
{
  dir_.write("devicedata/reeltype.dat", "Tape 2ch:VideoChannels=1 AudioChannels=2\n");
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  for (const auto& [reel, type] : types())
    EXPECT_EQ(type, "Tape 2ch") << reel;
}

TEST_F(ImportTypes, ReelThatAMoveMakesHasATypeByTheRules)
{
  const auto narrow = [](const std::string& reel, const std::string& clip, const std::string& file) {
    return "001  " + reel +
           " A     C        01:00:00:00 01:00:01:00 01:00:00:00 01:00:01:00\n* FROM CLIP NAME: " + clip + "\n" +
           (file.empty() ? "" : "* SOURCE FILE: " + file + "\n");
  };
  dir_.write("one.edl", narrow("B001C001", "x", "B001C001_ONE"));
  dir_.write("cut.edl", narrow("B001C001", "y", ""));
  dir_.write("two.edl", narrow("B001C001", "z", "B001C001_TWO"));
  for (const char* const list : {"one.edl", "cut.edl", "two.edl"})
    ASSERT_EQ(reeldb({"import", list}).code, 0);
  EXPECT_EQ(types(),
            (Types{{"B001C001", "Audio only"}, {"B001C001_ONE", "Audio only"}, {"B001C001_TWO", "Audio only"}}));
}

} // namespace
