// SPDX-License-Identifier: Apache-2.0
//
// The library as it is before anything was asked of it. A program of its own: the first use comes once a process.
#include "MainThread.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

TEST(FirstUse, ShotsWithoutAnIdentifierMakeNoManager)
{
  reelhost::useFacility(reelhost::Facility());
  reelhost::openProject(reelhost::makeMemoryStore({}, {}), reelhost::Access::Write);
  reelhost::StoredLog reel;
  reel.type = 9;
  reelhost::addLog(reel);
  CookieVec shots;
  shots.add(reelhost::importMaterial({}));

  ReelDbManager own;
  own.buildReelList();
  ASSERT_EQ(1, own.reelList.count());
  EXPECT_EQ(0, own.getReelsReferenced(shots).count());
  EXPECT_EQ(nullptr, ReelDbManager::theReelDbManager_);
  reelhost::closeProject();
}

TEST(FirstUse, FirstClientMakesTheManagerWhichThenHearsTheHost)
{
  EXPECT_EQ(nullptr, ReelDbManager::theReelDbManager_);
  EXPECT_EQ(0, glib_pid);

  reelhost::startUp();
  EXPECT_NE(0, glib_pid);
  reelhost::useFacility(reelhost::Facility());
  reelhost::openProject(reelhost::makeMemoryStore({}, {{"reeldb_defaultType", ""}}), reelhost::Access::Write);
  reelhost::StoredLog log;
  log.type = 9;
  log.fields = {{"reelid", "R1"}};
  reelhost::addLog(log);
  EXPECT_EQ(nullptr, ReelDbManager::theReelDbManager_) << "the host makes none";

  Heard heard;
  reelhost::Journal& journal = reelhost::Journal::the();
  journal.record(true);
  RecordingClient client(heard);
  EXPECT_TRUE(journal.operations().empty()) << "a manager reads nothing when it is made";
  journal.record(false);

  ReelDbManager* const manager = ReelDbManager::theReelDbManager_;
  ASSERT_NE(nullptr, manager);
  EXPECT_EQ(manager, ReelDbManager::theReelDbManager());
  EXPECT_EQ(1U, manager->clients.count());
  EXPECT_EQ(0, manager->reelList.count());
  EXPECT_FALSE(manager->lastProject.valid());
  EXPECT_FALSE(manager->doesReelExist("R1"));

  manager->informReelDbChanged("R1");
  EXPECT_EQ(heard, (Heard{"dbC(R1)"}));
  EXPECT_TRUE(manager->doesReelExist("R1"));

  reelhost::openProject(reelhost::makeMemoryStore({}), reelhost::Access::Write);
  EXPECT_EQ(heard, (Heard{"dbC(R1)", "dbC()"}));
  EXPECT_FALSE(manager->doesReelExist("R1"));
  reelhost::closeProject();
}

} // namespace reeldb_tests
