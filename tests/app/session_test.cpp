// SPDX-License-Identifier: Apache-2.0
#include "app/session.h"

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
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Session = reeldb_tests::AppTest;

TEST_F(Session, DefaultProjectIsOpenedUnlessAnotherIsNamed)
{
  app::makeProject("promo", "24");
  EXPECT_EQ(app::chosenProject({}), "main");
  EXPECT_EQ(app::chosenProject("promo"), "promo");
}

TEST_F(Session, ProjectThatIsNotThereIsRefusedWithThoseThatAre)
{
  const app::Error error = errorOf([] { app::Session({"other"}, app::Access::Read); });
  EXPECT_EQ(error.kind(), app::ErrorKind::NotFound);
  EXPECT_STREQ(error.what(), "other: no such project (this facility has: main)");
}

TEST_F(Session, WithoutAFacilityNothingIsChosen)
{
  reelhost::useFacility(reelhost::Facility());
  EXPECT_EQ(errorOf([] { app::chosenProject({}); }).kind(), app::ErrorKind::Refused);
}

TEST_F(Session, HostErrorsLeaveAsErrorsOfThisRoom)
{
  folder_.write("projects/main.reels", "this is no project");
  EXPECT_EQ(errorOf([] { app::Session({}, app::Access::Read); }).kind(), app::ErrorKind::Unreadable);
  EXPECT_EQ(errorOf([] { app::makeProject("main", "25"); }).kind(), app::ErrorKind::Refused);
  EXPECT_EQ(errorOf([] { app::makeProject("new", "26"); }).kind(), app::ErrorKind::Invalid);
}

TEST_F(Session, ChangesOfAReadingSessionAreNotCommitted)
{
  {
    app::Session session({}, app::Access::Read);
    EXPECT_EQ(errorOf([&] { app::createReel(session, "A001", {}); }).kind(), app::ErrorKind::ReadOnly);
  }
  EXPECT_TRUE(reelIds().empty());
}

TEST_F(Session, CommitReturnsWhetherThereWasAnythingToStore)
{
  app::Session session({}, app::Access::Write);
  EXPECT_FALSE(session.commit());
}

/// Whether a connection holds a state of the project: its log cannot be emptied then.
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

TEST_F(Session, OperationReadsNothingOfTheProjectAfterItsCommit)
{
  // A writer directly after the operation would make that reading fail, although the change is stored.
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

  // The look notices an operation that does read.
  app::Session session({}, app::Access::Write);
  app::createReel(session, "D", {});
  app::listReels(session);
  EXPECT_TRUE(isInUse(project));
}

} // namespace
