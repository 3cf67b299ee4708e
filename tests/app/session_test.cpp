// SPDX-License-Identifier: Apache-2.0
#include "app/session.h"

#include <filesystem>

#include "app/process.h"
#include "app/projects.h"
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

TEST_F(Session, FirstCommitToAnOlderProjectIsNoticed)
{
  const std::filesystem::path project = folder_.path() / "projects/main.reels";
  std::filesystem::copy_file(std::filesystem::path(REELDB_SOURCE_DIR) / "tests/standalone/store/data/version-1.reels",
                             project, std::filesystem::copy_options::overwrite_existing);
  std::vector<std::string> notices;
  app::noticesTo([&](const std::string& message) { notices.push_back(message); });
  EXPECT_EQ(reelIds().size(), 11u);
  {
    app::Session session({}, app::Access::Write);
    EXPECT_FALSE(session.commit());
  }
  EXPECT_EQ(notices, std::vector<std::string>{});
  for (const char* name : {"NEW1", "NEW2"}) {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, std::string(name) == "NEW1" ? "006-J" : "NEW1", name, false);
  }
  app::noticesTo({});
  EXPECT_EQ(notices, std::vector<std::string>{
                         "main: brought up to date from version 1 (older programs cannot open it any more)"});
}

} // namespace
