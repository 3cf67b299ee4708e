// SPDX-License-Identifier: Apache-2.0
//
// The memory and the copies of strings that a scan of the reels needs. It is a separate program that uses neither
// journal nor script, because a watched host needs memory to record each call.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "reelhost/host.h"
#include "support/counting_services.h"

namespace reeldb_tests {

namespace {

using Text = LightweightString<char>;

/// The use of the host's memory and counts.
struct Cost {
  std::int64_t allocations, up, down;
};

/// @p action is called twice, because the first call allocates room that is kept.
Cost costOf(const std::function<void()>& action)
{
  action();
  const Cost before{allocations(), countsUp(), countsDown()};
  action();
  return {allocations() - before.allocations, countsUp() - before.up, countsDown() - before.down};
}

class ScanCost : public ::testing::Test {
protected:
  ScanCost()
  {
    reelhost::startUp();
    reelhost::useFacility(reelhost::Facility());
    manager().notifyHoldCount = 0;
    reelhost::openProject(reelhost::makeMemoryStore({}, {{"reeldb_defaultType", ""}}), reelhost::Access::Write);
  }

  ~ScanCost() override { reelhost::closeProject(); }

  ReelDbManager& manager() { return *ReelDbManager::theReelDbManager(); }

  void addReels(int count)
  {
    for (int i = 0; i < count; ++i) {
      std::string id = "R";
      id += std::to_string(++last_);
      reelhost::StoredLog log;
      log.type = 9;
      log.fields = {{"reelid", id}};
      reelhost::addLog(log);
    }
    manager().buildReelList();
  }

  int last_ = 0;
};

} // namespace

TEST_F(ScanCost, ScanThatFindsNothingAllocatesNothingAndCopiesOneStringPerRecord)
{
  const Text id("no such reel");
  const auto scan = [&] { ASSERT_FALSE(manager().doesReelExist(id)); };
  addReels(10);
  const Cost ten = costOf(scan);
  addReels(50);
  const Cost sixty = costOf(scan);

  EXPECT_EQ(ten.allocations, 0);
  EXPECT_EQ(sixty.allocations, 0);
  EXPECT_EQ(sixty.up - ten.up, 50);
  EXPECT_EQ(sixty.down - ten.down, 50);
  EXPECT_EQ(ten.up, ten.down) << "every copy is given back";
}

TEST_F(ScanCost, ScanThatFindsTheLastReelAllocatesNothingEither)
{
  addReels(10);
  const Text last("R10");
  EXPECT_EQ(costOf([&] { ASSERT_TRUE(manager().getReelInfo(last).valid()); }).allocations, 0);
}

TEST_F(ScanCost, EmptyIdentifierCostsNothing)
{
  addReels(10);
  const Cost cost = costOf([&] { ASSERT_FALSE(manager().doesReelExist({})); });
  EXPECT_EQ(cost.allocations, 0);
  EXPECT_EQ(cost.up, 0);
}

TEST_F(ScanCost, ListingAllocatesNothingWhereTheVectorHasRoom)
{
  std::vector<Text> ids;
  ids.reserve(100);
  const auto list = [&] {
    ids.clear();
    manager().getAllReelIds(ids, true);
  };
  addReels(10);
  const Cost ten = costOf(list);
  addReels(50);
  const Cost sixty = costOf(list);

  EXPECT_EQ(ids.size(), 60U);
  EXPECT_EQ(ten.allocations, 0);
  EXPECT_EQ(sixty.allocations, 0);
  EXPECT_EQ(sixty.up - ten.up, 2 * 50) << "one copy is read, one is listed";
}

TEST_F(ScanCost, NoticeAllocatesNothing)
{
  ReelDbClient first, second(Text("R1"));
  const Text id("R1");
  EXPECT_EQ(costOf([&] { manager().informReelDbRecChanged(id); }).allocations, 0);
}

} // namespace reeldb_tests
