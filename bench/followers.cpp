// SPDX-License-Identifier: Apache-2.0
//
// How long it takes from the end of another process's commit until a program that waits has it: in its model, and its
// clients notified. Against a bare watch, which is woken in the same way and asks one indexed table.
#include "followers.h"

#include <fmt/core.h>
#include <poll.h>
#include <sqlite3.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <map>
#include <stdexcept>
#include <thread>
#include <vector>

#include "reelhost/feed.h"
#include "reelhost/inform_manager.h"
#include "stopwatch.h"
#include "subjects.h"
#include "support/temp_folder.h"

namespace reeldb_bench {

namespace {

using reeldb_tests::TempFolder;
using reelhost::StoredLog;
using std::chrono::steady_clock;

enum class Kind { Field, NewReel, Rename, Deletion, Shots };
constexpr std::pair<Kind, const char*> kinds[] = {{Kind::Field, "field"},
                                                  {Kind::NewReel, "new reel"},
                                                  {Kind::Rename, "renamed reel"},
                                                  {Kind::Deletion, "deleted reel"},
                                                  {Kind::Shots, "100 new shots"}};

double now() // the clock is the same in all processes
{
  return std::chrono::duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

StoredLog newLog(std::int64_t number, int type, const std::string& reelId)
{
  StoredLog log;
  log.number = number;
  const std::string text = fmt::format("FOLLOWER{:08d}", number);
  std::copy_n(text.begin(), log.uuid.size(), log.uuid.begin());
  log.type = type;
  log.fields = {{"reelid", reelId}};
  return log;
}

/// The process that commits: one change for each kind that is written to it. It returns the time of the commit.
class Writer {
public:
  explicit Writer(const std::string& file)
  {
    int orders[2], times[2];
    if (::pipe(orders) != 0 || ::pipe(times) != 0)
      throw std::runtime_error("no pipe");
    id_ = ::fork();
    if (id_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      ::close(orders[1]);
      work(file, orders[0], times[1]);
      ::_exit(0);
    }
    ::close(orders[0]);
    ::close(times[1]);
    orders_ = orders[1];
    times_ = times[0];
  }
  ~Writer()
  {
    ::close(orders_);
    ::close(times_);
    ::waitpid(id_, nullptr, 0);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  void commit(Kind kind) const
  {
    if (::write(orders_, &kind, sizeof kind) != sizeof kind)
      throw std::runtime_error("the writer is gone");
  }
  double timeOfCommit() const
  {
    double time = 0;
    if (::read(times_, &time, sizeof time) != sizeof time)
      throw std::runtime_error("the writer is gone");
    return time;
  }

private:
  static void work(const std::string& file, int orders, int times)
  {
    const std::unique_ptr<reelhost::Store> store = reelhost::makeSqliteStore(file);
    std::vector<StoredLog> reels;
    store->begin(reelhost::Access::Read, std::chrono::seconds(5));
    store->readReels([&](StoredLog&& log) {
      if (reels.size() < 2000)
        reels.push_back(std::move(log));
    });
    std::int64_t next = store->nextNumber();
    store->end();
    std::size_t at = 0;
    for (Kind kind{}; ::read(orders, &kind, sizeof kind) == sizeof kind;) {
      std::this_thread::sleep_for(std::chrono::milliseconds(3)); // the follower waits by then
      StoredLog& reel = reels.at(++at % reels.size());
      reelhost::Changes changes;
      switch (kind) {
      case Kind::Field:
        reel.fields.emplace_back(fmt::format("bench{}", at), "x");
        changes.logs = {reel};
        break;
      case Kind::NewReel:
        changes.logs = {newLog(next, 9, fmt::format("New {}", next))};
        ++next;
        break;
      case Kind::Rename:
        reel.fields.front().second = fmt::format("Renamed {}", at);
        changes.logs = {reel};
        break;
      case Kind::Deletion:
        changes.deleted = {reel.number};
        reels.erase(reels.begin() + static_cast<std::ptrdiff_t>(at % reels.size()));
        break;
      case Kind::Shots:
        for (int i = 0; i < 100; ++i, ++next)
          changes.logs.push_back(newLog(next, 1, reel.fields.front().second));
        break;
      }
      store->begin(reelhost::Access::Write, std::chrono::seconds(5));
      store->commit(changes);
      const double time = now();
      if (::write(times, &time, sizeof time) != sizeof time)
        return;
    }
  }

  pid_t id_ = -1;
  int orders_ = -1, times_ = -1;
};

/// A bare watch: the number of commits since the last question, by one statement on an index.
class BareWatch {
public:
  explicit BareWatch(const std::string& file)
  {
    if (sqlite3_open_v2(file.c_str(), &database_, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(database_,
                           "SELECT max(number), (SELECT count(*) FROM revisions WHERE number > ?1) FROM revisions", -1,
                           &statement_, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(database_));
    ask();
  }
  ~BareWatch()
  {
    sqlite3_finalize(statement_);
    sqlite3_close(database_);
  }
  BareWatch(const BareWatch&) = delete;
  BareWatch& operator=(const BareWatch&) = delete;

  bool ask()
  {
    sqlite3_bind_int64(statement_, 1, last_);
    if (sqlite3_step(statement_) != SQLITE_ROW)
      throw std::runtime_error(sqlite3_errmsg(database_));
    const sqlite3_int64 newest = sqlite3_column_int64(statement_, 0);
    sqlite3_reset(statement_);
    return std::exchange(last_, newest) != newest;
  }

private:
  sqlite3* database_ = nullptr;
  sqlite3_stmt* statement_ = nullptr;
  sqlite3_int64 last_ = 0;
};

/// Waits until @p isThere, which is asked as users of a feed ask. Returns the number of wake-ups.
template <class IsThere>
int waitUntil(reelhost::Feed& feed, double patience, IsThere isThere)
{
  int wakeUps = 0;
  const double end = now() + patience;
  while (now() < end) {
    pollfd handle{feed.waitHandle(), POLLIN, 0};
    if (::poll(&handle, 1, static_cast<int>(end - now()) + 1) <= 0)
      break;
    ++wakeUps;
    reelhost::AskAgain again = feed.readEvents();
    for (; again && again->count() != 0; again = feed.readEvents())
      std::this_thread::sleep_for(*again);
    if (again && isThere())
      return wakeUps;
  }
  return wakeUps;
}

double processorTime()
{
  rusage usage = {};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto inMilliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return inMilliseconds(usage.ru_utime) + inMilliseconds(usage.ru_stime);
}

struct Times {
  std::vector<double> values;
  double at(double part)
  {
    std::sort(values.begin(), values.end());
    return values.at(static_cast<std::size_t>(part * static_cast<double>(values.size() - 1)));
  }
};

struct Measured {
  Times ours, bare;
  double processor = 0; ///< milliseconds for each of ours
};

Measured measure(Writer& writer, const std::string& file, Kind kind, int rounds)
{
  constexpr double patience = 10'000;
  ReelDbManager& manager = *ReelDbManager::theReelDbManager();
  reelhost::Feed& feed = *reelhost::projectStore().feed();
  BareWatch bare(file);
  const auto apply = [&] {
    reelhost::idle();
    const bool applied =
        reelhost::informOfChangesFromElsewhere(manager).state == reelhost::ForeignChanges::State::Applied;
    reelhost::idle();
    return applied;
  };
  Measured measured;
  for (int round = 0; round < 2 * rounds; ++round) {
    const bool isOurs = round % 2 == 0;
    writer.commit(kind);
    const double before = processorTime();
    waitUntil(feed, patience, [&] { return isOurs ? apply() : bare.ask(); });
    const double arrived = now();
    const double used = processorTime() - before;
    const double time = std::max(0.0, arrived - writer.timeOfCommit());
    if (!isOurs)
      apply();
    else
      bare.ask();
    if (round < 4) // the first ones warm up
      continue;
    (isOurs ? measured.ours : measured.bare).values.push_back(time);
    if (isOurs)
      measured.processor += used / (rounds - 2);
  }
  return measured;
}

} // namespace

void followers(Table& table)
{
  constexpr int sizes[] = {1000, 10000, 100000};
  constexpr int rounds = 200;
  std::map<Kind, std::map<int, Measured>> all;
  for (const int reels : sizes) {
    const TempFolder folder;
    const std::string file = folder / "followed.reels";
    writeProject(file, reels, 1);
    Writer writer(file);
    reelhost::openProject(reelhost::makeSqliteStore(file), reelhost::Access::Read);
    reelhost::idle();
    reelhost::projectStore().feed()->waitHandle();
    for (const auto& [kind, name] : kinds) {
      Measured& measured = all[kind][reels] = measure(writer, file, kind, rounds);
      table.add({fmt::format("{} of others, {} reels, median", name, reels),
                 "bare watch, one indexed SELECT",
                 "ms",
                 measured.ours.at(0.5),
                 measured.bare.at(0.5),
                 {},
                 fmt::format("p99 {:.3g} ms, bare {:.3g} ms; processor {:.2g} ms", measured.ours.at(0.99),
                             measured.bare.at(0.99), measured.processor)});
    }
    if (reels == sizes[0]) {
      constexpr double quiet = 5000, pause = 100; // milliseconds
      const int wakeUps = waitUntil(*reelhost::projectStore().feed(), quiet, [] { return false; });
      table.add({"wake-ups in 5 quiet seconds",
                 "asking every 100 ms",
                 "",
                 static_cast<double>(wakeUps),
                 quiet / pause,
                 0,
                 {}});
    }
    reelhost::closeProject();
  }
  for (const auto& [kind, name] : kinds) {
    auto& bySize = all[kind];
    table.add({fmt::format("{} of others, {} reels, median", name, sizes[2]),
               fmt::format("the same, {} reels", sizes[0]),
               "ms",
               bySize[sizes[2]].ours.at(0.5),
               bySize[sizes[0]].ours.at(0.5),
               1.5,
               {}});
  }
}

} // namespace reeldb_bench
