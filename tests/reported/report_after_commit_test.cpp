// SPDX-License-Identifier: Apache-2.0
//
// Reported: "reeldb create" ended with exit code 1, "changed by another process since it was read", but the reel was
// stored. It happened about once in sixty runs of two writers in a loop. createReel counted the reel's shots after its
// own commit; when another process had written in between, that reading failed. Since then an operation reads
// everything before it changes anything.
#include <filesystem>

#include <sqlite3.h>

#include "app/deletion.h"
#include "app/devices.h"
#include "app/import.h"
#include "app/list_files.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using ReportAfterCommit = reeldb_tests::AppTest;

/// Whether a connection reads the project: its write-ahead log can then not be emptied.
bool isInUse(const std::filesystem::path& project)
{
  sqlite3* other = nullptr;
  EXPECT_EQ(sqlite3_open(project.c_str(), &other), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(other, "SELECT count(*) FROM project", nullptr, nullptr, nullptr), SQLITE_OK); // finds the log
  const int code = sqlite3_wal_checkpoint_v2(other, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
  sqlite3_close(other);
  EXPECT_TRUE(code == SQLITE_OK || code == SQLITE_BUSY) << sqlite3_errstr(code);
  return code == SQLITE_BUSY;
}

TEST_F(ReportAfterCommit, OperationReadsNothingOfTheProjectAfterItsCommit)
{
  const std::string list = cutList("list.edl", {"TAPE1", "TAPE2"});
  const std::filesystem::path project = folder_.path() / "projects" / "main.reels";
  const auto write = [&project](const std::string& what, const auto& work) {
    app::Session session({}, app::Access::Write);
    work(session);
    EXPECT_FALSE(isInUse(project)) << what;
  };
  write("create", [](app::Session& session) { EXPECT_EQ(app::createReel(session, "A", {}).reel.id, "A"); });
  write("create with a device", [](app::Session& session) { app::createReel(session, "B", "0"); });
  write("set", [](app::Session& session) { EXPECT_TRUE(app::changeReel(session, "A", {{"bin", "one"}}).stored); });
  write("copy", [](app::Session& session) { app::copyReel(session, "A", "B"); });
  write("rename", [](app::Session& session) { EXPECT_TRUE(app::renameReel(session, "B", "C", false).stored); });
  write("import", [&](app::Session& session) { app::importLists(session, {app::readListFile(list)}, false); });
  write("delete", [](app::Session& session) { app::carryOut(session, app::planDeletion(session, {"TAPE1"}, {})); });
  write("undelete", [](app::Session& session) { EXPECT_EQ(app::undelete(session).shots, 1u); });
  write("live", [](app::Session& session) { EXPECT_TRUE(app::liveReel(session, "1").created); });
  write("compact", [](app::Session& session) { app::compactProject(session); });

  // isInUse() detects an operation that does read.
  app::Session session({}, app::Access::Write);
  app::createReel(session, "D", {});
  app::listReels(session);
  EXPECT_TRUE(isInUse(project));
}

} // namespace
