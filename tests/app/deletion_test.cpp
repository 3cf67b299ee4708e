// SPDX-License-Identifier: Apache-2.0
#include "app/deletion.h"

#include <functional>

#include "app/history.h"
#include "app/import.h"
#include "app/kept_lists.h"
#include "app/list_files.h"
#include "reelhost/journal.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Names = std::vector<std::string>;

class Deletion : public reeldb_tests::AppTest {
protected:
  void SetUp() override
  {
    AppTest::SetUp();
    import({"A001", "B002", "A001"});
  }

  static app::DeletionPlan plan(const Names& reels, const Names& keep = {})
  {
    app::Session session({}, app::Access::Read);
    return app::planDeletion(session, reels, keep);
  }
};

TEST_F(Deletion, PlanShowsWhatIsDeletedAndChangesNothing)
{
  const app::DeletionPlan found = plan({"a001", "A001"});
  ASSERT_EQ(found.items.size(), 1u);
  EXPECT_EQ(found.items.front().reel, "A001");
  EXPECT_EQ(found.items.front().shots.size(), 2u);
  EXPECT_EQ(found.reelCount(), 1u);
  EXPECT_EQ(found.shotCount(), 2u);
  EXPECT_EQ(reelIds(), (Names{"A001", "B002"}));
}

TEST_F(Deletion, KeptReelStaysWithItsShots)
{
  const app::DeletionPlan found = plan({"A001", "B002"}, {"B002"});
  EXPECT_EQ(found.reelCount(), 1u);
  EXPECT_TRUE(found.items.back().kept);
  {
    app::Session session({}, app::Access::Write);
    app::carryOut(session, found);
  }
  EXPECT_EQ(reelIds(), Names{"B002"});
}

TEST_F(Deletion, PlanIsRefusedWhenTheProjectHasMovedOn)
{
  const app::DeletionPlan found = plan({"B002"});
  import({"C003", "C004", "C005", "B002"}); // one more shot of B002
  {
    app::Session session({}, app::Access::Write);
    const app::Error error = errorOf([&] { app::carryOut(session, found); });
    EXPECT_EQ(error.kind(), app::ErrorKind::Refused);
    EXPECT_STREQ(error.what(), "delete: nothing deleted (the project was changed before the deletion was confirmed)");
  }
  EXPECT_EQ(reelIds(), (Names{"A001", "B002", "C003", "C004", "C005"}));
}

TEST_F(Deletion, DeletingAtOnceLooksItsPlanUpOnce)
{
  const auto openings = [](const std::function<void(app::Session&)>& work) {
    app::Session session({}, app::Access::Write);
    reelhost::Script::the().reset();
    work(session);
    return reelhost::Script::the().openings();
  };
  const auto planning = openings([](app::Session& session) { app::planDeletion(session, {"A001"}, {"B002"}); });
  app::DeletionPlan gone;
  const auto deleting = openings([&](app::Session& session) { gone = app::deleteReels(session, {"A001"}, {"B002"}); });
  EXPECT_EQ(gone.shotCount(), 2u);
  EXPECT_EQ(reelIds(), Names{"B002"});
  EXPECT_GT(planning, 0);
  // Beyond the plan, the library looks at the reel twice and at each shot once.
  EXPECT_EQ(deleting, planning + 4);
}

TEST_F(Deletion, UndeleteBringsReelsAndShotsBack)
{
  {
    app::Session session({}, app::Access::Write);
    app::carryOut(session, app::planDeletion(session, {"A001"}, {}));
  }
  EXPECT_EQ(reelIds(), Names{"B002"});
  app::Session session({}, app::Access::Write);
  const app::Undeleted back = app::undelete(session);
  EXPECT_EQ(back.reels, Names{"A001"});
  EXPECT_EQ(back.shots, 2u);
  EXPECT_EQ(errorOf([&] { app::undelete(session); }).kind(), app::ErrorKind::Refused);
}

TEST_F(Deletion, UnknownReelIsNamed)
{
  const app::Error error = errorOf([] { plan({"A-001"}); });
  EXPECT_EQ(error.kind(), app::ErrorKind::NotFound);
  EXPECT_STREQ(error.what(), "A-001: no such reel (but there is A001)");
}

TEST_F(Deletion, UndeleteLeavesReplacedAndRemovedListsAlone)
{
  {
    app::Session session({}, app::Access::Write);
    app::deleteReels(session, {"A001"}, {});
  }
  const auto importList = [&](const Names& reels, bool replacing) {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(cutList("cut.edl", reels))}, false, {}, {.byName = replacing});
  };
  importList({"C001", "D001"}, false);
  importList({"C001"}, true); // in its place: the shot of D001 goes with its reel
  {
    app::Session session({}, app::Access::Write);
    app::removeList(session, "cut.edl", false);
  }
  {
    app::Session session({}, app::Access::Read);
    const std::vector<app::KeptDeletion> deletions = app::keptDeletions(session);
    ASSERT_EQ(deletions.size(), 1u);
    EXPECT_EQ(deletions[0].reels, Names{"A001"});
  }
  app::Session session({}, app::Access::Write);
  EXPECT_EQ(app::undelete(session).reels, Names{"A001"});
  EXPECT_EQ(errorOf([&] { app::undelete(session); }).kind(), app::ErrorKind::Refused);
  EXPECT_EQ(app::keptLists(session).size(), 1u); // of the fixture
}

} // namespace
