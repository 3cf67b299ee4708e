// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "host/project.h"
#include "standalone/model/forwarding_store.h"
#include "standalone/model/host_test.h"
#include "support/temp_folder.h"

namespace {

using namespace reeldb_tests;
using reelhost::Access;
using reelhost::Changes;
using reelhost::Error;
using reelhost::ErrorKind;
using reelhost::Store;
using Texts = std::vector<std::string>;

/// Counts the calls of a store, and refuses the calls that the test selects.
struct Seen {
  int begun = 0, othersRead = 0, committed = 0;
  bool refuseBegin = false, refuseCommit = false;
  Changes last; ///< what was committed last
};

class WatchedStore : public ForwardingStore {
public:
  WatchedStore(std::shared_ptr<Store> to, Seen& seen) : ForwardingStore(std::move(to)), seen_(seen) {}
  void begin(Access access, std::chrono::milliseconds busyTimeout) override
  {
    if (seen_.refuseBegin)
      throw Error(ErrorKind::Busy, "memory: held by another process");
    ++seen_.begun;
    ForwardingStore::begin(access, busyTimeout);
  }
  void readOthers(const Sink& sink) override
  {
    ++seen_.othersRead;
    ForwardingStore::readOthers(sink);
  }
  void commit(const Changes& changes) override
  {
    if (seen_.refuseCommit)
      throw Error(ErrorKind::Io, "memory: not stored (disk full)");
    ++seen_.committed;
    seen_.last = changes;
    ForwardingStore::commit(changes);
  }

private:
  Seen& seen_;
};

class OpenProject : public HostTest {
protected:
  void openWatched(Access access = Access::Write)
  {
    reelhost::openProject(std::make_unique<WatchedStore>(store_, seen_), access);
  }
  Seen seen_;
  std::shared_ptr<Store> store_ = reelhost::makeMemoryStore(info());
};

TEST_F(OpenProject, EntersItAndLeavesTheOneBefore)
{
  RecordingListener listener;
  EXPECT_FALSE(reelhost::projectIsOpen());
  openMemory();
  EXPECT_TRUE(reelhost::projectIsOpen());
  EXPECT_EQ(reelhost::projectInfo().name, "TEST");
  EXPECT_EQ(reelhost::projectStore().subject(), "memory");
  EXPECT_STREQ(get_project_cookie().asString(false).c_str(), "PTEST000000000000");
  openWatched();
  reelhost::closeProject();
  reelhost::closeProject();
  EXPECT_EQ(listener.heard, (Texts{"entry", "exit", "entry", "exit"}));
  EXPECT_FALSE(reelhost::projectIsOpen());
}

TEST_F(OpenProject, ThatCannotBeginLeavesNoneOpen)
{
  RecordingListener listener;
  openMemory();
  seen_.refuseBegin = true;
  EXPECT_EQ(errorOf([&] { openWatched(); }), "Busy: memory: held by another process");
  EXPECT_FALSE(reelhost::projectIsOpen());
  EXPECT_EQ(EditManager::getProjdb(), nullptr);
  EXPECT_EQ(listener.heard, (Texts{"entry", "exit"}));
}

TEST_F(OpenProject, WhatNeedsAProjectSaysSoWithoutOne)
{
  EXPECT_EQ(errorOf([] { reelhost::importMaterial({}); }), "Refused: import: no project is open");
  EXPECT_EQ(errorOf([] { reelhost::deleteLogs({}); }), "Refused: deletion: no project is open");
  EXPECT_EQ(errorOf([] { reelhost::undelete(); }), "Refused: undelete: no project is open");
  EXPECT_EQ(errorOf([] { reelhost::compact(); }), "Refused: compact: no project is open");
  EXPECT_EQ(errorOf([] { reelhost::addLog({}); }), "Refused: new log: no project is open");
  EXPECT_EQ(errorOf([] { reelhost::projectInfo(); }), "Refused: project: no project is open");
  EXPECT_FALSE(reelhost::hasChanges());
  EXPECT_FALSE(reelhost::commit());
  EXPECT_FALSE(reelhost::reloadIfChangedElsewhere());
  reelhost::idle();
  EXPECT_EQ(reelhost::allShots().count(), 0);
  EXPECT_TRUE(reelhost::shotCounts().empty());
}

TEST_F(OpenProject, AListenerThatThrowsOnExitDoesNotKeepItOpen)
{
  RecordingListener first, second;
  openMemory();
  first.onEvent = [](const std::string&) { throw std::runtime_error("no"); };
  reelhost::closeProject();
  EXPECT_FALSE(reelhost::projectIsOpen());
  EXPECT_EQ(second.heard, (Texts{"entry", "exit"}));
}

TEST_F(OpenProject, AListenerThatClosesItOnExitClosesItOnce)
{
  RecordingListener listener;
  openMemory();
  listener.onEvent = [](const std::string&) { reelhost::closeProject(); };
  reelhost::closeProject();
  EXPECT_EQ(listener.heard, (Texts{"entry", "exit"}));
}

// --- Reading -------------------------------------------------------------------------------------

TEST_F(OpenProject, ShotsAreReadWhenTheyAreFirstNeeded)
{
  openWatched();
  const Cookie reel = addLog(9, "R1"), shot = addLog(1, "R1");
  reelhost::commit();
  const auto freshly = [&](const std::function<void()>& question) {
    openWatched();
    seen_.othersRead = 0;
    question();
    const int first = seen_.othersRead;
    question();
    return first * 10 + seen_.othersRead; // 11: only at the first call
  };
  EXPECT_EQ(freshly([&] { EXPECT_EQ(reelIdOf(reel), "R1"); }), 0);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(reels().count(), 1); }), 0);
  EXPECT_EQ(freshly([&] { EXPECT_FALSE(opens(Cookie())); }), 0);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(typeNameOf(reel), ""); }), 0);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(reelhost::shotCounts().at("r1"), 1); }), 0);
  EXPECT_EQ(freshly([&] { rename(reel, "R1"); }), 0);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(reelIdOf(shot), "R1"); }), 11);
  EXPECT_EQ(freshly([&] { EXPECT_NE((*EditManager::getProjdb())[shot], nullptr); }), 11);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(typeNameOf(shot), ""); }), 11);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(shotsOf("R1").count(), 1); }), 11);
  EXPECT_EQ(freshly([&] { EXPECT_EQ(reelhost::allShots().count(), 1); }), 11);
}

TEST_F(OpenProject, WhatWasStoredSinceIsNotReadTwice)
{
  openWatched();
  addLog(1, "OLD");
  reelhost::commit();
  openWatched();
  const Cookie fresh = addLog(1, "NEW"), doomed = addLog(1, "DOOMED");
  reelhost::commit();
  CookieVec one;
  one.add(doomed);
  reelhost::deleteLogs(one); // not stored yet: the store still holds it
  EXPECT_EQ(seen_.othersRead, 0);
  EXPECT_EQ(reelhost::allShots().count(), 2);
  EXPECT_EQ(seen_.othersRead, 1);
  EXPECT_EQ(shotsOf("NEW").count(), 1);
  EXPECT_EQ(shotsOf("NEW")[0].compare(fresh), 0);
  EXPECT_EQ(shotsOf("DOOMED").count(), 0);
}

TEST_F(OpenProject, AllOfALogComesBack)
{
  openMemory();
  reelhost::StoredLog log;
  log.type = 9;
  log.entireMedium = true;
  log.name = "Reel \xC3\xA9";
  log.videoChannels = 1;
  log.audioChannels = 4;
  log.reelType = "Tape";
  log.fields = {{"reelid", "R1"}, {"reel_userfield3", "caf\xC3\xA9"}, {"empty", ""}};
  const Cookie cookie = reelhost::addLog(log);
  reelhost::commit();
  std::vector<reelhost::StoredLog> stored;
  kept()->readReels([&](reelhost::StoredLog&& read) { stored.push_back(std::move(read)); });
  ASSERT_EQ(stored.size(), 1u);
  EXPECT_EQ(stored[0].number, 1);
  EXPECT_TRUE(stored[0].entireMedium);
  EXPECT_EQ(stored[0].name, log.name);
  reopen();
  EXPECT_EQ(typeNameOf(cookie), "Tape");
  EXPECT_EQ(fieldOf(cookie, "reel_userfield3"), "caf\xC3\xA9");
  EXPECT_EQ(fieldOf(cookie, "empty"), "");
  EXPECT_EQ(fieldOf(cookie, "other"), "<absent>");
  withLog(cookie, [](Edit& edit) {
    EXPECT_EQ(edit.getNumChans(codes::videoChannel), 1);
    EXPECT_EQ(edit.getNumChans(codes::audioChannel), 4);
    EXPECT_EQ(edit.getLogType(), 9);
    EXPECT_EQ(edit.cookieKind(), 'E');
    EXPECT_EQ(edit.cookieTag(), 0);
  });
  EXPECT_EQ(reelhost::materialOf(cookie).name, log.name);
}

// --- Storing -------------------------------------------------------------------------------------

TEST_F(OpenProject, ACommitStoresWhatChangedAndNothingElse)
{
  openWatched();
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  EditManager::ProjOpts().set("a", "1", nullptr);
  EditManager::ProjOpts().set("b", "2", nullptr);
  EXPECT_TRUE(reelhost::hasChanges());
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(seen_.last.logs.size(), 2u);
  EXPECT_EQ(seen_.last.options.size(), 2u);
  EXPECT_FALSE(reelhost::hasChanges());
  EXPECT_FALSE(reelhost::commit());
  EXPECT_EQ(seen_.committed, 1);

  rename(second, "R3");
  rename(second, "R4");
  EditManager::ProjOpts().set("a", "1", nullptr); // as it was
  EditManager::ProjOpts().set("b", "2.5", nullptr);
  EditManager::ProjOpts().set("b", "3", nullptr);
  EXPECT_TRUE(reelhost::commit());
  ASSERT_EQ(seen_.last.logs.size(), 1u);
  EXPECT_EQ(seen_.last.logs[0].number, 2);
  EXPECT_EQ(seen_.last.logs[0].fields, (reelhost::KeyValues{{"reelid", "R4"}}));
  EXPECT_EQ(seen_.last.options, (reelhost::KeyValues{{"b", "3"}}));
  EXPECT_EQ(reelIdOf(first), "R1");
}

TEST_F(OpenProject, OptionThatGetsItsStoredTextAgainIsNotAChange)
{
  openWatched();
  EditManager::ProjOpts().set("a", "1", nullptr);
  reelhost::commit();
  EditManager::ProjOpts().set("a", "2", nullptr);
  EditManager::ProjOpts().set("a", "3", nullptr);
  EXPECT_TRUE(reelhost::hasChanges());
  EditManager::ProjOpts().set("a", "1", nullptr);
  EXPECT_FALSE(reelhost::hasChanges());
  EditManager::ProjOpts().set("new", "", nullptr); // was not there
  EditManager::ProjOpts().set("new", "x", nullptr);
  EditManager::ProjOpts().set("new", "", nullptr);
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(seen_.last.options, (reelhost::KeyValues{{"new", ""}}));
}

TEST_F(OpenProject, ChangedLogsAreStoredByNumber)
{
  openWatched();
  const Cookie first = addLog(1, "R1"), second = addLog(1, "R2");
  reelhost::commit();
  rename(second, "x");
  rename(first, "y");
  reelhost::commit();
  ASSERT_EQ(seen_.last.logs.size(), 2u);
  EXPECT_EQ(seen_.last.logs[0].number, 1);
  EXPECT_EQ(seen_.last.logs[1].number, 2);
}

TEST_F(OpenProject, TheUseEndsWithTheCommitAndBeginsWithTheNextChange)
{
  openWatched();
  EXPECT_EQ(seen_.begun, 1);
  const Cookie log = addLog(9, "R1");
  reelhost::commit();
  EXPECT_EQ(reelIdOf(log), "R1");
  EXPECT_EQ(seen_.begun, 1);
  rename(log, "R2");
  EXPECT_EQ(seen_.begun, 2);
  rename(log, "R3");
  EXPECT_EQ(seen_.begun, 2);
  reelhost::commit();
  reelhost::commit();
  EditManager::ProjOpts().set("a", "1", nullptr);
  EXPECT_EQ(seen_.begun, 3);
  reelhost::commit();
  addLog(9, "R4");
  EXPECT_EQ(seen_.begun, 4);
}

TEST_F(OpenProject, AChangeThatCannotBeginIsNotMade)
{
  openWatched();
  const Cookie log = addLog(9, "R1");
  reelhost::commit();
  seen_.refuseBegin = true;
  withLog(log, [](Edit& edit) {
    EXPECT_THROW(edit.set_reelid(0, "R2"), Error);
    EXPECT_THROW(edit.setName(L"x", false), Error);
    EXPECT_THROW(edit.addChan(codes::videoChannel, nullptr, false, EditChanSubType(0), false, -1.0), Error);
    EXPECT_THROW(edit.reelType("Tape"), Error);
    EXPECT_EQ(edit.getNumChans(codes::videoChannel), 0);
  });
  EXPECT_THROW(EditManager::ProjOpts().set("a", "1", nullptr), Error);
  EXPECT_THROW(addLog(9, "R2"), Error);
  EXPECT_EQ(reelIdOf(log), "R1");
  EXPECT_EQ(typeNameOf(log), "");
  EXPECT_EQ(EditManager::ProjOpts().in("a"), nullptr);
  EXPECT_EQ(reels().count(), 1);
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(OpenProject, ACommitThatFailsMayBeTriedAgain)
{
  openWatched();
  addLog(9, "R1");
  seen_.refuseCommit = true;
  EXPECT_EQ(errorOf([] { reelhost::commit(); }), "Io: memory: not stored (disk full)");
  EXPECT_TRUE(reelhost::hasChanges());
  seen_.refuseCommit = false;
  EXPECT_TRUE(reelhost::commit());
  EXPECT_FALSE(reelhost::hasChanges());
  openWatched();
  EXPECT_EQ(reels().count(), 1);
}

TEST_F(OpenProject, CommitThatStoresNothingKeepsNoOtherProcessWaiting)
{
  openWatched();
  addLog(9, "R1");
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 0); // begins a use for writing
  const int begun = seen_.begun;
  EXPECT_FALSE(reelhost::commit());
  EXPECT_EQ(reelhost::undelete(), 0);
  EXPECT_EQ(seen_.begun, begun + 1) << "the commit ended the use";
}

TEST_F(OpenProject, UndeletionThatIsRefusedKeepsNoOtherProcessWaiting)
{
  openWatched();
  CookieVec logs;
  logs.add(addLog(9, "R1"));
  reelhost::commit();
  reelhost::deleteLogs(logs);
  seen_.refuseCommit = true;
  EXPECT_THROW(reelhost::commit(), Error);
  const int begun = seen_.begun;
  EXPECT_EQ(errorOf([] { reelhost::undelete(); }),
            "Refused: memory: cannot undelete (a deletion or an undeletion is not stored yet)");
  EXPECT_EQ(seen_.begun, begun);
}

TEST_F(OpenProject, LogAfterTheLastNumberIsRefused)
{
  openWatched();
  Changes changes;
  changes.logs.emplace_back();
  changes.logs[0].number = 99'999'998;
  store_->commit(changes);
  openWatched();
  addLog(9, "R1");
  EXPECT_EQ(errorOf([] { addLog(9, "R2"); }), "Refused: memory: no number is left for another log");
}

TEST_F(OpenProject, WhatIsNotCommittedIsLostOnClosing)
{
  openMemory();
  addLog(9, "R1");
  reelhost::commit();
  addLog(9, "R2");
  reopen();
  EXPECT_EQ(reels().count(), 1);
}

TEST_F(OpenProject, ForReadingChangesAreTriedOutAndNotStored)
{
  openWatched();
  const Cookie log = addLog(9, "R1");
  reelhost::commit();
  openWatched(Access::Read);
  EXPECT_FALSE(reelhost::commit());
  rename(log, "R2");
  addLog(9, "R3");
  EXPECT_EQ(reelIdOf(log), "R2");
  EXPECT_EQ(reels().count(), 2);
  EXPECT_TRUE(reelhost::hasChanges());
  EXPECT_EQ(errorOf([] { reelhost::commit(); }),
            "ReadOnly: memory: changes cannot be stored (opened for reading only)");
  openWatched(Access::Read);
  EXPECT_EQ(reelIdOf(log), "R1");
  EXPECT_EQ(reels().count(), 1);
}

TEST_F(OpenProject, NumbersGoOnAfterWhatWasStored)
{
  openMemory();
  addLog(9, "R1");
  CookieVec last;
  last.add(addLog(9, "R2"));
  reelhost::commit();
  reelhost::deleteLogs(last);
  reelhost::commit();
  reopen();
  EXPECT_EQ(text(addLog(9, "R3")).substr(9), "00000003");
}

TEST_F(OpenProject, OptionsWithoutAProjectAreGoneAtOnce)
{
  EditManager::ProjOpts().set("a", "1", nullptr);
  EXPECT_EQ(EditManager::ProjOpts().in("a"), nullptr);
  openMemory();
  EXPECT_EQ(EditManager::ProjOpts().in("a"), nullptr);
}

TEST_F(OpenProject, RateThatAnOptionHoldsGoesBeforeThatOfTheStore)
{
  openMemory();
  const int first = reelhost::projectInfo().frameRate;
  EditManager::ProjOpts().set(reelhost::frameRateOption, "7", nullptr);
  EXPECT_EQ(reelhost::projectInfo().frameRate, first);
  reelhost::commit();
  reopen();
  EXPECT_EQ(reelhost::projectInfo().frameRate, 7);
  EXPECT_EQ(reelhost::projectInfo().outputFrameRate, 7);
  EXPECT_EQ(Zr::CurrentProject::getFrameRate({}), 7);
  EXPECT_EQ(reelhost::projectStore().info().frameRate, first);
}

TEST_F(OpenProject, OptionThatHoldsNoRateIsIgnored)
{
  openMemory();
  const int first = reelhost::projectInfo().frameRate;
  EditManager::ProjOpts().set(reelhost::frameRateOption, "fast", nullptr);
  reelhost::commit();
  reopen();
  EXPECT_EQ(reelhost::projectInfo().frameRate, first);
}

// --- Other processes -----------------------------------------------------------------------------

class SharedProject : public HostTest {
protected:
  SharedProject()
  {
    reelhost::createSqliteProject(file_, info(), {});
    reelhost::setBusyTimeout(std::chrono::milliseconds(0));
  }
  ~SharedProject() override { reelhost::setBusyTimeout(std::chrono::seconds(2)); }

  void open(Access access = Access::Write) { reelhost::openProject(reelhost::makeSqliteStore(file_), access); }

  /// Stores a reel, as another process does.
  void storeElsewhere(std::int64_t number)
  {
    const auto other = reelhost::makeSqliteStore(file_);
    other->begin(Access::Write, std::chrono::milliseconds(0));
    reelhost::StoredLog log;
    log.number = number;
    log.uuid[0] = static_cast<unsigned char>(number);
    log.type = 9;
    Changes changes;
    changes.logs.push_back(log);
    other->commit(changes);
  }

  TempFolder folder_;
  const std::filesystem::path file_ = folder_.path() / "shared.reels";
};

TEST_F(SharedProject, AProjectThatIsOpenForWritingKeepsWritersAwayUntilItsCommit)
{
  open();
  addLog(9, "R1");
  EXPECT_EQ(errorOf([&] { storeElsewhere(7); }).substr(0, 5), "Busy:");
  reelhost::commit();
  storeElsewhere(7);
}

TEST_F(SharedProject, ChangeOnTopOfForeignOnesIsRefusedUntilTheProjectIsReadAgain)
{
  open();
  const Cookie log = addLog(9, "R1");
  reelhost::commit();
  storeElsewhere(7);
  const std::string changed =
      "Busy: " + file_.string() + ": changed by another process since it was read (read it again)";
  EXPECT_EQ(errorOf([&] { rename(log, "R2"); }), changed);
  EXPECT_EQ(errorOf([&] { rename(log, "R2"); }), changed); // and again
  EXPECT_EQ(reelIdOf(log), "R1");
  EXPECT_TRUE(reelhost::reloadIfChangedElsewhere());
  EXPECT_FALSE(reelhost::reloadIfChangedElsewhere());
  EXPECT_EQ(reels().count(), 2);
  rename(log, "R2");
  EXPECT_EQ(text(addLog(9, "R3")).substr(9), "00000008");
  EXPECT_TRUE(reelhost::commit());
  open();
  EXPECT_EQ(reels().count(), 3);
  EXPECT_EQ(reelIdOf(log), "R2");
}

TEST_F(SharedProject, WaitingProjectBlocksNobodyAndDetectsCommits)
{
  open();
  addLog(1, "R1");
  reelhost::commit();
  open(Access::Read);
  RecordingListener listener;
  reelhost::idle();
  EXPECT_FALSE(reelhost::reloadIfChangedElsewhere());
  storeElsewhere(7);
  EXPECT_EQ(reelhost::allShots().count(), 1); // read before it waited
  EXPECT_EQ(reels().count(), 0);
  EXPECT_TRUE(reelhost::reloadIfChangedElsewhere());
  EXPECT_EQ(reels().count(), 1);
  storeElsewhere(8); // reading it again does not block others either
  EXPECT_TRUE(reelhost::reloadIfChangedElsewhere());
  EXPECT_EQ(reels().count(), 2);
  EXPECT_TRUE(listener.heard.empty());
}

TEST_F(SharedProject, ShotsThatWereNotReadInTimeAreNotMixedIn)
{
  open();
  addLog(9, "R1");
  reelhost::commit();
  storeElsewhere(7);
  EXPECT_EQ(errorOf([] { reelhost::allShots(); }).substr(0, 5), "Busy:");
  EXPECT_TRUE(reelhost::reloadIfChangedElsewhere());
  EXPECT_EQ(reelhost::allShots().count(), 0);
}

TEST_F(SharedProject, CommitWithoutChangesLeavesTheStateThatIsRead)
{
  open();
  addLog(1, "R1");
  reelhost::commit();
  open(Access::Read);
  EXPECT_FALSE(reelhost::commit());
  storeElsewhere(7);
  EXPECT_EQ(reelhost::allShots().count(), 1); // read only now
}

TEST_F(SharedProject, ProjectThatCannotBeReadAgainStaysAsItWas)
{
  open(Access::Read);
  reelhost::idle();
  storeElsewhere(7);
  std::filesystem::rename(file_, folder_.path() / "away.reels");
  EXPECT_EQ(errorOf([] { reelhost::reloadIfChangedElsewhere(); }).substr(0, 9), "NotFound:");
  EXPECT_TRUE(reelhost::projectIsOpen());
  EXPECT_EQ(reels().count(), 0);
  std::filesystem::rename(folder_.path() / "away.reels", file_);
  EXPECT_TRUE(reelhost::reloadIfChangedElsewhere());
  EXPECT_EQ(reels().count(), 1);
}

TEST_F(SharedProject, AProjectThatIsReadSeesOneStateOfIt)
{
  open();
  const Cookie shot = addLog(1, "R1");
  reelhost::commit();
  open(Access::Read);
  storeElsewhere(7);
  EXPECT_EQ(reels().count(), 0);
  EXPECT_EQ(reelIdOf(shot), "R1");
}

} // namespace
