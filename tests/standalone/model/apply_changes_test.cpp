// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <stdexcept>

#include "reelhost/feed.h"
#include "standalone/model/elsewhere.h"
#include "standalone/model/forwarding_store.h"
#include "standalone/model/host_test.h"
#include "support/temp_folder.h"

namespace {

using namespace reeldb_tests;
using reelhost::Access;
using reelhost::applyChangesFromElsewhere;
using reelhost::Changes;
using reelhost::ForeignChanges;
using reelhost::StoredLog;
using State = ForeignChanges::State;
using Texts = std::vector<std::string>;

/// Counts how often all reels are read, and reads no other logs if these are damaged.
class CountingStore : public ForwardingStore {
public:
  CountingStore(std::shared_ptr<reelhost::Store> to, bool hasFeed, int& wholeReads, const bool& areOthersDamaged)
      : ForwardingStore(std::move(to)), hasFeed_(hasFeed), wholeReads_(wholeReads), areOthersDamaged_(areOthersDamaged)
  {
  }
  void readOthers(const Sink& sink) override
  {
    if (areOthersDamaged_)
      throw reelhost::Error(reelhost::ErrorKind::Unreadable, "damaged");
    ForwardingStore::readOthers(sink);
  }
  reelhost::Feed* feed() override { return hasFeed_ ? ForwardingStore::feed() : nullptr; }
  void readReels(const Sink& sink) override
  {
    ++wholeReads_;
    ForwardingStore::readReels(sink);
  }

private:
  const bool hasFeed_;
  int& wholeReads_;
  const bool& areOthersDamaged_;
};

/// With a feed, and without one: the same changes are found.
class ApplyChanges : public HostTest, public testing::WithParamInterface<bool> {
protected:
  void SetUp() override
  {
    reelhost::createSqliteProject(file_, info(), {});
    elsewhere_.emplace(file_);
    open();
  }

  void open()
  {
    reelhost::openProject(
        std::make_unique<CountingStore>(reelhost::makeSqliteStore(file_), GetParam(), wholeReads_, areOthersDamaged_),
        Access::Write);
  }

  /// The stored log with another value of a field.
  StoredLog with(std::int64_t number, const std::string& key, const std::string& value)
  {
    StoredLog log = elsewhere_->stored(number);
    std::erase_if(log.fields, [&](const auto& field) { return field.first == key; });
    log.fields.emplace_back(key, value);
    return log;
  }
  static StoredLog newLog(std::int64_t number, int type, const std::string& reelId)
  {
    StoredLog log;
    log.number = number;
    std::fill(log.uuid.begin(), log.uuid.end(), static_cast<unsigned char>(number));
    log.type = type;
    log.fields = {{"reelid", reelId}};
    return log;
  }
  /// Two reels and a shot, numbers 1 to 3, stored by this process; the project waits.
  void makeLogs()
  {
    first_ = addLog(9, "R1");
    second_ = addLog(9, "R2");
    shot_ = addLog(1, "R1");
    reelhost::commit();
    reelhost::idle();
    wholeReads_ = 0;
  }

  TempFolder folder_;
  const std::filesystem::path file_ = folder_.path() / "shared.reels";
  std::optional<Elsewhere> elsewhere_;
  Cookie first_, second_, shot_;
  int wholeReads_ = 0;
  bool areOthersDamaged_ = false;
};

INSTANTIATE_TEST_SUITE_P(Stores, ApplyChanges, testing::Bool(),
                         [](const auto& which) { return std::string(which.param ? "Feed" : "NoFeed"); });

/// What only a store with a feed knows.
class ApplyChangesWithAFeed : public ApplyChanges {};
INSTANTIATE_TEST_SUITE_P(Stores, ApplyChangesWithAFeed, testing::Values(true),
                         [](const auto&) { return std::string("Feed"); });

TEST_P(ApplyChanges, NothingWithoutACommitOfOthers)
{
  makeLogs();
  RecordingListener listener;
  const ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_EQ(changes.state, State::Nothing);
  rename(first_, "R3");
  reelhost::commit();
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Nothing);
  EXPECT_EQ(listener.heard, Texts{});
}

TEST_P(ApplyChanges, FieldOfAReelChangesThatReelAlone)
{
  makeLogs();
  elsewhere_->commitLogs({with(2, "bin", "shelf 1")});
  RecordingListener listener;
  const ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_EQ(changes.state, State::Applied);
  EXPECT_FALSE(changes.reelSet);
  EXPECT_EQ(texts(changes.changedReels), Texts{text(second_)});
  EXPECT_EQ(fieldOf(second_, "bin"), "shelf 1");
  EXPECT_EQ(listener.heard, Texts{"modified 1"});
  EXPECT_EQ(wholeReads_, GetParam() ? 0 : 1);
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Nothing);
}

TEST_P(ApplyChanges, ChangedReelsAreInTheOrderOfTheProject)
{
  makeLogs();
  elsewhere_->commitLogs({with(2, "bin", "b")});
  elsewhere_->commitLogs({with(1, "bin", "a")});
  EXPECT_EQ(texts(applyChangesFromElsewhere().changedReels), (Texts{text(first_), text(second_)}));
}

TEST_P(ApplyChanges, OnlyNewReelIsNamed)
{
  makeLogs();
  elsewhere_->commitLogs({newLog(7, 9, "R7"), with(1, "bin", "a")});
  const ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_TRUE(changes.reelSet);
  EXPECT_EQ(changes.newReel, "R7");
  EXPECT_EQ(texts(changes.changedReels), Texts{text(first_)});
  EXPECT_EQ(reels().count(), 3);
  EXPECT_EQ(text(addLog(9, "R8")).substr(9), "00000008"); // numbers go on after those of others
}

TEST_P(ApplyChanges, OtherChangesOfTheSetNameNoReel)
{
  makeLogs();
  const auto changesTheSet = [](const char* what) {
    const ForeignChanges changes = applyChangesFromElsewhere();
    EXPECT_TRUE(changes.reelSet) << what;
    EXPECT_EQ(changes.newReel, "") << what;
  };
  elsewhere_->commitLogs({newLog(7, 9, "R7"), newLog(8, 9, "R8")});
  changesTheSet("two new reels");
  elsewhere_->commitLogs({with(1, "reelid", "r1")});
  changesTheSet("another spelling");
  EXPECT_EQ(reelIdOf(first_), "r1");
  elsewhere_->remove({7});
  changesTheSet("a reel is gone");
  elsewhere_->commitLogs({newLog(9, 9, "R9")});
  elsewhere_->remove({8});
  changesTheSet("one new, one gone");
  StoredLog noReel = elsewhere_->stored(9);
  noReel.type = 1;
  elsewhere_->commitLogs({noReel});
  changesTheSet("a reel is no reel any more");
  EXPECT_EQ(reels().count(), 2);
}

TEST_P(ApplyChanges, ReelThatComesBackIsThereAgain)
{
  makeLogs();
  const StoredLog log = elsewhere_->stored(1);
  elsewhere_->remove({1});
  applyChangesFromElsewhere();
  EXPECT_FALSE(opens(first_));
  elsewhere_->commitLogs({log});
  const reelhost::ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_TRUE(changes.reelSet);
  EXPECT_EQ(changes.newReel, ""); // it is not new
  EXPECT_TRUE(opens(first_));
  EXPECT_EQ(texts(reels()), (Texts{text(first_), text(second_)}));
}

TEST_P(ApplyChanges, ReelsAreListedInOrderHoweverManyAreGoneAtOnce)
{
  reelhost::idle();
  std::vector<StoredLog> logs;
  for (std::int64_t number = 1; number <= 60; ++number)
    logs.push_back(newLog(number, 9, "R" + std::to_string(number)));
  elsewhere_->commitLogs(logs);
  open();
  reelhost::idle();
  const auto listed = [] {
    std::vector<std::string> ids;
    for (const Cookie& reel : reels())
      ids.push_back(reelIdOf(reel));
    return ids;
  };
  std::vector<std::string> expected = listed();
  ASSERT_EQ(expected.size(), 60u);
  const CookieVec whole = reels(); // keeps what it has
  const auto remove = [&](const std::vector<std::int64_t>& numbers) {
    elsewhere_->remove(numbers);
    applyChangesFromElsewhere();
    for (const std::int64_t number : numbers)
      std::erase(expected, "R" + std::to_string(number));
    EXPECT_EQ(listed(), expected);
  };
  remove({1});
  remove({30, 60});
  elsewhere_->commitLogs({newLog(61, 9, "R61"), logs[29]}); // one at the end, one back in its place
  applyChangesFromElsewhere();
  expected.insert(std::find(expected.begin(), expected.end(), "R31"), "R30");
  expected.push_back("R61");
  EXPECT_EQ(listed(), expected);
  std::vector<std::int64_t> many;
  for (std::int64_t number = 10; number < 50; ++number)
    many.push_back(number);
  remove(many);
  remove({61});
  EXPECT_EQ(whole.count(), 60);
}

TEST_P(ApplyChanges, ShotsChangeNoReelAndAreReportedToListeners)
{
  makeLogs();
  RecordingListener listener;
  elsewhere_->commitLogs({newLog(7, 1, "R2"), with(3, "reelid", "R2")});
  ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_FALSE(changes.reelSet);
  EXPECT_EQ(changes.changedReels.count(), 0);
  EXPECT_EQ(listener.heard, Texts{"modified 2"});
  EXPECT_EQ(shotsOf("R1").count(), 0);
  EXPECT_EQ(shotsOf("R2").count(), 2);
  elsewhere_->remove({3});
  changes = applyChangesFromElsewhere();
  EXPECT_FALSE(changes.reelSet);
  EXPECT_EQ(listener.heard, (Texts{"modified 2", "deleted 1 \"\""}));
  EXPECT_EQ(shotsOf("R2").count(), 1);
}

TEST_P(ApplyChanges, OwnShotIsThereBeforeOthersAreLoaded)
{
  makeLogs();
  open();
  const Cookie own = addLog(1, "R1");
  reelhost::commit();
  elsewhere_->commitLogs({with(2, "bin", "shelf 1")});
  RecordingListener listener;
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
  EXPECT_EQ(listener.heard, Texts{"modified 1"});
  EXPECT_TRUE(opens(own));
  EXPECT_TRUE(opens(shot_));
}

TEST_P(ApplyChanges, NothingIsAppliedIfTheOtherLogsCannotBeRead)
{
  makeLogs();
  open();
  reelhost::commit(); // lets others write, and loads nothing, as idle() would
  elsewhere_->commitLogs({with(2, "bin", "shelf 1")});
  RecordingListener listener;
  areOthersDamaged_ = true;
  EXPECT_EQ(errorOf([] { applyChangesFromElsewhere(); }), "Unreadable: damaged");
  EXPECT_EQ(fieldOf(second_, "bin"), "<absent>");
  areOthersDamaged_ = false;
  EXPECT_EQ(texts(applyChangesFromElsewhere().changedReels), Texts{text(second_)});
  EXPECT_EQ(listener.heard, Texts{"modified 1"});
}

TEST_P(ApplyChanges, OptionsAreApplied)
{
  makeLogs();
  Changes changes;
  changes.options = {{reelhost::frameRateOption, "5"}};
  elsewhere_->commit(changes);
  const ForeignChanges applied = applyChangesFromElsewhere();
  EXPECT_EQ(applied.state, State::Applied);
  EXPECT_FALSE(applied.reelSet);
  EXPECT_EQ(reelhost::projectInfo().frameRate, 5);
}

TEST_P(ApplyChanges, WaitWhileALogIsOpen)
{
  makeLogs();
  elsewhere_->commitLogs({with(2, "bin", "shelf 1")});
  withLog(first_, [](Edit&) { EXPECT_EQ(applyChangesFromElsewhere().state, State::Later); });
  EXPECT_EQ(fieldOf(second_, "bin"), "<absent>");
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
  EXPECT_EQ(fieldOf(second_, "bin"), "shelf 1");
}

TEST_P(ApplyChanges, ChangesThatAreNotStoredStay)
{
  makeLogs();
  rename(first_, "R5");
  reelhost::idle();
  elsewhere_->commitLogs({with(2, "bin", "shelf 1")});
  if (GetParam()) {
    EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
    EXPECT_EQ(fieldOf(second_, "bin"), "shelf 1");
  } else {
    EXPECT_EQ(errorOf([] { applyChangesFromElsewhere(); }),
              "Busy: " + file_.string() +
                  ": changed by another process, and changes made here are not stored (read it again)");
    EXPECT_EQ(fieldOf(second_, "bin"), "<absent>");
  }
  EXPECT_EQ(reelIdOf(first_), "R5");
  EXPECT_EQ(reelhost::reloadIfChangedElsewhere(), !GetParam());
  EXPECT_EQ(reelIdOf(first_), GetParam() ? "R5" : "R1");
}

TEST_P(ApplyChanges, ChangeToAStateThatOthersHaveChangedWhileItWasReadIsRefused)
{
  makeLogs();
  reelhost::projectStoreToRead();
  elsewhere_->commitLogs({with(1, "bin", "shelf 1")});
  EXPECT_EQ(errorOf([this] { rename(first_, "R5"); }),
            "Busy: " + file_.string() + ": changed by another process since it was read (read it again)");
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
  rename(first_, "R5");
  reelhost::commit();
  EXPECT_EQ(elsewhere_->stored(1).fields, (reelhost::KeyValues{{"reelid", "R5"}, {"bin", "shelf 1"}}));
}

TEST_P(ApplyChanges, NumbersOfLogsThatWaitAreNotGivenToOthers)
{
  makeLogs();
  const Cookie waiting = addLog(9, "R4");
  reelhost::idle();
  const Cookie later = addLog(9, "R5");
  reelhost::idle();
  elsewhere_->read([](reelhost::Store& store) { EXPECT_EQ(store.nextNumber(), 6); });
  reelhost::idle();
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(elsewhere_->stored(reelhost::logNumber(waiting)).fields, (reelhost::KeyValues{{"reelid", "R4"}}));
  EXPECT_EQ(elsewhere_->stored(reelhost::logNumber(later)).fields, (reelhost::KeyValues{{"reelid", "R5"}}));
}

TEST_P(ApplyChanges, NumbersOfListsThatWaitAreNotGivenToOthers)
{
  makeLogs();
  reelhost::KeptList list;
  list.format = "edl";
  const std::int64_t number = reelhost::keepList(list, "bytes");
  reelhost::idle();
  elsewhere_->read([&](reelhost::Store& store) { EXPECT_EQ(store.lists()->nextListNumber(), number + 1); });
  EXPECT_TRUE(reelhost::commit());
}

/// Lets others commit right after it was asked whether they have.
class LateCommit : public ForwardingStore {
public:
  using ForwardingStore::ForwardingStore;
  bool changedElsewhere() override
  {
    const bool changed = ForwardingStore::changedElsewhere();
    if (const auto commit = std::exchange(lateCommit, nullptr))
      commit();
    return changed;
  }
  std::function<void()> lateCommit;
};

TEST_P(ApplyChangesWithAFeed, ChangeToAStateThatOthersChangeRightAfterTheQuestionIsRefused)
{
  makeLogs();
  auto store = std::make_unique<LateCommit>(reelhost::makeSqliteStore(file_));
  LateCommit& late = *store;
  reelhost::openProject(std::move(store), Access::Write);
  reelhost::idle();
  late.lateCommit = [this] { elsewhere_->commitLogs({with(1, "bin", "shelf 1")}); };
  EXPECT_EQ(errorOf([this] { rename(first_, "R5"); }),
            "Busy: " + file_.string() + ": changed by another process since it was read (read it again)");
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
  EXPECT_EQ(fieldOf(first_, "bin"), "shelf 1");
}

TEST_P(ApplyChanges, ListenerThatThrowsFindsEverythingApplied)
{
  makeLogs();
  elsewhere_->commitLogs({with(2, "bin", "shelf 1"), with(1, "bin", "shelf 2")});
  RecordingListener listener;
  listener.onEvent = [&](const std::string&) {
    EXPECT_EQ(fieldOf(first_, "bin"), "shelf 2");
    EXPECT_EQ(fieldOf(second_, "bin"), "shelf 1");
    throw std::runtime_error("listener");
  };
  EXPECT_THROW(applyChangesFromElsewhere(), std::runtime_error);
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Nothing);
}

TEST_P(ApplyChanges, OtherProjectInItsPlaceIsRead)
{
  makeLogs();
  reelhost::ProjectInfo other = info("OTHER");
  other.uuid.fill(0xAB);
  reelhost::createSqliteProject(folder_.path() / "other.reels", other, {});
  for (const char* ending : {"-wal", "-shm"}) // of the project that is replaced
    std::filesystem::remove(file_.native() + ending);
  std::filesystem::rename(folder_.path() / "other.reels", file_);
  const ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_EQ(changes.state, State::Applied);
  EXPECT_TRUE(changes.reelSet);
  EXPECT_EQ(reelhost::projectInfo().name, "OTHER");
  EXPECT_EQ(reels().count(), 0);
}

TEST_P(ApplyChanges, ProjectThatCannotBeReadStaysAsItWas)
{
  makeLogs();
  elsewhere_->commitLogs({with(2, "bin", "shelf 1")});
  std::filesystem::rename(file_, folder_.path() / "away.reels");
  EXPECT_EQ(errorOf([] { applyChangesFromElsewhere(); }).substr(0, 9), "NotFound:");
  EXPECT_EQ(fieldOf(second_, "bin"), "<absent>");
  std::filesystem::rename(folder_.path() / "away.reels", file_);
  EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
  EXPECT_EQ(fieldOf(second_, "bin"), "shelf 1");
}

TEST_P(ApplyChanges, ModelIsAsAFreshLoadAfterEveryCommitOfOthers)
{
  makeLogs();
  const auto contents = [] {
    std::map<std::string, std::string> logs;
    for (const CookieVec& all : {reels(), reelhost::allShots()})
      for (const Cookie& log : all)
        logs[text(log)] = reelIdOf(log) + " " + fieldOf(log, "bin") + " " + std::to_string(shotsOf("R1").count());
    return logs;
  };
  std::mt19937 random(11);
  const auto below = [&](std::size_t bound) { return random() % bound; };
  std::int64_t last = 3;
  for (int round = 0; round < 60; ++round) {
    for (std::size_t commits = 1 + below(3); commits > 0; --commits) {
      const auto any = [&] { return static_cast<std::int64_t>(1 + below(static_cast<std::size_t>(last))); };
      const std::int64_t number = any();
      const bool isThere = elsewhere_->stored(number).number != 0;
      switch (below(4)) {
      case 0:
        elsewhere_->commitLogs({newLog(++last, below(2) == 0 ? 9 : 1, "R" + std::to_string(below(6)))});
        break;
      case 1:
        elsewhere_->remove({number});
        break;
      case 2:
        elsewhere_->commitLogs({isThere ? with(number, "bin", std::to_string(below(3))) : newLog(number, 9, "R1")});
        break;
      default:
        elsewhere_->commitLogs(
            {isThere ? with(number, "reelid", "R" + std::to_string(below(6))) : newLog(number, 1, "R1")});
      }
    }
    applyChangesFromElsewhere();
    const auto applied = contents();
    open();
    ASSERT_EQ(applied, contents()) << "round " << round;
    reelhost::idle();
  }
}

} // namespace
