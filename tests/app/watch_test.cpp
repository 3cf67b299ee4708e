// SPDX-License-Identifier: Apache-2.0
#include "app/watch.h"

#include <filesystem>

#include "app/reels.h"
#include "reelhost/history.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Watching = reeldb_tests::AppTest;

TEST_F(Watching, ListenerThatTakesItsTimeDoesNotHoldTheProject)
{
  import({"A001"});
  const std::filesystem::path file = reelhost::facility().projectFile("main");
  const auto other = reelhost::makeSqliteStore(file);
  app::Session session({}, app::Access::Read);
  int commits = 0;
  app::Watcher watcher(session, {}, [&](const app::WatchedCommit&) {
    ++commits;
    other->history()->giveSpaceBack(); // empties the write-ahead log unless somebody reads the project
    EXPECT_EQ(std::filesystem::file_size(file.native() + "-wal"), 0u);
  });
  watcher.reportSince(0);
  EXPECT_EQ(commits, 1);
  watcher.poll(); // giving the space back looks like a commit
  reelhost::StoredLog log;
  log.uuid[0] = 1;
  log.type = 9;
  reelhost::Changes changes;
  other->begin(reelhost::Access::Write, std::chrono::seconds(1));
  log.number = other->nextNumber();
  changes.logs = {log};
  other->commit(changes);
  commits = 0;
  watcher.poll();
  EXPECT_EQ(commits, 1);
}

/// Another process: its own use of the project's file.
class Elsewhere {
public:
  void commit(reelhost::Changes changes) const
  {
    store_->begin(reelhost::Access::Write, std::chrono::seconds(1));
    store_->commit(changes);
  }
  void setBin(std::int64_t number, const std::string& value) const
  {
    reelhost::Changes changes;
    store_->begin(reelhost::Access::Read, std::chrono::seconds(1));
    store_->readReels([&](reelhost::StoredLog&& log) {
      if (log.number != number)
        return;
      std::erase_if(log.fields, [](const auto& field) { return field.first == "profile_bin_name"; });
      log.fields.emplace_back("profile_bin_name", value);
      changes.logs.push_back(std::move(log));
    });
    store_->end();
    ASSERT_EQ(changes.logs.size(), 1u);
    commit(changes);
  }
  void create(std::int64_t number, const std::string& id) const
  {
    reelhost::StoredLog log;
    log.number = number;
    log.uuid.fill(static_cast<unsigned char>(0x40 + number));
    log.type = 9;
    log.fields = {{"reelid", id}};
    reelhost::Changes changes;
    changes.logs = {log};
    commit(changes);
  }
  void forgetBefore(std::int64_t revision) const
  {
    reelhost::Changes changes;
    changes.forgetBefore = revision;
    commit(changes);
  }

private:
  std::unique_ptr<reelhost::Store> store_ = reelhost::makeSqliteStore(reelhost::facility().projectFile("main"));
};

/// "3 changed A001": the revision of a commit, or the first and last if they were forgotten, and its events.
std::string lineOf(const app::WatchedCommit& commit)
{
  std::string line = "?";
  if (commit.forgotten)
    line = std::to_string(commit.forgotten->first) + "-" + std::to_string(commit.forgotten->last);
  else if (commit.commit)
    line = std::to_string(commit.commit->revision);
  for (const app::ReelEvent& event : commit.reels)
    line.append(" ").append(app::wordOf(event.what)).append(" ").append(event.reel);
  return line;
}

using Lines = std::vector<std::string>;

TEST_F(Watching, CommitsThatWereForgottenAreReportedTogetherBeforeThoseThatAreKept)
{
  import({"A001", "B002", "C003"}); // revision 1: logs of shots and reels
  std::vector<std::int64_t> reels;
  const Elsewhere elsewhere;
  app::Session session({}, app::Access::Read);
  for (const app::Reel& reel : app::listReels(session))
    EXPECT_EQ(reel.shots, 1);
  reelhost::projectStoreToRead().readReels([&](reelhost::StoredLog&& log) { reels.push_back(log.number); });
  ASSERT_EQ(reels.size(), 3u);
  Lines lines;
  app::Watcher watcher(session, {}, [&](const app::WatchedCommit& commit) { lines.push_back(lineOf(commit)); });
  watcher.idle();
  elsewhere.setBin(reels[0], "x"); // revision 2
  elsewhere.create(100, "GONE BY THEN");
  elsewhere.setBin(reels[1], "x"); // revision 4
  elsewhere.setBin(reels[1], "y"); // revision 5
  elsewhere.forgetBefore(5);       // revision 6
  elsewhere.setBin(reels[2], "x"); // revision 7
  watcher.poll();
  EXPECT_EQ(lines, (Lines{"2-4 changed A001 new GONE BY THEN", "5 changed B002", "6", "7 changed C003"}));
}

TEST_F(Watching, AnotherProjectInItsPlaceHasOtherReels)
{
  import({"A001"});
  const std::filesystem::path file = reelhost::facility().projectFile("main");
  const std::filesystem::path other = folder_.path() / "other.reels";
  reelhost::createSqliteProject(other, {"main", {7}, 4, 4}, {});
  {
    const auto store = reelhost::makeSqliteStore(other);
    reelhost::StoredLog log;
    log.number = 2; // that of the reel, too
    log.uuid.fill(0x77);
    log.type = 9;
    log.fields = {{"reelid", "ELSE"}};
    reelhost::Changes changes;
    changes.logs = {log};
    store->begin(reelhost::Access::Write, std::chrono::seconds(1));
    store->commit(changes);
  }
  app::Session session({}, app::Access::Read);
  Lines lines;
  app::Watcher watcher(session, {}, [&](const app::WatchedCommit& commit) { lines.push_back(lineOf(commit)); });
  watcher.idle();
  for (const char* const end : {"-wal", "-shm"})
    std::filesystem::remove(file.native() + end);
  std::filesystem::rename(other, file);
  watcher.poll();
  EXPECT_EQ(lines, Lines{"? gone A001 new ELSE"});
}

} // namespace
