// SPDX-License-Identifier: Apache-2.0
//
// What every store promises, tried on each of them.
#include <climits>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
using Numbers = std::vector<std::int64_t>;
using Counts = std::vector<std::pair<std::string, std::int64_t>>;

class StoreContract : public testing::TestWithParam<const char*> {
protected:
  std::unique_ptr<Store> make(const KeyValues& options = {})
  {
    if (std::string(GetParam()) == "memory")
      return makeMemoryStore(exampleInfo(), options);
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
  std::int64_t trashCount(Store& project)
  {
    return in(project, [&] { return project.trashCount(); });
  }
  Numbers lastDeletion(Store& project)
  {
    return in(project, [&] { return project.lastDeletion(); });
  }
  std::vector<std::string> lastDeletionWhole(Store& project)
  {
    return in(project, [&] {
      std::vector<std::string> out;
      project.readLastDeletion([&](StoredLog&& log) { out.push_back(describe(log)); });
      return out;
    });
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
    changes.undelete = true;
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

INSTANTIATE_TEST_SUITE_P(Stores, StoreContract, testing::Values("memory", "sqlite"),
                         [](const auto& which) { return std::string(which.param); });

StoredLog logWithFields(std::int64_t number, int type, KeyValues fields)
{
  StoredLog log = exampleLog(number, type);
  log.fields = std::move(fields);
  return log;
}

TEST_P(StoreContract, SubjectNamesTheProject)
{
  const auto project = make();
  EXPECT_EQ(project->subject(), std::string(GetParam()) == "memory" ? "memory" : file().native());
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
  EXPECT_EQ(lastDeletion(*project), Numbers{});
  EXPECT_EQ(lastDeletionWhole(*project), std::vector<std::string>{});
  EXPECT_EQ(trashCount(*project), 0);
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

TEST_P(StoreContract, DeletedLogsAreInTheBinOnly)
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

TEST_P(StoreContract, UndeleteBringsDeletionsBackLastFirst)
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

TEST_P(StoreContract, DeletionSkipsMissingLogsAndLogsInTheTrash)
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

TEST_P(StoreContract, CompactEmptiesTheTrashForGood)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 9)}));
  remove(*project, {1});
  remove(*project, {2});
  compact(*project);
  EXPECT_EQ(trashCount(*project), 0);
  EXPECT_EQ(lastDeletion(*project), Numbers{});
  undelete(*project);
  EXPECT_EQ(numbersOf(*project), (Numbers{3}));
}

TEST_P(StoreContract, UndeleteAndCompactTogetherKeepTheLastDeletion)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  remove(*project, {1});
  remove(*project, {2});
  Changes changes;
  changes.undelete = true;
  changes.compact = true;
  store(*project, changes);
  EXPECT_EQ(numbersOf(*project), (Numbers{2}));
  EXPECT_EQ(trashCount(*project), 0);
}

TEST_P(StoreContract, CompactAndDeleteTogetherKeepTheNewDeletion)
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

TEST_P(StoreContract, UndeleteAndDeleteTogetherMakeOneNewDeletion)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 9)}));
  remove(*project, {1});
  remove(*project, {2});
  Changes changes;
  changes.undelete = true;
  changes.deleted = {3};
  store(*project, changes);
  EXPECT_EQ(numbersOf(*project), (Numbers{2}));
  EXPECT_EQ(lastDeletion(*project), (Numbers{3}));
  EXPECT_EQ(trashCount(*project), 2);
}

TEST_P(StoreContract, LogWrittenAndDeletedInOneIsInTheBinAsWritten)
{
  const auto project = make();
  Changes changes = logChanges({exampleLog(1, 9)});
  changes.deleted = {1};
  store(*project, changes);
  EXPECT_EQ(numbersOf(*project), Numbers{});
  EXPECT_EQ(lastDeletionWhole(*project), std::vector<std::string>{describe(exampleLog(1, 9))});
}

TEST_P(StoreContract, LogWrittenWhileInTheBinStaysThere)
{
  const auto project = make();
  store(*project, logChanges({exampleLog(1, 9)}));
  remove(*project, {1});
  StoredLog changed = exampleLog(1, 9);
  changed.name = "changed";
  store(*project, logChanges({changed}));
  EXPECT_EQ(numbersOf(*project), Numbers{});
  EXPECT_EQ(lastDeletionWhole(*project), std::vector<std::string>{describe(changed)});
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

TEST_P(StoreContract, OwnCommitsAreNoChangesElsewhere)
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

} // namespace
