// SPDX-License-Identifier: Apache-2.0
#include "app/session.h"

#include "app/projects.h"
#include "app/reels.h"
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

} // namespace
