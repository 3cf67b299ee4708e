// SPDX-License-Identifier: Apache-2.0
//
// What people decide about names and shots: the same list again, another list with the same names, and undo after each.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "app/alias.h"
#include "app/diff.h"
#include "app/history.h"
#include "app/import.h"
#include "app/json/json.h"
#include "app/kept_lists.h"
#include "app/merge.h"
#include "app/needs.h"
#include "app/reels.h"
#include "app/rename.h"
#include "app/split.h"
#include "app/state.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Strings = std::vector<std::string>;

struct Event {
  std::string reel;
  int second = 10;
  std::string id = {}; ///< of a row of the source table
};

class Decisions : public reeldb_tests::AppTest {
protected:
  app::ListFile list(const std::string& file, const std::vector<Event>& events)
  {
    std::string text = "TITLE: " + file + "\n";
    int number = 0;
    for (const Event& event : events) {
      std::string reel = event.reel;
      reel.resize(std::max<std::size_t>(8, reel.size()), ' ');
      const std::string second = std::to_string(event.second);
      text += "00" + std::to_string(++number) + "  " + reel + " V     C        01:00:" + second +
              ":00 01:00:" + second + ":10 10:00:" + second + ":00 10:00:" + second + ":10\n";
    }
    for (const Event& event : events)
      if (!event.id.empty())
        text += ">>> SOURCE " + event.reel + " " + event.reel + " " + event.id + "\n";
    return app::readListFile(folder_.write(file, text));
  }

  app::ImportReport import(app::ListFile file, const std::vector<app::OtherReel>& others = {},
                           const app::Replacing& replacing = {})
  {
    app::Session session({}, app::Access::Write);
    return app::importLists(session, {std::move(file)}, false, {}, replacing, {.others = others});
  }

  /// What one operation returns, in a session of its own.
  template <class Operation>
  static auto with(app::Access access, Operation operation)
  {
    app::Session session({}, access);
    return operation(session);
  }
  template <class Operation>
  static auto writing(Operation operation)
  {
    return with(app::Access::Write, operation);
  }

  static void undo()
  {
    writing([](app::Session& session) { return app::undo(session, {}, true); });
  }

  /// "REEL 3" for each reel, sorted.
  static Strings reels()
  {
    return with(app::Access::Read, [](app::Session& session) {
      Strings reels;
      for (const app::Reel& reel : app::listReels(session))
        reels.push_back(reel.id + " " + std::to_string(reel.shots));
      std::sort(reels.begin(), reels.end());
      return reels;
    });
  }

  static std::string state()
  {
    return with(app::Access::Read, [](app::Session& session) { return app::jsonText(app::readState(session)); });
  }

  /// The first reel that the list needs.
  static std::string neededReel(const app::ListFile& file)
  {
    return with(app::Access::Read, [&](app::Session& session) { return app::needsOfList(session, file).front().id; });
  }
  /// "REEL 3" for each reel that the list needs, with its number of shots, in the order of the list.
  static Strings needs(const app::ListFile& file)
  {
    return with(app::Access::Read, [&](app::Session& session) {
      Strings needs;
      for (const app::Need& need : app::needsOfList(session, file))
        needs.push_back(need.id + " " + std::to_string(need.shots));
      return needs;
    });
  }

  static std::vector<std::int64_t> shotsOf(const std::string& reel)
  {
    return with(app::Access::Read, [&](app::Session& session) {
      std::vector<std::int64_t> numbers;
      for (const app::NumberedShot& shot : app::shotsOfReel(session, reel).shots)
        numbers.push_back(shot.number);
      return numbers;
    });
  }

  static app::Merged merge(const Strings& from, const std::string& into, bool force = false)
  {
    return writing([&](app::Session& session) { return app::mergeReels(session, from, into, force, false); });
  }
  static app::ReelAliases alias(const std::string& reel, const Strings& names, bool remove = false)
  {
    return writing([&](app::Session& session) { return app::changeAliases(session, reel, names, remove, false); });
  }
  static app::Split split(const std::string& reel, const std::string& newReel, const app::SplitBy& by)
  {
    return writing([&](app::Session& session) { return app::splitReel(session, reel, newReel, by, false); });
  }

  /// Expects that the same list changes nothing.
  void expectNothingNew(app::ListFile file)
  {
    const std::string before = state();
    const app::ImportReport report = import(std::move(file));
    EXPECT_FALSE(report.changes);
    EXPECT_EQ(state(), before);
  }
};

const app::Replacing byName{true, {}};

// ---- Reels that people named --------------------------------------------------------------------

TEST_F(Decisions, ReelThatAPersonMadeKeepsItsNameWhenAListBringsALongerOne)
{
  import(list("cut.edl", {{ "A001C001" }}));
  EXPECT_EQ(reels(), (Strings{"A001C001 1"}));
  undo();
  writing([](app::Session& session) { return app::createReel(session, "A001C001", {}); });
  import(list("cut.edl", {{ "A001C001" }}));
  import(list("whole.edl", {{ "A001C001_200303_F701", 20 }}));
  EXPECT_EQ(reels(), (Strings{"A001C001 1", "A001C001_200303_F701 1"}));
}

TEST_F(Decisions, ReelThatAPersonMadeTakesItsShortForms)
{
  writing([](app::Session& session) { return app::createReel(session, "A001C001_200303_F701", {}); });
  import(list("cut.edl", {{ "A001C001" }}));
  EXPECT_EQ(reels(), (Strings{"A001C001_200303_F701 1"}));
}

TEST_F(Decisions, TwoReelsThatAPersonMadeAreNotJoinedByASourceId)
{
  writing([](app::Session& session) { return app::createReel(session, "A001", {}); });
  writing([](app::Session& session) { return app::createReel(session, "B001", {}); });
  const std::string id = "060A2B340101010501010D4313000000AA55D8D7A0C54567A1B2C3D4E5F60718";
  import(list("one.edl", {{ "A001", 10, id }}));
  import(list("two.edl", {{ "B001", 20, id }}));
  EXPECT_EQ(reels(), (Strings{"A001 1", "B001 1"}));
}

// ---- alias --------------------------------------------------------------------------------------

TEST_F(Decisions, GivenNameMeansTheReelInTheSameAndInOtherLists)
{
  import(list("one.edl", {{ "A001" }}));
  alias("A001", {"TAPE_ONE"});
  import(list("two.edl", {{ "TAPE_ONE", 20 }}));
  EXPECT_EQ(reels(), (Strings{"A001 2"}));
  expectNothingNew(list("two.edl", {{"TAPE_ONE", 20}}));
  EXPECT_EQ(import(list("three.edl", {{"tape_one", 20}})).lists.front().shotsAdded, 0U);
  EXPECT_EQ(reels(), (Strings{"A001 2"}));
}

TEST_F(Decisions, GivenNameTakesTheShotsOfItsShortFormAndUndoTakesThatBack)
{
  import(list("one.edl", {{ "A001" }}));
  import(list("two.edl", {{ "Z677_13A", 20 }}));
  const std::string before = state();
  const app::Error refused = errorOf([&] { alias("A001", {"z677_13a"}); });
  EXPECT_EQ(refused.kind(), app::ErrorKind::Refused);
  EXPECT_EQ(std::string(refused.what()), "z677_13a: a reel has this name (reeldb merge joins two reels)");
  const app::ReelAliases given = alias("A001", {"Z677_13A_LONG"});
  ASSERT_EQ(given.moves.size(), 1U);
  EXPECT_EQ(given.moves.front().to, "A001");
  EXPECT_EQ(reels(), (Strings{"A001 2"}));
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, RemovedNameMeansWhatTheNamesSay)
{
  import(list("one.edl", {{ "A001" }}));
  alias("A001", {"TAPE_ONE"});
  import(list("two.edl", {{ "TAPE_ONE", 20 }}));
  const app::ReelAliases removed = alias("A001", {"TAPE_ONE"}, true);
  ASSERT_EQ(removed.moves.size(), 1U);
  EXPECT_EQ(removed.moves.front().from, "A001");
  EXPECT_EQ(reels(), (Strings{"A001 1", "TAPE_ONE 1"}));
  expectNothingNew(list("two.edl", {{"TAPE_ONE", 20}}));
  EXPECT_EQ(errorOf([&] { alias("A001", {"TAPE_ONE"}, true); }).kind(), app::ErrorKind::NotFound);
}

TEST_F(Decisions, NamesOfAReelSayWhereTheyComeFrom)
{
  import(list("one.edl", {{ "A001C001_200303_F701" }}));
  import(list("cut.edl", {{ "A001C001", 20 }}));
  writing([](app::Session& session) { return app::renameReel(session, "A001C001_200303_F701", "KITCHEN", false); });
  alias("KITCHEN", {"TAPE_ONE"});
  const app::ReelAliases names =
      with(app::Access::Read, [](app::Session& session) { return app::aliasesOf(session, "kitchen"); });
  EXPECT_EQ(names.reel, "KITCHEN");
  Strings found;
  for (const app::ReelName& name : names.names)
    found.push_back(name.name + " " + std::string(wordOf(name.origin)) + " " + std::string(lists::wordOf(name.match)));
  EXPECT_EQ(found, (Strings{"A001C001_200303_F701 renamed decided", "TAPE_ONE alias decided", "A001C001 lists cut"}));
  const app::NameMeaning meaning =
      with(app::Access::Read, [](app::Session& session) { return app::whichReel(session, "tape_one"); });
  ASSERT_EQ(meaning.candidates.size(), 1U);
  EXPECT_EQ(meaning.candidates.front().reasons, (std::vector<app::Reason>{app::Reason::Given}));
}

TEST_F(Decisions, NameOfAnotherReelIsRefusedUntilItIsTakenFromThere)
{
  import(list("one.edl", {{"A001"}, { "B001", 20 }}));
  alias("A001", {"TAPE"});
  EXPECT_EQ(std::string(errorOf([&] { alias("B001", {"TAPE"}); }).what()),
            "TAPE: already a name of A001 (reeldb alias --remove takes it from there)");
  alias("A001", {"TAPE"}, true);
  alias("B001", {"TAPE"});
  import(list("two.edl", {{ "TAPE", 30 }}));
  EXPECT_EQ(reels(), (Strings{"A001 1", "B001 2"}));
}

// ---- merge --------------------------------------------------------------------------------------

TEST_F(Decisions, JoinedReelsStayOneInTheSameAndInOtherLists)
{
  import(list("one.edl", {{"A001"}, {"TAPE_ONE", 20}, { "TAPE_ONE", 10 }}));
  const std::string before = state();
  const app::Merged merged = merge({"tape_one"}, "A001");
  EXPECT_EQ(merged.from, (Strings{"TAPE_ONE"}));
  EXPECT_EQ(merged.names, (Strings{"TAPE_ONE"}));
  EXPECT_EQ(reels(), (Strings{"A001 2"})); // the shot at 10 is the same one
  expectNothingNew(list("one.edl", {{"A001"}, {"TAPE_ONE", 20}, {"TAPE_ONE", 10}}));
  EXPECT_EQ(import(list("two.edl", {{"TAPE_ONE", 20}, {"A001", 10}})).lists.front().shotsAdded, 0U);
  EXPECT_EQ(reels(), (Strings{"A001 2"}));
  undo();
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, JoinedReelTakesItsNamesAndWhatAPersonPutThere)
{
  import(list("one.edl", {{"A001"}, {"B001", 20}, { "C001", 30 }}));
  writing([](app::Session& session) { return app::renameReel(session, "B001", "B002", false); });
  writing([](app::Session& session) { return app::moveShots(session, {5}, "B002", false); });
  ASSERT_EQ(reels(), (Strings{"A001 1", "B002 2", "C001 0"}));
  merge({"B002"}, "A001");
  EXPECT_EQ(reels(), (Strings{"A001 3", "C001 0"}));
  import(list("two.edl", {{"B001", 40}, {"B002", 50}, { "C001", 30 }}));
  EXPECT_EQ(reels(), (Strings{"A001 5", "C001 0"}));
}

TEST_F(Decisions, ReelsWithDifferentSourceIdsAreJoinedOnlyByForce)
{
  const std::string one = "060A2B340101010501010D4313000000AA55D8D7A0C54567A1B2C3D4E5F60718";
  const std::string other = "060A2B340101010501010D4313000000BB55D8D7A0C54567A1B2C3D4E5F60718";
  import(list("one.edl", {{"A001", 10, one}, { "B001", 20, other }}));
  EXPECT_EQ(errorOf([&] { merge({"B001"}, "A001"); }).kind(), app::ErrorKind::Refused);
  EXPECT_EQ(reels(), (Strings{"A001 1", "B001 1"}));
  merge({"B001"}, "A001", true);
  EXPECT_EQ(reels(), (Strings{"A001 2"}));
  expectNothingNew(list("one.edl", {{"A001", 10, one}, {"B001", 20, other}}));
}

/// Notes what clients are notified of, and whether two reels have one identifier then.
class Watcher : public ReelDbClient {
public:
  void reelDbChanged(LightweightString<char> id) override
  {
    events.emplace_back(id.c_str());
    std::vector<LightweightString<char>> ids;
    ReelDbManager::theReelDbManager()->getAllReelIds(ids, true);
    std::set<std::string> met;
    for (const LightweightString<char>& each : ids)
      EXPECT_TRUE(met.insert(each.c_str()).second) << each.c_str();
  }
  Strings events;
};

TEST_F(Decisions, ClientsAreNotifiedOnceOfAMerge)
{
  import(list("one.edl", {{"A001"}, {"B001", 20}, { "C001", 30 }}));
  writing([](app::Session& session) {
    Watcher watcher;
    app::mergeReels(session, {"B001", "C001"}, "A001", false, false);
    EXPECT_EQ(watcher.events, (Strings{""}));
    return 0;
  });
}

TEST_F(Decisions, ReelInUseIsNotDeletedByAMerge)
{
  import(list("one.edl", {{"A001"}, { "B001", 20 }}));
  writing([](app::Session& session) {
    session.manager().reelInUse("B001", true);
    const app::Error refused = errorOf([&] { app::mergeReels(session, {"B001"}, "A001", false, false); });
    EXPECT_EQ(refused.kind(), app::ErrorKind::Refused);
    app::mergeReels(session, {"A001"}, "B001", false, false);
    session.manager().reelInUse("B001", false);
    return 0;
  });
  EXPECT_EQ(reels(), (Strings{"B001 2"}));
}

TEST_F(Decisions, ReelInUseKeepsItsRecordAndItsNameWhenAListBringsALongerOne)
{
  import(list("cut.edl", {{ "A001C001" }}));
  writing([&](app::Session& session) {
    session.manager().reelInUse("A001C001", true);
    const auto report =
        app::importLists(session, {list("whole.edl", {{"A001C001_200303_F701", 20}, {"B001", 30}})}, false);
    session.manager().reelInUse("A001C001", false);
    return report;
  });
  EXPECT_EQ(reels(), (Strings{"A001C001 2", "B001 1"}));
}

TEST_F(Decisions, ReelInUseStaysWhenItsShotsGoToAnotherReel)
{
  import(list("cut.edl", {{ "A001C001" }}));
  import(list("whole.edl", {{ "A001C001_200303_F701", 20 }}));
  ASSERT_EQ(reels(), (Strings{"A001C001_200303_F701 2"}));
  writing([&](app::Session& session) {
    session.manager().reelInUse("A001C001_200303_F701", true);
    const auto report = app::changeAliases(session, "A001C001_200303_F701", {"X"}, false, false);
    EXPECT_TRUE(report.moves.empty());
    app::importLists(session, {list("other.edl", {{"A001C001_200303_G802", 30}})}, false);
    session.manager().reelInUse("A001C001_200303_F701", false);
    return 0;
  });
  EXPECT_EQ(reels(), (Strings{"A001C001 1", "A001C001_200303_F701 1", "A001C001_200303_G802 1"}));
}

TEST_F(Decisions, NameOfAJoinedReelIsNotThatOfAnotherOneUntilItIsTakenFromThere)
{
  import(list("one.edl", {{"SR05"}, {"SR005", 20}, { "C", 30 }}));
  merge({"SR05"}, "SR005");
  const std::string before = state();
  const auto create = [](app::Session& session) { return app::createReel(session, "sr05", {}); };
  const auto refused = [](const auto& operation) { return std::string(errorOf(operation).what()); };
  const std::string message = ": a name of SR005 (reeldb alias --remove SR005 ";
  EXPECT_EQ(refused([&] { writing(create); }), "sr05" + message + "sr05 takes it from there)");
  const std::string bySame = "SR05" + message + "SR05 takes it from there)";
  EXPECT_EQ(
      refused([] { writing([](app::Session& session) { return app::renameReel(session, "C", "SR05", false); }); }),
      bySame);
  EXPECT_EQ(refused([&] { split("C", "SR05", {.lists = {"one.edl"}, .names = {}, .shots = {}}); }), bySame);
  EXPECT_EQ(refused([&] { import(list("two.edl", {{ "C", 40 }}), {{ "C", "SR05" }}); }), bySame);
  EXPECT_EQ(state(), before);
  EXPECT_EQ(alias("SR005", {"SR05"}, true).moves.size(), 1U); // its shot goes back
  EXPECT_EQ(reels(), (Strings{"C 1", "SR005 1", "SR05 1"}));
  undo();
  split("SR005", "SR05", {.lists = {}, .names = {"SR05"}, .shots = {}}); // the reel's own name
  EXPECT_EQ(reels(), (Strings{"C 1", "SR005 1", "SR05 1"}));
}

TEST_F(Decisions, MergeTakesTheNamesFromReelsThatHadThemBefore)
{
  for (const char* const target : {"B", "D"}) {
    import(list("one.edl", {{"B"}, {"A", 20}, { "D", 30 }}));
    writing([](app::Session& session) { return app::renameReel(session, "A", "C", false); });
    writing([](app::Session& session) { return app::createReel(session, "A", {}); });
    merge({"A"}, target);
    import(list("two.edl", {{ "A", 40 }}));
    EXPECT_EQ(neededReel(list("three.edl", {{"A", 50}})), target);
    EXPECT_EQ(reels(), (Strings{std::string("B ") + (target[0] == 'B' ? "2" : "1"), "C 1",
                                std::string("D ") + (target[0] == 'D' ? "2" : "1")}));
    for (int i = 0; i < 5; ++i)
      undo();
  }
}

TEST_F(Decisions, ReelTakesAnotherNameOfItsOwn)
{
  import(list("one.edl", {{"SR05"}, { "SR005", 20 }}));
  merge({"SR05"}, "SR005");
  writing([](app::Session& session) { return app::renameReel(session, "SR005", "SR05", false); });
  EXPECT_EQ(reels(), Strings{"SR05 2"});
  expectNothingNew(list("one.edl", {{"SR05"}, {"SR005", 20}}));
}

// ---- split --------------------------------------------------------------------------------------

TEST_F(Decisions, ListThatIsPartedMeansTheNewReelAgainAndInNewVersions)
{
  import(list("one.edl", {{"A001C001"}, { "A001C001", 20 }}));
  import(list("two.edl", {{"A001C001"}, { "A001C001", 30 }}));
  const std::string before = state();
  split("A001C001", "A001C001_DAY2", {.lists = {"two.edl"}, .names = {}, .shots = {}});
  EXPECT_EQ(reels(), (Strings{"A001C001 2", "A001C001_DAY2 2"})); // the shot of both lists is two
  expectNothingNew(list("one.edl", {{"A001C001"}, {"A001C001", 20}}));
  expectNothingNew(list("two.edl", {{"A001C001"}, {"A001C001", 30}}));
  EXPECT_EQ(import(list("three.edl", {{"A001C001"}})).lists.front().shotsAdded, 0U);
  undo();
  import(list("two.edl", {{"A001C001"}, { "A001C001", 40 }}), {}, byName);
  EXPECT_EQ(reels(), (Strings{"A001C001 2", "A001C001_DAY2 2"})); // the one at 30 is gone, the one at 40 is new
  undo();
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, ReelThatAPersonPartedStaysWithoutAShot)
{
  import(list("one.edl", {{ "A001" }}));
  split("A001", "A001_DAY2", {.lists = {"one.edl"}, .names = {}, .shots = {}});
  import(list("one.edl", {{ "B001" }}), {}, byName);
  EXPECT_EQ(reels(), (Strings{"A001 0", "A001_DAY2 0", "B001 1"}));
}

TEST_F(Decisions, NameThatIsPartedMeansTheNewReelInAllLists)
{
  import(list("one.edl", {{"TAPE.1"}, { "TAPE_1", 20 }}));
  ASSERT_EQ(reels().size(), 1U);
  const std::string reel =
      with(app::Access::Read, [](app::Session& session) { return app::listReels(session).front().id; });
  const std::string other = reel == "TAPE.1" ? "TAPE_1" : "TAPE.1";
  const std::string before = state();
  split(reel, "TAPE 1B", {.lists = {}, .names = {other}, .shots = {}});
  EXPECT_EQ(reels(), (Strings{"TAPE 1B 1", reel + " 1"}));
  expectNothingNew(list("one.edl", {{"TAPE.1"}, {"TAPE_1", 20}}));
  import(list("two.edl", {{ other, 30 }}));
  EXPECT_EQ(reels(), (Strings{"TAPE 1B 2", reel + " 1"}));
  undo();
  undo();
  EXPECT_EQ(state(), before);
  EXPECT_EQ(errorOf([&] { split(reel, "X", {.lists = {}, .names = {"NOSUCH"}, .shots = {}}); }).kind(),
            app::ErrorKind::NotFound);
}

TEST_F(Decisions, ChosenShotsStayInTheNewReelWhateverListsCome)
{
  import(list("one.edl", {{"A001"}, { "A001", 20 }}));
  const std::string before = state();
  split("A001", "A001B", {.lists = {}, .names = {}, .shots = {shotsOf("A001").back()}});
  EXPECT_EQ(reels(), (Strings{"A001 1", "A001B 1"}));
  expectNothingNew(list("one.edl", {{"A001"}, {"A001", 20}}));
  EXPECT_EQ(import(list("two.edl", {{"A001"}, {"A001", 20}, {"A001", 30}})).lists.front().shotsAdded, 1U);
  EXPECT_EQ(reels(), (Strings{"A001 2", "A001B 1"}));
  undo();
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, SplitNeedsANameThatIsFree)
{
  import(list("one.edl", {{"A001"}, { "B001", 20 }}));
  const auto refusal = [&](const std::string& newReel, const app::SplitBy& by) {
    const app::Error error = errorOf([&] { split("A001", newReel, by); });
    EXPECT_EQ(error.kind(), app::ErrorKind::Refused);
    return std::string(error.what());
  };
  EXPECT_EQ(refusal("b001", {.lists = {"1"}, .names = {}, .shots = {}}),
            "B001: a reel has this name (choose another name, or move single shots there with reeldb shot move)");
  EXPECT_EQ(refusal("C001", {.lists = {}, .names = {"a001"}, .shots = {}}),
            "a001: the identifier of the reel itself (reeldb rename gives it another one)");
  EXPECT_EQ(errorOf([&] { split("A001", "A001B", {.lists = {}, .names = {}, .shots = shotsOf("B001")}); }).kind(),
            app::ErrorKind::Refused);
  EXPECT_EQ(reels(), (Strings{"A001 1", "B001 1"}));
}

// ---- import --as-new ----------------------------------------------------------------------------

TEST_F(Decisions, ReelOfOneListIsAnotherTapeAgainAndInNewVersions)
{
  import(list("one.edl", {{ "A001C001" }}));
  const std::string before = state();
  import(list("two.edl", {{"A001C001"}, { "B001", 20 }}), {{ "A001C001", "A001C001_DAY2" }});
  EXPECT_EQ(reels(), (Strings{"A001C001 1", "A001C001_DAY2 1", "B001 1"}));
  expectNothingNew(list("two.edl", {{"A001C001"}, {"B001", 20}}));
  expectNothingNew(list("one.edl", {{"A001C001"}}));
  EXPECT_EQ(neededReel(list("two.edl", {{"A001C001"}, {"B001", 20}})), "A001C001_DAY2");
  EXPECT_EQ(neededReel(list("one.edl", {{"A001C001"}})), "A001C001");
  EXPECT_EQ(import(list("three.edl", {{"A001C001"}})).lists.front().shotsAdded, 0U);
  undo();
  const app::ListDiff diff = with(app::Access::Read, [&](app::Session& session) {
    return app::compareLists(session, {list("two.edl", {{"A001C001", 30}, {"B001", 20}})}, false);
  });
  ASSERT_EQ(diff.trimmed.size(), 1U);
  EXPECT_EQ(diff.trimmed.front().after.reel, "A001C001_DAY2");
  import(list("two.edl", {{"A001C001", 30}, { "B001", 20 }}), {}, byName);
  EXPECT_EQ(reels(), (Strings{"A001C001 1", "A001C001_DAY2 1", "B001 1"}));
  undo();
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, ReelOfOneListIsAnotherTapeIfThatListComesFirst)
{
  import(list("two.edl", {{ "A001C001" }}), {{ "", "A001C001_DAY2" }});
  import(list("one.edl", {{ "A001C001" }}));
  EXPECT_EQ(reels(), (Strings{"A001C001 1", "A001C001_DAY2 1"}));
}

TEST_F(Decisions, NeedsOfANewVersionAreThoseOfItsList)
{
  import(list("one.edl", {{ "A001C001" }}));
  import(list("two.edl", {{ "A001C001", 20 }}), {{ "A001C001", "A001C001_DAY2" }});
  EXPECT_EQ(neededReel(list("new/two.edl", {{"A001C001", 30}})), "A001C001_DAY2");
  EXPECT_EQ(neededReel(list("three.edl", {{"A001C001", 30}})), "A001C001");
  import(list("other/two.edl", {{ "A001C001", 40 }}));
  EXPECT_EQ(neededReel(list("new/two.edl", {{"A001C001", 30}})), "A001C001"); // of one list or of the other
}

TEST_F(Decisions, WhatOneListMeansHoldsWhenThatListWasRemovedAndComesAgain)
{
  const auto one = list("one.edl", {{"A001C001"}}), two = list("two.edl", {{"A001C001"}, {"B001", 20}}),
             three = list("three.edl", {{"A001C001", 40}});
  import(one);
  import(two, {{ "A001C001", "A001C001_DAY2" }});
  import(three);
  split("A001C001", "A001C001_DAY3", {.lists = {"three.edl"}, .names = {}, .shots = {}});
  const std::string before = state();
  const Strings all = {"A001C001 1", "A001C001_DAY2 1", "A001C001_DAY3 1", "B001 1"};
  EXPECT_EQ(reels(), all);
  for (const char* const name : {"two.edl", "three.edl"})
    writing([&](app::Session& session) { return app::removeList(session, name, false); });
  EXPECT_EQ(reels(), (Strings{"A001C001 1", "A001C001_DAY2 0", "A001C001_DAY3 0"}));
  const app::ReelName given = with(app::Access::Read, [](app::Session& session) {
                                return app::aliasesOf(session, "A001C001_DAY2").names;
                              }).at(0);
  EXPECT_EQ(given.origin, app::NameOrigin::OneList);
  EXPECT_EQ(given.list, 0);
  EXPECT_EQ(neededReel(two), "A001C001_DAY2");
  EXPECT_EQ(neededReel(three), "A001C001_DAY3");
  EXPECT_EQ(neededReel(list("four.edl", {{"A001C001", 50}})), "A001C001");
  const app::ListDiff diff =
      with(app::Access::Read, [&](app::Session& session) { return app::compareLists(session, {two}, false); });
  EXPECT_EQ(diff.added.at(0).reel, "A001C001_DAY2");
  import(three);
  import(two);
  EXPECT_EQ(reels(), all);
  expectNothingNew(two);
  import(list("two.edl", {{"A001C001", 30}, { "B001", 20 }}), {}, byName); // another version of it
  EXPECT_EQ(reels(), all);
  for (int i = 0; i < 5; ++i)
    undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, ShotsThatAPersonMovedOrDeletedAreRespectedWhenTheirListWasRemovedAndComesAgain)
{
  const auto one = list("one.edl", {{"A001"}, {"A001", 20}, {"B001", 30}});
  import(one);
  const std::vector<std::int64_t> shots = shotsOf("A001");
  writing([&](app::Session& session) { return app::moveShots(session, {shots[0]}, "B001", false); });
  writing([&](app::Session& session) { return app::deleteShots(session, {shots[1]}, false); });
  writing([](app::Session& session) { return app::removeList(session, "one.edl", false); });
  EXPECT_EQ(reels(), (Strings{"A001 0", "B001 1"}));
  import(one);
  EXPECT_EQ(reels(), (Strings{"A001 0", "B001 2"}));
}

TEST_F(Decisions, OtherTapeIsRefusedIfItIsNotClear)
{
  import(list("one.edl", {{"A001"}, { "B001", 20 }}));
  const auto errorFor = [&](const std::string& file, const app::OtherReel& other) {
    return std::string(errorOf([&] { import(list(file, {{"A001"}, { "B001", 20 }}), {other}); }).what());
  };
  EXPECT_EQ(errorFor("two.edl", {"", "NEW"}), "NEW: the lists have several reels (say which: --as-new A001=NEW)");
  EXPECT_EQ(errorFor("two.edl", {"C001", "NEW"}), "C001: no clip of the lists has this reel");
  EXPECT_EQ(errorFor("two.edl", {"A001", "b001"}), "b001: a reel has this name (choose another name for the new reel)");
  EXPECT_EQ(std::string(errorOf([&] {
                          import(list("two.edl", {{ "TAPE_1" }}), {{ "", "TAPE.1" }});
                        }).what()),
            "TAPE.1: in lists the same name as TAPE_1 (choose another name)");
  EXPECT_EQ(std::string(errorOf([&] {
                          import(list("one.edl", {{"A001"}, { "B001", 20 }}), {{ "A001", "NEW" }});
                        }).what()),
            folder_.path().string() + "/one.edl: list 1 of the project already (reeldb split --list 1 parts it)");
  EXPECT_EQ(reels(), (Strings{"A001 1", "B001 1"}));
}

// ---- Single shots -------------------------------------------------------------------------------

TEST_F(Decisions, MovedShotIsTheSameShotInEveryList)
{
  import(list("one.edl", {{"A001"}, { "B001", 20 }}));
  const std::string before = state();
  const std::int64_t shot = shotsOf("A001").front();
  writing([&](app::Session& session) { return app::moveShots(session, {shot}, "B001", false); });
  EXPECT_EQ(reels(), (Strings{"A001 0", "B001 2"}));
  expectNothingNew(list("one.edl", {{"A001"}, {"B001", 20}}));
  EXPECT_EQ(import(list("two.edl", {{"A001"}})).lists.front().shotsAdded, 0U);
  EXPECT_EQ(reels(), (Strings{"A001 0", "B001 2"}));
  undo();
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, ListNeedsTheReelsInWhichItsShotsLie)
{
  const auto one = list("one.edl", {{"A001"}, {"A001", 20}, {"A001", 30}, {"B001", 40}});
  import(one);
  const std::vector<std::int64_t> shots = shotsOf("A001");
  writing([&](app::Session& session) { return app::moveShots(session, {shots[0]}, "B001", false); });
  writing([&](app::Session& session) {
    return app::splitReel(session, "A001", "A001_X", {.lists = {}, .names = {}, .shots = {shots[1]}}, false);
  });
  EXPECT_EQ(needs(one), (Strings{"B001 2", "A001_X 1", "A001 1"}));
  EXPECT_EQ(needs(list("two.edl", {{"a001", 20}, {"A001", 50}})), (Strings{"A001_X 1", "A001 1"}));
  writing([&](app::Session& session) { return app::deleteShots(session, {shots[2]}, false); });
  EXPECT_EQ(needs(one), (Strings{"B001 2", "A001_X 1"}));
  import(list("three.edl", {{ "A001", 50 }})); // lies where its name puts it
  EXPECT_EQ(needs(list("three.edl", {{"A001", 50}})), Strings{"A001 1"});
}

TEST_F(Decisions, ShotIsNotMovedToAReelThatHasIt)
{
  import(list("one.edl", {{"A001"}, { "B001" }}));
  const std::int64_t shot = shotsOf("A001").front();
  const app::Error refused =
      errorOf([&] { writing([&](app::Session& session) { return app::moveShots(session, {shot}, "B001", false); }); });
  EXPECT_EQ(refused.kind(), app::ErrorKind::Refused);
  EXPECT_EQ(reels(), (Strings{"A001 1", "B001 1"}));
}

TEST_F(Decisions, DeletedShotDoesNotComeBackAndUndoTakesThatBack)
{
  import(list("one.edl", {{"A001"}, { "A001", 20 }}));
  const std::string before = state();
  const std::int64_t shot = shotsOf("A001").front();
  writing([&](app::Session& session) { return app::deleteShots(session, {shot}, false); });
  EXPECT_EQ(reels(), (Strings{"A001 1"}));
  expectNothingNew(list("one.edl", {{"A001"}, {"A001", 20}}));
  const app::ImportReport report = import(list("two.edl", {{"a001"}}));
  EXPECT_EQ(report.lists.front().shotsLeftOut, 1U);
  EXPECT_EQ(reels(), (Strings{"A001 1"}));
  undo();
  writing([](app::Session& session) { return app::renameReel(session, "A001", "A002", false); });
  import(list("two.edl", {{"A001"}, { "A001", 30 }}));
  EXPECT_EQ(reels(), (Strings{"A002 2"}));
  undo();
  undo();
  undo();
  EXPECT_EQ(state(), before);
}

TEST_F(Decisions, DryRunsChangeNothing)
{
  import(list("one.edl", {{"A001"}, { "B001", 20 }}));
  const std::string before = state();
  const std::int64_t shot = shotsOf("A001").front();
  with(app::Access::Read,
       [&](app::Session& session) { return app::mergeReels(session, {"A001"}, "B001", false, true); });
  with(app::Access::Read,
       [&](app::Session& session) { return app::changeAliases(session, "A001", {"X"}, false, true); });
  with(app::Access::Read, [&](app::Session& session) {
    return app::splitReel(session, "A001", "X", {{"one.edl"}, {}, {}}, true);
  });
  with(app::Access::Read, [&](app::Session& session) { return app::moveShots(session, {shot}, "B001", true); });
  with(app::Access::Read, [&](app::Session& session) { return app::deleteShots(session, {shot}, true); });
  EXPECT_EQ(state(), before);
}

// ---- Real lists ---------------------------------------------------------------------------------

TEST_F(Decisions, OfRealListsAreKeptAndTakenBack)
{
  const char* const samples = std::getenv("REELDB_SAMPLES");
  if (!samples)
    GTEST_SKIP() << "REELDB_SAMPLES is not set";
  Strings files;
  for (const auto& entry : std::filesystem::directory_iterator(samples))
    if (const std::string name = entry.path().filename().string();
        entry.path().extension() == ".edl" || entry.path().extension() == ".ale")
      files.push_back(entry.path().string());
  ASSERT_FALSE(files.empty());
  std::sort(files.begin(), files.end());
  std::size_t merged = 0, parted = 0, named = 0;
  for (const std::string& file : files) {
    import(app::readListFile(file));
    const Strings ids = reelIds();
    const std::string before = state();
    const auto tryOut = [&](const std::function<void()>& decide) {
      decide();
      expectNothingNew(app::readListFile(file));
      undo();
      EXPECT_EQ(state(), before) << file;
    };
    if (ids.size() > 1) {
      tryOut([&] { merge({ids[1]}, ids[0], true); });
      ++merged;
    }
    if (!ids.empty()) {
      tryOut([&] { alias(ids[0], {"A NAME OF NO LIST"}); });
      ++named;
    }
    if (!ids.empty() && !shotsOf(ids[0]).empty()) {
      tryOut([&] { split(ids[0], "ANOTHER TAPE", {{std::filesystem::path(file).filename().string()}, {}, {}}); });
      tryOut([&] { split(ids[0], "ANOTHER TAPE", {{}, {}, {shotsOf(ids[0]).front()}}); });
      ++parted;
    }
    undo();
  }
  EXPECT_GT(merged, 5U);
  EXPECT_GT(parted, 5U);
  EXPECT_GT(named, 5U);
}

} // namespace
