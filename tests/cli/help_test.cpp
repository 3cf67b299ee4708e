// SPDX-License-Identifier: Apache-2.0
//
// The help is true: every command has one, and every example in it runs.
#include <sstream>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

/// The names that stand, indented, under "Commands:".
Words commandsIn(const std::string& help)
{
  Words names;
  bool inside = false;
  for (const std::string& line : linesOf(help)) {
    if (line == "Commands:")
      inside = true;
    else if (inside && line.size() > 2 && line.compare(0, 2, "  ") == 0 && line[2] != ' ')
      names.push_back(line.substr(2, line.find(' ', 2) - 2));
    else if (inside && line.empty())
      inside = false;
  }
  return names;
}

/// The lines that stand under "Example:" or "Examples:".
Words examplesIn(const std::string& help)
{
  Words examples;
  bool inside = false;
  for (const std::string& line : linesOf(help)) {
    if (line == "Example:" || line == "Examples:")
      inside = true;
    else if (inside && line.compare(0, 2, "  ") == 0)
      examples.push_back(line.substr(2));
  }
  return examples;
}

class Help : public FacilityTest {
protected:
  /// The files that the examples speak of.
  void SetUp() override
  {
    FacilityTest::SetUp();
    inPath_ = setting_;
    inPath_.environment["PATH"] = std::filesystem::path(reeldbProgram).parent_path().string() + ":/usr/bin:/bin";
    dir_.write("evening.edl", "TITLE: EVENING\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                                  "* FROM CLIP NAME: KITCHEN WIDE\n" +
                                  event(2, "A002", "V", "01:00:00:00", "01:00:01:00"));
    dir_.write("shelves.csv", "Tape No,Shelf\nA001,Shelf 3\n");
    dir_.write("lists/day1/evening.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
    dir_.write("day2.edl", "TITLE: DAY 2\n" + event(1, "A001", "V", "02:00:00:00", "02:00:01:00"));
    dir_.write("rushes.ale", "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nFPS\t25\n\nColumn\n"
                             "Name\tTracks\tStart\tEnd\tTape\n\nData\n"
                             "shot one\tVA1A2\t01:00:00:00\t01:00:05:00\tA002\n");
  }

  void prepareAnew()
  {
    std::filesystem::remove_all(path("projects"));
    std::filesystem::create_directory(path("projects"));
    output({"project", "new", "main"});
    output({"project", "new", "fresh"});
    output({"create", "gone"});
    reeldb({"delete", "gone", "--yes"});
    output({"import", "evening.edl"});
    output({"create", "undone"});
    output({"undo"});
    output({"export", "--json", "--force", "-o", "documentary.json"});
  }

  ProcessSetting inPath_;

  /// Every path to a command, groups included: {"project"}, {"project", "new"} ...
  std::vector<Words> commands(const Words& path = {})
  {
    Words words = path;
    words.push_back("--help");
    std::vector<Words> result;
    for (const std::string& name : commandsIn(output(words))) {
      Words deeper = path;
      deeper.push_back(name);
      result.push_back(deeper);
      for (Words& below : commands(deeper))
        result.push_back(std::move(below));
    }
    return result;
  }

  std::string help(Words path)
  {
    path.push_back("--help");
    return output(path);
  }
};

std::string joined(const Words& words)
{
  std::string result = "reeldb";
  for (const std::string& word : words)
    result += " " + word;
  return result;
}

TEST_F(Help, NamesEveryCommand)
{
  Words names;
  for (const Words& path : commands())
    names.push_back(joined(path));
  EXPECT_EQ(names, (Words{"reeldb init",
                          "reeldb import",
                          "reeldb diff",
                          "reeldb export",
                          "reeldb list",
                          "reeldb show",
                          "reeldb create",
                          "reeldb set",
                          "reeldb rename",
                          "reeldb alias",
                          "reeldb merge",
                          "reeldb split",
                          "reeldb copy",
                          "reeldb shots",
                          "reeldb which",
                          "reeldb reels-of",
                          "reeldb report",
                          "reeldb delete",
                          "reeldb undelete",
                          "reeldb undo",
                          "reeldb redo",
                          "reeldb history",
                          "reeldb watch",
                          "reeldb list-file",
                          "reeldb list-file list",
                          "reeldb list-file show",
                          "reeldb list-file used-in",
                          "reeldb list-file remove",
                          "reeldb shot",
                          "reeldb shot move",
                          "reeldb shot delete",
                          "reeldb names",
                          "reeldb names check",
                          "reeldb project",
                          "reeldb project new",
                          "reeldb project list",
                          "reeldb project check",
                          "reeldb project rate",
                          "reeldb project compact",
                          "reeldb project backup",
                          "reeldb device",
                          "reeldb device list",
                          "reeldb device show",
                          "reeldb device reels",
                          "reeldb device live",
                          "reeldb label-map",
                          "reeldb label-map list",
                          "reeldb label-map check",
                          "reeldb label-map for",
                          "reeldb type",
                          "reeldb type list",
                          "reeldb field",
                          "reeldb field list",
                          "reeldb field name",
                          "reeldb help"}));
}

TEST_F(Help, CommandHelpShowsWhatTheOptionShows)
{
  EXPECT_EQ(output({"help"}), output({"--help"}));
  for (const Words& path : commands()) {
    Words words = {"help"};
    words.insert(words.end(), path.begin(), path.end());
    EXPECT_EQ(output(words), help(path)) << joined(words);
  }
}

TEST_F(Help, OfAnUnknownCommandIsAnErrorWithAGuess)
{
  EXPECT_EQ(reeldb({"help", "lst"}).err, "reeldb: help: \"lst\": no such command (perhaps list; see reeldb --help)\n");
  EXPECT_EQ(reeldb({"help", "project", "lst"}).err,
            "reeldb: help: \"lst\": no such command (perhaps list; see reeldb project --help)\n");
  EXPECT_EQ(reeldb({"help", "lst"}).code, 2);
}

TEST_F(Help, DocumentsTheExitCodes)
{
  const std::string text = help({});
  for (const char* line :
       {"  0  done\n", "  1  nothing found, or refused (for example because the project is read-only or in use)\n",
        "  2  the command line is wrong\n", "  3  damaged or unreadable data",
        "  4  done, but some input lines were rejected\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line;
}

TEST_F(Help, EveryCommandHasADescriptionAndItsUsage)
{
  for (const Words& path : commands()) {
    const Words lines = linesOf(help(path));
    ASSERT_GE(lines.size(), 3u);
    EXPECT_GT(lines[0].size(), 10u) << joined(path);
    EXPECT_EQ(lines[1].compare(0, 7 + joined(path).size(), "Usage: " + joined(path)), 0) << lines[1];
  }
}

/// Every command's examples run one after the other in a project with two imported reels and one deletion to undo.
TEST_F(Help, EveryExampleRuns)
{
  int run = 0;
  std::vector<Words> paths = commands();
  paths.push_back({});
  for (const Words& path : paths) {
    const std::string text = help(path);
    const Words examples = examplesIn(text);
    EXPECT_FALSE(examples.empty()) << joined(path) << ": each has an example";
    prepareAnew();
    for (const std::string& example : examples) {
      EXPECT_EQ(example.compare(0, joined(path).size(), joined(path)), 0) << example;
      const ProcessResult result = runProcess({"sh", "-c", example}, inPath_);
      // diff has found differences.
      EXPECT_TRUE(result.code == 0 || (result.code == 1 && path == Words{"diff"})) << example << "\n" << result.err;
      // While nothing changes, watch has nothing to report.
      EXPECT_TRUE(!result.out.empty() || path == Words{"watch"}) << example;
      ++run;
    }
  }
  EXPECT_GE(run, 40);
}

} // namespace
