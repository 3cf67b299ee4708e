// SPDX-License-Identifier: Apache-2.0
#include "app/history.h"

#include "app/deletion.h"
#include "app/import.h"
#include "app/kept_lists.h"
#include "app/list_files.h"
#include "app/names.h"
#include "app/process.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "reelhost/history.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Names = std::vector<std::string>;
using Write = app::Session;

class History : public reeldb_tests::AppTest {
protected:
  static void rename(const std::string& from, const std::string& to)
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, from, to, false);
  }
  static void remove(const std::string& reel)
  {
    app::Session session({}, app::Access::Write);
    app::carryOut(session, app::planDeletion(session, {reel}, {}));
  }
  static void set(const std::string& reel, const std::string& field, const std::string& value)
  {
    app::Session session({}, app::Access::Write);
    app::changeReel(session, reel, {{field, value}});
  }
  static void create(const std::string& reel)
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, reel, {});
  }
  static app::TakenBackCommit undo(std::optional<std::int64_t> revision = {}, bool anybody = false)
  {
    app::Session session({}, app::Access::Write);
    return app::undo(session, revision, anybody);
  }
  static app::TakenBackCommit redo()
  {
    app::Session session({}, app::Access::Write);
    return app::redo(session, false);
  }
  static std::string refusal(const std::function<void()>& work)
  {
    const app::Error error = errorOf(work);
    EXPECT_EQ(error.kind(), app::ErrorKind::Refused);
    return error.what();
  }
  static app::ProjectHistory history(const std::optional<std::string>& reel = {})
  {
    app::Session session({}, app::Access::Read);
    return app::readHistory(session, reel);
  }
};

TEST_F(History, UndoTakesTheNewestCommitBackAndThenTheOneBefore)
{
  app::setCommandLine({"reeldb", "import", "a.edl"});
  import({"A001", "B002"});
  app::setCommandLine({"reeldb", "rename", "A001", "C003"});
  rename("A001", "C003");
  const app::TakenBackCommit first = undo();
  EXPECT_EQ(first.commit.revision, 2);
  EXPECT_EQ(first.commit.command, "reeldb rename A001 C003");
  EXPECT_EQ(first.revision, 3);
  EXPECT_EQ(first.logsChanged, 2u);
  EXPECT_EQ(reelIds(), (Names{"A001", "B002"}));
  const app::TakenBackCommit second = undo();
  EXPECT_EQ(second.commit.command, "reeldb import a.edl");
  EXPECT_EQ(second.reelsRemoved, (Names{"A001", "B002"}));
  EXPECT_EQ(second.shotsRemoved, 2u);
  EXPECT_EQ(reelIds(), Names{});
  EXPECT_EQ(refusal([] { undo(); }), "undo: nothing to undo");
}

TEST_F(History, RedoMakesAgainWhatUndoTookBackLastFirst)
{
  import({"A001"});
  rename("A001", "B001");
  undo();
  undo();
  const app::TakenBackCommit first = redo();
  EXPECT_EQ(first.reelsRestored, Names{"A001"});
  EXPECT_EQ(first.shotsRestored, 1u);
  redo();
  EXPECT_EQ(reelIds(), Names{"B001"});
  EXPECT_EQ(refusal([] { redo(); }), "redo: nothing to redo");
  undo(); // what was made again can be taken back again
  EXPECT_EQ(reelIds(), Names{"A001"});
}

TEST_F(History, EarlierCommitIsTakenBackAndLaterOnesStay)
{
  import({"A001"});
  set("A001", "bin", "shelf 1");
  set("A001", "user-field.0", "x");
  EXPECT_EQ(undo(2).commit.revision, 2);
  app::Session session({}, app::Access::Read);
  const app::ReelDetails reel = app::showReel(session, "A001");
  EXPECT_EQ(reel.reel.bin, "");
  EXPECT_EQ(reel.reel.userFields.front(), "x");
}

TEST_F(History, LogInTheWayIsNamed)
{
  import({"A001"});
  rename("A001", "B001");
  EXPECT_EQ(refusal([] { undo(1); }), "B001: changed since revision 1 (by revision 2, take that one back first)");
  EXPECT_EQ(reelIds(), Names{"B001"});
}

TEST_F(History, CommitInTheWayIsNamedAndNotOneThatIsTakenBack)
{
  create("A001");
  set("A001", "bin", "1");
  undo();
  redo();
  set("A001", "bin", "2"); // revision 5
  set("A001", "bin", "3");
  undo();
  EXPECT_EQ(refusal([] { undo(2); }), "A001: changed since revision 2 (by revision 5, take that one back first)");
  undo(5);
  undo(2);
}

TEST_F(History, ListInTheWayIsNamedWithTheCommitThatChangedIt)
{
  import({"A001"});
  remove("A001");
  undo();
  redo();
  {
    app::Session session({}, app::Access::Write);
    app::removeList(session, "1", false); // revision 5
  }
  EXPECT_EQ(refusal([] { undo(2); }),
            "fixture.edl: removed since revision 2 (by revision 5, take that one back first)");
}

TEST_F(History, IdentifierThatAnotherReelHasByNowIsRefused)
{
  import({"A001"});
  rename("A001", "B001");
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, "a001", {}); // no log is in both commits
  }
  EXPECT_EQ(refusal([] { undo(2); }),
            "undo: A001: another reel now has this name, nothing taken back (rename that reel first)");
  EXPECT_EQ(reelIds(), (Names{"B001", "a001"}));
}

TEST_F(History, ShotWithoutItsReelIsRefused)
{
  import({"A001"});
  {
    app::Session session({}, app::Access::Write); // a further shot of the reel that the first import made
    app::importLists(session, {app::readListFile(cutList("more.edl", {"B002", "B002", "A001"}))}, false);
  }
  EXPECT_EQ(
      refusal([] { undo(1); }),
      "undo: A001: a shot would name it, but there would be no such reel, nothing taken back (take revision 2 back "
      "first)");
}

TEST_F(History, FormerNameThatWouldLeadToTwoReelsIsRefused)
{
  import({"A001", "B002"});
  rename("A001", "C003"); // 2: A001 is a former name of C003
  remove("C003");         // 3
  rename("B002", "A001"); // 4
  rename("A001", "D004"); // 5: A001 is a former name of D004
  EXPECT_EQ(refusal([] { undo(3); }), "undo: a001: the name would lead to both C003 and D004, nothing taken back (see "
                                      "reeldb which)");
}

class NameOfTwoReels : public History {
protected:
  /// Imports a list that calls two reels by one further name.
  void SetUp() override
  {
    History::SetUp();
    const std::string event = "V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n* REEL SND1 IS CLIP x\n";
    folder_.write("sound.edl", "TITLE: T\n001  A001     " + event + "002  B002     " + event);
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile((folder_.path() / "sound.edl").native())}, false);
    ASSERT_EQ(app::whichReel(session, "SND1").candidates.size(), 2u);
  }
};

TEST_F(NameOfTwoReels, ComesBackWithBothReels)
{
  undo();
  redo();
  EXPECT_EQ(reelIds(), (Names{"A001", "B002"}));
}

TEST_F(NameOfTwoReels, ComesBackWithADeletedReel)
{
  remove("A001");
  set("B002", "bin", "shelf"); // the other reel may change meanwhile
  undo(2);
  EXPECT_EQ(reelIds(), (Names{"A001", "B002"}));
  remove("B002");
  app::Session session({}, app::Access::Write);
  EXPECT_EQ(app::undelete(session).reels, Names{"B002"});
}

TEST_F(NameOfTwoReels, IsRefusedForAReelThatDidNotHaveItThen)
{
  remove("A001");         // 2
  rename("B002", "SND1"); // 3
  rename("SND1", "C003"); // 4: SND1 is now a former name, too
  EXPECT_EQ(undo(2).reelsRestored, Names{"A001"});
  remove("A001");         // 6
  remove("C003");         // 7
  create("SND1");         // 8
  rename("SND1", "D004"); // 9
  EXPECT_EQ(refusal([] { undo(7); }),
            "undo: snd1: the name would lead to both C003 and D004, nothing taken back (see reeldb which)");
}

TEST_F(History, UndeleteIsTheUndoOfTheLastDeletion)
{
  import({"A001", "B002"});
  remove("A001");
  rename("B002", "C003");
  {
    app::Session session({}, app::Access::Write);
    app::undelete(session);
  }
  EXPECT_EQ(reelIds(), (Names{"A001", "C003"}));
  const std::vector<app::CommitEntry> commits = history().commits;
  EXPECT_EQ(commits.front().takesBack, 2);
  EXPECT_EQ(commits[2].takenBackBy, 4);
  EXPECT_EQ(refusal([] { undo(2); }).find("main.reels: revision 2 is taken back already (by revision 4)") ==
                std::string::npos,
            false);
}

TEST_F(History, OthersCommitsAreLeftAloneUnlessAnybodysAreMeant)
{
  import({"A001"});
  // As another user's: who is taken from the system.
  {
    reelhost::openProject("main", reelhost::Access::Write);
    reelhost::Store& store = reelhost::projectStore();
    reelhost::Changes changes;
    store.readReels([&](reelhost::StoredLog&& log) { changes.logs.push_back(std::move(log)); });
    changes.logs.front().videoChannels = 7;
    changes.origin = reelhost::currentOrigin();
    changes.origin.user = "somebody else";
    store.commit(changes);
    reelhost::closeProject();
  }
  EXPECT_EQ(undo({}, true).commit.user, "somebody else");
  EXPECT_EQ(undo().commit.revision, 1);
}

TEST_F(History, ReelThatHadAnotherTypeForAWhileIsCountedOnce)
{
  import({"A001"});
  reelhost::openProject("main", reelhost::Access::Write);
  reelhost::Changes changes;
  reelhost::projectStore().readReels([&](reelhost::StoredLog&& log) { changes.logs.push_back(std::move(log)); });
  changes.logs.front().type = 1;
  reelhost::projectStore().commit(changes);
  reelhost::closeProject();
  const app::TakenBackCommit done = undo({}, true);
  EXPECT_EQ(done.reelsRestored, Names{"A001"});
  EXPECT_EQ(done.shotsRestored, 0u);
  EXPECT_EQ(done.shotsRemoved, 1u); // which it was meanwhile
  EXPECT_EQ(done.logsChanged, 1u);
}

TEST_F(History, CommitOfWhichNothingIsLeftDoesNotHideEarlierOnes)
{
  import({"A001"});
  set("A001", "bin", "x");
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, "B001", {});
  }
  remove("B001");
  {
    app::Session session({}, app::Access::Write);
    app::compactProject(session); // a commit without changes
  }
  const std::string compacted = refusal([] { undo(); });
  EXPECT_EQ(compacted.substr(compacted.find("main.reels: ")),
            "main.reels: revision 4 cannot be taken back (project compact has removed what it deleted; undo REVISION "
            "takes an earlier one back)");
  EXPECT_EQ(refusal([] { undo(3); }),
            "undo: revision 3: nothing left to take back (undo REVISION takes an earlier one back)");
  EXPECT_EQ(undo(2).commit.revision, 2);
}

TEST_F(History, OnlyOthersCommitsAreNamedAsSuch)
{
  folder_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n[history]\nnames = false\n");
  reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  import({"A001"});
  EXPECT_EQ(history().commits.front().user, "");
  folder_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n");
  reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  const reelhost::Origin me = reelhost::currentOrigin();
  EXPECT_EQ(refusal([] { undo(); }), "undo: nothing to undo (no commit by " + me.user + " on " + me.machine +
                                         " is left; --any takes the newest of anyone)");
}

TEST_F(History, WithoutNamesOnlyACommitThatIsMeantIsTakenBack)
{
  folder_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n[history]\nnames = false\n");
  reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  EXPECT_EQ(refusal([] { undo(); }),
            "undo: nothing to undo (no command is in the history of this project; that it was made is not taken back)");
  import({"A001"});
  rename("A001", "B001");
  const std::string cause = " that is known to be yours ([history] names = false; --any takes the newest of anyone)";
  EXPECT_EQ(refusal([] { undo(); }), "undo: nothing to undo" + cause);
  EXPECT_EQ(undo(2).commit.revision, 2);
  EXPECT_EQ(refusal([] { redo(); }), "redo: nothing to redo" + cause);
  EXPECT_EQ(undo({}, true).commit.revision, 1);
}

TEST_F(History, OfAReelHasItsFieldsBeforeAndAfter)
{
  import({"A001", "B002"});
  rename("A001", "C003");
  set("B002", "bin", "shelf");
  remove("C003");
  const std::vector<app::CommitEntry> commits = history("C003").commits;
  ASSERT_EQ(commits.size(), 3u);
  EXPECT_EQ(commits[0].revision, 4);
  EXPECT_EQ(commits[1].revision, 2);
  ASSERT_EQ(commits[1].fields.size(), 1u);
  EXPECT_EQ(commits[1].fields[0].field, "reel");
  EXPECT_EQ(commits[1].fields[0].before, "A001");
  EXPECT_EQ(commits[1].fields[0].after, "C003");
  EXPECT_EQ(commits[2].created, 4);
  EXPECT_EQ(errorOf([] { history("X"); }).kind(), app::ErrorKind::NotFound);
}

TEST_F(History, OfAFormerNameIsThatOfItsReel)
{
  create("A001");
  rename("A001", "B001");
  EXPECT_EQ(history("a001").commits.size(), 2u);
  create("A001"); // a reel that has the name goes first
  EXPECT_EQ(history("A001").commits.size(), 1u);
  remove("A001");
  remove("B001");
  EXPECT_EQ(history("B001").commits.size(), 3u);
}

TEST_F(History, ChangeOfTheFacilityIsNamedAndNotTakenBack)
{
  import({"A001"});
  reelhost::Facility& facility = reelhost::facility();
  ASSERT_FALSE(facility.devices().empty());
  const std::string device = facility.devices().front().name;
  {
    app::Session session({}, app::Access::Write);
    facility.setLastReel(facility.devices().front().id, "A001");
    facility.setSystemValue("reel_userfield0", "Scene");
    app::renameReel(session, "A001", "B001", false);
  }
  EXPECT_EQ(undo().commit.elsewhere,
            (Names{"device " + device + ": last reel A001", "setting reel_userfield0: Scene"}));
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "Scene");
  EXPECT_EQ(history().commits.front().elsewhere, Names{});
}

TEST_F(History, HasAllThatIsKnownOfACommit)
{
  app::setCommandLine({"reeldb", "import"});
  import({"A001"});
  const app::CommitEntry commit = history().commits.front();
  const reelhost::Origin me = reelhost::currentOrigin();
  EXPECT_EQ(commit.revision, 1);
  EXPECT_EQ(commit.time.size(), std::string("2026-11-22T13:38:48Z").size());
  EXPECT_EQ(commit.program, "reeldb " + app::libraryVersion());
  EXPECT_EQ(commit.user, me.user);
  EXPECT_EQ(commit.machine, me.machine);
  EXPECT_EQ(commit.folder, me.folder);
  EXPECT_EQ(commit.created, 2);
}

} // namespace
