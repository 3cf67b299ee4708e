// SPDX-License-Identifier: Apache-2.0
//
// What every feed promises, tried on each store that has one.
#include "reelhost/feed.h"

#include <map>
#include <random>

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
using Numbers = std::vector<std::int64_t>;

class FeedContract : public testing::TestWithParam<const char*> {
protected:
  std::unique_ptr<Store> make(const std::string& name = "contract.reels")
  {
    if (std::string(GetParam()) == "memory")
      return makeMemoryStore(exampleInfo(), {{"kept", "1"}});
    createSqliteProject(folder_ / name, exampleInfo(), {{"kept", "1"}});
    return makeSqliteStore(folder_ / name);
  }

  static FeedPosition position(Store& project)
  {
    project.begin(Access::Read, muchPatience);
    const FeedPosition found = project.feed()->position();
    project.end();
    return found;
  }
  static Delta since(Store& project, const FeedPosition& before)
  {
    project.begin(Access::Read, muchPatience);
    Delta delta = project.feed()->since(before);
    project.end();
    return delta;
  }
  static void remove(Store& project, Numbers numbers)
  {
    Changes changes;
    changes.deleted = std::move(numbers);
    store(project, changes);
  }
  static void undelete(Store& project)
  {
    Changes changes;
    changes.inverse = inverseOfLastDeletion(project);
    store(project, changes);
  }
  static Numbers numbersOf(const Delta& delta)
  {
    Numbers numbers;
    for (const StoredLog& log : delta.logs)
      numbers.push_back(log.number);
    return numbers;
  }
  static Numbers goneIn(const Delta& delta)
  {
    Numbers numbers;
    for (const GoneLog& log : delta.gone)
      numbers.push_back(log.number);
    return numbers;
  }

private:
  TempFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Stores, FeedContract, testing::Values("memory", "sqlite"),
                         [](const auto& which) { return std::string(which.param); });

TEST_P(FeedContract, PositionIsThatOfTheNewestRevision)
{
  const auto project = make();
  EXPECT_EQ(position(*project), FeedPosition());
  store(*project, logChanges({exampleLog(1, 9)}));
  const FeedPosition first = project->feed()->position(); // without a use: of the commit
  EXPECT_EQ(first.revision, 1);
  EXPECT_EQ(first, position(*project));
  store(*project, logChanges({exampleLog(2, 9)}));
  EXPECT_EQ(position(*project).revision, 2);
  EXPECT_NE(position(*project).token, first.token);
}

TEST_P(FeedContract, DeltaHasNewChangedAndGoneLogsByNumber)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 1)}));
  const FeedPosition before = position(*project);
  StoredLog changed = exampleLog(2, 9);
  changed.name = "changed";
  store(*project, logChanges({changed, exampleLog(4, 1)}));
  remove(*project, {1});
  const Delta delta = since(*project, before);
  EXPECT_FALSE(delta.whole);
  ASSERT_EQ(numbersOf(delta), (Numbers{2, 4}));
  EXPECT_EQ(delta.logs.front().name, "changed");
  EXPECT_EQ(describe(delta.logs.back()), describe(exampleLog(4, 1)));
  ASSERT_EQ(goneIn(delta), Numbers{1});
  EXPECT_EQ(delta.gone.front().uuid, exampleLog(1, 9).uuid);
  EXPECT_EQ(delta.gone.front().tag, exampleLog(1, 9).tag);
  EXPECT_EQ(delta.gone.front().kind, exampleLog(1, 9).kind);
  EXPECT_FALSE(delta.options);
}

TEST_P(FeedContract, WhatIsAsItWasBeforeIsNotInTheDelta)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const FeedPosition before = position(*project);
  StoredLog changed = exampleLog(1, 9);
  changed.name = "changed";
  store(*project, logChanges({changed, exampleLog(2, 9)}));
  store(*project, logChanges({exampleLog(1, 9)}));
  remove(*project, {2});
  const Delta delta = since(*project, before);
  EXPECT_FALSE(delta.whole);
  EXPECT_EQ(numbersOf(delta), Numbers{});
  EXPECT_EQ(goneIn(delta), Numbers{});
}

TEST_P(FeedContract, LogThatCameBackIsInTheDelta)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  remove(*project, {1});
  const FeedPosition before = position(*project);
  undelete(*project);
  EXPECT_EQ(numbersOf(since(*project, before)), Numbers{1});
}

TEST_P(FeedContract, AllOptionsAreInTheDeltaIfOneChanged)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const FeedPosition before = position(*project);
  Changes changes;
  changes.options = {{"new", "x"}};
  store(*project, changes);
  const Delta delta = since(*project, before);
  ASSERT_TRUE(delta.options);
  EXPECT_EQ(*delta.options, (KeyValues{{"kept", "1"}, {"new", "x"}}));
}

TEST_P(FeedContract, SinceBeforeTheFirstRevisionEverythingIsNew)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const Delta delta = since(*project, {});
  EXPECT_FALSE(delta.whole);
  EXPECT_EQ(numbersOf(delta), Numbers{1});
}

TEST_P(FeedContract, WholeAsLongAsThereIsNoRevision)
{
  const auto project = make();
  EXPECT_TRUE(since(*project, {}).whole);
}

TEST_P(FeedContract, NothingDiffersWithoutARevisionSince)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const Delta delta = since(*project, position(*project));
  EXPECT_FALSE(delta.whole);
  EXPECT_EQ(numbersOf(delta), Numbers{});
  EXPECT_EQ(goneIn(delta), Numbers{});
  EXPECT_FALSE(delta.options);
}

TEST_P(FeedContract, ReservationIsNoChange)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const FeedPosition before = position(*project);
  Changes reservation;
  reservation.reservedLogs = 3;
  store(*project, reservation);
  EXPECT_EQ(position(*project), before);
  store(*project, logChanges({exampleLog(4, 9)}));
  store(*project, logChanges({exampleLog(2, 9)}));
  EXPECT_EQ(numbersOf(since(*project, before)), (Numbers{2, 4}));
}

TEST_P(FeedContract, WholeSinceAStateOfAnotherProject)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  store(*project, logChanges({exampleLog(2, 9)}));
  const auto other = make("other.reels");
  store(*other, logChanges({exampleLog(1, 9)}));
  EXPECT_TRUE(since(*project, position(*other)).whole);
  EXPECT_TRUE(since(*other, position(*project)).whole);
}

TEST_P(FeedContract, WholeIfTheHistorySinceIsForgotten)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const FeedPosition first = position(*project);
  store(*project, logChanges({exampleLog(2, 9)}));
  const FeedPosition second = position(*project);
  Changes forget;
  forget.forgetBefore = 2;
  store(*project, forget);
  EXPECT_TRUE(since(*project, {}).whole);
  EXPECT_TRUE(since(*project, first).whole);
  EXPECT_FALSE(since(*project, second).whole);
}

TEST_P(FeedContract, WholeIfTheTrashSinceIsEmptied)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  const FeedPosition before = position(*project);
  remove(*project, {1});
  const FeedPosition after = position(*project);
  Changes compact;
  compact.compact = true;
  store(*project, compact);
  EXPECT_TRUE(since(*project, before).whole);
  const Delta delta = since(*project, after);
  EXPECT_FALSE(delta.whole);
  EXPECT_EQ(goneIn(delta), Numbers{});
}

TEST_P(FeedContract, DeltaTurnsEveryEarlierStateIntoTheNewest)
{
  struct State {
    FeedPosition position;
    std::map<std::int64_t, std::string> logs;
    KeyValues options;
  };
  const auto project = make();
  const auto stateNow = [&] {
    State state;
    project->begin(Access::Read, muchPatience);
    state.position = project->feed()->position();
    const auto take = [&](StoredLog&& log) { state.logs[log.number] = describe(log); };
    project->readReels(take);
    project->readOthers(take);
    state.options = project->options();
    project->end();
    return state;
  };
  std::mt19937 random(7);
  const auto below = [&](std::size_t bound) { return random() % bound; };
  std::vector<State> states = {stateNow()};
  std::int64_t last = 0;
  for (int round = 0; round < 120; ++round) {
    Changes changes;
    const std::size_t kind = last < 3 ? 0 : below(5);
    const auto any = [&] { return static_cast<std::int64_t>(1 + below(static_cast<std::size_t>(last))); };
    if (kind == 0) {
      for (std::size_t i = 0; i < 1 + below(3); ++i)
        changes.logs.push_back(exampleLog(++last, below(2) == 0 ? 9 : 1));
    } else if (kind == 1) {
      changes.logs.push_back(exampleLog(any(), 9)); // changed, or brought back
      changes.logs.back().name = "name " + std::to_string(below(3));
    } else if (kind == 2) {
      changes.deleted = {any(), any()};
    } else if (kind == 3) {
      changes.options = {{"option", std::to_string(below(3))}};
    } else {
      changes.inverse = inverseOfLastDeletion(*project);
    }
    store(*project, changes);
    if (State state = stateNow(); state.position != states.back().position)
      states.push_back(std::move(state));
  }
  ASSERT_GT(states.size(), 60u);
  const State newest = states.back();
  states.pop_back();
  for (const State& state : states) {
    Delta delta = since(*project, state.position);
    ASSERT_FALSE(delta.whole) << state.position.revision;
    std::map<std::int64_t, std::string> logs = state.logs;
    for (const StoredLog& log : delta.logs)
      logs[log.number] = describe(log);
    for (const GoneLog& log : delta.gone)
      EXPECT_EQ(logs.erase(log.number), 1u) << state.position.revision;
    EXPECT_EQ(logs, newest.logs) << "since revision " << state.position.revision;
    EXPECT_EQ(delta.options.value_or(state.options), newest.options) << "since revision " << state.position.revision;
  }
}

} // namespace
