// SPDX-License-Identifier: Apache-2.0
#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using Texts = std::vector<std::string>;

class DeletionTest : public HostTest {
protected:
  DeletionTest() { openMemory(); }
  static CookieVec these(std::initializer_list<Cookie> cookies)
  {
    CookieVec all;
    for (const Cookie& cookie : cookies)
      all.add(cookie);
    return all;
  }
  void storeAndReopen()
  {
    reelhost::commit();
    reopen();
  }
};

TEST_F(DeletionTest, DeletedLogsAreGoneAndListenersAreNotified)
{
  const Cookie reel = addLog(9, "R1"), shot = addLog(1, "R1"), other = addLog(9, "R2");
  RecordingListener listener;
  EXPECT_EQ(reelhost::deleteLogs(these({reel, shot, Cookie(), reel})), 2);
  EXPECT_EQ(listener.heard, Texts{"deleted 2 \"\""});
  EXPECT_FALSE(opens(reel));
  EXPECT_FALSE(opens(shot));
  EXPECT_EQ((*EditManager::getProjdb())[shot], nullptr);
  EXPECT_EQ(typeNameOf(reel), "<no row>");
  EXPECT_EQ(texts(reels()), texts(these({other})));
  EXPECT_EQ(shotsOf("R1").count(), 0);
  EXPECT_EQ(reelhost::allShots().count(), 0);
  storeAndReopen();
  EXPECT_EQ(texts(reels()), texts(these({other})));
  EXPECT_EQ(reelhost::allShots().count(), 0);
}

TEST_F(DeletionTest, EmptyDeletionIsNeitherNotifiedNorStored)
{
  reelhost::commit();
  RecordingListener listener;
  EXPECT_EQ(reelhost::deleteLogs(these({Cookie()})), 0);
  EXPECT_TRUE(listener.heard.empty());
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(DeletionTest, UndeleteBringsThemBackAsTheyWere)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2"), third = addLog(9, "R3");
  const Cookie shot = addLog(1, "R2");
  withLog(second, [](Edit& edit) {
    edit.reelType("Tape");
    edit.config().set("k", "v", nullptr);
  });
  storeAndReopen();
  reelhost::deleteLogs(these({second, shot}));
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 2);
  EXPECT_EQ(texts(reels()), texts(these({first, second, third})));
  EXPECT_EQ(typeNameOf(second), "Tape");
  EXPECT_EQ(texts(shotsOf("R2")), texts(these({shot})));
  EXPECT_TRUE(reelhost::hasChanges());
  storeAndReopen();
  EXPECT_EQ(texts(reels()), texts(these({first, second, third})));
  EXPECT_EQ(fieldOf(second, "k"), "v");
  EXPECT_EQ(reelhost::undelete(), 0);
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(DeletionTest, UndeleteThatIsNotStoredBringsNothingBack)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  reelhost::deleteLogs(these({reel}));
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 1);
  reopen();
  EXPECT_EQ(reels().count(), 0);
  EXPECT_EQ(reelhost::undelete(), 1);
}

TEST_F(DeletionTest, DeletionsComeBackLastOneFirst)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  reelhost::commit();
  reelhost::deleteLogs(these({first}));
  reelhost::commit();
  reelhost::deleteLogs(these({second}));
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 1);
  EXPECT_EQ(texts(reels()), texts(these({second})));
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 1);
  EXPECT_EQ(texts(reels()), texts(these({first, second})));
}

TEST_F(DeletionTest, WhatWasNeverStoredCanBeBroughtBackToo)
{
  const Cookie fresh = addLog(9, "NEW"), old = addLog(9, "OLD");
  reelhost::commit();
  rename(old, "CHANGED");
  const Cookie fresher = addLog(9, "NEWER");
  reelhost::deleteLogs(these({old, fresher}));
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 2);
  EXPECT_EQ(texts(reels()), texts(these({fresh, old, fresher})));
  EXPECT_EQ(reelIdOf(old), "CHANGED");
  EXPECT_EQ(reelIdOf(fresher), "NEWER");
}

TEST_F(DeletionTest, WhatCameBackMayBeChangedAndDeletedAgain)
{
  const Cookie reel = addLog(9, "R1"), other = addLog(9, "R2");
  reelhost::commit();
  reelhost::deleteLogs(these({reel, other}));
  reelhost::commit();
  reelhost::undelete();
  rename(reel, "BACK");
  reelhost::deleteLogs(these({other}));
  storeAndReopen();
  EXPECT_EQ(texts(reels()), texts(these({reel})));
  EXPECT_EQ(reelIdOf(reel), "BACK");
  EXPECT_EQ(reelhost::undelete(), 1);
  EXPECT_EQ(texts(reels()), texts(these({reel, other})));
}

TEST_F(DeletionTest, CompactEmptiesTheTrashForGood)
{
  const Cookie first = addLog(9, "R1"), second = addLog(1, "R1");
  reelhost::commit();
  reelhost::deleteLogs(these({first}));
  reelhost::commit();
  reelhost::deleteLogs(these({second}));
  reelhost::commit();
  EXPECT_EQ(reelhost::compact().logs, 2);
  storeAndReopen();
  EXPECT_EQ(reelhost::undelete(), 0);
  EXPECT_EQ(reelhost::compact().logs, 0);
  EXPECT_FALSE(reelhost::hasChanges());
}

// The store makes one change of its trash per commit, and its last deletion is the last stored one.
TEST_F(DeletionTest, TheBinWaitsForWhatIsNotStoredYet)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  reelhost::commit();
  reelhost::deleteLogs(these({first}));
  const std::string waits = " (a deletion or an undeletion is not stored yet)";
  EXPECT_EQ(errorOf([] { reelhost::undelete(); }), "Refused: memory: cannot undelete" + waits);
  EXPECT_EQ(errorOf([] { reelhost::compact(); }), "Refused: memory: cannot empty the trash" + waits);
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 1);
  EXPECT_EQ(errorOf([] { reelhost::undelete(); }), "Refused: memory: cannot undelete" + waits);
  EXPECT_EQ(errorOf([] { reelhost::compact(); }), "Refused: memory: cannot empty the trash" + waits);
  reelhost::deleteLogs(these({second}));
  storeAndReopen();
  EXPECT_EQ(texts(reels()), texts(these({first})));
}

TEST_F(DeletionTest, DeletionMayBeTriedOutForReading)
{
  const Cookie reel = addLog(9, "R1");
  reelhost::commit();
  reopen(reelhost::Access::Read);
  EXPECT_EQ(reelhost::deleteLogs(these({reel})), 1);
  EXPECT_EQ(reels().count(), 0);
  reopen(reelhost::Access::Read);
  EXPECT_EQ(reels().count(), 1);
}

TEST_F(DeletionTest, AnOpenLogThatIsDeletedTakesNoFurtherPart)
{
  const Cookie shot = addLog(1, "R1");
  reelhost::commit();
  shotsOf("R1");
  EditPtr handle;
  handle.i_open(shot, codes::openAsUsual);
  reelhost::deleteLogs(these({shot}));
  handle->set_reelid(0, "R2");
  handle->redetermineLogType();
  handle.i_close();
  EXPECT_EQ(shotsOf("R2").count(), 0);
  EXPECT_EQ(reels().count(), 0);
  reelhost::commit();
  EXPECT_EQ(reelhost::undelete(), 1);
  EXPECT_EQ(reelIdOf(shot), "R1");
}

} // namespace
