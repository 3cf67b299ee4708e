// SPDX-License-Identifier: Apache-2.0
//
// Whatever the order in which lists come, the project is the same: the lists of others, whose folder is named by the
// environment variable REELDB_SAMPLES, and what they would be with fewer characters for the reel.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <sstream>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/export.h"
#include "app/import.h"
#include "app/projects.h"
#include "app/state.h"
#include "lists/list.h"
#include "lists/name_forms.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

std::string bytesOf(const std::filesystem::path& file)
{
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

/// The cut list as a system with fewer characters for the reel writes it: without the notes that have the whole name.
std::string cutTo(std::size_t width, bool clipNames, const std::string& list)
{
  static const std::regex event(
      R"((\s*\d{1,6}[A-Za-z]?\s+)(\S.*?)\s+((?:NONE|[AVB][AV0-9/]*)\s+(?:C|D|W\d|K).*\d\d[:;]\d\d[:;]\d\d[:;]\d\d\s*))");
  static const std::regex wholeNames(R"(\s*\*\s*(SOURCE FILE|REEL).*|>>>.*|M2.*)");
  static const std::regex clipNote(R"(\s*\*\s*(FROM|TO|KEY) CLIP.*)");
  std::istringstream lines(list);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    if (std::smatch found; std::regex_match(line, found, event)) {
      std::string reel = found[2].str().substr(0, width);
      std::replace(reel.begin(), reel.end(), ' ', '_');
      reel.resize(width, ' ');
      line = found[1].str() + reel + ' ' + found[3].str();
    } else if (std::regex_match(line, wholeNames) || (!clipNames && std::regex_match(line, clipNote))) {
      continue;
    }
    text += line + '\n';
  }
  return text;
}

/// A reel by what all spellings of its name have in common.
std::string formOf(const std::string& reel)
{
  return lists::nameForm(lists::partsOf(reel).stem);
}

bool isList(const std::filesystem::path& file)
{
  if (!std::filesystem::is_regular_file(file))
    return false;
  try {
    return !app::readListFile(file.string()).list.clips.empty();
  } catch (const app::Error&) {
    return false;
  }
}

class NameOrders : public reeldb_tests::AppTest {
protected:
  void SetUp() override
  {
    AppTest::SetUp();
    const char* const folder = std::getenv("REELDB_SAMPLES");
    if (!folder)
      GTEST_SKIP() << "REELDB_SAMPLES names no folder with lists";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (isList(entry.path()))
        all_.push_back(entry.path().string());
      if (const std::string number = entry.path().filename().string().substr(0, 2);
          number == "01" || number == "05" || number == "31" || number == "32")
        samples_[number] = entry.path().string();
    }
    std::sort(all_.begin(), all_.end());
    ASSERT_EQ(samples_.size(), 4u);
  }

  std::string cut(const std::string& sample, std::size_t width, bool clipNames)
  {
    const std::string name = sample + "_" + std::to_string(width) + (clipNames ? "_clips.edl" : ".edl");
    const std::string text = cutTo(width, clipNames, bytesOf(samples_.at(sample)));
    EXPECT_FALSE(lists::read(text).clips.empty()) << name;
    return folder_.write(name, text);
  }

  /// Imports the lists in that order, each by itself. Returns the name of the project.
  std::string imported(const std::vector<std::string>& files)
  {
    std::string project = fmt::format("order{}", ++projects_);
    app::makeProject(project, "25");
    for (const std::string& file : files) {
      app::Session session(project, app::Access::Write);
      app::importLists(session, {app::readListFile(file)}, false);
    }
    return project;
  }

  /// The reels with their types and channels, and the shots with their texts, sorted.
  static std::vector<std::string> outcome(const std::string& project)
  {
    app::Session session(project, app::Access::Read);
    const app::ProjectContent content = app::readContent(session);
    std::vector<std::string> lines;
    for (const app::Reel& reel : content.reels)
      lines.push_back(fmt::format("reel {} {} {} {} {}", formOf(reel.id), reel.shots, reel.type, reel.videoChannels,
                                  reel.audioChannels));
    for (const app::Shot& shot : content.shots) {
      std::set<std::string> names = {formOf(shot.ownName.empty() ? shot.reel : shot.ownName) + shot.sourceId};
      for (const lists::SourceName& name : shot.furtherNames)
        names.insert(formOf(name.name) + name.sourceId);
      lines.push_back(fmt::format("shot {} \"{}\" {} {} {} {} {} {} {} {} {} {}", formOf(shot.reel), shot.clipName,
                                  shot.tracks, shot.sourceIn, shot.sourceOut, shot.recordIn, shot.recordOut,
                                  shot.sourceFile, fmt::join(shot.aliases, ","), shot.cameraRoll, shot.soundOf,
                                  fmt::join(names, ",")));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  /// All that the project keeps, sorted, without the numbers and identities that come with the order.
  static std::vector<std::string> wholeState(const std::string& project)
  {
    app::Session session(project, app::Access::Read);
    const app::ProjectState state = app::readState(session);
    std::vector<std::string> lines;
    std::map<std::int64_t, std::string> logs;
    for (const app::LogState& log : state.logs) {
      std::string& line = logs[log.number];
      line = fmt::format("log {} {} {} {} \"{}\" {} {} {}", log.type, log.kind, log.imported, log.entireMedium,
                         log.name, log.reelType, log.videoChannels, log.audioChannels);
      for (const auto& [key, text] : log.keys)
        line.append(" ").append(key).append("=").append(text);
      lines.push_back(line);
    }
    for (const auto& [key, text] : state.options)
      lines.push_back(fmt::format("option {}={}", key, text));
    for (const app::ListState& list : state.lists) {
      lines.push_back(fmt::format("list {} {} {}", list.file, list.title, list.content));
      for (const app::EventState& event : list.events)
        lines.push_back(fmt::format("event {} {}: {} \"{}\", {}", list.file, event.clip.line, event.clip.reel,
                                    event.clip.clipName, logs[event.shot]));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  /// Expects the outcome of the order to be that of the first order.
  void expectSame(const std::vector<std::string>& files,
                  const std::function<std::vector<std::string>(const std::string&)>& read = outcome)
  {
    const std::vector<std::string> lines = read(imported(files));
    if (first_.empty())
      first_ = lines;
    std::vector<std::string> lost, found;
    std::set_difference(first_.begin(), first_.end(), lines.begin(), lines.end(), std::back_inserter(lost));
    std::set_difference(lines.begin(), lines.end(), first_.begin(), first_.end(), std::back_inserter(found));
    EXPECT_TRUE(lost.empty()) << lost.size() << " lost: " << testing::PrintToString(lost) << "\nof "
                              << testing::PrintToString(files);
    EXPECT_TRUE(found.empty()) << found.size() << " more: " << testing::PrintToString(found) << "\nof "
                               << testing::PrintToString(files);
  }

  /// In some orders, the same ones in every run.
  void expectSameInOrders(std::vector<std::string> files, int orders)
  {
    std::minstd_rand random(5);
    for (int i = 0; i < orders; ++i) {
      expectSame(files);
      std::shuffle(files.begin(), files.end(), random);
    }
  }

  std::map<std::string, std::string> samples_; ///< files by their numbers
  std::vector<std::string> all_;               ///< sorted
  std::vector<std::string> first_;
  int projects_ = 0;
};

TEST_F(NameOrders, WholeListsGiveOneProjectInEveryOrder)
{
  std::vector<std::string> files;
  for (const auto& [number, file] : samples_)
    files.push_back(file);
  do
    expectSame(files, wholeState);
  while (std::next_permutation(files.begin(), files.end()));
}

TEST_F(NameOrders, AllListsGiveOneProjectInTwentyOrders)
{
  ASSERT_GT(all_.size(), 20u);
  expectSameInOrders(all_, 20);
}

TEST_F(NameOrders, ListsCutToEightGiveOneProjectWithTheirWholeLists)
{
  expectSameInOrders({samples_["01"], samples_["05"], samples_["32"], cut("01", 8, true), cut("05", 8, false),
                      cut("05", 8, true), cut("32", 8, true), cut("32", 16, true)},
                     12);
}

TEST_F(NameOrders, ListsCutToSixteenGiveOneProjectWithTheirWholeLists)
{
  expectSameInOrders({samples_["01"], samples_["31"], cut("01", 8, false), cut("01", 16, true), cut("31", 8, true),
                      cut("31", 16, false), cut("32", 8, true), cut("05", 16, true)},
                     12);
}

} // namespace
