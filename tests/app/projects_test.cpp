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

} // namespace
