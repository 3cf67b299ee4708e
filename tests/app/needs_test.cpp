// SPDX-License-Identifier: Apache-2.0
#include "app/needs.h"

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
    return app::needsOfList(session, file.list);
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

} // namespace
