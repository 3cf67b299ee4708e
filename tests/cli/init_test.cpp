// SPDX-License-Identifier: Apache-2.0
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
  EXPECT_GT(json({"-C", "site", "types", "--json"}).size(), 2u);
  EXPECT_EQ(json({"-C", "site", "devices", "--json"}).size(), 2u);
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

TEST_F(Init, FacilityOfTheEnvironmentIsNotTouched)
{
  output({"init", "one"});
  ProcessSetting setting = setting_;
  setting.environment["REELDB_FACILITY"] = path("one");
  EXPECT_EQ(reeldb({"init", "two"}, setting).code, 0);
  EXPECT_TRUE(fs::exists(path("two/facility.toml")));
}

} // namespace
