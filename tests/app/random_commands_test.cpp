// SPDX-License-Identifier: Apache-2.0
//
// Random commands, each followed by an undo of a random earlier one and a redo of that: both are refused with the
// reason, or the project is sound and in the very state that it is said to be in. REELDB_LONG_TESTS runs many more,
// REELDB_SEED repeats a run.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "app/deletion.h"
#include "app/export.h"
#include "app/history.h"
#include "app/import.h"
#include "app/json/json.h"
#include "app/kept_lists.h"
#include "app/list_files.h"
#include "app/process.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "base/ascii.h"
#include "reelhost/history.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

constexpr int runsOfAProject = 100; // each run reads the whole history, which grows

using Faults = std::set<std::string>;

unsigned seed()
{
  const char* const wanted = std::getenv("REELDB_SEED");
  return wanted ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : std::random_device()();
}

std::string fieldOf(const reelhost::StoredLog& log, std::string_view key)
{
  for (const auto& [known, value] : log.fields)
    if (known == key)
      return value;
  return {};
}

/// What must not be in a project, read from its file: each fault as one text.
Faults faultsOf(const std::string& project)
{
  const auto store = reelhost::makeSqliteStore(reelhost::facility().projectFile(project));
  store->begin(reelhost::Access::Read, std::chrono::seconds(5));
  Faults faults;
  std::map<std::string, std::set<std::int64_t>> reels; // by folded identifier
  std::map<std::string, std::set<std::string>> names;  // folded, with what they lead to
  store->readReels([&](reelhost::StoredLog&& log) {
    const std::string id = fieldOf(log, "reelid");
    if (!reels[base::fold(id)].insert(log.number).second || reels[base::fold(id)].size() > 1)
      faults.insert("two reels " + base::fold(id));
    for (const auto& [key, value] : log.fields)
      if (key.rfind("reel_old_name", 0) == 0 && value != id)
        names[base::fold(value)].insert("log " + std::to_string(log.number));
  });
  std::set<std::int64_t> shots;
  store->readOthers([&](reelhost::StoredLog&& log) {
    shots.insert(log.number);
    const std::string id = base::fold(fieldOf(log, "reelid"));
    const auto reel = reels.find(id);
    if (!id.empty() && reel == reels.end())
      faults.insert(fmt::format("shot {} without reel", log.number));
    const std::string leadsTo = reel == reels.end() ? id : fmt::format("log {}", *reel->second.begin());
    const std::string aliases = fieldOf(log, "aliases");
    for (std::size_t at = 0, end = 0; at < aliases.size(); at = end + 1) {
      end = std::min(aliases.find('\n', at), aliases.size());
      names[base::fold(aliases.substr(at, end - at))].insert(leadsTo);
    }
  });
  for (const auto& [name, meant] : names)
    for (auto one = meant.begin(); one != meant.end(); ++one)
      for (auto other = std::next(one); other != meant.end(); ++other)
        faults.insert(fmt::format("name {} of {} and {}", name, *one, *other));
  store->lists()->readListHeads([&](const reelhost::KeptList& list) {
    if (store->lists()->listBytes(list.digest).empty())
      faults.insert(fmt::format("list {} without its bytes", list.number));
    for (const reelhost::ListEvent& event : store->lists()->eventsOf(list.number))
      if (event.shot != 0 && shots.count(event.shot) == 0)
        faults.insert(fmt::format("event of list {} without shot {}", list.number, event.shot));
  });
  return faults;
}

class RandomCommands : public reeldb_tests::AppTest {
protected:
  struct Snapshot {
    std::string state; ///< the whole export
    Faults faults;
  };

  void SetUp() override
  {
    AppTest::SetUp();
    reelhost::printTo([](std::string_view) {});
  }
  void TearDown() override { reelhost::printTo({}); }

  std::size_t below(std::size_t end) { return random_() % end; }
  bool oneIn(std::size_t count) { return below(count) == 0; }
  std::string someName()
  {
    return std::string(1, static_cast<char>((oneIn(2) ? 'A' : 'a') + static_cast<char>(below(5))));
  }

  void begin(const std::string& project)
  {
    project_ = project;
    app::makeProject(project, "25");
    snapshots_.clear();
    snapshots_[0] = look();
  }

  template <class Work>
  auto write(Work work)
  {
    app::Session session(project_, app::Access::Write);
    return work(session);
  }

  Snapshot look() const
  {
    app::Session session(project_, app::Access::Read);
    app::ProjectContent content = app::readContent(session);
    content.state = app::readState(session);
    return {app::jsonText(content), faultsOf(project_)};
  }

  std::vector<app::CommitEntry> commits() const
  {
    app::Session session(project_, app::Access::Read);
    return app::readHistory(session, {}).commits;
  }

  app::ListFile someList()
  {
    std::string text = fmt::format("TITLE: T{}\n", below(2));
    const std::size_t events = 1 + below(4);
    for (std::size_t i = 1; i <= events; ++i) {
      const std::size_t source = below(3);
      const char* const transition = i > 1 && oneIn(5) ? "D    012" : "C       ";
      const std::string reel = oneIn(8) ? "BL" : someName();
      text +=
          fmt::format("{0:03}  {1}        V     {2} 01:00:{3:02}:00 01:00:{3:02}:10 10:00:{0:02}:00 10:00:{0:02}:10\n",
                      i, reel, transition, source);
      if (oneIn(3))
        text += fmt::format("* FROM CLIP NAME: {}\n", below(2));
      if (oneIn(4))
        text += fmt::format("* REEL S{} IS CLIP x\n", below(3));
      if (oneIn(6))
        text += fmt::format("M2   {}        {:03}.0                01:00:{:02}:00\n", reel, below(3) * 10, source);
    }
    return app::readListFile(folder_.write(fmt::format("{}.edl", below(3)), text));
  }

  std::string someKeptList()
  {
    app::Session session(project_, app::Access::Read);
    const std::vector<app::KeptList> lists = app::keptLists(session);
    return lists.empty() ? "1" : std::to_string(lists[below(lists.size())].number);
  }

  std::string someReel()
  {
    app::Session session(project_, app::Access::Read);
    const std::vector<app::Reel> reels = app::listReels(session);
    return reels.empty() ? "A" : reels[below(reels.size())].id;
  }

  /// A command that may not be possible.
  std::function<void(app::Session&)> someCommand()
  {
    const std::string reel = someReel(), other = someReel(), name = someName(), list = someKeptList();
    const std::string value = std::to_string(below(3));
    switch (below(14)) {
    case 0:
    case 1: {
      std::vector<app::ListFile> files;
      for (std::size_t i = 0, count = 1 + below(3); i < count; ++i)
        files.push_back(someList());
      return [files](app::Session& session) { app::importLists(session, files, false); };
    }
    case 2:
    case 3:
      return [file = someList(), replacing = oneIn(2) ? app::Replacing{true, {}} : app::Replacing{false, list}](
                 app::Session& session) { app::importLists(session, {file}, false, {}, replacing); };
    case 4:
      return [list](app::Session& session) { app::removeList(session, list, false); };
    case 5:
    case 6:
      return [reel, name](app::Session& session) { app::renameReel(session, reel, name, false); };
    case 7: {
      const std::vector<std::string> fields = {"bin", "user-field.1", "available", "type"};
      const std::string& field = fields[below(fields.size())];
      return [reel, field,
              text = field == "available" ? std::string(oneIn(2) ? "yes" : "no") : value](app::Session& session) {
        app::changeReel(session, reel, {{field, text}});
      };
    }
    case 8:
      return [reel, other, two = oneIn(3)](app::Session& session) {
        app::deleteReels(session, two ? std::vector{reel, other} : std::vector{reel}, {});
      };
    case 9:
      return [](app::Session& session) { app::undelete(session); };
    case 10:
      return [name](app::Session& session) { app::createReel(session, name, {}); };
    case 11:
      return [reel, other](app::Session& session) { app::copyReel(session, reel, other); };
    case 12:
      return [rate = oneIn(2) ? "25" : "24"](app::Session& session) { app::changeRate(session, rate); };
    default:
      if (!oneIn(4))
        return [](app::Session& session) { app::undo(session, {}, false); };
      if (oneIn(2))
        return [](app::Session& session) { app::compactProject(session); };
      const std::vector<app::CommitEntry> known = commits();
      const std::int64_t before = known.empty() ? 1 : known[below(known.size())].revision;
      return [before](app::Session& session) { app::forgetHistory(session, std::to_string(before)); };
    }
  }

  /// Runs the work and notes the state of the project after it. Returns false if it was refused.
  bool change(const std::function<void(app::Session&)>& work)
  {
    try {
      write(work);
    } catch (const app::Error& error) {
      EXPECT_TRUE(error.kind() == app::ErrorKind::Refused || error.kind() == app::ErrorKind::NotFound) << error.what();
      EXPECT_EQ(look().state, now().state) << error.what();
      return false;
    }
    const std::vector<app::CommitEntry> known = commits();
    snapshots_[known.empty() ? snapshots_.rbegin()->first : known.front().revision] = look();
    return true;
  }
  const Snapshot& now() const { return snapshots_.rbegin()->second; }

  /// An undo and a redo.
  void takeBackAndMakeAgain()
  {
    std::vector<app::CommitEntry> known = commits();
    if (!oneIn(10))
      std::erase_if(known, [](const app::CommitEntry& commit) { return commit.takenBackBy != 0; });
    if (known.empty())
      return;
    const app::CommitEntry& commit = known[oneIn(3) ? 0 : below(std::min<std::size_t>(known.size(), 10))];
    const Snapshot before = now();
    const std::int64_t newest = snapshots_.rbegin()->first;
    const auto earlier = snapshots_.find(commit.revision - 1);
    app::TakenBackCommit undone;
    if (!change([&](app::Session& session) { undone = app::undo(session, commit.revision, false); })) {
      ++refused_;
      return;
    }
    ++undone_;
    // A command that deletes what it writes makes two revisions. The state between them was never seen.
    if (earlier != snapshots_.end()) {
      for (const std::string& fault : now().faults)
        EXPECT_TRUE(before.faults.count(fault) != 0 || earlier->second.faults.count(fault) != 0) << fault;
      if (commit.revision == newest) {
        EXPECT_EQ(now().state, earlier->second.state);
      }
    }
    const bool isUndo = commit.takesBack == 0; // and not an undo of an undo, which redo does not take back
    if (!change([&](app::Session& session) {
          if (isUndo && oneIn(2))
            app::redo(session, false);
          else
            app::undo(session, undone.revision, false);
        })) {
      ++refused_;
      return;
    }
    EXPECT_EQ(now().state, before.state);
    ++redone_;
  }

  const unsigned seed_ = seed();
  std::mt19937 random_{seed_};
  std::string project_;
  std::map<std::int64_t, Snapshot> snapshots_; ///< the states after the revisions
  int undone_ = 0, redone_ = 0, refused_ = 0;
};

TEST_F(RandomCommands, AreTakenBackAndMadeAgainOrRefused)
{
  const int runs = std::getenv("REELDB_LONG_TESTS") ? 10000 : 100;
  int stored = 0;
  for (int run = 0; run < runs && !HasFailure(); ++run) {
    SCOPED_TRACE(fmt::format("seed {}, run {}", seed_, run));
    if (run % runsOfAProject == 0)
      begin(fmt::format("p{}", run / runsOfAProject));
    stored += change(someCommand()) ? 1 : 0;
    for (const std::string& fault : now().faults)
      EXPECT_EQ(fault.rfind("name ", 0), 0u) << fault; // lists may say so
    takeBackAndMakeAgain();
    if (run % runsOfAProject == runsOfAProject - 1) {
      EXPECT_EQ(app::checkProject(project_).problems, std::vector<std::string>{});
    }
  }
  if (HasFailure())
    return;
  EXPECT_GT(undone_, runs / 5);
  EXPECT_GT(redone_, runs / 10);
  EXPECT_GT(refused_, runs / 100);
  std::printf("%d commands, %d commits taken back, %d of them made again, %d refused (seed %u)\n", stored, undone_,
              redone_, refused_, seed_);
}

} // namespace
