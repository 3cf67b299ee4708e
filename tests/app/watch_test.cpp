// SPDX-License-Identifier: Apache-2.0
#include "app/watch.h"

#include <filesystem>

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

} // namespace
