// SPDX-License-Identifier: Apache-2.0
#include "app/projects.h"

#include "app/reels.h"
#include "reelhost/history.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

class Projects : public reeldb_tests::AppTest {
protected:
  static void create(const std::string& reel)
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, reel, {});
  }
  /// Stores a reel as a machine does whose clock shows that time.
  static void createAt(std::int64_t time)
  {
    reelhost::openProject("main", reelhost::Access::Write);
    reelhost::Store& store = reelhost::projectStore();
    reelhost::StoredLog log;
    log.number = store.nextNumber();
    log.uuid[0] = static_cast<unsigned char>(log.number);
    reelhost::Changes changes;
    changes.logs = {log};
    changes.origin.time = time;
    store.commit(changes);
    reelhost::closeProject();
  }
  static int forget(const std::string& before)
  {
    app::Session session({}, app::Access::Write);
    return app::forgetHistory(session, before).revisions.value_or(-1);
  }
};

TEST_F(Projects, HistoryBeforeARevisionThatDoesNotExistIsNotForgotten)
{
  create("A001");
  create("B001");
  for (const char* before : {"4", "2026", "20261101"}) {
    const app::Error error = errorOf([&] { forget(before); });
    EXPECT_EQ(error.kind(), app::ErrorKind::NotFound);
    EXPECT_EQ(error.what(),
              before + std::string(": no such revision (the newest is 2; a day is written like 2026-11-01)"));
  }
  EXPECT_EQ(forget("3"), 2); // all that there is
}

TEST_F(Projects, WrongClockTakesNoNewerRevisionsAlong)
{
  constexpr std::int64_t day = 86400, november = 1604188800; // 2020-11-01
  createAt(november - 9 * day);
  createAt(november + 3 * day);
  createAt(november - 30 * day); // wrong
  EXPECT_EQ(forget("2020-11-01"), 1);
  EXPECT_EQ(forget("2020-11-01"), 0);
  EXPECT_EQ(forget("2021-01-01"), 2);
}

} // namespace
