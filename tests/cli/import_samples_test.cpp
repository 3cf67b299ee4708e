// SPDX-License-Identifier: Apache-2.0
//
// Lists that others wrote. Their folder is named by the environment variable REELDB_SAMPLES.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <set>

#include "cli/command_fixture.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

template <class Entries>
std::vector<fs::path> samplesIn()
{
  std::vector<fs::path> files;
  if (const char* folder = std::getenv("REELDB_SAMPLES"))
    for (const auto& entry : Entries(folder))
      if (entry.is_regular_file() && entry.path().extension() != ".md")
        files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

/// Those of the folder itself: cut lists and logs.
std::vector<fs::path> samples()
{
  return samplesIn<fs::directory_iterator>();
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

TEST_F(ImportSamples, EachComesBackFromJsonByteForByte)
{
  output({"init", "copies"});
  std::size_t formats = 0;
  std::set<std::string> endings;
  for (const fs::path& file : samplesIn<fs::recursive_directory_iterator>()) {
    SCOPED_TRACE(file.filename().string());
    const std::string project = numbered("p", std::hash<std::string>()(file.string()));
    output({"project", "new", project});
    const ProcessResult imported = reeldb({"-p", project, "import", "-q", file.string()});
    if (imported.code != 0 && imported.code != 4)
      continue; // not a list
    formats += endings.insert(file.extension().string()).second ? 1 : 0;
    output({"-p", project, "export", "--json", "-o", "state.json"});
    output({"-C", "copies", "project", "new", "--rate", "50", project});
    output({"-C", "copies", "-p", project, "import", "state.json"});
    EXPECT_EQ(output({"-C", "copies", "-p", project, "export", "--json"}), readFile("state.json"));
    fs::remove(path("state.json"));
  }
  EXPECT_GE(formats, 5u);
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

/// What makes an event of a list the same shot.
using EventKey = std::vector<std::string>;

class SampleVersions : public ImportSamples {
protected:
  /// The sample whose name begins so.
  static std::string sample(const std::string& start)
  {
    for (const fs::path& file : samples())
      if (file.filename().string().rfind(start, 0) == 0)
        return file.string();
    ADD_FAILURE() << "no sample " << start;
    return {};
  }
  ProcessResult import(const std::string& project, const std::string& file, const Words& options = {})
  {
    Words words = {"-p", project, "import", file};
    words.insert(words.end(), options.begin(), options.end());
    const ProcessResult result = reeldb(words);
    EXPECT_TRUE(result.code == 0 || result.code == 4) << result.err;
    return result;
  }
  /// The shots that the events of a list come from, each as often as the list uses it.
  std::multiset<EventKey> shotsOf(const std::string& project, const std::string& list)
  {
    std::multiset<EventKey> keys;
    const Json shown = json({"-p", project, "list-file", "show", list, "--json"});
    for (const Json& event : shown.at("events")) {
      if (event.at("special") != "")
        continue;
      EventKey key;
      for (const char* part : {"reel", "clip", "source_in", "source_out", "tracks"})
        key.push_back(event.at(part));
      keys.insert(key);
    }
    return keys;
  }
};

TEST_F(SampleVersions, EachIsKeptAndUndoneAndMadeAgain)
{
  for (const fs::path& file : samples()) {
    SCOPED_TRACE(file.filename().string());
    const std::string project = numbered("p", std::hash<std::string>()(file.string()));
    output({"project", "new", project});
    const std::string empty = output({"-p", project, "export", "--json"});
    import(project, file.string());
    const std::string imported = output({"-p", project, "export", "--json"});
    const Json list = json({"-p", project, "list-file", "list", "--json"}).at(0);
    EXPECT_EQ(list.at("file"), file.filename().string());
    EXPECT_EQ(output({"-p", project, "list-file", "show", "1", "--original"}), readFile(file.string()));
    EXPECT_EQ(json({"-p", project, "list-file", "show", "1", "--json"}).at("events").size(), list.at("events"));
    const ProcessResult same = reeldb({"-p", project, "diff", file.string()});
    EXPECT_EQ(same.out, "no differences\n");
    EXPECT_TRUE(same.code == 0 || same.code == 4);
    EXPECT_EQ(output({"-p", project, "project", "check"}), project + ": sound\n");
    output({"-p", project, "undo"});
    EXPECT_EQ(output({"-p", project, "export", "--json"}), empty);
    EXPECT_EQ(json({"-p", project, "list-file", "list", "--json"}), Json::array());
    output({"-p", project, "redo"});
    EXPECT_EQ(output({"-p", project, "export", "--json"}), imported);
    EXPECT_EQ(json({"-p", project, "list-file", "list", "--json"}).at(0), list);
    EXPECT_EQ(output({"-p", project, "list-file", "show", "1", "--original"}), readFile(file.string()));
    EXPECT_EQ(output({"-p", project, "project", "check"}), project + ": sound\n");
  }
}

TEST_F(SampleVersions, UnchangedListAmongOthersDiffersInNothing)
{
  const Words files = {sample("05_"), sample("31_"), sample("32_"), sample("26_")};
  for (const std::string& file : files)
    import("main", file);
  for (const std::string& file : files) {
    const ProcessResult result = reeldb({"diff", file});
    EXPECT_EQ(result.code, 0) << file;
    EXPECT_EQ(result.out, "no differences\n") << file;
  }
}

TEST_F(SampleVersions, NewVersionDiffersByTheSetDifferenceOfItsEvents)
{
  output({"project", "new", "new"});
  import("main", sample("26_"));
  import("new", sample("27_"));
  const std::multiset<EventKey> before = shotsOf("main", "1"), after = shotsOf("new", "1");
  std::vector<EventKey> added, gone;
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(), std::back_inserter(added));
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::back_inserter(gone));
  EXPECT_FALSE(added.empty());
  EXPECT_FALSE(gone.empty());

  const std::string old = output({"export", "--json"});
  const Json imported = Json::parse(import("main", sample("27_"), {"--as", "1", "--json"}).out);
  const Json& difference = imported.at("files").at(0).at("difference");
  const std::size_t trimmed = difference.at("trimmed").size();
  EXPECT_EQ(difference.at("added").size() + trimmed, added.size());
  EXPECT_EQ(difference.at("gone").size() + trimmed, gone.size());
  EXPECT_EQ(shotsOf("main", "1"), after);
  EXPECT_EQ(json({"list-file", "list", "--json"}).size(), 1u);
  // Nothing but this version is left, as if it alone had been imported.
  EXPECT_EQ(json({"export", "--json"}).at("shots").size(), json({"-p", "new", "export", "--json"}).at("shots").size());
  EXPECT_EQ(reelIds().size(), json({"-p", "new", "list", "--json"}).size());
  output({"undo"});
  EXPECT_EQ(output({"export", "--json"}), old);
  EXPECT_EQ(shotsOf("main", "1"), before);
}

} // namespace
