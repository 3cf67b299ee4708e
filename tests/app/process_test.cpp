// SPDX-License-Identifier: Apache-2.0
#include "app/process.h"

#include <string_view>

#include "app/rename.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

class Process : public reeldb_tests::AppTest {
protected:
  void TearDown() override { app::printLibraryTo({}); }
};

TEST_F(Process, LibraryPrintsIntoTheSinkOfTheFace)
{
  import({"A001"});
  std::string printed;
  app::printLibraryTo([&](std::string_view text) { printed += text; });
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "A001", "A002", false);
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
  EXPECT_NE(printed.find("Changing reel from A001 to A002\n"), std::string::npos) << printed;
}

TEST_F(Process, FacilityInOrderHasNoRemarks)
{
  EXPECT_TRUE(app::facilityRemarks().empty());
}

TEST_F(Process, VersionIsThatOfTheLibrary)
{
  EXPECT_EQ(app::libraryVersion().rfind("14.", 0), 0u);
}

} // namespace
