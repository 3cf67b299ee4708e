// SPDX-License-Identifier: Apache-2.0
#include "app/history.h"

#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "app/deletion.h"
#include "app/import.h"
#include "app/list_files.h"
#include "app/names.h"
#include "app/process.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "base/ascii.h"
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

TEST_F(History, IdentifierThatAnotherReelHasByNowIsRefused)
{
  import({"A001"});
  rename("A001", "B001");
  import({"a001"}); // no log is in both commits
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
  EXPECT_EQ(refusal([] { undo(1); }),
            "undo: A001: a shot would name it, but there is no such reel, nothing taken back (create the reel first)");
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
  import({"SND1"});       // 8
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

TEST_F(History, OnlyOthersCommitsAreNamedAsSuch)
{
  folder_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n[history]\nnames = false\n");
  reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  import({"A001"});
  EXPECT_EQ(history().commits.front().user, "");
  folder_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n");
  reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  const reelhost::Origin me = reelhost::currentOrigin();
  EXPECT_EQ(refusal([] { undo(); }),
            "undo: nothing to undo (by " + me.user + " on " + me.machine + "; --any takes what others did)");
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

// --- Random commands -----------------------------------------------------------------------------

/// All that a project holds: every log whole, by number.
std::string contents()
{
  const auto store = reelhost::makeSqliteStore(reelhost::facility().projectFile("main"));
  store->begin(reelhost::Access::Read, std::chrono::seconds(5));
  std::map<std::int64_t, std::string> logs;
  const auto keep = [&](reelhost::StoredLog&& log) {
    std::ostringstream out;
    out << log.type << log.name << '|' << log.reelType << log.videoChannels << '/' << log.audioChannels;
    for (const auto& [key, value] : log.fields)
      out << '|' << key << '=' << value;
    logs[log.number] = out.str();
  };
  store->readReels(keep);
  store->readOthers(keep);
  std::ostringstream out;
  for (const auto& [number, log] : logs)
    out << number << ' ' << log << '\n';
  for (const auto& [key, value] : store->options())
    out << key << '=' << value << '\n';
  return out.str();
}

/// What no undo may break, found by other means than the operation's: each fault as one text.
std::set<std::string> faults()
{
  const auto store = reelhost::makeSqliteStore(reelhost::facility().projectFile("main"));
  store->begin(reelhost::Access::Read, std::chrono::seconds(5));
  std::map<std::string, std::set<std::int64_t>> ids;
  std::map<std::string, std::set<std::string>> names;
  std::set<std::string> found;
  const auto fieldOf = [](const reelhost::StoredLog& log, const std::string& key) {
    for (const auto& [known, value] : log.fields)
      if (known == key)
        return base::fold(value);
    return std::string();
  };
  store->readReels([&](reelhost::StoredLog&& log) {
    const std::string id = fieldOf(log, "reelid");
    if (!ids[id].insert(log.number).second || ids[id].size() > 1)
      found.insert("two reels " + id);
    for (const auto& [key, value] : log.fields)
      if (key.rfind("reel_old_name", 0) == 0)
        names[base::fold(value)].insert(std::to_string(log.number));
  });
  store->readOthers([&](reelhost::StoredLog&& log) {
    if (const std::string id = fieldOf(log, "reelid"); !id.empty() && ids.count(id) == 0)
      found.insert("shot " + std::to_string(log.number) + " without reel");
  });
  for (const auto& [name, reels] : names)
    if (reels.size() > 1) {
      std::string all;
      for (const std::string& reel : reels)
        all += " " + reel;
      found.insert("name " + name + all);
    }
  return found;
}

TEST_F(History, RandomCommandsAreTakenBackAndMadeAgainOrRefused)
{
  const int runs = std::getenv("REELDB_LONG_TESTS") ? 3000 : 150;
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
  const auto someName = [&] {
    return std::string(1, static_cast<char>((below(2) ? 'A' : 'a') + static_cast<char>(below(5))));
  };
  int undone = 0, refused = 0, redone = 0;
  for (int run = 0; run < runs; ++run) {
    const Names ids = reelIds();
    const std::string reel = ids.empty() ? "A" : ids[below(ids.size())];
    try {
      switch (below(6)) {
      case 0:
        import({someName(), someName()});
        break;
      case 1:
        rename(reel, someName());
        break;
      case 2:
        set(reel, below(2) ? "bin" : "user-field.1", std::to_string(below(3)));
        break;
      case 3:
        remove(reel);
        break;
      case 4: {
        app::Session session({}, app::Access::Write);
        app::undelete(session);
        break;
      }
      default: {
        app::Session session({}, app::Access::Write);
        app::createReel(session, someName(), {});
      }
      }
    } catch (const app::Error&) { // a name that is taken, a reel that is not there: no command of this run
    }
    const std::string before = contents();
    std::string expected = before; // when it is refused
    const std::set<std::string> faultsBefore = faults();
    try {
      const std::vector<app::CommitEntry> commits = history().commits;
      if (commits.empty())
        continue;
      const std::int64_t newest = undo(commits[below(std::min<std::size_t>(commits.size(), 8))].revision).revision;
      ++undone;
      for (const std::string& fault : faults())
        EXPECT_EQ(faultsBefore.count(fault), 1u) << fault;
      if (below(2) == 0)
        continue;
      expected = contents();
      EXPECT_EQ(undo(newest).revision, newest + 1); // made again
      EXPECT_EQ(contents(), before);
      ++redone;
    } catch (const app::Error& error) {
      EXPECT_EQ(error.kind(), app::ErrorKind::Refused) << error.what();
      EXPECT_EQ(contents(), expected) << error.what();
      ++refused;
    }
    if (HasFailure())
      return;
  }
  EXPECT_GT(undone, runs / 20);
  EXPECT_GT(refused, runs / 20);
  EXPECT_GT(redone, runs / 50);
  EXPECT_EQ(reelhost::makeSqliteStore(reelhost::facility().projectFile("main"))->check(), Names{});
  std::printf("%d taken back, %d of them made again, %d refused (seed %u)\n", undone, redone, refused, seed);
}

} // namespace
