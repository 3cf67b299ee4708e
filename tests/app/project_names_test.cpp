// SPDX-License-Identifier: Apache-2.0
//
// The reels of names in a project, by importing lists: what a list says of a name may change the reels of earlier ones.
#include <algorithm>
#include <numeric>
#include <optional>

#include "app/diff.h"
#include "app/history.h"
#include "app/import.h"
#include "app/needs.h"
#include "app/projects.h"
#include "app/reels.h"
#include "app/rename.h"
#include "app/shots.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Names = std::vector<std::string>;

/// An event of a list with eight characters of reel, or with 32 if the reel is longer.
struct Event {
  std::string reel;
  std::string clip = {};
  std::string sourceFile = {};
  std::string sourceId = {}; ///< for a row of the source table
  int second = 0;            ///< of its timecodes; 0: the place in its list decides
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
      const std::string second = std::to_string(events[i].second != 0 ? events[i].second : 10 + static_cast<int>(i));
      text += "00" + std::to_string(i + 1) + "  " + reel + " V     C        01:00:" + second + ":00 01:00:" + second +
              ":10 10:00:" + second + ":00 10:00:" + second + ":10\n";
      if (!events[i].clip.empty())
        text += "* FROM CLIP NAME: " + events[i].clip + "\n";
      if (!events[i].sourceFile.empty())
        text += "* SOURCE FILE: " + events[i].sourceFile + "\n";
    }
    for (const Event& event : events)
      if (!event.sourceId.empty())
        text += ">>> SOURCE " + event.reel + " " + event.reel + " " + event.sourceId + "\n";
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

  /// Expects the same reels with the same numbers of shots in every order of the lists. Returns them.
  Names reelsInEveryOrder(const std::vector<std::vector<Event>>& lists)
  {
    std::vector<std::size_t> order(lists.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    Names first;
    do {
      const std::string project = "order" + std::to_string(++orders_);
      app::makeProject(project, "25");
      for (const std::size_t i : order)
        importList(lists[i], project);
      const Names reels = reelsWithShots(project);
      if (first.empty())
        first = reels;
      EXPECT_EQ(reels, first) << testing::PrintToString(order);
      for (const std::size_t i : order)
        EXPECT_EQ(importList(lists[i], project).lists.front().shotsAdded, 0u) << testing::PrintToString(order);
      EXPECT_EQ(reelsWithShots(project), first) << "again: " << testing::PrintToString(order);
    } while (std::next_permutation(order.begin(), order.end()));
    return first;
  }

  /// The clip names of the shots of the reel.
  static Names clipsOf(const std::string& reel)
  {
    app::Session session({}, app::Access::Read);
    Names clips;
    for (const auto& [number, shot] : app::shotsOfReel(session, reel).shots)
      clips.push_back(shot.clipName);
    return clips;
  }

  std::size_t lists_ = 0;
  int orders_ = 0;
};

const std::string whole = "A001C001_200303_F701", other = "A001C001_200303_G802", cut = "A001C001";
const std::string umid1 = "060a2b340101010501010d43130000001111111111111111111111111111111111",
                  umid2 = "060a2b340101010501010d43130000002222222222222222222222222222222222";

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
  EXPECT_EQ(reelsInEveryOrder({{{cut, "three"}}, {{whole, "one"}}, {{other, "two"}}, {{"A001C001_200303_", "four"}}}),
            (Names{"A001C001 1", "A001C001_200303_ 1", whole + " 1", other + " 1"}));
}

TEST_F(ProjectNames, ShotOfAWholeAndACutNameBecomesTwoWhenTheCutNameIsNoLongerClear)
{
  EXPECT_EQ(reelsInEveryOrder({{{cut, "one"}}, {{whole, "one"}}, {{other, "two"}}}),
            (Names{cut + " 1", whole + " 1", other + " 1"}));
}

TEST_F(ProjectNames, OneNameWithTwoSourceIdsIsTwoReelsInEveryOrder)
{
  EXPECT_EQ(reelsInEveryOrder({{{"X", "one", {}, umid1}}, {{"X", "one", {}, umid2}}}),
            (Names{"X " + umid1 + " 1", "X " + umid2 + " 1"}));
}

TEST_F(ProjectNames, SourceIdThatJoinsTwoReelsMakesTheirSameShotsOneUnderTheFirstName)
{
  const std::vector<Event> p = {{"P", "one", {}, {}, 27}}, q = {{"Q", "one", {}, {}, 27}},
                           both = {{"P", "two", {}, umid1}, {"Q", "three", {}, umid1}};
  for (const auto& event : {p, q, both})
    importList(event);
  EXPECT_EQ(reelsWithShots(), Names{"P 3"});
  app::makeProject("second", "25");
  for (const auto& event : {q, both, p})
    importList(event, "second");
  EXPECT_EQ(reelsWithShots("second"), Names{"Q 3"});
}

TEST_F(ProjectNames, ShotThatIsPartedKeepsItsListsAndUndoTakesThatBack)
{
  importList({{whole, "one"}});
  const app::ListFile cutList = list({{cut, "one"}});
  {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {cutList}, false);
  }
  const app::ImportReport report = importList({{other, "two"}});
  ASSERT_EQ(report.moves.size(), 1u);
  EXPECT_EQ(report.moves.front().from, whole);
  EXPECT_EQ(report.moves.front().to, cut);
  EXPECT_EQ(clipsOf(cut), Names{"one"});
  {
    app::Session session({}, app::Access::Read);
    EXPECT_TRUE(app::compareLists(session, {cutList}, false).empty());
  }
  {
    app::Session session({}, app::Access::Write);
    app::undo(session, {}, false);
  }
  EXPECT_EQ(reelsWithShots(), Names{whole + " 1"});
}

TEST_F(ProjectNames, ShotThatIsPartedIsReportedOnceIfItsFirstNameWasTheCutOne)
{
  importList({{cut, "one"}});
  importList({{whole, "one"}});
  const app::ImportReport report = importList({{other, "two"}});
  ASSERT_EQ(report.moves.size(), 1u);
  EXPECT_EQ(report.moves.front().from, whole);
  EXPECT_EQ(report.moves.front().to, cut);
  EXPECT_EQ(report.moves.front().shots, 1u);
}

TEST_F(ProjectNames, PartsOfAShotHaveTheTextsOfTheirOwnUses)
{
  const auto importAt = [&](std::string reel, std::size_t width, const std::string& clip, const std::string& hour) {
    reel.resize(width, ' ');
    const std::string path =
        folder_.write("at" + hour + ".edl", "001  " + reel + " V     C        01:00:10:00 01:00:10:10 " + hour +
                                                ":00:10:00 " + hour + ":00:10:10\n* FROM CLIP NAME: " + clip +
                                                "\n* REEL: LUT" + hour + "\n* SOURCE FILE: FILE" + hour + "\n");
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(path)}, false);
  };
  const auto texts = [](const std::string& reel) {
    app::Session session({}, app::Access::Read);
    const app::Shot shot = app::shotsOfReel(session, reel).shots.at(0).shot;
    Names result = {shot.recordIn.substr(0, 2), shot.sourceFile};
    std::copy_if(shot.aliases.begin(), shot.aliases.end(), std::back_inserter(result),
                 [](const std::string& alias) { return alias.starts_with("LUT"); });
    return result;
  };
  importAt(whole, 32, "one", "10");
  importAt(cut, 8, "one", "09");
  EXPECT_EQ(texts(whole), (Names{"09", "FILE09", "LUT09", "LUT10"})); // one shot with two uses
  importAt(other, 32, "two", "11");
  EXPECT_EQ(texts(whole), (Names{"10", "FILE10", "LUT10"}));
  EXPECT_EQ(texts(cut), (Names{"09", "FILE09", "LUT09"}));
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
  const std::vector<app::Need> needs = app::needsOfList(session, cutList);
  ASSERT_EQ(needs.size(), 1u);
  EXPECT_EQ(needs.front().id, whole);
  EXPECT_TRUE(needs.front().reel);
  EXPECT_TRUE(app::compareLists(session, {cutList}, false).empty());
}

TEST_F(ProjectNames, ExactMatchMakesAReelOfEachNameAndMovesNothing)
{
  importList({{whole, "one"}});
  importList({{cut, "one"}}); // is the whole one
  const auto importExactly = [&](const std::vector<Event>& events) {
    app::Session session({}, app::Access::Write);
    return app::importLists(session, {list(events)}, false, {}, {}, {lists::NameRules::Exact});
  };
  const app::ImportReport report = importExactly({{cut, "two", "", "", 40}});
  EXPECT_EQ(report.lists.front().created, Names{cut});
  EXPECT_EQ(importExactly({{"a001c001_200303_f701", "one"}}).lists.front().matched, Names{whole});
  EXPECT_TRUE(report.moves.empty());
  EXPECT_EQ(reelsWithShots(), (Names{cut + " 1", whole + " 1"}));
  EXPECT_EQ(importExactly({{cut, "two", "", "", 40}}).lists.front().shotsAdded, 0u);
  EXPECT_EQ(importList({{"B002", "three"}}).moves.size(), 1u) << "all rules join them";
  EXPECT_EQ(reelsWithShots(), (Names{whole + " 2", "B002 1"}));
}

TEST_F(ProjectNames, ExactMatchFollowsOldNames)
{
  importList({{"OLD", "one"}});
  {
    app::Session session({}, app::Access::Write);
    app::renameReel(session, "OLD", "NEW", false);
  }
  app::Session session({}, app::Access::Write);
  const app::ImportReport report =
      app::importLists(session, {list({{"OLD", "two"}})}, false, {}, {}, {lists::NameRules::Exact});
  EXPECT_EQ(report.lists.front().matched, Names{"NEW"});
}

TEST_F(ProjectNames, DifferenceByExactMatchHasTheCutNameAsNew)
{
  importList({{whole, "one"}});
  app::Session session({}, app::Access::Read);
  const auto newReels = [&](lists::NameRules rules) {
    return app::compareLists(session, {list({{cut, "two"}})}, false, {}, rules).newReels.size();
  };
  EXPECT_EQ(newReels(lists::NameRules::All), 0u);
  EXPECT_EQ(newReels(lists::NameRules::Exact), 1u);
}

} // namespace
