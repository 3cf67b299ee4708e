// SPDX-License-Identifier: Apache-2.0
#include "standalone/model/host_test.h"

#include "standalone/model/forwarding_store.h"

namespace {

using namespace reeldb_tests;
using reelhost::KeptList;
using reelhost::ListEvent;
using Lines = std::vector<int>;
using Texts = std::vector<std::string>;

class ListsTest : public HostTest {
protected:
  ListsTest() { openMemory(); }

  /// Keeps a list with an event on line 10, 20, 30 ... for each shot.
  static std::int64_t keep(const std::string& file, const std::vector<Cookie>& shots, std::int64_t number = 0)
  {
    KeptList list;
    list.number = number;
    list.file = file;
    list.format = "edl";
    for (const Cookie& shot : shots) {
      ListEvent& event = list.events.emplace_back();
      event.shot = reelhost::logNumber(shot);
      event.line = 10 * static_cast<int>(list.events.size());
      event.clip.name = "clip";
    }
    list.digest = reelhost::digestOf("bytes of " + file);
    return reelhost::keepList(std::move(list), "bytes of " + file);
  }
  static void remove(const std::vector<Cookie>& logs)
  {
    CookieVec all;
    for (const Cookie& log : logs)
      all.add(log);
    reelhost::deleteLogs(all);
  }
  /// The files of the kept lists.
  static Texts files()
  {
    Texts files;
    for (const KeptList& list : reelhost::keptLists())
      files.push_back(list.file);
    return files;
  }
  static Lines lines(std::int64_t list)
  {
    Lines lines;
    for (const ListEvent& event : reelhost::eventsOfList(list))
      lines.push_back(event.line);
    return lines;
  }
};

TEST_F(ListsTest, KeptListIsThereBeforeAndAfterItIsStored)
{
  const Cookie shot = addLog(1, "R1");
  EXPECT_EQ(keep("a.edl", {shot, shot}), 1);
  EXPECT_EQ(keep("b.edl", {shot}), 2);
  for (int pass = 0; pass < 2; ++pass) {
    EXPECT_EQ(files(), (Texts{"a.edl", "b.edl"}));
    const KeptList list = reelhost::keptLists().at(0);
    EXPECT_EQ(list.eventCount, 2);
    EXPECT_EQ(list.digest, reelhost::digestOf("bytes of a.edl"));
    EXPECT_EQ(reelhost::bytesOfList(list.digest), "bytes of a.edl");
    EXPECT_EQ(lines(1), (Lines{10, 20}));
    EXPECT_EQ(reelhost::eventsOfList(1).at(0).shot, reelhost::logNumber(shot));
    reelhost::commit();
    EXPECT_FALSE(reelhost::hasChanges());
    reopen();
  }
  EXPECT_EQ(keep("c.edl", {}), 3);
}

TEST_F(ListsTest, NewVersionTakesThePlaceOfTheList)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot});
  reelhost::commit();
  EXPECT_EQ(keep("a2.edl", {shot, shot}, 1), 1);
  EXPECT_EQ(files(), Texts{"a2.edl"});
  reelhost::commit();
  EXPECT_EQ(files(), Texts{"a2.edl"});
  EXPECT_EQ(lines(1), (Lines{10, 20}));
}

TEST_F(ListsTest, RemovedListIsGoneAndItsShotStays)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot});
  reelhost::commit();
  reelhost::removeList(1);
  for (int pass = 0; pass < 2; ++pass) {
    EXPECT_EQ(files(), Texts{});
    EXPECT_EQ(errorOf([] { reelhost::eventsOfList(1); }), "NotFound: memory: no list 1");
    reelhost::commit();
  }
  EXPECT_TRUE(opens(shot));
}

TEST_F(ListsTest, CompactRemovesARemovedListForGood)
{
  keep("a.edl", {});
  reelhost::commit();
  const reelhost::Digest digest = reelhost::keptLists().at(0).digest;
  reelhost::removeList(1);
  reelhost::commit();
  EXPECT_EQ(reelhost::bytesOfList(digest), "bytes of a.edl");
  EXPECT_EQ(reelhost::compact().lists, 1);
  reelhost::commit();
  EXPECT_EQ(errorOf([&] { reelhost::bytesOfList(digest); }), "NotFound: memory: no list with these bytes");
  EXPECT_EQ(reelhost::compact().lists, 0);
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(ListsTest, UnstoredListIsGoneWhenTheProjectIsClosed)
{
  keep("a.edl", {addLog(1, "R1")});
  reopen();
  EXPECT_EQ(files(), Texts{});
}

TEST_F(ListsTest, NumberOfALogThatDoesNotExistIsZero)
{
  EXPECT_EQ(reelhost::logNumber(Cookie()), 0);
  const Cookie log = addLog(1, "R1");
  EXPECT_EQ(reelhost::logNumber(log), 1);
  remove({log});
  EXPECT_EQ(reelhost::logNumber(log), 0);
}

TEST_F(ListsTest, DeletedShotTakesItsEventsAlongAndUndeleteBringsThemBack)
{
  const Cookie one = addLog(1, "R1"), two = addLog(1, "R2");
  keep("a.edl", {one, two, one});
  keep("b.edl", {two});
  reelhost::commit();
  remove({one});
  reelhost::commit();
  EXPECT_EQ(lines(1), Lines{20});
  EXPECT_EQ(reelhost::keptLists().at(0).eventCount, 1);
  EXPECT_EQ(lines(2), Lines{10});
  reelhost::undelete();
  reelhost::commit();
  EXPECT_EQ(lines(1), (Lines{10, 20, 30}));
  EXPECT_TRUE(opens(one));
}

TEST_F(ListsTest, UndeleteWaitsForAListThatIsNotStoredYet)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot});
  reelhost::commit();
  remove({shot});
  reelhost::commit();
  keep("b.edl", {}, 1);
  EXPECT_EQ(errorOf([] { reelhost::undelete(); }),
            "Refused: memory: cannot undelete (a change of a list is not stored yet)");
  EXPECT_EQ(files(), Texts{"b.edl"});
}

TEST_F(ListsTest, EventsOfEachOfTwoDeletionsComeBackByThemselves)
{
  const Cookie one = addLog(1, "R1"), two = addLog(1, "R2"), three = addLog(1, "R3");
  keep("a.edl", {one, two, three, one});
  reelhost::commit();
  remove({one});
  reelhost::commit();
  remove({two});
  reelhost::commit();
  EXPECT_EQ(lines(1), Lines{30});
  const reelhost::TakenBack done = reelhost::takeBack(2);
  EXPECT_EQ(done.lists, 1);
  EXPECT_EQ(lines(1), (Lines{10, 30, 40})); // before it is stored, too
  reelhost::commit();
  EXPECT_EQ(lines(1), (Lines{10, 30, 40}));
  reelhost::takeBack(3);
  reelhost::commit();
  EXPECT_EQ(lines(1), (Lines{10, 20, 30, 40}));
}

TEST_F(ListsTest, ImportTakenBackAndMadeAgain)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot});
  reelhost::commit();
  reelhost::takeBack(1);
  EXPECT_EQ(files(), Texts{});
  reelhost::commit();
  EXPECT_EQ(files(), Texts{});
  EXPECT_FALSE(opens(shot));
  reelhost::takeBack(2);
  reelhost::commit();
  EXPECT_EQ(files(), Texts{"a.edl"});
  EXPECT_EQ(lines(1), Lines{10});
  EXPECT_TRUE(opens(shot));
  EXPECT_EQ(reelhost::bytesOfList(reelhost::keptLists().at(0).digest), "bytes of a.edl");
}

TEST_F(ListsTest, ListAloneIsTakenBack)
{
  const Cookie shot = addLog(1, "R1");
  reelhost::commit();
  keep("a.edl", {shot});
  reelhost::commit();
  const reelhost::TakenBack done = reelhost::takeBack(2);
  EXPECT_EQ(done.lists, 1);
  EXPECT_TRUE(done.anything());
  reelhost::commit();
  EXPECT_EQ(files(), Texts{});
  EXPECT_TRUE(opens(shot));
}

TEST_F(ListsTest, NewVersionTakenBackIsTheOldOneAgain)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot, shot});
  reelhost::commit();
  keep("b.edl", {shot}, 1);
  reelhost::commit();
  reelhost::takeBack(2);
  reelhost::commit();
  EXPECT_EQ(files(), Texts{"a.edl"});
  EXPECT_EQ(lines(1), (Lines{10, 20}));
  EXPECT_EQ(reelhost::bytesOfList(reelhost::keptLists().at(0).digest), "bytes of a.edl");
}

TEST_F(ListsTest, ShotThatALaterListUsesIsNotTakenBack)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot});
  reelhost::commit();
  keep("b.edl", {shot});
  reelhost::commit();
  EXPECT_EQ(errorOf([] { reelhost::takeBack(1); }),
            "Refused: b.edl: line 10 would lose its shot (remove this list first)");
  EXPECT_FALSE(reelhost::hasChanges());
  EXPECT_EQ(files(), (Texts{"a.edl", "b.edl"}));
}

TEST_F(ListsTest, ListWhoseShotIsGoneDoesNotComeBack)
{
  const Cookie shot = addLog(1, "R1");
  reelhost::commit();
  keep("a.edl", {shot});
  reelhost::commit();
  reelhost::removeList(1);
  reelhost::commit();
  remove({shot});
  reelhost::commit();
  EXPECT_EQ(errorOf([] { reelhost::takeBack(3); }),
            "Refused: a.edl: line 10 names a shot that is gone (import the list again)");
}

TEST_F(ListsTest, ChangedListIsNotTakenBack)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {shot});
  reelhost::commit();
  keep("b.edl", {shot, shot}, 1);
  reelhost::commit();
  EXPECT_EQ(errorOf([] { reelhost::takeBack(1); }),
            "Refused: b.edl: changed since revision 1 (by revision 2, take that one back first)");
  reelhost::removeList(1);
  reelhost::commit();
  EXPECT_EQ(errorOf([] { reelhost::takeBack(2); }),
            "Refused: b.edl: removed since revision 2 (by revision 3, take that one back first)");
}

TEST_F(ListsTest, EventsWithoutAShotStayInTheList)
{
  const Cookie shot = addLog(1, "R1");
  keep("a.edl", {Cookie(), shot});
  reelhost::commit();
  remove({shot});
  reelhost::commit();
  EXPECT_EQ(lines(1), Lines{10});
  reelhost::takeBack(2);
  reelhost::commit();
  EXPECT_EQ(lines(1), (Lines{10, 20}));
}

class StoreWithoutLists final : public ForwardingStore {
public:
  using ForwardingStore::ForwardingStore;
  reelhost::Lists* lists() override { return nullptr; }
};

TEST_F(ListsTest, StoreWithListsSaysSo)
{
  EXPECT_TRUE(reelhost::keepsLists());
}

TEST_F(ListsTest, StoreWithoutListsSaysSo)
{
  reelhost::openProject(std::make_unique<StoreWithoutLists>(kept()), reelhost::Access::Write);
  const Cookie shot = addLog(1, "R1");
  EXPECT_FALSE(reelhost::keepsLists());
  EXPECT_EQ(files(), Texts{});
  EXPECT_EQ(errorOf([&] { keep("a.edl", {shot}); }), "Refused: memory: this project keeps no lists");
  EXPECT_EQ(errorOf([] { reelhost::removeList(1); }), "Refused: memory: this project keeps no lists");
  reelhost::commit();
  remove({shot});
  EXPECT_TRUE(reelhost::commit());
}

TEST_F(ListsTest, WithoutAProjectThereAreNoLists)
{
  reelhost::closeProject();
  EXPECT_FALSE(reelhost::keepsLists());
  EXPECT_EQ(files(), Texts{});
  EXPECT_EQ(errorOf([] { reelhost::eventsOfList(1); }), "Refused: list: no project is open");
}

} // namespace
