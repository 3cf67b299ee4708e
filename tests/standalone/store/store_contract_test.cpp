// SPDX-License-Identifier: Apache-2.0
//
// What every store promises, tried on each of them.
#include <algorithm>
#include <climits>
#include <memory>
#include <stdexcept>
#include <tuple>

#include <gtest/gtest.h>

#include "standalone/model/forwarding_store.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
using Numbers = std::vector<std::int64_t>;
using Counts = std::vector<std::pair<std::string, std::int64_t>>;

class StoreWithoutHistory final : public reeldb_tests::ForwardingStore {
public:
  using ForwardingStore::ForwardingStore;
  History* history() override { return nullptr; }
};

class StoreContract : public testing::TestWithParam<const char*> {
protected:
  std::unique_ptr<Store> make(const KeyValues& options = {})
  {
    if (std::string(GetParam()) == "memory")
      return makeMemoryStore(exampleInfo(), options);
    if (std::string(GetParam()) == "without_history")
      return std::make_unique<StoreWithoutHistory>(makeMemoryStore(exampleInfo(), options));
    createSqliteProject(file(), exampleInfo(), options);
    return makeSqliteStore(file());
  }
  std::filesystem::path file() const { return folder_ / "contract.reels"; }

  /// @p read within a use for reading.
  template <class Read>
  auto in(Store& project, Read read)
  {
    project.begin(Access::Read, muchPatience);
    auto result = read();
    project.end();
    return result;
  }
  std::int64_t nextNumber(Store& project)
  {
    return in(project, [&] { return project.nextNumber(); });
  }
  std::int64_t trashCount(Store& project) { return trashCountOf(project); }
  Numbers lastDeletion(Store& project)
  {
    Numbers numbers;
    for (const StoredLog& log : deletedLogsOf(project))
      numbers.push_back(log.number);
    return numbers;
  }
  std::vector<std::string> lastDeletionWhole(Store& project)
  {
    std::vector<std::string> out;
    for (const StoredLog& log : deletedLogsOf(project))
      out.push_back(describe(log));
    return out;
  }
  Counts counts(Store& project)
  {
    return in(project, [&] { return project.countOthersByReel(); });
  }
  KeyValues options(Store& project)
  {
    return in(project, [&] { return project.options(); });
  }
  void remove(Store& project, Numbers numbers)
  {
    Changes changes;
    changes.deleted = std::move(numbers);
    store(project, changes);
  }
  void undelete(Store& project)
  {
    Changes changes;
    changes.inverse = inverseOfLastDeletion(project);
    store(project, changes);
  }
  void compact(Store& project)
  {
    Changes changes;
    changes.compact = true;
    store(project, changes);
  }

private:
  TempFolder folder_;
};

/// What a store that keeps a history promises besides.
class HistoryContract : public StoreContract {};

/// What a store that keeps lists promises besides.
class ListsContract : public HistoryContract {
protected:
  std::string bytes(Store& project, std::int64_t number)
  {
    return in(project, [&] { return project.lists()->listBytes(exampleList(number, {}).digest); });
  }
  bool hasBytes(Store& project, std::int64_t number)
  {
    return errorOf([&] { bytes(project, number); }) == "nothing";
  }
  void removeLists(Store& project, Numbers numbers)
  {
    Changes changes;
    changes.deletedLists = std::move(numbers);
    store(project, changes);
  }
};

const auto nameOfStore = [](const auto& which) { return std::string(which.param); };
INSTANTIATE_TEST_SUITE_P(Stores, StoreContract, testing::Values("memory", "sqlite", "without_history"), nameOfStore);
INSTANTIATE_TEST_SUITE_P(Stores, HistoryContract, testing::Values("memory", "sqlite"), nameOfStore);
INSTANTIATE_TEST_SUITE_P(Stores, ListsContract, testing::Values("memory", "sqlite"), nameOfStore);

StoredLog logWithFields(std::int64_t number, int type, KeyValues fields)
{
  StoredLog log = exampleLog(number, type);
  log.fields = std::move(fields);
  return log;
}

TEST_P(StoreContract, SubjectNamesTheProject)
{
  const auto project = make();
  EXPECT_EQ(project->subject(), std::string(GetParam()) == "sqlite" ? file().native() : "memory");
}

TEST_P(StoreContract, InfoComesBackAsCreated)
{
  const auto project = make();
  const ProjectInfo info = in(*project, [&] { return project->info(); });
  EXPECT_EQ(info.name, "Film \xC3\xA9");
  EXPECT_EQ(info.uuid, exampleInfo().uuid);
  EXPECT_EQ(info.frameRate, 3);
  EXPECT_EQ(info.outputFrameRate, 8);
}

TEST_P(StoreContract, OptionsComeBackOrderedByKey)
{
  const auto project = make({{"zeta", "1"}, {"alpha", ""}, {"Beta", "\xFF'\"\n"}});
  EXPECT_EQ(options(*project), (KeyValues{{"Beta", "\xFF'\"\n"}, {"alpha", ""}, {"zeta", "1"}}));
}

TEST_P(StoreContract, SettingOptionsReplacesAndAdds)
{
  const auto project = make({{"reeldb_defaultType", "Tape"}, {"other", "kept"}});
  Changes changes;
  changes.options = {{"reeldb_defaultType", "Disc"}, {"new", "x"}};
  store(*project, changes);
  EXPECT_EQ(options(*project), (KeyValues{{"new", "x"}, {"other", "kept"}, {"reeldb_defaultType", "Disc"}}));
}

TEST_P(StoreContract, NewProjectHoldsNothing)
{
  const auto project = make();
  EXPECT_EQ(options(*project), KeyValues{});
  EXPECT_EQ(nextNumber(*project), 1);
  EXPECT_EQ(numbersOf(*project), Numbers{});
  EXPECT_EQ(counts(*project), Counts{});
}

TEST_P(StoreContract, LogComesBackWhole)
{
  const auto project = make();
  StoredLog log;
  log.number = 1;
  for (std::size_t i = 0; i < log.uuid.size(); ++i)
    log.uuid[i] = static_cast<unsigned char>(255 - i);
  log.tag = 65535;
  log.kind = 'M';
  log.type = 9;
  log.imported = true;
  log.entireMedium = true;
  log.name = "Reel R1";
  log.videoChannels = INT_MAX;
  log.audioChannels = INT_MIN;
  log.reelType = "Tape 2ch";
  log.fields = {{"reelid", "R1"},    {"source_file", "a"}, {"source_in", "b"},
                {"source_out", "c"}, {"record_in", "d"},   {"record_out", "e"},
                {"tracks", "f"},     {"aliases", "g\nh"},  {"reel_last_device", "i"}};
  store(*project, logChanges({log}));
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(log)});
}

TEST_P(StoreContract, DefaultValuesComeBack)
{
  const auto project = make();
  StoredLog log;
  log.number = 1;
  store(*project, logChanges({log}));
  EXPECT_EQ(othersOf(*project), std::vector<std::string>{describe(log)});
}

TEST_P(StoreContract, TextsOfAnyBytesComeBackUnchanged)
{
  const auto project = make();
  std::string every;
  for (int byte = 1; byte < 256; ++byte)
    every.push_back(static_cast<char>(byte));
  const std::string large(1'000'000, '\xE9');
  StoredLog log = exampleLog(1, 9);
  log.name = every;
  log.reelType = "\xC0\x80\xED\xA0\x80";
  log.fields = {{"reelid", every}, {"aliases", "\xFE"}, {"", "empty key"}, {every, large}, {"k", "'; DROP TABLE logs"}};
  store(*project, logChanges({log}));
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(log)});
}

TEST_P(StoreContract, FieldsComeBackInOneOrder)
{
  const auto project = make();
  store(*project, logChanges({logWithFields(1, 1,
                                            {{"zz", "1"},
                                             {"aliases", "2"},
                                             {"reel_type", "3"},
                                             {"tracks", "4"},
                                             {"record_out", "5"},
                                             {"Upper", "6"},
                                             {"record_in", "7"},
                                             {"source_out", "8"},
                                             {"\xC3\xA9", "9"},
                                             {"source_in", "10"},
                                             {"source_file", "11"},
                                             {"reelid", "12"}})}));
  const StoredLog expected = logWithFields(1, 1,
                                           {{"reelid", "12"},
                                            {"source_file", "11"},
                                            {"source_in", "10"},
                                            {"source_out", "8"},
                                            {"record_in", "7"},
                                            {"record_out", "5"},
                                            {"tracks", "4"},
                                            {"aliases", "2"},
                                            {"Upper", "6"},
                                            {"reel_type", "3"},
                                            {"zz", "1"},
                                            {"\xC3\xA9", "9"}});
  EXPECT_EQ(othersOf(*project), std::vector<std::string>{describe(expected)});
}

TEST_P(StoreContract, EmptyValueIsThereAndAbsentKeyIsNot)
{
  const auto project = make();
  const StoredLog empty = logWithFields(1, 9, {{"reelid", ""}, {"tracks", ""}, {"other", ""}});
  const StoredLog absent = logWithFields(2, 9, {});
  store(*project, logChanges({empty, absent}));
  EXPECT_EQ(reelsOf(*project), (std::vector<std::string>{describe(empty), describe(absent)}));
}

TEST_P(StoreContract, ReelTypeOfTheRowIsNotTheKeyOfThatName)
{
  const auto project = make();
  StoredLog log = logWithFields(1, 9, {{"reel_type", "of the block"}});
  log.reelType = "of the row";
  store(*project, logChanges({log}));
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(log)});
}

TEST_P(StoreContract, ReelsAndOthersComeApartAndByNumber)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(4, 9), exampleLog(2, 9), exampleLog(3, 1), exampleLog(1, 0)}));
  EXPECT_EQ(reelsOf(*project), (std::vector<std::string>{describe(exampleLog(2, 9)), describe(exampleLog(4, 9))}));
  EXPECT_EQ(othersOf(*project), (std::vector<std::string>{describe(exampleLog(1, 0)), describe(exampleLog(3, 1))}));
}

TEST_P(StoreContract, FieldsStayWithTheirLogAmongManyOthers)
{
  const auto project = make();
  std::vector<StoredLog> logs;
  for (std::int64_t number = 1; number <= 400; ++number) {
    // Runs of reels with many keys between logs with none, so that few and many rows have to be skipped.
    StoredLog log = exampleLog(number, number % 100 < 60 ? 9 : 1);
    for (int i = 0; i < number % 8; ++i)
      log.fields.emplace_back("user" + std::to_string(i), std::to_string(number * 10 + i));
    if (number % 11 == 0)
      log.fields.clear();
    logs.push_back(log);
  }
  store(*project, logChanges(logs));
  std::vector<std::string> reels, others;
  for (const StoredLog& log : logs)
    (log.type == 9 ? reels : others).push_back(describe(log));
  EXPECT_EQ(reelsOf(*project), reels);
  EXPECT_EQ(othersOf(*project), others);
}

TEST_P(StoreContract, ChangedLogReplacesTheOldOneWhole)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  StoredLog changed = exampleLog(1, 1);
  changed.name = "other";
  changed.tag = 7;
  changed.kind = 'X';
  changed.uuid[15] = 1;
  changed.videoChannels = 40;
  changed.audioChannels = 41;
  changed.imported = !changed.imported;
  changed.entireMedium = !changed.entireMedium;
  changed.reelType = "";
  changed.fields = {{"source_out", "x"}, {"reel_userfield1", "y"}};
  store(*project, logChanges({changed}));
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(exampleLog(2, 9))});
  EXPECT_EQ(othersOf(*project), std::vector<std::string>{describe(changed)});
  EXPECT_EQ(nextNumber(*project), 3);
}

TEST_P(StoreContract, NextNumberFollowsTheHighestNumberEverStored)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(5, 9), exampleLog(3, 9)}));
  EXPECT_EQ(nextNumber(*project), 6);
  remove(*project, {5});
  EXPECT_EQ(nextNumber(*project), 6);
  compact(*project);
  EXPECT_EQ(nextNumber(*project), 6);
  store(*project, logChanges({exampleLog(4, 9)}));
  EXPECT_EQ(nextNumber(*project), 6);
  store(*project, logChanges({exampleLog(std::int64_t{1} << 40, 1)}));
  EXPECT_EQ(nextNumber(*project), (std::int64_t{1} << 40) + 1);
}

TEST_P(StoreContract, CountsFoldAsciiCaseAndLeaveOutReelsBinAndEmptyIdentifiers)
{
  const auto project = make();
  store(*project, logChanges({logWithFields(1, 9, {{"reelid", "R1"}}), logWithFields(2, 1, {{"reelid", "r1"}}),
                              logWithFields(3, 0, {{"reelid", "R1"}}), logWithFields(4, 1, {{"reelid", ""}}),
                              logWithFields(5, 1, {}), logWithFields(6, 1, {{"reelid", "\xC3\x89Z"}}),
                              logWithFields(7, 1, {{"reelid", "\xC3\xA9z"}}), logWithFields(8, 1, {{"reelid", "B"}}),
                              logWithFields(9, 1, {{"reelid", "B"}}), logWithFields(10, 1, {{"reelid", "\xFFQ"}})}));
  EXPECT_EQ(counts(*project), (Counts{{"b", 2}, {"r1", 2}, {"\xC3\x89z", 1}, {"\xC3\xA9z", 1}, {"\xFFq", 1}}));
  remove(*project, {8});
  store(*project, logChanges({logWithFields(3, 0, {{"reelid", "S"}})}));
  EXPECT_EQ(counts(*project),
            (Counts{{"b", 1}, {"r1", 1}, {"s", 1}, {"\xC3\x89z", 1}, {"\xC3\xA9z", 1}, {"\xFFq", 1}}));
}

TEST_P(StoreContract, CommitWithoutChangesChangesNothing)
{
  const auto project = make({{"a", "b"}});
  store(*project, logChanges({exampleLog(1, 9)}));
  store(*project, {});
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(exampleLog(1, 9))});
  EXPECT_EQ(options(*project), (KeyValues{{"a", "b"}}));
  EXPECT_EQ(nextNumber(*project), 2);
}

TEST_P(StoreContract, ReservedNumbersAreNotGivenOutAndCanBeUsed)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  Changes reservation;
  reservation.reservedLogs = 3;
  reservation.reservedLists = 2;
  store(*project, reservation);
  EXPECT_EQ(nextNumber(*project), 4);
  if (Lists* const lists = project->lists()) {
    EXPECT_EQ(in(*project, [&] { return lists->nextListNumber(); }), 3);
  }
  store(*project, logChanges({exampleLog(4, 9)}));
  store(*project, logChanges({exampleLog(2, 9), exampleLog(3, 1)}));
  EXPECT_EQ(nextNumber(*project), 5);
  EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 2, 4, 3}));
  reservation.reservedLogs = 1; // lower than before
  store(*project, reservation);
  EXPECT_EQ(nextNumber(*project), 5);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
}

TEST_P(StoreContract, UseForWritingSeesTheProjectAndEndKeepsIt)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  project->begin(Access::Write, muchPatience);
  EXPECT_EQ(project->nextNumber(), 2);
  EXPECT_EQ(project->info().name, exampleInfo().name);
  project->end();
  project->end(); // does nothing
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_P(StoreContract, BeginDuringAUseEndsThatUse)
{
  const auto project = make();
  project->begin(Access::Write, muchPatience);
  project->begin(Access::Read, muchPatience);
  EXPECT_EQ(project->nextNumber(), 1);
  project->begin(Access::Write, muchPatience);
  project->commit(logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_P(StoreContract, ExceptionOfASinkPassesAndTheStoreContinues)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 1)}));
  project->begin(Access::Write, muchPatience);
  int calls = 0;
  const auto sink = [&](StoredLog&&) {
    ++calls;
    throw std::runtime_error("enough");
  };
  EXPECT_THROW(project->readReels(sink), std::runtime_error);
  EXPECT_THROW(project->readOthers(sink), std::runtime_error);
  EXPECT_EQ(calls, 2);
  project->commit(logChanges({exampleLog(4, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 2, 4, 3}));
}

TEST_P(StoreContract, OwnCommitsAreNotChangesElsewhere)
{
  const auto project = make();
  EXPECT_FALSE(project->changedElsewhere());
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_FALSE(project->changedElsewhere());
  project->begin(Access::Read, muchPatience);
  EXPECT_FALSE(project->changedElsewhere());
  project->end();
  store(*project, logChanges({exampleLog(2, 9)}));
  EXPECT_FALSE(project->changedElsewhere());
}

TEST_P(StoreContract, CheckFindsNothingInASoundProject)
{
  const auto project = make({{"a", "b"}});
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 1), exampleLog(3, 9)}));
  remove(*project, {1});
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  project->begin(Access::Read, muchPatience);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  EXPECT_EQ(project->nextNumber(), 4); // the use goes on
  project->end();
}

TEST_P(StoreContract, DeletedLogsAreNotThere)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 1), exampleLog(3, 9), exampleLog(4, 1)}));
  remove(*project, {4, 1});
  EXPECT_EQ(numbersOf(*project), (Numbers{3, 2}));
}

TEST_P(StoreContract, InverseIsStoredBeforeAllOtherChanges)
{
  const auto project = make({{"first", "1"}});
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  StoredLog renamed = exampleLog(1, 9);
  renamed.name = "renamed";
  Changes changes = logChanges({renamed});
  changes.inverse = {1, false, {exampleLog(1, 9), exampleLog(5, 1)}, {2}, {{"second", "2"}}, {"first"}};
  changes.options = {{"second", "3"}};
  changes.deleted = {5};
  store(*project, changes);
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(renamed)});
  EXPECT_EQ(othersOf(*project), std::vector<std::string>{});
  EXPECT_EQ(options(*project), (KeyValues{{"second", "3"}}));
}

// --- History -------------------------------------------------------------------------------------

TEST_P(HistoryContract, DeletedLogsAreInTheTrashOnly)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 1), exampleLog(3, 9), exampleLog(4, 1)}));
  remove(*project, {4, 1});
  EXPECT_EQ(numbersOf(*project), (Numbers{3, 2}));
  EXPECT_EQ(lastDeletion(*project), (Numbers{1, 4}));
  EXPECT_EQ(lastDeletionWhole(*project),
            (std::vector<std::string>{describe(exampleLog(1, 9)), describe(exampleLog(4, 1))}));
  EXPECT_EQ(trashCount(*project), 2);
}

TEST_P(HistoryContract, CompactAndDeleteTogetherKeepTheNewDeletion)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  remove(*project, {1});
  Changes changes;
  changes.compact = true;
  changes.deleted = {2};
  store(*project, changes);
  EXPECT_EQ(lastDeletion(*project), (Numbers{2}));
  EXPECT_EQ(trashCount(*project), 1);
}

TEST_P(HistoryContract, DeletionIgnoresNumbersOfNoLogAndOfDeletedLogs)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  remove(*project, {1});
  remove(*project, {1, 2, 99, 2});
  EXPECT_EQ(lastDeletion(*project), (Numbers{2}));
  undelete(*project);
  EXPECT_EQ(lastDeletion(*project), (Numbers{1}));
  remove(*project, {99});
  EXPECT_EQ(lastDeletion(*project), (Numbers{1}));
}

TEST_P(HistoryContract, LogWrittenAfterItsDeletionIsBack)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  remove(*project, {1});
  StoredLog changed = exampleLog(1, 9);
  changed.name = "changed";
  store(*project, logChanges({changed}));
  EXPECT_EQ(reelsOf(*project), std::vector<std::string>{describe(changed)});
  EXPECT_EQ(lastDeletion(*project), Numbers{});
}

TEST_P(HistoryContract, LogWrittenAndDeletedInOneIsInTheTrashAsWritten)
{
  const auto project = make();
  Changes changes = logChanges({exampleLog(1, 9)});
  changes.deleted = {1};
  store(*project, changes);
  EXPECT_EQ(numbersOf(*project), Numbers{});
  EXPECT_EQ(lastDeletionWhole(*project), std::vector<std::string>{describe(exampleLog(1, 9))});
}

TEST_P(HistoryContract, UndeleteAndCompactTogetherKeepTheLastDeletion)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  remove(*project, {1});
  remove(*project, {2});
  Changes changes;
  changes.inverse = inverseOfLastDeletion(*project);
  changes.compact = true;
  store(*project, changes);
  EXPECT_EQ(numbersOf(*project), (Numbers{2}));
  EXPECT_EQ(trashCount(*project), 0);
}

TEST_P(HistoryContract, UndeleteAndDeleteTogetherMakeOneNewDeletion)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 9)}));
  remove(*project, {1});
  remove(*project, {2});
  Changes changes;
  changes.inverse = inverseOfLastDeletion(*project);
  changes.deleted = {3};
  store(*project, changes);
  EXPECT_EQ(numbersOf(*project), (Numbers{2}));
  EXPECT_EQ(lastDeletion(*project), (Numbers{3}));
  EXPECT_EQ(trashCount(*project), 2);
}

TEST_P(HistoryContract, UndeleteBringsDeletionsBackLastFirst)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 9), exampleLog(4, 9)}));
  remove(*project, {2});
  remove(*project, {3, 1});
  EXPECT_EQ(lastDeletion(*project), (Numbers{1, 3}));
  EXPECT_EQ(trashCount(*project), 3);
  undelete(*project);
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 3, 4}));
  EXPECT_EQ(lastDeletion(*project), (Numbers{2}));
  undelete(*project);
  EXPECT_EQ(reelsOf(*project), (std::vector<std::string>{describe(exampleLog(1, 9)), describe(exampleLog(2, 9)),
                                                         describe(exampleLog(3, 9)), describe(exampleLog(4, 9))}));
  EXPECT_EQ(lastDeletion(*project), Numbers{});
  EXPECT_EQ(trashCount(*project), 0);
  undelete(*project); // nothing is left: nothing happens
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 2, 3, 4}));
}

TEST_P(HistoryContract, CompactEmptiesTheTrashForGood)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 9)}));
  remove(*project, {1});
  remove(*project, {2});
  compact(*project);
  EXPECT_EQ(trashCount(*project), 0);
  EXPECT_EQ(inverseOfLastDeletion(*project).revision, 0);
  undelete(*project);
  EXPECT_EQ(numbersOf(*project), (Numbers{3}));
}

/// "number: created changed deleted", with "options" if it set some, and what it takes back.
std::vector<std::string> summaries(const std::vector<Revision>& revisions)
{
  std::vector<std::string> lines;
  for (const Revision& revision : revisions)
    lines.push_back(std::to_string(revision.number) + ": " + std::to_string(revision.created) + ' ' +
                    std::to_string(revision.changed) + ' ' + std::to_string(revision.deleted) +
                    (revision.setOptions ? " options" : "") +
                    (revision.takesBack == 0
                         ? ""
                         : (revision.isRedo ? " redoes " : " undoes ") + std::to_string(revision.takesBack)));
  return lines;
}

/// "before -> after" of each log by its name, with the next revision that changed it.
std::vector<std::string> described(const std::vector<LogChange>& changes)
{
  const auto nameOf = [](const std::optional<StoredLog>& log) { return log ? log->name : std::string("none"); };
  std::vector<std::string> lines;
  for (const LogChange& change : changes)
    lines.push_back(std::to_string(change.number) + ": " + (change.forgotten ? "forgotten" : nameOf(change.before)) +
                    " -> " + nameOf(change.after) + (change.next == 0 ? "" : ", " + std::to_string(change.next)));
  return lines;
}

using Texts = std::vector<std::string>;

StoredLog named(std::int64_t number, const std::string& name)
{
  StoredLog log = exampleLog(number, 9);
  log.name = name;
  return log;
}

TEST_P(HistoryContract, NewProjectHasNoRevisions)
{
  const auto project = make({{"a", "b"}});
  EXPECT_EQ(revisionsOf(*project).size(), 0u);
  EXPECT_EQ(lastDeletion(*project), Numbers{});
  EXPECT_EQ(trashCount(*project), 0);
  EXPECT_EQ(in(*project, [&] { return project->history()->olderVersion(); }), 0);
}

TEST_P(HistoryContract, EveryCommitHasARevisionWithItsOrigin)
{
  const auto project = make();
  Changes changes = logChanges({exampleLog(1, 9), exampleLog(2, 1)});
  changes.origin = {1700000000, "reeldb 14.0.0.0", "reeldb import \xFF.edl", "anna",
                    "suite1",   "/work",           {"a: b", "c: d"}};
  store(*project, changes);
  store(*project, logChanges({named(1, "x"), named(3, "y")}));
  remove(*project, {2, 3});
  const std::vector<Revision> revisions = revisionsOf(*project);
  EXPECT_EQ(summaries(revisions), (Texts{"1: 2 0 0", "2: 1 1 0", "3: 0 0 2"}));
  const Origin& origin = revisions[0].origin;
  EXPECT_EQ(origin.time, 1700000000);
  EXPECT_EQ(origin.program, "reeldb 14.0.0.0");
  EXPECT_EQ(origin.command, "reeldb import \xFF.edl");
  EXPECT_EQ(origin.user + origin.machine + origin.folder, "annasuite1/work");
  EXPECT_EQ(origin.elsewhere, (Texts{"a: b", "c: d"}));
  EXPECT_EQ(revisions[1].origin.time, 0);
  EXPECT_EQ(revisions[1].origin.elsewhere, Texts{});
  EXPECT_NE(revisions[0].token, revisions[1].token);
}

TEST_P(HistoryContract, CommandLineIsCutToItsLongestLength)
{
  const auto project = make();
  Changes changes = logChanges({exampleLog(1, 9)});
  changes.origin.command = std::string(longestCommand, 'a') + "b";
  store(*project, changes);
  EXPECT_EQ(revisionsOf(*project)[0].origin.command, std::string(longestCommand, 'a'));
}

TEST_P(HistoryContract, RevisionKnowsEachLogBeforeAndAfterIt)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a"), named(2, "b"), named(3, "c")}));
  store(*project, logChanges({named(1, "a2"), named(2, "b2")}));
  remove(*project, {2});
  store(*project, logChanges({named(1, "a3")}));
  EXPECT_EQ(described(changesOf(*project, 1).logs), (Texts{"1: none -> a, 2", "2: none -> b, 2", "3: none -> c"}));
  EXPECT_EQ(described(changesOf(*project, 2).logs), (Texts{"1: a -> a2, 4", "2: b -> b2, 3"}));
  EXPECT_EQ(described(changesOf(*project, 3).logs), Texts{"2: b2 -> none"});
  EXPECT_EQ(described(changesOf(*project, 4).logs), Texts{"1: a2 -> a3"});
}

TEST_P(HistoryContract, ImageOfALogIsTheWholeLog)
{
  const auto project = make();
  StoredLog log = exampleLog(1, 1);
  log.fields = {{"reelid", "R"}, {"tracks", ""}, {"aliases", "a\nb"}, {"", ""}, {"k", "\xFF"}};
  log.kind = '\xFE';
  log.videoChannels = INT_MIN;
  store(*project, logChanges({log}));
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(describe(*changesOf(*project, 2).logs.at(0).before), describe(log));
  EXPECT_EQ(describe(*changesOf(*project, 2).logs.at(0).after), describe(exampleLog(1, 9)));
}

TEST_P(HistoryContract, ChangesOfALogComeInTheirOrder)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a"), named(2, "b")}));
  store(*project, logChanges({named(2, "b2")}));
  store(*project, logChanges({named(1, "a2")}));
  remove(*project, {1});
  const auto changes = in(*project, [&] {
    std::vector<LogChange> found;
    project->history()->readChangesOfLog(1, [&](LogChange&& change) { found.push_back(std::move(change)); });
    return found;
  });
  EXPECT_EQ(described(changes), (Texts{"1: none -> a, 3", "1: a -> a2, 4", "1: a2 -> none"}));
  EXPECT_EQ(changes[1].revision, 3);
  EXPECT_EQ(in(*project,
               [&] {
                 int calls = 0;
                 project->history()->readChangesOfLog(7, [&](LogChange&&) { ++calls; });
                 return calls;
               }),
            0);
}

TEST_P(HistoryContract, NumberLeftOutAndUsedLaterIsNewThere)
{
  const auto project = make();
  store(*project, logChanges({named(5, "a"), named(3, "b")}));
  store(*project, logChanges({named(4, "c")}));
  EXPECT_EQ(summaries(revisionsOf(*project)), (Texts{"1: 2 0 0", "2: 1 0 0"}));
  EXPECT_EQ(described(changesOf(*project, 2).logs), Texts{"4: none -> c"});
}

TEST_P(HistoryContract, WhatIsAsItWasIsNotAChange)
{
  const auto project = make({{"a", "b"}});
  store(*project, logChanges({exampleLog(1, 9)}));
  Changes same = logChanges({exampleLog(1, 9)});
  same.options = {{"a", "b"}};
  same.deleted = {9};
  store(*project, same);
  EXPECT_EQ(summaries(revisionsOf(*project)), Texts{"1: 1 0 0"});
}

TEST_P(HistoryContract, OptionsAreKeptAsTheyWere)
{
  const auto project = make({{"a", "1"}});
  Changes changes;
  changes.options = {{"b", "2"}};
  store(*project, changes);
  store(*project, logChanges({exampleLog(1, 9)}));
  changes.options = {{"a", "3"}};
  store(*project, changes);
  EXPECT_EQ(summaries(revisionsOf(*project)), (Texts{"1: 0 0 0 options", "2: 1 0 0", "3: 0 0 0 options"}));
  EXPECT_EQ(changesOf(*project, 1).optionsBefore, (KeyValues{{"a", "1"}}));
  EXPECT_EQ(changesOf(*project, 1).optionsAfter, (KeyValues{{"a", "1"}, {"b", "2"}}));
  EXPECT_EQ(changesOf(*project, 2).optionsBefore, std::nullopt);
  EXPECT_EQ(changesOf(*project, 2).optionsAfter, std::nullopt);
  EXPECT_EQ(changesOf(*project, 3).optionsAfter, (KeyValues{{"a", "3"}, {"b", "2"}}));
}

TEST_P(HistoryContract, InverseSetsOptionsAndTakesOthersAway)
{
  const auto project = make({{"a", "1"}, {"b", "2"}});
  Changes changes;
  changes.options = {{"a", "3"}, {"c", "4"}};
  store(*project, changes);
  Changes undo;
  undo.inverse = {1, false, {}, {}, {{"a", "1"}}, {"c"}};
  store(*project, undo);
  EXPECT_EQ(options(*project), (KeyValues{{"a", "1"}, {"b", "2"}}));
  EXPECT_EQ(changesOf(*project, 2).optionsAfter, (KeyValues{{"a", "1"}, {"b", "2"}}));
}

TEST_P(HistoryContract, InverseHasARevisionOfItsOwn)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a"), named(2, "b")}));
  Changes changes = logChanges({named(1, "a2")});
  changes.inverse = {1, true, {}, {2}, {}, {}};
  store(*project, changes);
  EXPECT_EQ(summaries(revisionsOf(*project)), (Texts{"1: 2 0 0", "2: 0 0 1 redoes 1", "3: 0 1 0"}));
}

TEST_P(HistoryContract, LogWrittenAndDeletedInOneHasTwoRevisions)
{
  const auto project = make();
  Changes changes = logChanges({named(1, "a"), named(2, "b")});
  changes.deleted = {1};
  store(*project, changes);
  EXPECT_EQ(summaries(revisionsOf(*project)), (Texts{"1: 2 0 0", "2: 0 0 1"}));
  EXPECT_EQ(described(changesOf(*project, 2).logs), Texts{"1: a -> none"});
}

TEST_P(HistoryContract, ForgettingMoreThanThereIsKeepsWhatTheSameCommitChanged)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a")}));
  Changes changes = logChanges({named(1, "b")});
  changes.forgetBefore = 1000;
  store(*project, changes);
  EXPECT_EQ(summaries(revisionsOf(*project)), Texts{"2: 0 1 0"});
  EXPECT_EQ(described(changesOf(*project, 2).logs), Texts{"1: a -> b"});
}

TEST_P(HistoryContract, CompactForgetsDeletedLogsAndKeepsTheRevisions)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a"), named(2, "b")}));
  store(*project, logChanges({named(1, "a2"), named(2, "b2")}));
  remove(*project, {1});
  compact(*project);
  EXPECT_EQ(summaries(revisionsOf(*project)), (Texts{"1: 2 0 0", "2: 0 2 0", "3: 0 0 1", "4: 0 0 0"}));
  EXPECT_EQ(described(changesOf(*project, 2).logs), (Texts{"1: forgotten -> none, 3", "2: b -> b2"}));
  EXPECT_EQ(described(changesOf(*project, 3).logs), Texts{"1: forgotten -> none"});
}

TEST_P(HistoryContract, DeletionThatWasTakenBackAndMadeAgainIsTheLastOne)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a")}));
  remove(*project, {1});
  undelete(*project);
  EXPECT_EQ(lastDeletion(*project), Numbers{});
  Changes again;
  again.inverse = {3, true, {}, {1}, {}, {}};
  store(*project, again);
  EXPECT_EQ(lastDeletion(*project), Numbers{1});
}

TEST_P(HistoryContract, WhatAnUndoTookAwayIsNotADeletion)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a")}));
  Changes undo;
  undo.inverse = {1, false, {}, {1}, {}, {}};
  store(*project, undo);
  EXPECT_EQ(lastDeletion(*project), Numbers{});
  EXPECT_EQ(trashCount(*project), 1);
}

TEST_P(HistoryContract, UnknownRevisionIsNotFound)
{
  const auto project = make();
  project->begin(Access::Read, muchPatience);
  EXPECT_EQ(errorOf([&] { project->history()->changesOf(1); }), "NotFound: " + project->subject() + ": no revision 1");
  project->end();
}

TEST_P(HistoryContract, ChangedLogsAreThoseOfEachRevision)
{
  const auto project = make();
  store(*project, logChanges({named(1, "a"), named(2, "b")}));
  store(*project, logChanges({named(2, "b2"), named(3, "c")}));
  remove(*project, {1});
  undelete(*project);
  std::vector<std::tuple<std::int64_t, std::int64_t, bool>> changed;
  in(*project, [&] {
    project->history()->readChangedLogs(
        [&](std::int64_t revision, std::int64_t log, bool isNew) { changed.emplace_back(revision, log, isNew); });
    return 0;
  });
  std::sort(changed.begin(), changed.end());
  EXPECT_EQ(changed,
            (decltype(changed){{1, 1, true}, {1, 2, true}, {2, 2, false}, {2, 3, true}, {3, 1, false}, {4, 1, false}}));
}

TEST_P(ListsContract, NewProjectKeepsNoList)
{
  const auto project = make();
  EXPECT_EQ(listsOf(*project).size(), 0u);
  EXPECT_EQ(in(*project, [&] { return project->lists()->nextListNumber(); }), 1);
  EXPECT_FALSE(hasBytes(*project, 1));
}

TEST_P(ListsContract, ListComesBackWholeWithItsBytes)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 1), exampleLog(2, 1)}));
  store(*project, listChanges({exampleList(1, {1, 2, 1})}));
  EXPECT_EQ(listsOf(*project), std::vector{exampleList(1, {1, 2, 1})});
  EXPECT_TRUE(bytes(*project, 1) == exampleListBytes(1));
  EXPECT_EQ(in(*project, [&] { return project->lists()->nextListNumber(); }), 2);
}

TEST_P(ListsContract, HeadsComeByNumberAndWithoutEvents)
{
  const auto project = make();
  store(*project, listChanges({exampleList(2, {1}), exampleList(1, {1, 2})}));
  std::vector<KeptList> heads;
  in(*project, [&] {
    project->lists()->readListHeads([&](KeptList&& list) { heads.push_back(std::move(list)); });
    return 0;
  });
  KeptList one = exampleList(1, {1, 2}), two = exampleList(2, {1});
  one.events.clear();
  two.events.clear();
  EXPECT_EQ(heads, (std::vector{one, two}));
  EXPECT_EQ(heads[0].eventCount, 2);
}

TEST_P(ListsContract, TextsOfAnyBytesComeBackUnchanged)
{
  const auto project = make();
  std::string every;
  for (int byte = 1; byte < 256; ++byte)
    every.push_back(static_cast<char>(byte));
  KeptList list = exampleList(1, {1});
  list.file = list.title = every;
  list.events[0].clip.name = list.events[0].clip.reel = every + every;
  store(*project, listChanges({list}));
  EXPECT_EQ(listsOf(*project), std::vector{list});
}

TEST_P(ListsContract, WrittenListReplacesTheOldOneWhole)
{
  const auto project = make();
  store(*project, listChanges({exampleList(1, {1, 2}), exampleList(2, {1})}));
  KeptList next = exampleList(1, {3});
  next.digest = exampleList(9, {}).digest;
  next.title.clear();
  Changes changes;
  changes.lists = {next};
  changes.listBytes = {{next.digest, exampleListBytes(9)}};
  store(*project, changes);
  EXPECT_EQ(listsOf(*project), (std::vector{next, exampleList(2, {1})}));
  EXPECT_TRUE(bytes(*project, 9) == exampleListBytes(9));
  EXPECT_TRUE(bytes(*project, 1) == exampleListBytes(1)); // the history names it
}

TEST_P(ListsContract, NumberOfARemovedListIsNotUsedAgain)
{
  const auto project = make();
  store(*project, listChanges({exampleList(1, {1}), exampleList(2, {1})}));
  removeLists(*project, {2, 77});
  EXPECT_EQ(listsOf(*project), std::vector{exampleList(1, {1})});
  EXPECT_EQ(in(*project, [&] { return project->lists()->nextListNumber(); }), 3);
  EXPECT_EQ(errorOf([&] { in(*project, [&] { return project->lists()->eventsOf(2); }); }),
            "NotFound: " + project->subject() + ": no list 2");
}

TEST_P(ListsContract, RevisionKnowsEachListBeforeAndAfterIt)
{
  const auto project = make();
  store(*project, listChanges({exampleList(1, {1}), exampleList(2, {2})}));
  store(*project, listChanges({exampleList(1, {1, 1})}));
  removeLists(*project, {1});
  const std::vector<Revision> revisions = revisionsOf(*project);
  ASSERT_EQ(revisions.size(), 3u);
  EXPECT_EQ(revisions[0].lists, 2);
  EXPECT_EQ(revisions[1].lists, 1);
  EXPECT_TRUE(revisions[2].hasChanges());
  const std::vector<ListChange> first = changesOf(*project, 1).lists, second = changesOf(*project, 2).lists,
                                third = changesOf(*project, 3).lists;
  ASSERT_EQ(first.size(), 2u);
  EXPECT_EQ(first[0].before, std::nullopt);
  EXPECT_EQ(first[0].after, exampleList(1, {1}));
  EXPECT_EQ(first[0].next, 2);
  EXPECT_FALSE(first[0].isThere);
  EXPECT_EQ(first[1].after, exampleList(2, {2}));
  EXPECT_EQ(first[1].next, 0);
  EXPECT_TRUE(first[1].isThere);
  ASSERT_EQ(second.size(), 1u);
  EXPECT_EQ(second[0].before, exampleList(1, {1}));
  EXPECT_EQ(second[0].after, exampleList(1, {1, 1}));
  ASSERT_EQ(third.size(), 1u);
  EXPECT_EQ(third[0].before, exampleList(1, {1, 1}));
  EXPECT_EQ(third[0].after, std::nullopt);
  EXPECT_EQ(third[0].number, 1);
}

TEST_P(ListsContract, ListThatIsAsItWasIsNotAChange)
{
  const auto project = make();
  store(*project, listChanges({exampleList(1, {1})}));
  store(*project, listChanges({exampleList(1, {1})}));
  removeLists(*project, {5});
  EXPECT_EQ(revisionsOf(*project).size(), 1u);
}

TEST_P(ListsContract, InverseRemovesListsAndBringsThemBack)
{
  const auto project = make();
  store(*project, listChanges({exampleList(1, {1})}));
  Changes undo;
  undo.inverse.revision = 1;
  undo.inverse.deletedLists = {1};
  store(*project, undo);
  EXPECT_EQ(listsOf(*project).size(), 0u);
  Changes redo;
  redo.inverse.revision = 2;
  redo.inverse.isRedo = true;
  redo.inverse.lists = {exampleList(1, {1})};
  store(*project, redo);
  EXPECT_EQ(listsOf(*project), std::vector{exampleList(1, {1})});
  EXPECT_TRUE(bytes(*project, 1) == exampleListBytes(1));
  EXPECT_EQ(revisionsOf(*project).back().takesBack, 2);
}

TEST_P(ListsContract, ListsGoWithTheDeletionOfLogsThatAreAlsoWritten)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 1), exampleLog(2, 1)}));
  store(*project, listChanges({exampleList(1, {1, 2})}));
  Changes changes = logChanges({exampleLog(3, 1)});
  changes.deleted = {1, 3};
  changes.lists = {exampleList(1, {2})};
  store(*project, changes);
  EXPECT_EQ(changesOf(*project, 3).lists.size(), 0u);
  EXPECT_EQ(changesOf(*project, 4).lists.size(), 1u);
  EXPECT_EQ(numbersOf(*project), Numbers{2});
}

TEST_P(ListsContract, CompactForgetsRemovedListsAndTheirBytes)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 1)}));
  store(*project, listChanges({exampleList(1, {}), exampleList(2, {})}));
  store(*project, listChanges({exampleList(2, {1})}));
  removeLists(*project, {1});
  EXPECT_TRUE(hasBytes(*project, 1));
  const auto removedLists = [&] { return in(*project, [&] { return project->history()->removedListCount(); }); };
  EXPECT_EQ(removedLists(), 1);
  compact(*project);
  EXPECT_EQ(removedLists(), 0);
  EXPECT_TRUE(changesOf(*project, 4).lists.at(0).forgotten);
  EXPECT_FALSE(changesOf(*project, 3).lists.at(0).forgotten);
  EXPECT_FALSE(hasBytes(*project, 1));
  EXPECT_TRUE(hasBytes(*project, 2));
  EXPECT_EQ(project->check(), Texts{});
}

TEST_P(ListsContract, ForgettingHistoryForgetsTheBytesThatOnlyItNames)
{
  const auto project = make();
  store(*project, listChanges({exampleList(1, {}), exampleList(2, {}), exampleList(3, {})}));
  removeLists(*project, {1});
  removeLists(*project, {2});
  Changes changes;
  changes.forgetBefore = 3;
  store(*project, changes);
  EXPECT_FALSE(hasBytes(*project, 1));
  EXPECT_TRUE(hasBytes(*project, 2));
  EXPECT_TRUE(hasBytes(*project, 3));
}

TEST_P(ListsContract, ListStoredWithACompactKeepsItsBytes)
{
  const auto project = make();
  Changes changes = listChanges({exampleList(1, {})});
  changes.compact = true;
  store(*project, changes);
  EXPECT_TRUE(hasBytes(*project, 1));
}

} // namespace
