// SPDX-License-Identifier: Apache-2.0
//
// One process follows a project while four others work on it at random. After every event the model of the follower is
// as a fresh load of the same revision, its clients were called as docs/clients.md says, and no commit is missed.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <thread>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/deletion.h"
#include "app/history.h"
#include "app/import.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "app/watch.h"
#include "host/codes.h"
#include "host/edit.h"
#include "host/events.h"
#include "host/projdb.h"
#include "reelhost/feed.h"
#include "reelhost/history.h"
#include "reelhost/inform_manager.h"
#include "reelhost/journal.h"
#include "support/library_fixture.h"
#include "tests/app/app_fixture.h"

namespace {

using namespace reeldb;
using namespace reeldb_tests;
using Lines = std::vector<std::string>;
using std::chrono::milliseconds;

/// A process of its own. It ends with 0 if the work does not throw.
class Process {
public:
  explicit Process(const std::function<void()>& work) : id_(::fork())
  {
    if (id_ != 0)
      return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that fails leaves nobody behind
    int code = 0;
    try {
      work();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "process: %s\n", error.what());
      code = 1;
    }
    std::fflush(nullptr);
    ::_exit(code);
  }
  ~Process()
  {
    if (code_ < 0)
      ::kill(id_, SIGKILL);
    wait();
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  bool isRunning()
  {
    if (int status = 0; code_ < 0 && ::waitpid(id_, &status, WNOHANG) == id_)
      code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    return code_ < 0;
  }
  int wait()
  {
    if (int status = 0; code_ < 0 && ::waitpid(id_, &status, 0) == id_)
      code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    return code_;
  }

private:
  const pid_t id_;
  int code_ = -1;
};

/// All values of a log as one text.
using Logs = std::map<std::int64_t, std::string>;
struct State {
  Logs logs; ///< by number
  std::string options;
  Lines reels;           ///< the numbers of the reels, in order
  std::int64_t next = 0; ///< no log ever had this number, or a higher one; not compared
  friend bool operator==(const State& a, const State& b)
  {
    return a.logs == b.logs && a.options == b.options && a.reels == b.reels;
  }
};

class Others : public AppTest {
protected:
  class Follower;

  static std::string textOf(const std::map<std::string, std::string>& values)
  {
    std::string text;
    for (const auto& [key, value] : values)
      text += " " + key + "=" + value;
    return text;
  }

  /// As the store has it. REQUIRES: a use was begun.
  State stored(reelhost::Store& store)
  {
    State state;
    const auto take = [&](reelhost::StoredLog&& log) {
      std::map<std::string, std::string> fields(log.fields.begin(), log.fields.end());
      for (const auto& [key, value] : fields)
        keys_.insert(key);
      state.logs[log.number] = describe(log.type, log.videoChannels, log.audioChannels, log.imported, fields);
      if (log.type == codes::reelLog)
        state.reels.push_back(std::to_string(log.number));
    };
    store.readReels(take);
    store.readOthers(take);
    const reelhost::KeyValues options = store.options();
    for (const auto& [key, value] : options)
      options_.insert(key);
    state.options = textOf({options.begin(), options.end()});
    state.next = store.nextNumber();
    return state;
  }

  /// As the model has it, seen through the host's interface.
  State modelled() const
  {
    State state;
    const CookieVec reels = EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff);
    for (const Cookie& reel : reels)
      state.reels.push_back(std::to_string(reelhost::logNumber(reel)));
    for (const CookieVec& all : {reels, reelhost::allShots()})
      for (const Cookie& log : all) {
        EditPtr edit;
        edit.i_open(log, codes::openAsUsual);
        std::map<std::string, std::string> fields;
        for (const std::string& key : keys_)
          if (const char* const value = edit->config().in(key.c_str()))
            fields[key] = value;
        state.logs[reelhost::logNumber(log)] =
            describe(edit->getLogType(), edit->getNumChans(codes::videoChannel), edit->getNumChans(codes::audioChannel),
                     edit->isImported(), fields);
        edit.i_close();
      }
    std::map<std::string, std::string> options;
    for (const std::string& key : options_)
      if (const char* const value = EditManager::ProjOpts().in(key.c_str()))
        options[key] = value;
    state.options = textOf(options);
    return state;
  }

  static std::string describe(int type, int video, int audio, bool imported,
                              const std::map<std::string, std::string>& fields)
  {
    return std::to_string(type) + " " + std::to_string(video) + " " + std::to_string(audio) + (imported ? " i" : " -") +
           textOf(fields);
  }

  /// The identifier in such a text of a reel; empty for another log.
  static std::string reelIn(const std::string& log)
  {
    const std::string key = " reelid=";
    const std::size_t at = log.find(key);
    if (log.rfind("9 ", 0) != 0 || at == std::string::npos)
      return {};
    return log.substr(at + key.size(), log.find(' ', at + 1) - at - key.size());
  }

  /// What docs/clients.md says that clients are notified of.
  static Heard expected(const State& before, const State& after)
  {
    Heard changed;
    Lines newReels;
    bool otherChange = false;
    for (const auto& [number, log] : after.logs) {
      const auto old = before.logs.find(number);
      const std::string id = reelIn(log), was = old == before.logs.end() ? std::string() : reelIn(old->second);
      if (old == before.logs.end() && !id.empty() && number >= before.next)
        newReels.push_back(id);
      else if (id != was) // also one that is back
        otherChange = true;
      else if (!id.empty() && log != old->second)
        changed.push_back("some(" + id + ")");
    }
    for (const auto& [number, log] : before.logs)
      otherChange = otherChange || (after.logs.count(number) == 0 && !reelIn(log).empty());
    Heard all;
    if (!newReels.empty() || otherChange)
      all.push_back("dbC(" + (newReels.size() == 1 && !otherChange ? newReels.front() : "") + ")");
    all.insert(all.end(), changed.begin(), changed.end());
    return all;
  }

  /// One random operation, as a command carries it out. Returns false if it is not possible in this state.
  static bool operate(std::mt19937& random, const std::string& list)
  {
    const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
    const auto someReel = [&] { return "R" + std::to_string(below(12)); };
    try {
      app::Session session({}, app::Access::Write);
      switch (below(16)) {
      case 0:
      case 1:
        app::createReel(session, someReel(), {});
        break;
      case 2:
        app::renameReel(session, someReel(), someReel(), false);
        break;
      case 3:
        app::deleteReels(session, {someReel()}, {});
        break;
      case 4:
        app::undelete(session);
        break;
      case 5:
        app::undo(session, {}, true);
        break;
      case 6:
        app::redo(session, true);
        break;
      case 7: {
        std::ofstream file(list);
        file << "TITLE: T\n";
        for (int line = 1; line <= 3; ++line)
          file << "00" << line << "  " << someReel() << "      V     C        01:00:0" << line << ":00 01:00:0" << line
               << ":1" << below(9) << " 10:00:0" << line << ":00 10:00:0" << line << ":10\n";
        file.close();
        app::importLists(session, {app::readListFile(list)}, false);
        break;
      }
      case 8:
        app::changeRate(session, below(2) == 0 ? "24" : "25");
        break;
      case 9:
        app::copyReel(session, someReel(), someReel());
        break;
      default:
        app::changeReel(session, someReel(),
                        {{below(2) == 0 ? "bin" : "user-field.1", std::to_string(below(4))},
                         {"available", below(2) == 0 ? "yes" : "no"}});
      }
      return true;
    } catch (const app::Error& error) {
      if (error.kind() == app::ErrorKind::NotFound || error.kind() == app::ErrorKind::Refused)
        return false;
      throw;
    }
  }

  std::set<std::string> keys_, options_; ///< all that were stored so far
  std::int64_t newest_ = 0;
};

/// The calls that the library makes when it is informed.
Lines callsOf(const std::function<void()>& work)
{
  reelhost::Journal::the().record(true);
  work();
  Lines lines = reelhost::Journal::the().lines();
  reelhost::Journal::the().record(false);
  return lines;
}

/// The numbers of the logs that differ or are gone.
std::vector<std::int64_t> changedNumbers(const State& before, const State& after)
{
  std::vector<std::int64_t> numbers;
  for (const auto& [number, log] : after.logs)
    if (const auto old = before.logs.find(number); old == before.logs.end() || old->second != log)
      numbers.push_back(number);
  return numbers;
}

std::vector<std::int64_t> goneNumbers(const State& before, const State& after)
{
  std::vector<std::int64_t> numbers;
  for (const auto& [number, log] : before.logs)
    if (after.logs.count(number) == 0)
      numbers.push_back(number);
  return numbers;
}

template <class Logs>
std::vector<std::int64_t> numbersOf(const Logs& logs)
{
  std::vector<std::int64_t> numbers;
  for (const auto& log : logs)
    numbers.push_back(log.number);
  return numbers;
}

/// Runs something when logs are reported as changed or deleted.
class LogListener final : public ProjectListener {
public:
  void handleLogsModification(const CookieVec&) override { onEvent(); }
  void handleLogsDeletion(const CookieVec&, LightweightString<char>) override { onEvent(); }
  std::function<void()> onEvent = [] {};
};

/// Follows the open project, and checks each event.
class Others::Follower {
public:
  Follower(Others& test, ReelDbManager& manager) : test_(test), manager_(manager), client_(heard_)
  {
    reelhost::Store& store = reelhost::projectStoreToRead();
    last_ = Point{test_.stored(store), store.feed()->position()};
  }

  /// Applies what others have committed. Returns whether there was anything.
  bool takeOver()
  {
    // A client that looks at the model makes host calls itself, so calls are compared at every other event.
    const bool looks = ++events_ % 2 == 0;
    std::vector<State> seen;
    const auto look = [&] {
      if (looks)
        seen.push_back(test_.modelled());
    };
    listener_.onEvent = look;
    client_.onDbChanged = client_.onSome = [&](const std::string&) { look(); };
    reelhost::idle();
    heard_.clear();
    reelhost::ForeignChanges changes;
    const Lines calls = callsOf([&] { changes = reelhost::informOfChangesFromElsewhere(manager_); });
    if (changes.state != reelhost::ForeignChanges::State::Applied)
      return false;
    for (const State& state : seen)
      EXPECT_EQ(state, test_.modelled()) << "somebody was notified before the model was whole";
    if (!looks)
      compareCalls(calls, heard_, changes);
    compareStates();
    return true;
  }

  std::int64_t newest() const { return newest_; }
  int compared() const { return compared_; }

private:
  struct Point {
    State state;
    reelhost::FeedPosition position;
  };

  /// The calls are those that the table asks for, in this order, and no others.
  void compareCalls(const Lines& calls, const Heard& heard, const reelhost::ForeignChanges& changes)
  {
    const Heard notified = heard;
    const Lines byHand = callsOf([&] {
      if (!notified.empty() && notified.front().rfind("dbC(", 0) == 0)
        manager_.informReelDbChanged(notified.front().substr(4, notified.front().size() - 5).c_str());
      for (const Cookie& log : changes.changedReels)
        manager_.informReelDbRecChanged(ReelDbRec(log).reelId());
    });
    EXPECT_EQ(calls, byHand);
    heard_ = notified;
  }

  void compareStates()
  {
    Point now;
    try {
      reelhost::Store& store = reelhost::projectStoreToRead();
      reelhost::Feed& feed = *store.feed();
      now = {test_.stored(store), feed.position()};
      if (last_) {
        const reelhost::Delta delta = feed.since(last_->position);
        EXPECT_FALSE(delta.whole);
        EXPECT_EQ(numbersOf(delta.logs), changedNumbers(last_->state, now.state));
        EXPECT_EQ(numbersOf(delta.gone), goneNumbers(last_->state, now.state));
        EXPECT_TRUE(delta.options || last_->state.options == now.state.options);
      }
    } catch (const reelhost::Error& error) {
      EXPECT_EQ(error.kind(), reelhost::ErrorKind::Busy) << error.what();
      last_.reset(); // the next commit is there already, so this state can no longer be loaded
      return;
    }
    EXPECT_EQ(test_.modelled(), now.state);
    EXPECT_GT(now.position.revision, newest_);
    newest_ = now.position.revision;
    if (last_) {
      EXPECT_EQ(heard_, expected(last_->state, now.state));
      ++compared_;
    }
    last_ = std::move(now);
  }

  Others& test_;
  ReelDbManager& manager_;
  Heard heard_;
  RecordingClient client_;
  LogListener listener_;
  std::optional<Point> last_; ///< the state after the last event, as it was loaded
  std::int64_t newest_ = 0;
  int events_ = 0, compared_ = 0;
};

/// Writes the revisions that a watch reports, each on a line, until the file @p stop is there.
void watchUntil(const std::string& stop, const std::string& file)
{
  app::Session session({}, app::Access::Read);
  std::ofstream lines(file);
  app::Watcher watcher(session, {}, [&](const app::WatchedCommit& commit) {
    lines << (commit.commit ? commit.commit->revision : -1) << '\n';
  });
  for (bool last = false; !last; std::this_thread::sleep_for(milliseconds(1))) {
    last = std::filesystem::exists(stop);
    watcher.idle();
    watcher.poll();
  }
}

TEST_F(Others, FollowerHasEveryCommitOfFourProcessesOnceAndWhole)
{
  constexpr unsigned processes = 4;
  const int operations = (std::getenv("REELDB_LONG_TESTS") ? 10'000 : 400) / static_cast<int>(processes);
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  reelhost::setBusyTimeout(std::chrono::minutes(1));
  const std::string watched = (folder_.path() / "watched").string(), stop = (folder_.path() / "stop").string();

  Process watcher([&] { watchUntil(stop, watched); });
  std::this_thread::sleep_for(milliseconds(200)); // it need not see the first commits, but then the check is weaker
  std::vector<std::unique_ptr<Process>> others;
  for (unsigned i = 0; i < processes; ++i)
    others.push_back(std::make_unique<Process>([&, i] {
      std::mt19937 random(seed + i);
      reelhost::printTo([](std::string_view) {});
      int done = 0;
      for (int n = 0; n < operations; ++n) {
        done += operate(random, (folder_.path() / ("list" + std::to_string(i) + ".edl")).string()) ? 1 : 0;
        std::this_thread::sleep_for(milliseconds(random() % 40)); // some events have one commit, others several
      }
      if (done < operations / 4)
        throw std::runtime_error("hardly anything was possible");
    }));

  app::Session session({}, app::Access::Read);
  reelhost::Feed& feed = *reelhost::projectStore().feed();
  pollfd handle{feed.waitHandle(), POLLIN, 0};
  ASSERT_GE(handle.fd, 0) << feed.whyNoWaitHandle();
  Follower follower(*this, session.manager());
  const auto isRunning = [](const std::unique_ptr<Process>& process) { return process->isRunning(); };
  while (!HasFailure() && std::any_of(others.begin(), others.end(), isRunning)) {
    reelhost::idle();
    constexpr int patience = 200; // milliseconds, after which it is asked again whether anybody still works
    ::poll(&handle, 1, patience);
    reelhost::AskAgain again = feed.readEvents();
    for (; again && again->count() != 0; again = feed.readEvents())
      std::this_thread::sleep_for(*again);
    if (again)
      follower.takeOver();
  }
  for (const auto& other : others)
    EXPECT_EQ(other->wait(), 0);
  while (follower.takeOver()) {
  }
  std::ofstream(stop).flush();
  EXPECT_EQ(watcher.wait(), 0);

  std::vector<std::int64_t> reported;
  std::ifstream lines(watched);
  for (std::int64_t revision = 0; lines >> revision;)
    reported.push_back(revision);
  EXPECT_EQ(std::adjacent_find(reported.begin(), reported.end(), std::greater_equal<>()), reported.end())
      << "each once, in order";
  reelhost::projectStoreToRead().history()->readRevisions([&](reelhost::Revision&& revision) {
    newest_ = std::max(newest_, revision.number);
    if (!reported.empty() && revision.number > reported.front() && revision.created + revision.deleted != 0) {
      EXPECT_TRUE(std::binary_search(reported.begin(), reported.end(), revision.number)) << revision.number;
    }
    return true;
  });
  EXPECT_EQ(follower.newest(), newest_);
  EXPECT_GT(reported.size(), static_cast<std::size_t>(operations) / 2);
  EXPECT_GT(follower.compared(), operations / 10);
  EXPECT_EQ(reelhost::makeSqliteStore(reelhost::facility().projectFile("main"))->check(), Lines{});
  std::printf("%d operations, %lld commits, %d events compared (seed %u)\n", operations * static_cast<int>(processes),
              static_cast<long long>(newest_), follower.compared(), seed);
}

} // namespace
