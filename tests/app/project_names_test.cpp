// SPDX-License-Identifier: Apache-2.0
//
// The reels of names in a project, by importing lists: what a list says of a name may change the reels of earlier ones.
#include <algorithm>
#include <optional>

#include "app/diff.h"
#include "app/history.h"
#include "app/import.h"
#include "app/needs.h"
#include "app/projects.h"
#include "app/reels.h"
#include "app/rename.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Names = std::vector<std::string>;

/// An event of a list with eight characters of reel, or with 32 if the reel is longer.
struct Event {
  std::string reel;
  std::string clip = {};
  std::string sourceFile = {};
};

class ProjectNames : public reeldb_tests::AppTest {
protected:
  app::ListFile list(const std::vector<Event>& events)
  {
    std::size_t width = 8;
    for (const Event& event : events)
      width = event.reel.size() > width ? 32 : width;
    std::string text = "TITLE: X\n";
    for (std::size_t i = 0; i < events.size(); ++i) {
      std::string reel = events[i].reel;
      reel.resize(width, ' ');
      const std::string second = std::to_string(10 + i);
      text += "00" + std::to_string(i + 1) + "  " + reel + " V     C        01:00:" + second + ":00 01:00:" + second +
              ":10 10:00:" + second + ":00 10:00:" + second + ":10\n";
      if (!events[i].clip.empty())
        text += "* FROM CLIP NAME: " + events[i].clip + "\n";
      if (!events[i].sourceFile.empty())
        text += "* SOURCE FILE: " + events[i].sourceFile + "\n";
    }
    return app::readListFile(folder_.write("list" + std::to_string(++lists_) + ".edl", text));
  }

  app::ImportReport importList(const std::vector<Event>& events, const std::optional<std::string>& project = {})
  {
    app::Session session(project, app::Access::Write);
    return app::importLists(session, {list(events)}, false);
  }

  /// "REEL 3" for each reel, sorted.
  static Names reelsWithShots(const std::optional<std::string>& project = {})
  {
    app::Session session(project, app::Access::Read);
    Names reels;
    for (const app::Reel& reel : app::listReels(session))
      reels.push_back(reel.id + " " + std::to_string(reel.shots));
    std::sort(reels.begin(), reels.end());
    return reels;
  }

  std::size_t lists_ = 0;
};

const std::string whole = "A001C001_200303_F701", other = "A001C001_200303_G802", cut = "A001C001";

TEST_F(ProjectNames, CutListBehindItsWholeListAddsNothing)
{
  importList({{whole, "one"}, {"B002", "two"}});
  const app::ImportReport report = importList({{cut, "one"}, {"B002", "two"}});
  EXPECT_EQ(report.lists.front().shotsAdded, 0u);
  EXPECT_EQ(report.lists.front().created, Names{});
  EXPECT_EQ(reelsWithShots(), (Names{whole + " 1", "B002 1"}));
  ASSERT_EQ(report.lists.front().names.size(), 2u);
  EXPECT_EQ(report.lists.front().names.front().reel, whole);
  EXPECT_EQ(report.lists.front().names.front().match, lists::Match::Cut);
}

TEST_F(ProjectNames, CutListBeforeItsWholeListGivesTheSame)
{
  importList({{cut, "one"}, {"B002", "two"}});
  const app::ImportReport report = importList({{whole, "one"}, {"B002", "two"}});
  EXPECT_EQ(reelsWithShots(), (Names{whole + " 1", "B002 1"}));
  ASSERT_EQ(report.moves.size(), 1u);
  EXPECT_EQ(report.moves.front().from, cut);
  EXPECT_EQ(report.moves.front().to, whole);
  EXPECT_EQ(report.moves.front().shots, 1u);
}

TEST_F(ProjectNames, CutNameOfTwoReelsIsAReelOfItsOwn)
{
  importList({{whole, "one"}, {other, "two"}});
  const app::ImportReport report = importList({{cut, "three"}});
  EXPECT_EQ(reelsWithShots(), (Names{cut + " 1", whole + " 1", other + " 1"}));
  EXPECT_EQ(report.lists.front().names.front().perhaps, (Names{whole, other}));
}

TEST_F(ProjectNames, ShotsOfACutNameThatIsNoLongerClearGoToAReelOfTheirOwn)
{
  importList({{whole, "one"}});
  importList({{cut, "three"}});
  EXPECT_EQ(reelsWithShots(), Names{whole + " 2"});
  const app::ImportReport report = importList({{other, "two"}});
  EXPECT_EQ(reelsWithShots(), (Names{cut + " 1", whole + " 1", other + " 1"}));
  ASSERT_EQ(report.moves.size(), 1u);
  EXPECT_EQ(report.moves.front().from, whole);
  EXPECT_EQ(report.moves.front().to, cut);
}

TEST_F(ProjectNames, EveryOrderGivesTheSameReels)
{
  std::vector<std::vector<Event>> lists = {
      {{cut, "three"}}, {{whole, "one"}}, {{other, "two"}}, {{"A001C001_200303_", "four"}}};
  std::vector<std::size_t> order = {0, 1, 2, 3};
  Names first;
  int orders = 0;
  do {
    const std::string project = "order" + std::to_string(++orders);
    app::makeProject(project, "25");
    for (const std::size_t i : order)
      importList(lists[i], project);
    if (first.empty())
      first = reelsWithShots(project);
    EXPECT_EQ(reelsWithShots(project), first) << order[0] << order[1] << order[2] << order[3];
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(ProjectNames, FilesOfTwoKindsAreTwoReels)
{
  importList({{"X", "one", "X.MOV"}, {"X", "two"}});
  EXPECT_EQ(reelsWithShots(), Names{"X 2"});
  importList({{"X", "three", "X.WAV"}});
  EXPECT_EQ(reelsWithShots(), (Names{"X 1", "X.MOV 1", "X.WAV 1"}));
}

TEST_F(ProjectNames, SameNameInAnotherSpellingIsTheReelThatCameFirst)
{
  importList({{"BOONE SMITH ON CAMERA", "one"}});
  importList({{"Boone_Smith_on_camera", "two"}});
  EXPECT_EQ(reelsWithShots(), Names{"BOONE SMITH ON CAMERA 2"});
}

TEST_F(ProjectNames, OldNameOfARenamedReelMeansTheNewOne)
{
  importList({{"SR018", "one"}, {cut, "two"}});
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "SR018", "SR018B", false);
    app::renameReel(session, cut, "KITCHEN", false);
  }
  const app::ImportReport report = importList({{"SR018", "one"}, {cut, "two"}});
  EXPECT_EQ(report.lists.front().shotsAdded, 0u);
  EXPECT_EQ(report.lists.front().names.front().match, lists::Match::Decided);
  EXPECT_EQ(reelsWithShots(), (Names{"KITCHEN 1", "SR018B 1"}));
}

TEST_F(ProjectNames, UndoTakesMovesBack)
{
  importList({{cut, "one"}});
  importList({{whole, "two"}});
  EXPECT_EQ(reelsWithShots(), Names{whole + " 2"});
  {
    app::Session session({}, app::Access::Write);
    app::undo(session, {}, false);
  }
  EXPECT_EQ(reelsWithShots(), Names{cut + " 1"});
}

TEST_F(ProjectNames, NeedsAndDifferencesKnowTheReelOfACutName)
{
  importList({{whole, "one"}});
  const app::ListFile cutList = list({{cut, "one"}});
  app::Session session({}, app::Access::Read);
  const std::vector<app::Need> needs = app::needsOfList(session, cutList.list);
  ASSERT_EQ(needs.size(), 1u);
  EXPECT_EQ(needs.front().id, whole);
  EXPECT_TRUE(needs.front().reel);
  EXPECT_TRUE(app::compareLists(session, {cutList}, false).empty());
}

} // namespace
