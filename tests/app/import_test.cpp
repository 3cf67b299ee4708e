// SPDX-License-Identifier: Apache-2.0
#include "app/import.h"

#include "app/deletion.h"
#include "app/history.h"
#include "app/rename.h"
#include "app/shots.h"
#include "reelhost/host.h"
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
  EXPECT_TRUE(report.isIncomplete());
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

class ImportKeeps : public reeldb_tests::AppTest {
protected:
  /// The result of an import of the file of that name in the fixture's folder.
  app::ImportedList again(const std::string& name)
  {
    app::Session session({}, app::Access::Write);
    const app::ImportReport report =
        app::importLists(session, {app::readListFile((folder_.path() / name).string())}, false);
    EXPECT_EQ(report.stored, report.changes);
    EXPECT_EQ(report.lists.front().changesProject(), report.changes);
    return report.lists.front();
  }
  static std::vector<reelhost::KeptList> keptLists()
  {
    const app::Session session({}, app::Access::Read);
    return reelhost::keptLists();
  }
};

TEST_F(ImportKeeps, TheBytesAndEachEventOfAList)
{
  const std::string bytes = "TITLE: EVENING\r\n"
                            "001  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                            "* FROM CLIP NAME:  WIDE\n"
                            "002  BL       V     C        00:00:00:00 00:00:01:00 10:00:01:00 10:00:02:00\n"
                            "003  a001     V     D    024 01:00:00:00 01:00:01:00 10:00:02:00 10:00:03:00\n"
                            "* FROM CLIP NAME:  WIDE\n";
  folder_.write("cut.edl", bytes);
  const app::ImportedList imported = again("cut.edl");
  EXPECT_EQ(imported.keeping, app::Keeping::New);
  EXPECT_EQ(imported.keptAs, 1);
  EXPECT_EQ(imported.shotsAdded, 1u);
  const app::Session session({}, app::Access::Read);
  const std::vector<reelhost::KeptList> lists = reelhost::keptLists();
  ASSERT_EQ(lists.size(), 1u);
  EXPECT_EQ(lists[0].file, "cut.edl");
  EXPECT_EQ(lists[0].title, "EVENING");
  EXPECT_EQ(lists[0].format, "edl");
  EXPECT_EQ(reelhost::bytesOfList(lists[0].digest), bytes);
  const std::vector<reelhost::ListEvent> events = reelhost::eventsOfList(1);
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0].shot, events[2].shot); // one shot, used twice
  EXPECT_EQ(reelhost::materialOf(reelhost::allShots()[0]).name, "WIDE");
  EXPECT_EQ(events[0].shot, reelhost::logNumber(reelhost::allShots()[0]));
  EXPECT_EQ(events[0].clip.recordIn, "10:00:00:00");
  EXPECT_EQ(events[2].clip.recordIn, "10:00:02:00");
  EXPECT_EQ(events[2].reelText, "a001");
  EXPECT_EQ(events[2].transition + events[2].duration, "D024");
  EXPECT_EQ(events[2].line, 5);
  EXPECT_EQ(events[1].shot, 0);
  EXPECT_EQ(events[1].special, "black");
}

TEST_F(ImportKeeps, NothingTwiceOfTheSameBytesWhateverTheFileIsCalled)
{
  const std::string text = "001  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n";
  folder_.write("one.edl", text);
  folder_.write("other.edl", text);
  again("one.edl");
  const app::ImportedList imported = again("other.edl");
  EXPECT_EQ(imported.keeping, app::Keeping::Unchanged);
  EXPECT_EQ(imported.keptAs, 1);
  EXPECT_FALSE(imported.changesProject());
  ASSERT_EQ(keptLists().size(), 1u);
  EXPECT_EQ(keptLists()[0].file, "one.edl");
}

TEST_F(ImportKeeps, ListsOfOtherBytesEvenIfTheirShotsAreThere)
{
  const std::string text = "001  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n";
  folder_.write("one.edl", text);
  folder_.write("other.edl", text + "* COMMENT: x\n");
  again("one.edl");
  const app::ImportedList imported = again("other.edl");
  EXPECT_EQ(imported.keeping, app::Keeping::New);
  EXPECT_EQ(imported.keptAs, 2);
  EXPECT_EQ(imported.shotsAdded, 0u);
  EXPECT_TRUE(imported.changesProject());
}

TEST_F(ImportKeeps, WhatTheShotsOfAListAreWhenTheirReelWasRenamed)
{
  import({"A001", "B002"});
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "A001", "C003", false);
  }
  const app::ImportedList imported = again("fixture.edl");
  EXPECT_EQ(imported.keeping, app::Keeping::Unchanged);
  EXPECT_EQ(imported.matched, (std::vector<std::string>{"C003", "B002"}));
  EXPECT_EQ(reelIds(), (std::vector<std::string>{"C003", "B002"}));
}

TEST_F(ImportKeeps, NewEventsForShotsThatWereDeleted)
{
  import({"A001", "B002"});
  {
    app::Session session({}, app::Access::Write);
    app::deleteReels(session, {"A001"}, {});
  }
  EXPECT_EQ(keptLists().at(0).eventCount, 1);
  const app::ImportedList imported = again("fixture.edl");
  EXPECT_EQ(imported.keeping, app::Keeping::NewVersion);
  EXPECT_EQ(imported.keptAs, 1);
  EXPECT_EQ(imported.shotsAdded, 1u);
  EXPECT_EQ(keptLists().at(0).eventCount, 2);
  EXPECT_EQ(again("fixture.edl").keeping, app::Keeping::Unchanged);
}

TEST_F(ImportKeeps, NothingInADryRun)
{
  {
    app::Session session({}, app::Access::Read);
    const app::ImportReport report = app::importLists(session, {app::readListFile(cutList("a.edl", {"A001"}))}, true);
    EXPECT_EQ(report.lists.front().keeping, app::Keeping::New);
  }
  EXPECT_EQ(keptLists().size(), 0u);
}

TEST_F(ImportKeeps, NothingOfWhatIsTakenBack)
{
  import({"A001"});
  again((cutList("b.edl", {"A001", "B002"}), "b.edl"));
  {
    app::Session session({}, app::Access::Write);
    EXPECT_EQ(errorOf([&] { app::undo(session, 1, false); }).what(),
              std::string("b.edl: line 2 would lose its shot (remove this list first)"));
  }
  {
    app::Session session({}, app::Access::Write);
    app::undo(session, {}, false);
  }
  EXPECT_EQ(keptLists().size(), 1u);
  EXPECT_EQ(reelIds(), std::vector<std::string>{"A001"});
  app::Session session({}, app::Access::Write);
  app::redo(session, false);
  EXPECT_EQ(reelhost::keptLists().size(), 2u);
  EXPECT_EQ(reelhost::eventsOfList(2).size(), 2u);
}

class ImportReplaces : public ImportKeeps {
protected:
  app::ImportReport replace(const std::string& path, const std::optional<std::string>& list = {})
  {
    app::Session session({}, app::Access::Write);
    return app::importLists(session, {app::readListFile(path)}, false, {}, {true, list});
  }
  static std::vector<std::string> idsOf(const std::vector<app::Shot>& shots)
  {
    std::vector<std::string> ids;
    for (const app::Shot& shot : shots)
      ids.push_back(shot.reel);
    return ids;
  }
};

TEST_F(ImportReplaces, VersionOfTheSameFileName)
{
  import({"A001", "B002", "C003"});
  const app::ImportReport report = replace(cutList("fixture.edl", {"A001", "X002", "C003"}));
  EXPECT_TRUE(report.stored);
  const app::ImportedList& list = report.lists.front();
  EXPECT_EQ(list.keeping, app::Keeping::NewVersion);
  EXPECT_FALSE(list.replacesNothing);
  EXPECT_EQ(list.keptAs, 1);
  EXPECT_EQ(list.shotsAdded, 1u);
  EXPECT_EQ(idsOf(list.difference.added), std::vector<std::string>{"X002"});
  EXPECT_EQ(idsOf(list.difference.gone), std::vector<std::string>{"B002"});
  EXPECT_TRUE(list.difference.trimmed.empty());
  EXPECT_EQ(report.reelsRemoved, std::vector<std::string>{"B002"});
  EXPECT_EQ(idsOf(report.shotsRemoved), std::vector<std::string>{"B002"});
  EXPECT_EQ(keptLists().size(), 1u);
  EXPECT_EQ(reelIds(), (std::vector<std::string>{"A001", "C003", "X002"}));
  {
    app::Session session({}, app::Access::Write);
    EXPECT_EQ(errorOf([&] { app::undelete(session); }).kind(), app::ErrorKind::Refused); // it was not a deletion
  }
  app::Session session({}, app::Access::Write);
  app::undo(session, {}, false);
  EXPECT_EQ(app::shotsOfReel(session, "B002").shots.size(), 1u);
  EXPECT_EQ(reelhost::eventsOfList(1).size(), 3u);
}

TEST_F(ImportReplaces, ListOfTheSameImport)
{
  import({"A001"});
  const app::ListFile first = app::readListFile(cutList("v1/cut.edl", {"A001", "B002", "D003"})); // by its title
  const app::ListFile second = app::readListFile(cutList("v2/cut.edl", {"C001", "B002"}));        // by its file name
  {
    app::Session session({}, app::Access::Write);
    const app::ImportReport report = app::importLists(session, {first, second}, false, {}, {.byName = true});
    EXPECT_EQ(report.lists[1].matched, std::vector<std::string>{"B002"});
    EXPECT_EQ(idsOf(report.shotsRemoved), (std::vector<std::string>{"A001", "D003"}));
    EXPECT_EQ(report.reelsRemoved, (std::vector<std::string>{"A001", "D003"}));
  }
  EXPECT_EQ(reelIds(), (std::vector<std::string>{"B002", "C001"}));
  EXPECT_EQ(keptLists().size(), 1u);
  const app::Session session({}, app::Access::Read);
  EXPECT_EQ(reelhost::bytesOfList(reelhost::digestOf(second.bytes)), second.bytes);
  EXPECT_THROW(reelhost::bytesOfList(reelhost::digestOf(first.bytes)), reelhost::Error);
}

TEST_F(ImportReplaces, NamedListWhateverTheFileIsCalled)
{
  import({"A001"});
  again((cutList("b.edl", {"B002"}), "b.edl"));
  EXPECT_EQ(replace(cutList("c.edl", {"C003"}), "fixture.edl").lists.front().keptAs, 1);
  EXPECT_EQ(keptLists().at(0).file, "c.edl");
  EXPECT_EQ(keptLists().at(1).file, "b.edl");
}

TEST_F(ImportReplaces, NothingIfNoListHasTheFileNameOrTheTitle)
{
  folder_.write("one.edl", "001  A001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n");
  again("one.edl");
  const std::string other =
      folder_.write("other.edl", "001  B001     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n");
  const app::ImportReport report = replace(other);
  EXPECT_EQ(report.lists.front().keeping, app::Keeping::New);
  EXPECT_TRUE(report.lists.front().replacesNothing);
  EXPECT_EQ(keptLists().size(), 2u);
}

TEST_F(ImportReplaces, NothingIfTwoListsHaveTheTitle)
{
  import({"A001"});
  again((cutList("b.edl", {"B002"}), "b.edl"));
  const app::Error error = errorOf([&] { replace(cutList("c.edl", {"C003"})); });
  EXPECT_EQ(error.what(),
            std::string("TEST: 2 lists have this name (name one of them: --as 2; reeldb list-file list shows them)"));
}

TEST_F(ImportReplaces, ShotsOfARenamedReelStayWithTheirReel)
{
  import({"A001", "B002"});
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "A001", "Z001", false);
  }
  const app::ImportReport report = replace(cutList("fixture.edl", {"A001", "B002", "C003"}));
  EXPECT_EQ(report.lists.front().shotsAdded, 1u);
  EXPECT_EQ(reelIds(), (std::vector<std::string>{"Z001", "B002", "C003"}));
  EXPECT_TRUE(report.shotsRemoved.empty());
}

TEST_F(ImportReplaces, UnchangedListByItself)
{
  import({"A001"});
  const app::ImportReport report = replace((folder_.path() / "fixture.edl").string());
  EXPECT_EQ(report.lists.front().keeping, app::Keeping::Unchanged);
  EXPECT_FALSE(report.changes);
}

TEST_F(ImportReplaces, EarlierVersionIsNamedWhenItIsNotReplaced)
{
  import({"A001"});
  const app::ImportedList imported = again((cutList("fixture.edl", {"B002"}), "fixture.edl"));
  EXPECT_EQ(imported.keeping, app::Keeping::New);
  EXPECT_EQ(imported.earlier, 1);
  EXPECT_EQ(again("fixture.edl").earlier, std::nullopt);
}

} // namespace
