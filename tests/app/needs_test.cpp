// SPDX-License-Identifier: Apache-2.0
#include "app/needs.h"

#include "app/import.h"
#include "app/list_files.h"
#include "reelhost/journal.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

class Needs : public reeldb_tests::AppTest {
protected:
  void SetUp() override
  {
    AppTest::SetUp();
    import({"A001", "B002", "C003"});
  }

  std::vector<app::Need> needsOf(const std::vector<std::string>& reels) const
  {
    const app::ListFile file = app::readListFile(cutList("needs.edl", reels));
    app::Session session({}, app::Access::Read);
    reelhost::Script::the().reset();
    return app::needsOfList(session, file);
  }
};

TEST_F(Needs, ReelIsFoundInAnyCase)
{
  const std::vector<app::Need> needs = needsOf({"b002", "X", "B002"});
  ASSERT_EQ(needs.size(), 2u);
  EXPECT_EQ(needs[0].id, "B002");
  EXPECT_EQ(needs[0].shots, 2u);
  EXPECT_TRUE(needs[0].reel);
  EXPECT_EQ(needs[1].id, "X");
  EXPECT_EQ(needs[1].state(), "missing");
}

TEST_F(Needs, MissingReelsOpenNoFurtherLogs)
{
  const auto openings = [this](const std::vector<std::string>& reels) {
    needsOf(reels);
    return reelhost::Script::the().openings();
  };
  EXPECT_EQ(openings({"X1", "X2", "X3", "X4"}), openings({"X1"}));
}

/// The only need of a list with that reel text, in a column of eight characters.
app::Need needOf(const reeldb_tests::TempFolder& folder, const std::string& reel,
                 lists::NameRules rules = lists::NameRules::All)
{
  std::string padded = reel;
  padded.resize(8, ' ');
  const app::ListFile file = app::readListFile(
      folder.write("need.edl", "001  " + padded + " V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"));
  app::Session session({}, app::Access::Read);
  return app::needsOfList(session, file, rules).at(0);
}

TEST_F(Needs, CutNameOfTwoReelsIsPerhapsThese)
{
  import({"A001C001_200303_F701", "A001C001_200303_G802"});
  const app::Need need = needOf(folder_, "A001C001");
  EXPECT_EQ(need.state(), "perhaps");
  EXPECT_FALSE(need.reel);
  ASSERT_EQ(need.candidates.size(), 2u);
  EXPECT_EQ(need.candidates[0].reel, "A001C001_200303_F701");
  EXPECT_EQ(need.candidates[1].reel, "A001C001_200303_G802");
}

TEST_F(Needs, OtherNameThatAListGaveAReelIsPerhapsThatReel)
{
  const std::string list = folder_.write(
      "other.edl",
      "001  D004     V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n* SOURCE FILE: SR7\n");
  {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(list)}, false);
  }
  const app::Need need = needOf(folder_, "SR7");
  EXPECT_EQ(need.state(), "perhaps");
  ASSERT_EQ(need.candidates.size(), 1u);
  EXPECT_EQ(need.candidates[0].reel, "D004");
  EXPECT_EQ(need.candidates[0].reasons, std::vector{app::Reason::Alias});
}

TEST_F(Needs, NameThatMayMeanOnlyReelsWithoutARecordIsMissing)
{
  const app::ListFile file = app::readListFile(folder_.write(
      "two.edl", "001  A001C001                 V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                 "002  A001C001_200303_F701     V     C        01:00:00:00 01:00:01:00 10:00:01:00 10:00:02:00\n"));
  app::Session session({}, app::Access::Read);
  for (const app::Need& need : app::needsOfList(session, file))
    EXPECT_EQ(need.state(), "missing") << need.id;
}

TEST_F(Needs, ExactMatchTakesNoCutName)
{
  import({"A001C001_200303_F701"}); // in a column of 32
  EXPECT_EQ(needOf(folder_, "A001C001").id, "A001C001_200303_F701");
  const app::Need need = needOf(folder_, "A001C001", lists::NameRules::Exact);
  EXPECT_EQ(need.id, "A001C001");
  EXPECT_EQ(need.state(), "perhaps");
  EXPECT_EQ(needOf(folder_, "b002", lists::NameRules::Exact).id, "B002");
}

} // namespace
