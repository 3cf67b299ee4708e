// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <filesystem>

#include "cli/command_fixture.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

class Init : public CommandTest {};

TEST_F(Init, MakesAFacilityWithAProjectReadyForUse)
{
  const std::string text = output({"init", "site"});
  EXPECT_EQ(text.compare(0, 53, "facility made in site, with the project main (25 fps)"), 0) << text;
  EXPECT_NE(text.find("reeldb import FILE"), std::string::npos) << text;
  for (const char* file :
       {"site/facility.toml", "site/devicedata/reeltype.dat", "site/labelmaps", "site/projects/main.reels"})
    EXPECT_TRUE(fs::exists(path(file))) << file;
  EXPECT_EQ(json({"-C", "site", "list", "--json"}), Json::array());
  EXPECT_EQ(json({"-C", "site", "project", "list", "--json"}),
            Json::parse(R"([{"name": "main", "default": true, "rate": "25", "rate_code": 3}])"));
  EXPECT_GT(json({"-C", "site", "type", "list", "--json"}).size(), 2u);
  EXPECT_EQ(json({"-C", "site", "device", "list", "--json"}).size(), 2u);
}

TEST_F(Init, WithoutAFolderWorksInTheWorkingFolder)
{
  output({"init"});
  EXPECT_TRUE(fs::exists(path("facility.toml")));
}

TEST_F(Init, TakesTheFolderGivenWithTheFacilityOption)
{
  output({"-C", "elsewhere", "init"});
  EXPECT_TRUE(fs::exists(path("elsewhere/facility.toml")));
  EXPECT_FALSE(fs::exists(path("facility.toml")));
}

TEST_F(Init, MakesTheFoldersAbove)
{
  output({"init", "a/b/c"});
  EXPECT_TRUE(fs::exists(path("a/b/c/facility.toml")));
}

TEST_F(Init, SecondTimeIsRefusedAndChangesNothing)
{
  output({"init", "site"});
  dir_.write("site/devicedata/reeltype.dat", "mine:VideoChannels=1\n");
  const ProcessResult result = reeldb({"init", "site"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err.compare(0, 8, "reeldb: "), 0);
  EXPECT_EQ(readFile("site/devicedata/reeltype.dat"), "mine:VideoChannels=1\n");
}

TEST_F(Init, ProjectThatCannotBeMadeLeavesNothing)
{
  dir_.write("site/projects/main.reels", "mine");
  const ProcessResult result = reeldb({"init", "site"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("site/projects/main.reels: already exists"), std::string::npos) << result.err;
  std::vector<std::string> left;
  for (const auto& entry : fs::recursive_directory_iterator(path("site")))
    left.push_back(fs::relative(entry.path(), path("site")).string());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (std::vector<std::string>{"projects", "projects/main.reels"}));
  EXPECT_EQ(readFile("site/projects/main.reels"), "mine");
}

TEST_F(Init, FolderThatCannotBeMadeLeavesNothing)
{
  dir_.write("a/labelmaps", "mine");
  const ProcessResult result = reeldb({"init", "a"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, "reeldb: a/labelmaps: cannot be made (File exists)\n");
  EXPECT_FALSE(fs::exists(path("a/devicedata")));
  dir_.write("file", "mine");
  EXPECT_EQ(reeldb({"init", "file/deeper"}).code, 3);
  EXPECT_EQ(readFile("file"), "mine");
}

TEST_F(Init, HintIsReadyToBeTyped)
{
  for (const auto& [folder, word] : std::vector<std::pair<std::string, std::string>>{{"my studio", "'my studio'"},
                                                                                     {"it's", "'it'\\''s'"},
                                                                                     {"plain-1.2", "plain-1.2"},
                                                                                     {"a\x1b\n", "$'a\\x1b\\n'"}}) {
    const std::string text = output({"init", folder});
    EXPECT_NE(text.find("\nnext: cd " + word + ", then reeldb import"), std::string::npos) << text;
  }
}

TEST_F(Init, RateIsThatOfTheProject)
{
  const std::string text = output({"init", "site", "--rate", "23.976"});
  EXPECT_EQ(text.compare(0, 56, "facility made in site, with the project main (23.98 fps)"), 0) << text;
  EXPECT_EQ(json({"-C", "site", "project", "list", "--json"}).at(0).at("rate"), "23.98");
}

TEST_F(Init, RateThatIsNotKnownLeavesNothingBehind)
{
  const ProcessResult result = reeldb({"init", "site", "--rate", "26"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err.compare(0, 53, "reeldb: \"26\": no such frame rate (this facility has: "), 0) << result.err;
  EXPECT_FALSE(fs::exists(path("site")));
}

TEST_F(Init, FacilityOfTheEnvironmentIsNotTouched)
{
  output({"init", "one"});
  ProcessSetting setting = setting_;
  setting.environment["REELDB_FACILITY"] = path("one");
  EXPECT_EQ(reeldb({"init", "two"}, setting).code, 0);
  EXPECT_TRUE(fs::exists(path("two/facility.toml")));
}

} // namespace
