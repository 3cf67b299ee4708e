// SPDX-License-Identifier: Apache-2.0
#include "app/selection.h"

#include "app/history.h"
#include "app/import.h"
#include "app/list_files.h"
#include "app/reel_fields.h"
#include "reelhost/journal.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Names = std::vector<std::string>;

class SelectionTest : public reeldb_tests::AppTest {
protected:
  void SetUp() override
  {
    AppTest::SetUp();
    for (const auto& [name, reels] :
         {std::pair("one.edl", Names{"A001C001", "A001C002", "B001"}), {"two.edl", {"B001", "C1"}}}) {
      const app::ListFile file = app::readListFile(cutList(name, reels));
      app::Session session({}, app::Access::Write);
      app::importLists(session, {file}, false);
    }
    app::Session session({}, app::Access::Write);
    app::createReel(session, "Unused", {});
  }
  static void set(const std::string& reel, const std::string& field, const std::string& value)
  {
    app::Session session({}, app::Access::Write);
    app::changeReel(session, reel, {{field, value}}, {});
  }
  static Names selected(const Names& reels, const Names& where = {})
  {
    app::Session session({}, app::Access::Read);
    Names ids;
    for (const app::Reel& reel : app::selectReels(session, {reels, where}))
      ids.push_back(reel.id);
    return ids;
  }
  static Names sorted(const Names& fields)
  {
    app::Session session({}, app::Access::Read);
    std::vector<app::Reel> reels = app::listReels(session);
    app::sortReels(reels, fields);
    Names ids;
    for (const app::Reel& reel : reels)
      ids.push_back(reel.id);
    return ids;
  }
  static std::string refusal(const Names& reels, const Names& where)
  {
    return errorOf([&] { selected(reels, where); }).what();
  }
};

TEST_F(SelectionTest, WithoutNamesAndConditionsIsEveryReel)
{
  EXPECT_EQ(selected({}), (Names{"A001C001", "A001C002", "B001", "C1", "Unused"}));
}

TEST_F(SelectionTest, NamesAndPatternsAreInTheOrderGivenEachReelOnce)
{
  EXPECT_EQ(selected({"c1", "a001*", "*"}), (Names{"C1", "A001C001", "A001C002", "B001", "Unused"}));
  EXPECT_EQ(selected({"C1", "c1"}), Names{"C1"});
  EXPECT_EQ(selected({"b*1"}), Names{"B001"});
}

TEST_F(SelectionTest, NameOfNoReelIsReported)
{
  EXPECT_EQ(refusal({"Z*"}, {}), "Z*: no reel matches");
  EXPECT_EQ(errorOf([] { selected({"A001C001", "Z1"}); }).kind(), app::ErrorKind::NotFound);
}

TEST_F(SelectionTest, ConditionsAllHaveToHold)
{
  set("B001", "bin", "Shelf 4");
  set("C1", "bin", "Shelf 12");
  set("C1", "available", "no");
  set("A001C001", "user-field.0", "rain");
  EXPECT_EQ(selected({}, {"shelf=shelf*"}), (Names{"B001", "C1"}));
  EXPECT_EQ(selected({}, {"bin=Shelf 4"}), Names{"B001"});
  EXPECT_EQ(selected({}, {"shelf=Shelf*", "available=no"}), Names{"C1"});
  EXPECT_EQ(selected({}, {"shelf!=Shelf*"}), (Names{"A001C001", "A001C002", "Unused"}));
  EXPECT_EQ(selected({}, {"shelf="}), (Names{"A001C001", "A001C002", "Unused"}));
  EXPECT_EQ(selected({}, {"shelf!="}), (Names{"B001", "C1"}));
  EXPECT_EQ(selected({}, {"User field 1=rain"}), Names{"A001C001"});
  EXPECT_EQ(selected({}, {"0=r*"}), Names{"A001C001"});
  EXPECT_EQ(selected({"A*"}, {"name=*2"}), Names{"A001C002"});
  EXPECT_EQ(selected({}, {"unused"}), Names{"Unused"});
  EXPECT_EQ(selected({}, {"unused=no", "name=C*"}), Names{"C1"});
  EXPECT_EQ(selected({}, {"shots=2"}), Names{"B001"});
  EXPECT_EQ(selected({}, {"type=nosuch"}), Names{});
}

TEST_F(SelectionTest, ListAndRollAreConditions)
{
  EXPECT_EQ(selected({}, {"list=two.edl"}), (Names{"B001", "C1"}));
  EXPECT_EQ(selected({}, {"list!=2"}), (Names{"A001C001", "A001C002", "Unused"}));
  EXPECT_EQ(selected({}, {"roll=a001"}), (Names{"A001C001", "A001C002"}));
  EXPECT_EQ(selected({}, {"roll="}), (Names{"B001", "C1", "Unused"}));
  EXPECT_EQ(refusal({}, {"list=nosuch.edl"}), "nosuch.edl: no such list (reeldb list-file list shows them)");
}

TEST_F(SelectionTest, TextThatIsNotAConditionIsRefused)
{
  EXPECT_EQ(refusal({}, {"available"}), "\"available\": not a condition (use FIELD=VALUE, FIELD!=VALUE or unused)");
  EXPECT_EQ(refusal({}, {"nosuch=1"}).substr(0, 39), "nosuch: no such field (name, type, avai");
  EXPECT_EQ(errorOf([] { selected({}, {"=1"}); }).kind(), app::ErrorKind::Invalid);
  EXPECT_EQ(refusal({}, {"user-field.6=1"}), "user-field.6: no such user field (they are numbered from 0 to 5)");
  EXPECT_EQ(errorOf([] { sorted({"list"}); }).kind(), app::ErrorKind::Invalid);
}

TEST_F(SelectionTest, NothingSelectedIsAnErrorForAChange)
{
  app::Session session({}, app::Access::Read);
  EXPECT_EQ(app::requireSelected(session, {{"a*1"}, {}}), Names{"A001C001"});
  EXPECT_EQ(errorOf([&] { app::requireSelected(session, {{}, {"bin=x"}}); }).kind(), app::ErrorKind::NotFound);
}

TEST_F(SelectionTest, SortingTakesNumbersInTextsAsNumbersAndEmptyValuesLast)
{
  set("B001", "bin", "Shelf 12");
  set("C1", "bin", "shelf 4");
  set("A001C002", "bin", "Shelf 4");
  EXPECT_EQ(sorted({"shelf"}), (Names{"A001C002", "C1", "B001", "A001C001", "Unused"}));
  EXPECT_EQ(sorted({"shelf", "-name"}), (Names{"C1", "A001C002", "B001", "Unused", "A001C001"}));
  EXPECT_EQ(sorted({"-shelf"}), (Names{"B001", "A001C002", "C1", "A001C001", "Unused"}));
  EXPECT_EQ(sorted({"-shots", "name"}), (Names{"B001", "A001C001", "A001C002", "C1", "Unused"}));
}

TEST_F(SelectionTest, SeveralReelsAreChangedInOneCommitOrNotAtAll)
{
  set("C1", "bin", "x");
  app::Session session({}, app::Access::Write);
  const std::vector<app::ChangedReel> changed = app::changeReels(session, {"b001", "C1"}, {{"bin", "x"}});
  ASSERT_EQ(changed.size(), 2u);
  EXPECT_EQ(changed[0].id, "B001");
  EXPECT_TRUE(changed[0].stored);
  EXPECT_FALSE(changed[1].stored); // it was so
  const std::size_t commits = app::readHistory(session, {}).commits.size();
  EXPECT_EQ(errorOf([&] {
              app::changeReels(session, {"B001", "A001C001"}, {{"bin", "y"}}, {{"bin", "x"}});
            }).kind(),
            app::ErrorKind::Conflict);
  EXPECT_EQ(errorOf([&] {
              app::changeReels(session, {"B001", "nosuch"}, {{"bin", "y"}});
            }).kind(),
            app::ErrorKind::NotFound);
  EXPECT_EQ(errorOf([&] {
              app::changeReels(session, {"B001", "C1"}, {{"available", "maybe"}});
            }).kind(),
            app::ErrorKind::Invalid);
  EXPECT_EQ(app::showReel(session, "B001").reel.bin, "x");
  EXPECT_EQ(app::readHistory(session, {}).commits.size(), commits);
}

TEST_F(SelectionTest, ChangeOfManyReelsOpensEachLogAFewTimes)
{
  const auto openings = [](const Names& reels) {
    app::Session session({}, app::Access::Write);
    reelhost::Script::the().reset();
    app::changeReels(session, reels, {{"bin", std::to_string(reels.size())}});
    return reelhost::Script::the().openings();
  };
  const auto two = openings({"A001C001", "A001C002"}), four = openings({"A001C001", "A001C002", "B001", "C1"});
  const auto one = openings({"A001C001"});
  EXPECT_EQ(four - two, 2 * (two - one));
}

} // namespace
