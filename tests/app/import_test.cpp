// SPDX-License-Identifier: Apache-2.0
#include "app/import.h"

#include "app/shots.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Import = reeldb_tests::AppTest;

TEST_F(Import, ListBecomesReelsAndShotsAndTheReportSaysSo)
{
  const std::string path =
      folder_.write("cut.edl", "TITLE: EVENING\n"
                               "001  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                               "002  BL       V     C        00:00:00:00 00:00:01:00 10:00:01:00 10:00:02:00\n"
                               "003  a001     V     C        01:00:02:00 01:00:03:00 10:00:02:00 10:00:03:00\n"
                               "004  B002     V     C        02:00:00:00 02:00:xx:00 10:00:03:00 10:00:04:00\n");
  app::Session session({}, app::Access::Write);
  const app::ImportReport report = app::importLists(session, {app::readListFile(path)}, false);
  EXPECT_TRUE(report.stored);
  EXPECT_TRUE(report.changes);
  EXPECT_TRUE(report.rejectedLines());
  ASSERT_EQ(report.lists.size(), 1u);
  const app::ImportedList& list = report.lists.front();
  EXPECT_EQ(list.file, path);
  EXPECT_EQ(list.list.title, "EVENING");
  EXPECT_EQ(list.clips, 2u);
  EXPECT_EQ(list.shotsAdded, 2u);
  EXPECT_EQ(list.created, std::vector<std::string>{"A001"});
  ASSERT_EQ(list.list.specials.size(), 1u);
  EXPECT_EQ(list.list.specials.front().text, "BL");
  ASSERT_EQ(list.list.rejected.size(), 1u);
  EXPECT_EQ(list.list.rejected.front().line, 5);
  EXPECT_EQ(app::shotsOfReel(session, "A001").shots.size(), 2u);
}

TEST_F(Import, SameListAgainChangesNothing)
{
  import({"A001", "B002"});
  app::Session session({}, app::Access::Write);
  const app::ImportReport report =
      app::importLists(session, {app::readListFile((folder_.path() / "fixture.edl").string())}, false);
  EXPECT_FALSE(report.changes);
  EXPECT_FALSE(report.stored);
  EXPECT_EQ(report.lists.front().shotsThere, 2u);
  EXPECT_EQ(report.lists.front().matched, (std::vector<std::string>{"A001", "B002"}));
}

TEST_F(Import, DryRunReportsAndStoresNothing)
{
  {
    app::Session session({}, app::Access::Read);
    const app::ImportReport report = app::importLists(session, {app::readListFile(cutList("a.edl", {"A001"}))}, true);
    EXPECT_TRUE(report.changes);
    EXPECT_FALSE(report.stored);
  }
  EXPECT_TRUE(reelIds().empty());
}

TEST_F(Import, ProgressCountsTheClipsOfAllLists)
{
  app::Session session({}, app::Access::Write);
  std::vector<std::size_t> steps;
  app::importLists(
      session, {app::readListFile(cutList("a.edl", {"A001", "A002"})), app::readListFile(cutList("b.edl", {"B001"}))},
      false, [&](std::size_t done, std::size_t total) {
        EXPECT_EQ(total, 3u);
        steps.push_back(done);
        return true;
      });
  EXPECT_EQ(steps, (std::vector<std::size_t>{1, 2, 3}));
}

TEST_F(Import, CancelledImportStoresNothing)
{
  {
    app::Session session({}, app::Access::Write);
    const app::Error error = errorOf([&] {
      app::importLists(session, {app::readListFile(cutList("a.edl", {"A001", "A002"}))}, false,
                       [](std::size_t, std::size_t) { return false; });
    });
    EXPECT_EQ(error.kind(), app::ErrorKind::Cancelled);
  }
  EXPECT_TRUE(reelIds().empty());
}

} // namespace
