// SPDX-License-Identifier: Apache-2.0
#include "app/kept_lists.h"

#include <fmt/format.h>

#include "app/deletion.h"
#include "app/history.h"
#include "app/import.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "app/shots.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Texts = std::vector<std::string>;

class KeptLists : public reeldb_tests::AppTest {
protected:
  /// Imports a list with an event for each reel.
  void importAs(const std::string& file, const Texts& reels)
  {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(cutList(file, reels))}, false);
  }
  static app::RemovedList remove(const std::string& list, bool dryRun = false)
  {
    app::Session session({}, dryRun ? app::Access::Read : app::Access::Write);
    return app::removeList(session, list, dryRun);
  }
  /// The deletion takes events out of lists, and undo brings them back.
  static void deleteAndUndo(const std::string& reel)
  {
    {
      app::Session session({}, app::Access::Write);
      app::deleteReels(session, {reel}, {});
    }
    app::Session session({}, app::Access::Write);
    app::undo(session, {}, false);
  }
  static Texts files()
  {
    app::Session session({}, app::Access::Read);
    Texts files;
    for (const app::KeptList& list : app::keptLists(session))
      files.push_back(list.file);
    return files;
  }
};

TEST_F(KeptLists, AreFoundByNumberFileNameAndTitle)
{
  importAs("a.edl", {"A001"});
  importAs("b.edl", {"B001"});
  app::Session session({}, app::Access::Read);
  EXPECT_EQ(app::requireList(session, "2").file, "b.edl");
  EXPECT_EQ(app::requireList(session, "A.EDL").number, 1);
  EXPECT_EQ(app::requireList(session, "a.edl").title, "TEST");
  EXPECT_EQ(app::requireList(session, "a.edl").events, 1);
  EXPECT_EQ(
      errorOf([&] { app::requireList(session, "test"); }).what(),
      std::string("test: 2 lists have this name (use the number of one, such as 2; reeldb list-file list shows them)"));
  const app::Error none = errorOf([&] { app::requireList(session, "7"); });
  EXPECT_EQ(none.kind(), app::ErrorKind::NotFound);
  EXPECT_EQ(none.what(), std::string("7: no such list (reeldb list-file list shows them)"));
}

TEST_F(KeptLists, EventsSayWhatTheListSaysAndWhatTheReelIsNow)
{
  importAs("a.edl", {"A001", "BL"});
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "A001", "C001", false);
  }
  app::Session session({}, app::Access::Read);
  const app::ListEvents found = app::eventsOf(session, "a.edl");
  ASSERT_EQ(found.events.size(), 2u);
  EXPECT_EQ(found.events[0].clip.reel, "A001");
  EXPECT_EQ(found.events[0].reel, "C001");
  EXPECT_EQ(found.events[0].clip.event.number, "001");
  EXPECT_EQ(found.events[1].clip.special, "black");
  EXPECT_EQ(found.events[1].reel, "");
}

TEST_F(KeptLists, OriginalIsTheFileByteForByte)
{
  const std::string bytes = "TITLE: x\r\n001  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 "
                            "10:00:01:00\n* \xFF\x1A";
  const std::string path = folder_.write("a.edl", bytes);
  {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(path)}, false);
  }
  app::Session session({}, app::Access::Read);
  EXPECT_EQ(app::originalOf(session, "1"), bytes);
}

TEST_F(KeptLists, ThoseThatUseAReelComeWithItsEvents)
{
  importAs("a.edl", {"A001", "B001", "a001"});
  importAs("b.edl", {"B001"});
  app::Session session({}, app::Access::Read);
  const std::vector<app::ListEvents> lists = app::listsUsing(session, "a001");
  ASSERT_EQ(lists.size(), 1u);
  EXPECT_EQ(lists[0].list.file, "a.edl");
  EXPECT_EQ(lists[0].events.size(), 2u);
  EXPECT_EQ(app::listsUsing(session, "B001").size(), 2u);
  EXPECT_EQ(errorOf([&] { app::listsUsing(session, "X"); }).kind(), app::ErrorKind::NotFound);
}

TEST_F(KeptLists, RemovedListTakesAlongWhatOnlyItNamed)
{
  importAs("a.edl", {"A001", "B001"});
  importAs("b.edl", {"X001", "B001"}); // the same shot of B001
  const app::RemovedList removed = remove("a.edl");
  EXPECT_TRUE(removed.stored);
  EXPECT_EQ(removed.reels, Texts{"A001"});
  EXPECT_EQ(removed.shots.size(), 1u);
  EXPECT_EQ(files(), Texts{"b.edl"});
  EXPECT_EQ(reelIds(), (Texts{"B001", "X001"}));
  app::Session session({}, app::Access::Write);
  app::undo(session, {}, false);
  EXPECT_EQ(app::keptLists(session).size(), 2u);
  EXPECT_EQ(app::eventsOf(session, "a.edl").events.size(), 2u);
  EXPECT_EQ(app::shotsOfReel(session, "A001").shots.size(), 1u);
}

TEST_F(KeptLists, ShotHasTheRecordTimesOfItsEarliestUse)
{
  const auto record = [&] {
    app::Session session({}, app::Access::Read);
    return app::allShots(session).at(0).recordIn;
  };
  const auto importAt = [&](const std::string& file, const std::string& hour) {
    const std::string path = folder_.write(
        file, fmt::format("001  A001     V     C        01:00:00:00 01:00:01:00 {0}:00:00:00 {0}:00:01:00\n", hour));
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(path)}, false);
  };
  importAt("a.edl", "12");
  importAt("b.edl", "11");
  EXPECT_EQ(record(), "11:00:00:00");
  importAt("c.edl", "13");
  EXPECT_EQ(record(), "11:00:00:00");
  EXPECT_TRUE(remove("b.edl").reels.empty());
  EXPECT_EQ(record(), "12:00:00:00");
  app::Session session({}, app::Access::Write);
  app::undo(session, {}, false);
  EXPECT_EQ(app::allShots(session).at(0).recordIn, "11:00:00:00");
}

TEST_F(KeptLists, DryRunOfARemovalChangesNothing)
{
  importAs("a.edl", {"A001"});
  const app::RemovedList removed = remove("a.edl", true);
  EXPECT_FALSE(removed.stored);
  EXPECT_EQ(removed.reels, Texts{"A001"});
  EXPECT_EQ(files(), Texts{"a.edl"});
  EXPECT_EQ(reelIds(), Texts{"A001"});
}

TEST_F(KeptLists, ReelsThatAPersonMadeOrChangedStay)
{
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, "MADE", {});
  }
  importAs("a.edl", {"MADE", "SET", "RENAMED", "PLAIN"});
  {
    app::Session session({}, app::Access::Write);
    app::changeReel(session, "SET", {{"bin", "shelf"}});
  }
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "RENAMED", "NAMED", false);
  }
  const app::RemovedList removed = remove("a.edl");
  EXPECT_EQ(removed.reels, Texts{"PLAIN"});
  EXPECT_EQ(removed.shots.size(), 3u); // the shot of the renamed reel was renamed, too
  EXPECT_EQ(reelIds(), (Texts{"MADE", "SET", "NAMED"}));
}

TEST_F(KeptLists, ImportTakenBackAndMadeAgainIsStillAnImport)
{
  importAs("a.edl", {"A001"});
  {
    app::Session session({}, app::Access::Write);
    app::undo(session, {}, false);
  }
  {
    app::Session session({}, app::Access::Write);
    app::redo(session, false);
  }
  EXPECT_EQ(remove("a.edl").reels, Texts{"A001"});
}

TEST_F(KeptLists, DeletedAndRestoredReelOfAPersonIsNotAnImport)
{
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, "MADE", {});
  }
  importAs("a.edl", {"MADE", "PLAIN"}); // 2
  deleteAndUndo("MADE");                // 3 and 4
  {
    app::Session session({}, app::Access::Write);
    app::forgetHistory(session, "3");
  }
  EXPECT_EQ(remove("a.edl").reels, Texts{});
  EXPECT_EQ(reelIds(), (Texts{"MADE", "PLAIN"}));
}

TEST_F(KeptLists, DeletedAndRestoredReelFromBeforeTheHistoryStaysWithItsShots)
{
  importAs("first.edl", {"OLD"});
  {
    app::Session session({}, app::Access::Write);
    app::forgetHistory(session, "2");
  }
  remove("first.edl");
  importAs("a.edl", {"OLD", "PLAIN"});
  deleteAndUndo("OLD");
  const app::RemovedList removed = remove("a.edl");
  EXPECT_EQ(removed.reels, Texts{"PLAIN"});
  EXPECT_EQ(removed.shots.size(), 1u);
}

} // namespace
