// SPDX-License-Identifier: Apache-2.0
//
// The command is killed at any moment, and the log its database was writing is cut short anywhere: the project always
// opens, is sound, and holds what was there before the command or what was there after it, never a part of the change.
// REELDB_LONG_TESTS runs many more rounds.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <thread>

#include "cli/command_fixture.h"
#include "reelhost/history.h"

using namespace reeldb_tests;

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds patience{5000};

int rounds(int few, int many)
{
  const char* wanted = std::getenv("REELDB_LONG_TESTS");
  return wanted && *wanted ? many : few;
}

class PowerCut : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    random_.seed(seed_);
  }

  fs::path project() const { return dir_.path() / "projects" / "main.reels"; }

  std::size_t below(std::size_t bound) { return random_() % bound; }

  static void writeList(std::ostringstream& out, const reelhost::KeptList& list)
  {
    out << "list " << list.number << ' ' << list.file << ' ' << list.title << ' ' << list.eventCount << '\n';
    out.write(reinterpret_cast<const char*>(list.digest.data()), static_cast<std::streamsize>(list.digest.size()));
    for (const reelhost::ListEvent& event : list.events)
      out << '\n' << event.line << ' ' << event.shot << ' ' << event.number << ' ' << event.clip.reel;
    out << '\n';
  }

  /// All that the project holds but the identities of its logs, which no two runs share.
  static std::string contents(const fs::path& file)
  {
    const auto store = reelhost::makeSqliteStore(file);
    EXPECT_EQ(store->check(), std::vector<std::string>{}) << file;
    store->begin(reelhost::Access::Read, patience);
    std::ostringstream out;
    const auto write = [&](reelhost::StoredLog&& log) {
      out << log.number << ' ' << log.type << ' ' << log.imported << ' ' << log.name << ' ' << log.reelType;
      for (const auto& [key, value] : log.fields)
        out << ' ' << key << '=' << value;
      out << '\n';
    };
    store->readReels(write);
    store->readOthers(write);
    reelhost::Lists& lists = *store->lists();
    lists.readListHeads([&](reelhost::KeptList&& list) {
      list.events = lists.eventsOf(list.number);
      writeList(out, list);
      out << lists.listBytes(list.digest) << '\n';
    });
    reelhost::History& history = *store->history();
    out << "trash " << history.trashCount() << '\n';
    std::vector<reelhost::Revision> revisions;
    history.readRevisions([&](reelhost::Revision&& revision) {
      revisions.push_back(std::move(revision));
      return true;
    });
    for (const reelhost::Revision& revision : revisions) {
      out << "revision " << revision.number << ' ' << revision.takesBack << ' ' << revision.created << ' '
          << revision.changed << ' ' << revision.deleted << ' ' << revision.lists << '\n';
      reelhost::RevisionChanges changes = history.changesOf(revision.number);
      for (reelhost::LogChange& change : changes.logs)
        if (change.before)
          write(std::move(*change.before));
      for (const reelhost::ListChange& change : changes.lists)
        if (change.before)
          writeList(out, *change.before);
    }
    store->end();
    return out.str();
  }

  /// A command that changes the project, and what it needs.
  Words someChange()
  {
    const Words reels = reelIds();
    const Json lists = json({"list-file", "list", "--json"});
    const std::string list = lists.empty() ? "" : std::to_string(lists[below(lists.size())].at("number").get<int>());
    const bool fewThings = reels.size() < 4 || (list.empty() && below(2) == 0);
    switch (fewThings ? 0 : below(list.empty() ? 9 : 13)) {
    case 1:
      return {"rename", reels[below(reels.size())], numbered("N", ++names_)};
    case 2:
      return {"delete", "--yes", reels[below(reels.size())], reels[below(reels.size())]};
    case 3:
      return {"undelete"};
    case 4:
      return {"set", reels[below(reels.size())], numbered("bin=b", ++names_)};
    case 5:
      return {"undo"};
    case 6:
      return {"undo", std::to_string(1 + below(lastRevision()))};
    case 7:
      return {"redo"};
    case 8:
      return below(3) == 0 ? Words{"project", "compact", "--before", std::to_string(1 + below(lastRevision()))}
                           : Words{"project", "compact"};
    case 9:
    case 10:
      return {"import", "--as", list, someList()};
    case 11:
    case 12:
      return {"list-file", "remove", list};
    default:
      break;
    }
    return {"import", someList()};
  }

  /// Writes a list that shares a third of its reels with the one before.
  std::string someList()
  {
    std::string list;
    const std::size_t first = names_;
    for (std::size_t i = 0; i < 60; ++i)
      list += event(static_cast<int>(i) + 1, numbered("T", first + i % 12), "V", numbered("01:00:00:", 10 + i % 10),
                    "01:00:01:00");
    names_ += 8;
    dir_.write("list.edl", list);
    return "list.edl";
  }

  std::size_t lastRevision()
  {
    const Json commits = json({"history", "--json"}).at("commits");
    return commits.empty() ? 1 : commits.at(0).at("revision").get<std::size_t>();
  }

  /// Replaces the project by one that was made before projects kept their history.
  void takeOlderProject()
  {
    for (const char* ending : {"", "-wal", "-shm"})
      fs::remove(project().native() + ending);
    fs::copy_file(fs::path(REELDB_SOURCE_DIR) / "tests/standalone/store/data/version-1.reels", project());
  }

  /// Puts the project as it is now, with the log beside it, into another facility's folder.
  fs::path copyTo(const std::string& name)
  {
    const fs::path folder = dir_.path() / name;
    fs::remove_all(folder);
    fs::copy(dir_.path() / "facility.toml", (fs::create_directories(folder), folder / "facility.toml"));
    fs::copy(dir_.path() / "devicedata", folder / "devicedata", fs::copy_options::recursive);
    fs::copy(dir_.path() / "labelmaps", folder / "labelmaps", fs::copy_options::recursive);
    fs::create_directories(folder / "projects");
    for (const char* ending : {"", "-wal", "-shm"}) {
      const fs::path from = project().native() + ending;
      if (fs::exists(from))
        fs::copy_file(from, folder / "projects" / from.filename());
    }
    return folder;
  }

  const unsigned seed_ = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
  std::mt19937 random_;
  std::size_t names_ = 0;
};

TEST_F(PowerCut, KilledCommandLeavesWhatWasThereBeforeOrAfterIt)
{
  int before = 0, after = 0, cut = 0;
  std::map<std::string, int> killed; // by command
  for (int round = 0; round < rounds(40, 2000); ++round) {
    const bool upgrades = round % 10 == 9;
    if (upgrades)
      takeOlderProject();
    const Words change = someChange();
    const std::string was = contents(project());

    // What it does when nobody disturbs it, and how long that takes here.
    const fs::path undisturbed = copyTo("undisturbed");
    Words line = {"-C", undisturbed.string()};
    line.insert(line.end(), change.begin(), change.end());
    const auto begin = std::chrono::steady_clock::now();
    const int code = reeldb(line).code;
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
    const std::string becomes = contents(undisturbed / "projects" / "main.reels");

    const std::string file = readFile("projects/main.reels");
    Words words = {reeldbProgram};
    words.insert(words.end(), change.begin(), change.end());
    RunningProcess process(words, setting_);
    std::this_thread::sleep_for(std::chrono::microseconds(below(static_cast<std::size_t>(whole.count()) * 5 / 4 + 1)));
    process.signal(SIGKILL);
    const ProcessResult result = process.wait();

    // The log it leaves is cut, too, as a disk does that had not written all of it. Once the project's file itself is
    // written, the log has been on the disk: no power cut takes of it then.
    const std::string log = project().native() + "-wal";
    if (fs::exists(log) && fs::file_size(log) > 0 && readFile("projects/main.reels") == file) {
      for (int piece = 0; piece < 5; ++piece) {
        const fs::path copy = copyTo("cut") / "projects" / "main.reels";
        fs::remove(copy.native() + "-shm");
        fs::resize_file(copy.native() + "-wal", below(fs::file_size(log)));
        const std::string left = contents(copy);
        ASSERT_TRUE(left == was || left == becomes) << change.at(0) << ", seed " << seed_ << ", round " << round;
        ++cut;
      }
    }

    const std::string is = contents(project());
    ASSERT_TRUE(is == was || is == becomes) << change.at(0) << ", seed " << seed_ << ", round " << round;
    if (result.code != -1) { // it was done before the kill came: what it reported is there
      ASSERT_EQ(result.code, code) << change.at(0);
      ASSERT_EQ(is, becomes) << change.at(0) << ", seed " << seed_ << ", round " << round;
    } else {
      ++killed[upgrades ? "upgrade" : change.at(0)];
    }
    ++(is == becomes && is != was ? after : before);
  }
  std::cout << before << " times what was before, " << after << " times what was after, " << cut << " logs cut (seed "
            << seed_ << ")\n";
  for (const auto& [command, times] : killed)
    std::cout << command << " killed " << times << " times\n";
  EXPECT_GT(before, 0);
  EXPECT_GT(after, 0);
  // The log is there for a moment only, between the first write and the last: few kills may all miss it, many do not.
  EXPECT_GE(cut, rounds(0, 1));
}

/// Writes its own reels into the project, one command each, as long as @p count lasts.
void writeReels(const std::string& folder, const std::string& name, int count)
{
  ProcessSetting setting;
  setting.folder = folder;
  for (int i = 0; i < count; ++i) {
    const std::string id = numbered(name, static_cast<std::size_t>(i));
    for (const Words& words : {Words{"create", id}, Words{"set", id, "bin=" + name}}) {
      Words line = {reeldbProgram};
      line.insert(line.end(), words.begin(), words.end());
      const ProcessResult result = runProcess(line, setting);
      ASSERT_EQ(result.code, 0) << words.front() << ' ' << id << ": " << result.err;
    }
  }
}

TEST_F(PowerCut, TwoWritersInALoopLoseNothing)
{
  const int count = rounds(15, 150);
  const std::string folder = dir_.path().string();
  std::thread other([&] { writeReels(folder, "B", count); });
  writeReels(folder, "A", count);
  other.join();
  EXPECT_EQ(reelIds().size(), static_cast<std::size_t>(2 * count));
  for (const Json& entry : json({"list", "--json"}))
    EXPECT_EQ(entry.at("bin"), entry.at("id").get<std::string>().substr(0, 1)) << entry;
  EXPECT_EQ(reelhost::makeSqliteStore(project())->check(), std::vector<std::string>{});
}

} // namespace
