// SPDX-License-Identifier: Apache-2.0
#include "standalone/model/host_test.h"

#include <ctime>
#include <filesystem>

#include <limits.h>
#include <unistd.h>

#include "reelhost/history.h"
#include "standalone/model/forwarding_store.h"
#include "support/temp_folder.h"

namespace {

using namespace reeldb_tests;
using reelhost::takeBack;
using Texts = std::vector<std::string>;

class TakeBack : public HostTest {
protected:
  TakeBack() { openMemory(); }
  static void remove(const Cookie& log)
  {
    CookieVec logs;
    logs.add(log);
    reelhost::deleteLogs(logs);
  }
  static void setField(const Cookie& log, const char* key, const char* value)
  {
    withLog(log, [&](Edit& edit) { edit.config().set(key, value, nullptr); });
  }
  static std::vector<reelhost::Revision> revisions()
  {
    reelhost::idle();
    reelhost::Store& store = reelhost::projectStore();
    std::vector<reelhost::Revision> all;
    store.begin(reelhost::Access::Read, std::chrono::seconds(1));
    store.history()->readRevisions([&](reelhost::Revision&& revision) {
      all.insert(all.begin(), std::move(revision));
      return true;
    });
    store.end();
    return all;
  }
};

TEST_F(TakeBack, CreatedLogsAreGone)
{
  const Cookie kept = addLog(9, "R1");
  reelhost::commit();
  const Cookie reel = addLog(9, "R2"), shot = addLog(1, "R2");
  reelhost::commit();
  RecordingListener listener;
  const reelhost::TakenBack done = takeBack(2);
  EXPECT_EQ(done.removed, 2);
  EXPECT_EQ(done.restored + done.changed, 0);
  EXPECT_TRUE(listener.heard.empty());
  EXPECT_FALSE(opens(reel));
  EXPECT_EQ(shotsOf("R2").count(), 0);
  reelhost::commit();
  reopen();
  EXPECT_FALSE(opens(shot));
  EXPECT_TRUE(opens(kept));
}

TEST_F(TakeBack, ChangedLogHasItsValuesAgain)
{
  const Cookie reel = addLog(9, "R1"), shot = addLog(1, "R1");
  setField(reel, "k", "v");
  reelhost::commit();
  rename(reel, "R2");
  rename(shot, "R2");
  withLog(reel, [](Edit& edit) { edit.reelType("Disc"); });
  setField(reel, "k", "w");
  setField(reel, "new", "x");
  reelhost::commit();
  shotsOf("R2"); // makes the index
  const reelhost::TakenBack done = takeBack(2);
  EXPECT_EQ(done.changed, 2);
  EXPECT_EQ(done.restored + done.removed, 0);
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(reelIdOf(reel), "R1");
    EXPECT_EQ(typeNameOf(reel), "");
    EXPECT_EQ(fieldOf(reel, "k"), "v");
    EXPECT_EQ(shotsOf("R1").count(), 1);
    EXPECT_EQ(shotsOf("R2").count(), 0);
    reelhost::commit();
    reopen();
  }
}

TEST_F(TakeBack, DeletedLogReturnsWithItsCookie)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  reelhost::commit();
  remove(first);
  reelhost::commit();
  EXPECT_EQ(takeBack(2).restored, 1);
  Texts all;
  for (const Cookie& log : reels())
    all.push_back(reelIdOf(log));
  EXPECT_EQ(all, (Texts{"R1", "R2"}));
  EXPECT_TRUE(opens(first));
  reelhost::commit();
  reopen();
  EXPECT_TRUE(opens(first));
  EXPECT_TRUE(opens(second));
}

TEST_F(TakeBack, ValuesThatTheRevisionDidNotChangeStay)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  setField(reel, "a", "1");
  reelhost::commit();
  setField(reel, "b", "2");
  reelhost::commit();
  EXPECT_EQ(takeBack(2).changed, 1);
  EXPECT_EQ(fieldOf(reel, "a"), "<absent>");
  EXPECT_EQ(fieldOf(reel, "b"), "2");
}

TEST_F(TakeBack, LaterChangeOfTheSameValueIsInTheWay)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  setField(reel, "a", "1");
  reelhost::commit();
  setField(reel, "a", "2");
  reelhost::commit();
  EXPECT_EQ(errorOf([] { takeBack(2); }),
            "Refused: R1: changed since revision 2 (by revision 3, take that one back first)");
  EXPECT_EQ(errorOf([] { takeBack(1); }),
            "Refused: R1: changed since revision 1 (by revision 3, take that one back first)");
  EXPECT_EQ(fieldOf(reel, "a"), "2");
  EXPECT_FALSE(reelhost::hasChanges());
  remove(reel);
  reelhost::commit();
  EXPECT_EQ(errorOf([] { takeBack(3); }),
            "Refused: R1: deleted since revision 3 (by revision 4, take that one back first)");
  EXPECT_EQ(takeBack(4).restored, 1);
}

TEST_F(TakeBack, DeletedLogThatWasStoredAgainAndChangedIsInTheWay)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  remove(reel);
  reelhost::commit();
  reelhost::Changes changes; // as another program may store it, without taking the deletion back
  changes.logs.push_back(*kept()->history()->changesOf(2).logs.at(0).before);
  kept()->commit(changes);
  reopen();
  EXPECT_FALSE(takeBack(2).anything());
  changes.logs[0].name = "another";
  kept()->commit(changes);
  reopen();
  EXPECT_EQ(errorOf([] { takeBack(2); }),
            "Refused: R1: restored and changed since revision 2 (by revision 4, take that one back first)");
}

TEST_F(TakeBack, CreatedLogThatIsDeletedIsNotMissed)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  reelhost::commit();
  remove(first);
  reelhost::commit();
  EXPECT_EQ(takeBack(1).removed, 1);
  EXPECT_FALSE(opens(second));
}

TEST_F(TakeBack, OptionsAreAsTheyWere)
{
  const auto set = [](const char* key, const char* value) { EditManager::ProjOpts().set(key, value, nullptr); };
  const auto stored = [] { return reelhost::projectStore().options(); };
  set("a", "1");
  reelhost::commit();
  set("a", "2");
  set("b", "3");
  reelhost::commit();
  EXPECT_TRUE(takeBack(2).options);
  reelhost::commit();
  reopen();
  EXPECT_EQ(stored(), (reelhost::KeyValues{{"a", "1"}}));
  EXPECT_TRUE(takeBack(3).options);
  reelhost::commit();
  reopen();
  EXPECT_EQ(stored(), (reelhost::KeyValues{{"a", "2"}, {"b", "3"}}));
  set("a", "4");
  reelhost::commit();
  EXPECT_EQ(errorOf([] { takeBack(4); }), "Refused: memory: an option of the project changed since revision 4");
}

TEST_F(TakeBack, TakingBackIsARevisionThatCanBeTakenBack)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  rename(reel, "R2");
  reelhost::commit();
  takeBack(2);
  reelhost::commit();
  EXPECT_EQ(errorOf([] { takeBack(2); }), "Refused: memory: revision 2 is taken back already (by revision 3)");
  takeBack(3);
  reelhost::commit();
  EXPECT_EQ(reelIdOf(reel), "R2");
  takeBack(4);
  reelhost::commit();
  EXPECT_EQ(reelIdOf(reel), "R1");
  const std::vector<reelhost::Revision> all = revisions();
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[2].takesBack, 2);
  EXPECT_FALSE(all[2].isRedo);
  EXPECT_EQ(all[3].takesBack, 3);
  EXPECT_TRUE(all[3].isRedo);
  EXPECT_EQ(all[4].takesBack, 4);
  EXPECT_FALSE(all[4].isRedo);
}

TEST_F(TakeBack, IsTriedOutForReadingAndDroppedWithTheProject)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  reopen(reelhost::Access::Read);
  EXPECT_EQ(takeBack(1).removed, 1);
  EXPECT_FALSE(opens(reel));
  reopen(reelhost::Access::Read);
  EXPECT_TRUE(opens(reel));
}

TEST_F(TakeBack, WaitsForWhatIsNotStoredYet)
{
  addLog(9, "R1");
  reelhost::commit();
  addLog(9, "R2");
  EXPECT_EQ(errorOf([] { takeBack(1); }),
            "Refused: memory: cannot take a revision back (other changes are not stored yet)");
}

TEST_F(TakeBack, WhatCompactRemovedCannotBeTakenBack)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  setField(reel, "a", "1");
  reelhost::commit();
  remove(reel);
  reelhost::commit();
  reelhost::compact();
  reelhost::commit();
  const std::string refusal = " cannot be taken back (project compact has removed what it deleted; undo "
                              "REVISION takes an earlier one back)";
  EXPECT_EQ(errorOf([] { takeBack(3); }), "Refused: memory: revision 3" + refusal);
  EXPECT_EQ(errorOf([] { takeBack(2); }), "Refused: memory: revision 2" + refusal);
  EXPECT_FALSE(takeBack(1).anything()); // its log is gone anyway
  EXPECT_FALSE(takeBack(4).anything());
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(TakeBack, UnknownRevisionIsNotFound)
{
  EXPECT_EQ(errorOf([] { takeBack(7); }), "NotFound: memory: no revision 7");
}

class StoreWithoutHistory final : public ForwardingStore {
public:
  using ForwardingStore::ForwardingStore;
  reelhost::History* history() override { return nullptr; }
};

TEST_F(TakeBack, ProjectWithoutHistorySaysSo)
{
  reelhost::openProject(std::make_unique<StoreWithoutHistory>(reelhost::makeMemoryStore({})), reelhost::Access::Write);
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  const std::string refusal = "Refused: memory: this project keeps no history";
  EXPECT_EQ(errorOf([] { takeBack(1); }), refusal);
  remove(reel);
  reelhost::commit();
  EXPECT_EQ(errorOf([] { reelhost::undelete(); }), refusal);
  EXPECT_EQ(errorOf([] { reelhost::compact(); }), refusal);
}

/// Counts how often the history is asked for while no use of the project is begun.
class StoreWithUses final : public ForwardingStore {
public:
  using ForwardingStore::ForwardingStore;
  void begin(reelhost::Access access, std::chrono::milliseconds busyTimeout) override
  {
    ForwardingStore::begin(access, busyTimeout);
    isUsed_ = true;
  }
  void end() noexcept override
  {
    ForwardingStore::end();
    isUsed_ = false;
  }
  reelhost::History* history() override
  {
    outsideAUse += isUsed_ ? 0 : 1;
    return ForwardingStore::history();
  }
  int outsideAUse = 0;

private:
  bool isUsed_ = false;
};

TEST_F(TakeBack, ReadsTheHistoryInAUseAlsoAfterIdle)
{
  addLog(9, "R1");
  reelhost::commit();
  auto store = std::make_unique<StoreWithUses>(kept());
  const StoreWithUses& uses = *store;
  reelhost::openProject(std::move(store), reelhost::Access::Read);
  reelhost::idle();
  EXPECT_EQ(takeBack(1).removed, 1);
  EXPECT_EQ(uses.outsideAUse, 0);
}

// --- Who and what --------------------------------------------------------------------------------

TEST_F(TakeBack, CommitHasItsOrigin)
{
  reelhost::setCommandLine("prog 1", {"prog", "set it", "/a/b=c"});
  addLog(9, "R1");
  reelhost::commit();
  reelhost::setCommandLine("", {});
  const reelhost::Origin origin = revisions().back().origin;
  char machine[HOST_NAME_MAX + 1] = {};
  ::gethostname(machine, HOST_NAME_MAX);
  EXPECT_EQ(origin.program, "prog 1");
  EXPECT_EQ(origin.command, "prog 'set it' /a/b=c");
  EXPECT_EQ(origin.machine, machine);
  EXPECT_FALSE(origin.user.empty());
  EXPECT_EQ(origin.folder, std::filesystem::current_path().native());
  EXPECT_NEAR(static_cast<double>(origin.time), static_cast<double>(std::time(nullptr)), 10);
}

TEST_F(TakeBack, OriginNamesWhatWaitsToBeStoredInTheFacility)
{
  const TempFolder folder;
  folder.write("facility.toml", "");
  reelhost::useFacility(reelhost::Facility::read(folder.path()));
  EXPECT_EQ(reelhost::currentOrigin().elsewhere, Texts{});
  SystemCfg::theConfig().set("reel_userfield0", "Scene");
  EXPECT_EQ(reelhost::currentOrigin().elsewhere, Texts{"setting reel_userfield0: Scene"});
  reelhost::useFacility(reelhost::Facility());
}

TEST_F(TakeBack, LongCommandLineIsCutBetweenCharacters)
{
  reelhost::setCommandLine("", {std::string(2043, 'a') + "\xC3\xA9" + std::string(9, 'b')});
  const std::string command = reelhost::currentOrigin().command;
  reelhost::setCommandLine("", {});
  EXPECT_EQ(command, std::string(2043, 'a') + "...");
  reelhost::setCommandLine("", {std::string(2047, 'a')});
  EXPECT_EQ(reelhost::currentOrigin().command, std::string(2047, 'a'));
  reelhost::setCommandLine("", {});
}

TEST_F(TakeBack, FacilityWithoutNamesKeepsNeitherNamesNorFolders)
{
  const TempFolder folder;
  folder.write("facility.toml", "[history]\nnames = false\n");
  reelhost::useFacility(reelhost::Facility::read(folder.path()));
  reelhost::setCommandLine("prog",
                           {"prog", "-C", "/home/anna/site/", "import", "../cuts/a b.edl", "--output=/home/anna/x.edl",
                            "name=24/25", "/", "bin=/shelf/3", "-o/tmp/x", "-o=/tmp/y", "/home/a=b/c", "-/d/e"});
  const reelhost::Origin origin = reelhost::currentOrigin();
  reelhost::setCommandLine("", {});
  reelhost::useFacility(reelhost::Facility());
  EXPECT_EQ(origin.user + origin.machine + origin.folder, "");
  EXPECT_EQ(origin.command, "prog -C site import 'a b.edl' --output=x.edl name=24/25 / bin=3 -ox -o=y c e");
  EXPECT_EQ(origin.program, "prog");
}

} // namespace
