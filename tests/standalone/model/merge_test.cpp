// SPDX-License-Identifier: Apache-2.0
//
// Changes that stay in memory over idle, and commits of others that come in between.
#include <optional>

#include "reelhost/conflict.h"
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
using reelhost::Conflict;
using reelhost::KeptList;
using reelhost::KeyValues;
using reelhost::StoredLog;
using State = reelhost::ForeignChanges::State;
using Texts = std::vector<std::string>;

/// A project in memory that others commit to, by the store that this one forwards to.
class SharedStore final : public ForwardingStore {
public:
  explicit SharedStore(std::shared_ptr<reelhost::Store> to) : ForwardingStore(std::move(to)) {}
  void begin(Access access, std::chrono::milliseconds busyTimeout) override
  {
    ForwardingStore::begin(access, busyTimeout);
    known_ = feed()->position();
  }
  void commit(const Changes& changes) override
  {
    ForwardingStore::commit(changes);
    known_ = feed()->position();
  }
  bool changedElsewhere() override { return std::exchange(known_, feed()->position()) != known_; }

private:
  reelhost::FeedPosition known_;
};

/// Logs 1 and 2 are the reels R1 and R2, log 3 is a shot of R1, log 4 one of R2.
class Merge : public HostTest, public testing::WithParamInterface<std::string> {
protected:
  void SetUp() override
  {
    if (GetParam() == "memory") {
      const std::shared_ptr<reelhost::Store> memory = reelhost::makeMemoryStore(info());
      elsewhere_.emplace(memory);
      reelhost::openProject(std::make_unique<SharedStore>(memory), Access::Write);
    } else {
      reelhost::createSqliteProject(file_, info(), {});
      elsewhere_.emplace(file_);
      reelhost::openProject(reelhost::makeSqliteStore(file_), Access::Write);
    }
    first_ = addLog(9, "R1");
    second_ = addLog(9, "R2");
    shot_ = addLog(1, "R1");
    otherShot_ = addLog(1, "R2");
    reelhost::commit();
    reelhost::idle();
  }

  static void set(const Cookie& log, const char* key, const char* value)
  {
    withLog(log, [&](Edit& edit) { edit.config().set(key, value, nullptr); });
  }
  static void erase(const Cookie& log)
  {
    CookieVec logs;
    logs.add(log);
    reelhost::deleteLogs(logs);
  }

  static Changes by(const std::string& user, std::vector<StoredLog> logs, std::vector<std::int64_t> deleted = {})
  {
    Changes changes;
    changes.logs = std::move(logs);
    changes.deleted = std::move(deleted);
    changes.origin.time = 1'700'000'000;
    changes.origin.user = user;
    changes.origin.machine = "edit3";
    changes.origin.command = "reeldb set";
    return changes;
  }
  StoredLog with(std::int64_t number, const std::string& key, const std::string& value)
  {
    StoredLog log = elsewhere_->stored(number);
    std::erase_if(log.fields, [&](const auto& field) { return field.first == key; });
    log.fields.emplace_back(key, value);
    return log;
  }
  std::string storedField(std::int64_t number, const std::string& key)
  {
    for (const auto& [found, value] : elsewhere_->stored(number).fields)
      if (found == key)
        return value;
    return "<absent>";
  }
  StoredLog newLog(int type, const std::string& reelId)
  {
    StoredLog log;
    elsewhere_->read([&](reelhost::Store& store) { log.number = store.nextNumber(); });
    log.uuid.fill(static_cast<unsigned char>(0x80 + log.number));
    log.type = type;
    log.fields = {{"reelid", reelId}};
    return log;
  }

  /// Commits the changes elsewhere between a change here and the attempt to store it. The Conflict is the same whether
  /// the application stores first or asks for changes of others first, and nothing changes by it.
  std::string conflictOf(const std::function<void()>& here, const Changes& elsewhere)
  {
    here();
    reelhost::idle();
    elsewhere_->commit(elsewhere);
    const std::string text = errorOf([] { reelhost::commit(); });
    EXPECT_EQ(errorOf([] { applyChangesFromElsewhere(); }), text);
    EXPECT_EQ(errorOf([] { reelhost::commit(); }), text);
    EXPECT_TRUE(reelhost::hasChanges());
    EXPECT_TRUE(reelhost::reloadIfChangedElsewhere());
    EXPECT_FALSE(reelhost::hasChanges());
    const std::string kind = "Conflict: ";
    EXPECT_EQ(text.substr(0, kind.size()), kind);
    return text.substr(std::min(text.size(), kind.size()));
  }
  /// The same where the changes do not meet: @p check is true after both orders.
  void expectTogether(const std::function<void()>& here, const Changes& elsewhere, const std::function<void()>& check)
  {
    here();
    reelhost::idle();
    elsewhere_->commit(elsewhere);
    EXPECT_TRUE(reelhost::commit());
    EXPECT_EQ(applyChangesFromElsewhere().state, State::Applied);
    check();
    EXPECT_EQ(applyChangesFromElsewhere().state, State::Nothing);
  }

  static inline const std::string byJo_ = " (by jo on edit3 at 2023-11-14T22:13:20Z, revision 2: reeldb set)";
  TempFolder folder_;
  const std::filesystem::path file_ = folder_.path() / "shared.reels";
  std::optional<Elsewhere> elsewhere_;
  Cookie first_, second_, shot_, otherShot_;
};

INSTANTIATE_TEST_SUITE_P(Stores, Merge, testing::Values("memory", "sqlite"),
                         [](const auto& which) { return which.param; });

TEST_P(Merge, FieldsOfOneReelAreStoredTogether)
{
  set(first_, "bin", "here");
  reelhost::idle();
  elsewhere_->commit(by("jo", {with(1, "map", "there"), with(2, "bin", "there")}));
  EXPECT_TRUE(reelhost::commit());
  EXPECT_FALSE(reelhost::hasChanges());
  EXPECT_EQ(storedField(1, "bin"), "here");
  EXPECT_EQ(storedField(1, "map"), "there");
  EXPECT_EQ(storedField(2, "bin"), "there");
  EXPECT_EQ(fieldOf(first_, "map"), "<absent>"); // until it is applied
  EXPECT_EQ(errorOf([this] { set(second_, "map", "here"); }).substr(0, 5), "Busy:");
  const reelhost::ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_EQ(texts(changes.changedReels), (Texts{text(first_), text(second_)}));
  EXPECT_EQ(fieldOf(first_, "bin"), "here");
  EXPECT_EQ(fieldOf(first_, "map"), "there");
  EXPECT_EQ(fieldOf(second_, "bin"), "there");
  set(second_, "map", "here");
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(storedField(2, "map"), "here");
}

TEST_P(Merge, FieldsOfOthersAreShownBeforeTheChangeIsStored)
{
  set(first_, "bin", "here");
  reelhost::idle();
  elsewhere_->commit(by("jo", {with(1, "map", "there")}));
  EXPECT_EQ(texts(applyChangesFromElsewhere().changedReels), Texts{text(first_)});
  EXPECT_EQ(fieldOf(first_, "bin"), "here");
  EXPECT_EQ(fieldOf(first_, "map"), "there");
  elsewhere_->commit(by("jo", {with(1, "map", "there again")}));
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(storedField(1, "bin"), "here");
  EXPECT_EQ(storedField(1, "map"), "there again");
}

TEST_P(Merge, OwnChangesAreNotThoseOfOthers)
{
  set(first_, "bin", "here");
  addLog(9, "R5");
  erase(otherShot_);
  reelhost::idle();
  elsewhere_->commit(by("jo", {with(2, "bin", "there")}));
  EXPECT_TRUE(reelhost::commit());
  RecordingListener listener;
  const reelhost::ForeignChanges changes = applyChangesFromElsewhere();
  EXPECT_FALSE(changes.reelSet);
  EXPECT_EQ(texts(changes.changedReels), Texts{text(second_)});
  EXPECT_EQ(listener.heard, Texts{"modified 1"});
  EXPECT_EQ(reels().count(), 3);
}

TEST_P(Merge, NewLogsOfBothSidesAreThere)
{
  const StoredLog other = [this] {
    addLog(9, "R5");
    reelhost::idle();
    return newLog(9, "R6");
  }();
  elsewhere_->commit(by("jo", {other}));
  EXPECT_EQ(applyChangesFromElsewhere().newReel, "R6");
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(storedField(5, "reelid"), "R5");
  EXPECT_EQ(storedField(6, "reelid"), "R6");
  EXPECT_EQ(reels().count(), 4);
}

TEST_P(Merge, SameChangeIsNoConflict)
{
  expectTogether([this] { set(first_, "bin", "x"); }, by("jo", {with(1, "bin", "x")}),
                 [this] { EXPECT_EQ(storedField(1, "bin"), "x"); });
  expectTogether([this] { erase(shot_); }, by("jo", {}, {3}), [this] { EXPECT_FALSE(opens(shot_)); });
}

TEST_P(Merge, FieldWithTwoValuesIsAConflictAndNothingIsStored)
{
  elsewhere_->commit(by("jo", {with(1, "bin", "before")}));
  applyChangesFromElsewhere();
  EXPECT_EQ(conflictOf([this] { set(first_, "bin", "here"); }, by("ann", {with(1, "bin", "there")})),
            "R1: bin is \"here\" here, and another process stored \"there\" meanwhile (by ann on edit3 at "
            "2023-11-14T22:13:20Z, revision 3: reeldb set)");
  EXPECT_EQ(storedField(1, "bin"), "there");
  EXPECT_EQ(fieldOf(first_, "bin"), "there");
}

TEST_P(Merge, ConflictSaysNothingOfACommitWithoutOriginButItsRevision)
{
  Changes changes;
  changes.logs = {with(1, "bin", "there")};
  EXPECT_EQ(conflictOf([this] { set(first_, "bin", "here"); }, changes),
            "R1: bin is \"here\" here, and another process stored \"there\" meanwhile (revision 2)");
}

TEST_P(Merge, FieldThatTheOtherSideRemovedIsStoredAsNothing)
{
  StoredLog without = elsewhere_->stored(1);
  elsewhere_->commit(by("ann", {with(1, "bin", "before")}));
  applyChangesFromElsewhere();
  EXPECT_EQ(conflictOf([this] { set(first_, "bin", "here"); }, by("jo", {without})).substr(0, 66),
            "R1: bin is \"here\" here, and another process stored nothing meanwhi");
}

TEST_P(Merge, ConflictNamesTheCommitThatChangedTheFieldLast)
{
  set(first_, "bin", "here");
  reelhost::idle();
  elsewhere_->commit(by("kim", {with(1, "bin", "first")}));
  elsewhere_->commit(by("jo", {with(1, "bin", "there")}));
  elsewhere_->commit(by("ann", {with(1, "map", "x")}));
  try {
    reelhost::commit();
    FAIL();
  } catch (const Conflict& conflict) {
    EXPECT_EQ(conflict.meeting().subject, "R1");
    EXPECT_EQ(conflict.meeting().field, "bin");
    EXPECT_EQ(conflict.meeting().here, "here");
    EXPECT_EQ(conflict.meeting().stored, "there");
    EXPECT_EQ(conflict.meeting().revision.number, 3);
    EXPECT_EQ(conflict.meeting().revision.origin.user, "jo");
  }
}

TEST_P(Merge, TwoTypesAreAConflict)
{
  StoredLog other = elsewhere_->stored(1);
  other.reelType = "there";
  EXPECT_EQ(conflictOf([this] { withLog(first_, [](Edit& edit) { edit.reelType("here"); }); }, by("jo", {other})),
            "R1: reel type is \"here\" here, and another process stored \"there\" meanwhile" + byJo_);
}

TEST_P(Merge, ChangeOfADeletedLogIsAConflict)
{
  EXPECT_EQ(conflictOf([this] { set(first_, "bin", "here"); }, by("jo", {}, {1, 3})),
            "R1: changed here, and deleted by another process meanwhile" + byJo_);
}

TEST_P(Merge, DeletionOfAChangedLogIsAConflict)
{
  EXPECT_EQ(conflictOf([this] { erase(otherShot_); }, by("jo", {with(4, "x", "y")})),
            "R2: deleted here, and changed by another process meanwhile" + byJo_);
}

TEST_P(Merge, OptionsAreMergedOneByOne)
{
  const auto setOption = [](const char* key, const char* value) { EditManager::ProjOpts().set(key, value, nullptr); };
  const auto options = [](const KeyValues& values) {
    Changes changes = by("jo", {});
    changes.options = values;
    return changes;
  };
  expectTogether([&] { setOption("a", "here"); }, options({{"b", "there"}}),
                 [&] {
                   elsewhere_->read([](reelhost::Store& store) {
                     EXPECT_EQ(store.options(), (KeyValues{{"a", "here"}, {"b", "there"}}));
                   });
                   EXPECT_STREQ(EditManager::ProjOpts().in("b"), "there");
                 });
  setOption("a", "both");
  reelhost::idle();
  elsewhere_->commit(options({{"a", "both"}}));
  applyChangesFromElsewhere();
  setOption("a", "here");
  EXPECT_TRUE(reelhost::commit()) << "it was that before both changed it";
  setOption("a", "here again");
  reelhost::idle();
  elsewhere_->commit(options({{"b", "there again"}}));
  applyChangesFromElsewhere();
  EXPECT_STREQ(EditManager::ProjOpts().in("a"), "here again");
  reelhost::commit();
  EXPECT_EQ(conflictOf([&] { setOption("a", "x"); }, options({{"a", "y"}})),
            "TEST: option a is \"x\" here, and another process stored \"y\" meanwhile (by jo on edit3 at "
            "2023-11-14T22:13:20Z, revision 8: reeldb set)");
}

TEST_P(Merge, ListThatBothSidesChangeIsAConflict)
{
  KeptList list;
  list.file = "cut.edl";
  list.format = "edl";
  list.digest = reelhost::digestOf("bytes");
  list.number = reelhost::keepList(list, "bytes");
  reelhost::commit();
  reelhost::idle();
  Changes other = by("jo", {});
  other.deletedLists = {list.number};
  EXPECT_EQ(conflictOf([&] { reelhost::keepList(list, "bytes"); }, other),
            "cut.edl: changed here, and by another process meanwhile (by jo on edit3 at 2023-11-14T22:13:20Z, "
            "revision 3: reeldb set)");
}

TEST_P(Merge, ListOfADeletedShotIsAConflict)
{
  KeptList list;
  list.file = "cut.edl";
  list.format = "edl";
  list.digest = reelhost::digestOf("bytes");
  list.events.emplace_back().shot = 3;
  EXPECT_EQ(conflictOf([&] { reelhost::keepList(list, "bytes"); }, by("jo", {}, {3})),
            "cut.edl: changed here, and another process deleted a shot of it meanwhile" + byJo_);
}

TEST_P(Merge, OneIdentifierForTwoReelsIsAConflict)
{
  const std::string fact = ": a reel got this identifier here, and another one by another process meanwhile";
  StoredLog r5 = newLog(9, "r5");
  r5.number = 7;
  EXPECT_EQ(conflictOf([] { addLog(9, "R5"); }, by("jo", {r5})), "R5" + fact + byJo_);
  EXPECT_EQ(
      conflictOf([this] { rename(first_, "R6"); }, by("jo", {with(2, "reelid", "R6")})).substr(0, 2 + fact.size()),
      "R6" + fact);
}

TEST_P(Merge, TwoReelsOfOneIdentifierBeforeAreNoConflict)
{
  elsewhere_->commit(by("jo", {newLog(9, "R1")}));
  applyChangesFromElsewhere();
  expectTogether([this] { set(first_, "bin", "here"); }, by("jo", {with(5, "bin", "there")}),
                 [this] {
                   EXPECT_EQ(storedField(1, "bin"), "here");
                   EXPECT_EQ(storedField(5, "bin"), "there");
                 });
}

TEST_P(Merge, ShotOfAReelThatIsGoneIsAConflict)
{
  EXPECT_EQ(conflictOf([] { addLog(1, "r2"); }, by("jo", {}, {2, 4})),
            "r2: a shot names this reel here, and another process deleted or renamed it meanwhile" + byJo_);
  EXPECT_EQ(conflictOf([this] { set(shot_, "reelid", "R1"), addLog(1, "R1"); },
                       by("jo", {with(1, "reelid", "R9"), with(3, "reelid", "R9")}))
                .substr(0, 76),
            "R1: a shot names this reel here, and another process deleted or renamed it m");
}

TEST_P(Merge, NewShotOfAReelThatIsDeletedHereIsAConflict)
{
  EXPECT_EQ(conflictOf(
                [this] {
                  erase(second_);
                  erase(otherShot_);
                },
                by("jo", {newLog(1, "R2")})),
            "R2: deleted or renamed here, and another process stored a shot of it meanwhile" + byJo_);
}

TEST_P(Merge, ShotOfAReelThatWasMissingBeforeIsNoConflict)
{
  StoredLog shot = newLog(1, "R8");
  shot.number = 7;
  expectTogether([] { addLog(1, "R9"); }, by("jo", {shot, with(1, "bin", "x")}),
                 [this] { EXPECT_EQ(storedField(1, "bin"), "x"); });
}

TEST_P(Merge, WhatOneSideMadeAloneIsNoConflict)
{
  expectTogether([this] { set(first_, "bin", "here"); }, by("jo", {newLog(9, "R1")}), // two reels of one identifier
                 [this] { EXPECT_EQ(storedField(1, "bin"), "here"); });
  expectTogether(
      [this] {
        set(otherShot_, "x", "here");
        erase(second_); // a shot without its reel
      },
      by("jo", {with(1, "map", "there")}), [this] { EXPECT_EQ(storedField(4, "x"), "here"); });
}

TEST_P(Merge, NameThatOthersTookAwayIsNoNameHereAnyMore)
{
  set(first_, "bin", "here");
  reelhost::idle();
  elsewhere_->commit(by("jo", {with(1, "reelid", "R9"), with(3, "reelid", "R9")}));
  EXPECT_TRUE(applyChangesFromElsewhere().reelSet);
  elsewhere_->commit(by("jo", {newLog(1, "R1")})); // a shot without a reel
  EXPECT_TRUE(reelhost::commit());
  EXPECT_EQ(storedField(1, "reelid"), "R9");
  EXPECT_EQ(storedField(1, "bin"), "here");
}

TEST_P(Merge, UndeletionThatWaitsIsInTheWay)
{
  erase(shot_);
  reelhost::commit();
  reelhost::undelete();
  reelhost::idle();
  elsewhere_->commit(by("jo", {with(1, "bin", "x")}));
  EXPECT_NE(errorOf([] { reelhost::commit(); }).find("changes made here are not stored (read it again)"),
            std::string::npos);
  EXPECT_TRUE(reelhost::hasChanges());
}

TEST_P(Merge, HistoryThatIsForgottenIsInTheWay)
{
  elsewhere_->commit(by("jo", {with(1, "bin", "x")}));
  applyChangesFromElsewhere();
  set(second_, "bin", "here");
  reelhost::idle();
  elsewhere_->commit(by("jo", {with(1, "bin", "y")}));
  Changes forget;
  forget.forgetBefore = 3;
  elsewhere_->commit(forget);
  const std::string text = errorOf([] { reelhost::commit(); });
  EXPECT_EQ(text.substr(0, 5), "Busy:");
  EXPECT_NE(text.find("changes made here are not stored (read it again)"), std::string::npos);
  EXPECT_EQ(storedField(2, "bin"), "<absent>");
}

} // namespace
