// SPDX-License-Identifier: Apache-2.0
//
// Lists that others wrote. Their folder is named by the environment variable REELDB_SAMPLES.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "cli/command_fixture.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

std::vector<fs::path> samples()
{
  std::vector<fs::path> files;
  if (const char* folder = std::getenv("REELDB_SAMPLES"))
    for (const auto& entry : fs::directory_iterator(folder))
      if (entry.is_regular_file() && entry.path().extension() != ".md")
        files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

class ImportSamples : public FacilityTest {
protected:
  void SetUp() override
  {
    if (samples().empty())
      GTEST_SKIP() << "REELDB_SAMPLES names no folder with lists";
    FacilityTest::SetUp();
  }
};

TEST_F(ImportSamples, EachMakesItsReelsOnceAndASecondImportChangesNothing)
{
  for (const fs::path& file : samples()) {
    SCOPED_TRACE(file.filename().string());
    const std::string project = numbered("p", std::hash<std::string>()(file.string()));
    output({"project", "new", project});
    const ProcessResult first = reeldb({"-p", project, "import", "--json", file.string()});
    ASSERT_TRUE(first.code == 0 || first.code == 4) << first.err;
    const Json report = Json::parse(first.out).at("files").at(0);
    EXPECT_EQ(first.code == 4, !report.at("rejected").empty());

    // The reels of the project are those the report says were made, each once.
    Words listed;
    int shots = 0;
    for (const Json& reel : json({"-p", project, "list", "--json"})) {
      listed.push_back(reel.at("id"));
      shots += reel.at("shots").get<int>();
      EXPECT_GT(reel.at("shots"), 0);
    }
    EXPECT_EQ(listed, report.at("created").get<Words>());
    EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()).size(), listed.size());
    EXPECT_EQ(shots, report.at("shots_added"));
    EXPECT_EQ(report.at("shots_added").get<int>() + report.at("shots_there").get<int>() +
                  report.at("shots_repeated").get<int>(),
              report.at("clips"));

    const std::string before = readFile("projects/" + project + ".reels");
    const ProcessResult second = reeldb({"-p", project, "import", "--json", file.string()});
    EXPECT_EQ(second.code, first.code);
    const Json again = Json::parse(second.out);
    EXPECT_EQ(again.at("stored"), false);
    EXPECT_EQ(again.at("files").at(0).at("created"), Words{});
    EXPECT_EQ(again.at("files").at(0).at("shots_added"), 0);
    Words matched = again.at("files").at(0).at("matched");
    EXPECT_EQ(matched.size(), listed.size());
    EXPECT_EQ(readFile("projects/" + project + ".reels"), before);
  }
}

TEST_F(ImportSamples, AllAtOnceLoseNothing)
{
  Words words = {"import", "--json"};
  for (const fs::path& file : samples())
    words.push_back(file.string());
  const ProcessResult result = reeldb(words);
  ASSERT_TRUE(result.code == 0 || result.code == 4) << result.err;
  int shots = 0;
  std::size_t reels = 0;
  const Json report = Json::parse(result.out);
  for (const Json& file : report.at("files")) {
    shots += file.at("shots_added").get<int>();
    reels += file.at("created").size();
  }
  int listed = 0;
  for (const Json& reel : json({"list", "--json"}))
    listed += reel.at("shots").get<int>();
  EXPECT_EQ(listed, shots);
  EXPECT_EQ(reelIds().size(), reels);
}

} // namespace
