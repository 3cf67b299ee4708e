// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include "cli/command_fixture.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

class ProjectCommand : public FacilityTest {
protected:
  Json project(const std::string& name)
  {
    for (const Json& entry : json({"project", "list", "--json"}))
      if (entry.at("name") == name)
        return entry;
    return nullptr;
  }
};

TEST_F(ProjectCommand, DefaultThatIsNotThereIsReportedWithTheFileThatNamesIt)
{
  dir_.write("facility.toml", "[facility]\ndefault_project = \"gone\"\n");
  const ProcessResult result = reeldb({"list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: gone: no such project (default_project in facility.toml names it; this facility has: "
                        "main)\n");
}

TEST_F(ProjectCommand, NewProjectIsEmptyAndHasTheUsualRate)
{
  EXPECT_EQ(output({"project", "new", "film"}),
            "project film made (25 fps)\n"
            "next: reeldb -p film import FILE...; default_project in facility.toml makes -p unnecessary\n");
  EXPECT_EQ(project("film"), Json::parse(R"({"name": "film", "default": false, "rate": "25", "rate_code": 3})"));
  EXPECT_EQ(json({"list", "--json", "-p", "film"}), Json::array());
}

TEST_F(ProjectCommand, FileForANewProjectIsReadFirstAndHasItsRate)
{
  output({"export", "--json", "-o", "main.json"});
  expectRefusal({"project", "new", "a", "--from", "main.json", "--rate", "25"},
                "project new: --rate and --from given (the file has the rate)", 2);
  expectRefusal({"project", "new", "a", "--from", "none.json"},
                "none.json: cannot be opened (No such file or directory)", 1);
  expectRefusal({"project", "new", "main", "--from", "main.json"}, path("projects/main.reels") + ": already exists");
  EXPECT_EQ(json({"project", "list", "--json"}).size(), 1u);
}

TEST_F(ProjectCommand, RateIsTakenByNameAndByCode)
{
  output({"project", "new", "a", "--rate", "29.97"});
  output({"project", "new", "b", "--rate", "4"});
  EXPECT_EQ(project("a").at("rate_code"), project("b").at("rate_code"));
  EXPECT_EQ(project("a").at("rate"), "29.97");
}

TEST_F(ProjectCommand, RateWrittenAnotherWayIsTheOneThatHasAName)
{
  EXPECT_EQ(output({"project", "new", "a", "--rate", "23.976"}).substr(0, 27), "project a made (23.98 fps)\n");
  EXPECT_EQ(output({"project", "new", "b", "--rate", "30000/1001"}).substr(0, 27), "project b made (29.97 fps)\n");
  EXPECT_EQ(output({"project", "new", "c", "--rate", "24.00"}).substr(0, 24), "project c made (24 fps)\n");
}

TEST_F(ProjectCommand, RateThatTheFacilityLacksIsRefusedHoweverItIsWritten)
{
  EXPECT_EQ(reeldb({"project", "new", "a", "--rate", "119.88"}).code, 2);
  std::string toml = readFile("facility.toml");
  toml.replace(toml.find("\"60\" = 10"), 9, "\"60\" = 10\n\"119.88\" = 40");
  dir_.write("facility.toml", toml);
  EXPECT_EQ(output({"project", "new", "a", "--rate", "119.880"}).substr(0, 28), "project a made (119.88 fps)\n");
}

TEST_F(ProjectCommand, UnknownRateIsAUsageErrorThatNamesTheRates)
{
  const ProcessResult result = reeldb({"project", "new", "film", "--rate", "26"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err.compare(0, 38, "reeldb: \"26\": no such frame rate (this"), 0) << result.err;
  EXPECT_NE(result.err.find("25 (code 3)"), std::string::npos) << result.err;
  EXPECT_FALSE(fs::exists(path("projects/film.reels")));
}

TEST_F(ProjectCommand, NameThatIsTakenIsRefused)
{
  const std::string before = readFile("projects/main.reels");
  const ProcessResult result = reeldb({"project", "new", "main"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err.compare(0, 8, "reeldb: "), 0);
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(ProjectCommand, NameThatIsNotAFileNameIsRefused)
{
  for (const std::string name : {"", ".", "..", "a/b", "../up", "/abs"}) {
    const ProcessResult result = reeldb({"project", "new", name});
    EXPECT_EQ(result.code, 1) << name;
  }
  EXPECT_EQ(json({"project", "list", "--json"}).size(), 1u);
}

TEST_F(ProjectCommand, NameThatCannotBeHandedOnIsAUsageError)
{
  for (const auto& [name, message] : std::vector<std::pair<std::string, std::string>>{
           {"a\x1b", "\"a\\x1b\": not a valid project name (it holds a control character)"},
           {"a\xff", "\"a\\xff\": not a valid project name (it is not UTF-8)"}}) {
    const ProcessResult result = reeldb({"project", "new", name});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "reeldb: " + message + "\n");
  }
  EXPECT_EQ(json({"project", "list", "--json"}).size(), 1u);
}

TEST_F(ProjectCommand, ProjectOfAnOddNameIsFound)
{
  fs::rename(path("projects/main.reels"), path("projects/a\xff.reels"));
  EXPECT_EQ(json({"-p", "a\xff", "list", "--json"}), Json::array());
}

TEST_F(ProjectCommand, HintIsReadyToBeTyped)
{
  EXPECT_EQ(output({"project", "new", "my film's"}),
            "project my film's made (25 fps)\nnext: reeldb -p 'my film'\\''s' import FILE...; default_project in "
            "facility.toml makes -p unnecessary\n");
  EXPECT_EQ(json({"-p", "my film's", "list", "--json"}), Json::array());
}

TEST_F(ProjectCommand, NewProjectIsNotChangedByReaders)
{
  output({"project", "new", "film"});
  const std::string before = readFile("projects/film.reels");
  output({"-p", "film", "list"});
  const ProcessResult shown = reeldb({"-p", "film", "show", "nothing"});
  EXPECT_EQ(shown.code, 1);
  EXPECT_EQ(readFile("projects/film.reels"), before);
}

TEST_F(ProjectCommand, DefaultReelTypeOfTheFacilityIsStoredInANewProject)
{
  const std::string toml = readFile("facility.toml");
  const std::string key = "default_reel_type";
  ASSERT_NE(toml.find(key), std::string::npos);
  output({"project", "new", "film"});
  output({"-p", "film", "create", "R1"});
  const std::string type = json({"-p", "film", "show", "--json", "R1"}).at("type");
  EXPECT_NE(toml.find('"' + type + '"'), std::string::npos) << type;
}

TEST_F(ProjectCommand, ListShowsATable)
{
  output({"project", "new", "film"});
  EXPECT_EQ(output({"project", "list"}), "PROJECT  RATE  DEFAULT\n"
                                         "film     25\n"
                                         "main     25    yes\n");
}

TEST_F(ProjectCommand, ListReportsADamagedProjectAndContinues)
{
  dir_.write("projects/bad.reels", std::string(50000, 'x'));
  const ProcessResult result = reeldb({"project", "list", "--json"});
  EXPECT_EQ(result.code, 3);
  const Json list = Json::parse(result.out);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list.at(0).at("name"), "bad");
  EXPECT_NE(list.at(0).at("fault").get<std::string>(), "");
  EXPECT_EQ(list.at(1).at("name"), "main");
  EXPECT_FALSE(list.at(1).contains("fault"));
}

TEST_F(ProjectCommand, CheckOfASoundProjectSaysSoAndChangesNothing)
{
  output({"create", "A1"});
  const std::string before = readFile("projects/main.reels");
  EXPECT_EQ(output({"project", "check"}), "main: sound\n");
  EXPECT_EQ(json({"project", "check", "--json"}),
            (Json{{"project", "main"}, {"sound", true}, {"problems", Json::array()}}));
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(ProjectCommand, CheckOfADamagedProjectNamesTheFault)
{
  for (int i = 0; i < 40; ++i)
    output({"create", numbered("R", static_cast<std::size_t>(i))});
  std::string bytes = readFile("projects/main.reels");
  ASSERT_GT(bytes.size(), 3 * 4096u);
  bytes.replace(bytes.size() - 4096, 4096, 4096, 'x');
  dir_.write("projects/main.reels", bytes);
  const ProcessResult result = reeldb({"project", "check", "--json"});
  EXPECT_EQ(result.code, 3);
  const Json json = Json::parse(result.out);
  EXPECT_EQ(json.at("sound"), false);
  EXPECT_FALSE(json.at("problems").empty());
  const ProcessResult shown = reeldb({"project", "check"});
  EXPECT_EQ(shown.code, 3);
  EXPECT_EQ(shown.out.substr(0, 6), "main: ");
}

TEST_F(ProjectCommand, CheckOfNoProjectIsRefused)
{
  const ProcessResult result = reeldb({"-p", "nosuch", "project", "check"});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find("nosuch: no such project"), std::string::npos) << result.err;
}

TEST_F(ProjectCommand, RateIsShownAndChanged)
{
  EXPECT_EQ(output({"project", "rate"}), "main: 25 fps\n");
  EXPECT_EQ(output({"project", "rate", "23.976"}), "main: 23.98 fps (before: 25)\n");
  EXPECT_EQ(output({"project", "rate"}), "main: 23.98 fps\n");
  EXPECT_EQ(project("main").at("rate"), "23.98");
  EXPECT_EQ(json({"export", "--json"}).at("frame_rate"), "23.98");
  EXPECT_EQ(json({"project", "rate", "--json", "25"}),
            (Json{{"project", "main"}, {"rate", "25"}, {"rate_code", 3}, {"before", "23.98"}, {"stored", true}}));
}

TEST_F(ProjectCommand, RateThatTheProjectHasAlreadyChangesNothing)
{
  const std::string before = readFile("projects/main.reels");
  EXPECT_EQ(output({"project", "rate", "25.00"}), "main: 25 fps\n");
  EXPECT_FALSE(json({"project", "rate", "--json", "3"}).at("stored").get<bool>());
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(ProjectCommand, RateThatIsNotKnownIsNotSet)
{
  EXPECT_EQ(reeldb({"project", "rate", "26"}).code, 2);
  EXPECT_EQ(output({"project", "rate"}), "main: 25 fps\n");
}

TEST_F(ProjectCommand, NewRateDecidesWhichListContradictsTheProject)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:29"));
  const auto warnings = [&] {
    return json({"import", "--dry-run", "--json", "cut.edl"}).at("files").at(0).at("warnings");
  };
  EXPECT_EQ(warnings().size(), 1u);
  output({"project", "rate", "30"});
  EXPECT_EQ(warnings(), Json::array());
}

class ProjectVariable : public ProjectCommand {
protected:
  void SetUp() override
  {
    ProjectCommand::SetUp();
    output({"project", "new", "film"});
    output({"project", "new", "promo"});
    output({"-p", "film", "create", "F1"});
    output({"-p", "promo", "create", "P1"});
  }

  /// What the command prints while REELDB_PROJECT has this value.
  ProcessResult with(const std::string& project, const Words& words)
  {
    ProcessSetting setting = setting_;
    setting.environment["REELDB_PROJECT"] = project;
    return reeldb(words, setting);
  }
};

TEST_F(ProjectVariable, NamesTheProjectThatEachCommandWorksOn)
{
  EXPECT_EQ(Json::parse(with("film", {"list", "--json"}).out).at(0).at("id"), "F1");
  EXPECT_EQ(with("promo", {"create", "P2"}).code, 0);
  EXPECT_EQ(json({"-p", "promo", "list", "--json"}).size(), 2u);
  EXPECT_EQ(json({"list", "--json"}), Json::array());
}

TEST_F(ProjectVariable, OptionGoesBeforeIt)
{
  EXPECT_EQ(Json::parse(with("film", {"-p", "promo", "list", "--json"}).out).at(0).at("id"), "P1");
}

TEST_F(ProjectVariable, EmptyOneIsAsIfItWereNotThere)
{
  EXPECT_EQ(with("", {"list", "--json"}).out, output({"list", "--json"}));
}

TEST_F(ProjectVariable, ProjectThatIsNotThereIsReportedWithTheVariable)
{
  const ProcessResult result = with("nosuch", {"list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: nosuch: no such project (REELDB_PROJECT names it; this facility has: film, main, "
                        "promo)\n");
  EXPECT_EQ(reeldb({"-p", "nosuch", "list"}).err,
            "reeldb: nosuch: no such project (this facility has: film, main, promo)\n");
}

TEST_F(ProjectCommand, CompactBeforeForgetsEarlierRevisionsAndGivesTheSpaceBack)
{
  Words many = {"delete", "--yes"};
  std::string list = "TITLE: T\n";
  for (int i = 0; i < 300; ++i) {
    many.push_back("R" + std::to_string(i));
    list += "001  " + many.back() + " V C 01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n";
  }
  dir_.write("many.edl", list);
  output({"create", "A001"});
  output({"import", "many.edl"});
  reeldb(many);
  output({"set", "A001", "bin=7"});
  reeldb({"delete", "A001", "--yes"});
  const auto size = fs::file_size(path("projects/main.reels"));
  EXPECT_EQ(output({"project", "compact", "--before", "1"}), "nothing to forget\n");
  EXPECT_EQ(output({"project", "compact", "--before", "5"}), "4 revisions forgotten\n");
  EXPECT_LT(fs::file_size(path("projects/main.reels")) + 50'000, size);
  const Json commits = json({"history", "--json"}).at("commits");
  ASSERT_EQ(commits.size(), 2u);
  EXPECT_EQ(commits[1].at("revision"), 5);
  EXPECT_EQ(commits[0].at("command"), "reeldb project compact --before 5");
  EXPECT_EQ(output({"undo"}).rfind("revision 5 taken back: ", 0), 0u);
  EXPECT_EQ(reelIds(), Words{"A001"});
  EXPECT_EQ(json({"project", "compact", "--before", "8", "--json"}).at("revisions"), 3);
  EXPECT_EQ(json({"project", "check", "--json"}).at("sound"), true);
}

TEST_F(ProjectCommand, CompactBeforeADayForgetsWhatIsOlder)
{
  output({"create", "A001"});
  EXPECT_EQ(output({"project", "compact", "--before", "2000-01-01"}), "nothing to forget\n");
  EXPECT_EQ(output({"project", "compact", "--before", "2999-12-31"}), "1 revision forgotten\n");
  for (const char* odd : {"2999-13-01", "yesterday", "2999-12-31x", ""}) {
    const ProcessResult result = reeldb({"project", "compact", "--before", odd});
    EXPECT_EQ(result.code, 2) << odd;
  }
  EXPECT_EQ(reeldb({"project", "compact", "--before", "x"}).err,
            "reeldb: \"x\": neither a revision nor a day such as 2026-11-01 (reeldb history lists revisions)\n");
}

TEST_F(ProjectCommand, BackupIsAProjectOfItsOwn)
{
  output({"create", "A001"});
  output({"rename", "A001", "B001"});
  EXPECT_EQ(output({"project", "backup", "projects/copy.reels"}), "main: backed up to projects/copy.reels\n");
  EXPECT_EQ(output({"history", "-p", "copy"}), output({"history"}));
  output({"-p", "copy", "undo"});
  EXPECT_EQ(reelIds(), Words{"B001"});
  EXPECT_EQ(json({"project", "check", "--json", "-p", "copy"}).at("sound"), true);
  const ProcessResult again = reeldb({"project", "backup", "projects/copy.reels"});
  EXPECT_EQ(again.code, 1);
  EXPECT_EQ(again.err, "reeldb: projects/copy.reels: already exists\n");
  EXPECT_EQ(reeldb({"project", "backup", "no/such/folder/x"}).code, 3);
}

} // namespace
