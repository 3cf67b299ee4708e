// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_store.h"

#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "reelhost/feed.h"
#include "standalone/store/support.h"
#include "store/sqlite.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;
using Numbers = std::vector<std::int64_t>;
using Texts = std::vector<std::string>;

/// Counts what SQLite does on all connections that are opened while it lives.
class CountedSteps {
public:
  CountedSteps()
  {
    steps = 0;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&watch));
  }
  ~CountedSteps() { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&watch)); }
  CountedSteps(const CountedSteps&) = delete;
  CountedSteps& operator=(const CountedSteps&) = delete;
  long count() const { return steps; }

private:
  static int watch(sqlite3* database, const char**, const void*)
  {
    sqlite3_progress_handler(
        database, 1,
        [](void*) {
          ++steps;
          return 0;
        },
        nullptr);
    return SQLITE_OK;
  }
  static inline long steps = 0;
};

class SqliteStoreTest : public testing::Test {
protected:
  void SetUp() override { createSqliteProject(file(), exampleInfo(), {}); }
  fs::path file() const { return folder_ / "main.reels"; }

private:
  TempFolder folder_;
};

TEST_F(SqliteStoreTest, WhatIsCommittedIsThereForTheNextStore)
{
  std::vector<std::string> reels, others;
  {
    const auto project = makeSqliteStore(file());
    store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 1), exampleLog(3, 9)}));
    Changes changes;
    changes.deleted = {3};
    changes.options = {{"k", "v"}};
    store(*project, changes);
    reels = reelsOf(*project);
    others = othersOf(*project);
  }
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(reelsOf(*project), reels);
  EXPECT_EQ(othersOf(*project), others);
  Changes changes;
  changes.inverse = inverseOfLastDeletion(*project);
  project->begin(Access::Write, noPatience);
  EXPECT_EQ(project->options(), (KeyValues{{"k", "v"}}));
  EXPECT_EQ(project->nextNumber(), 4);
  project->commit(changes);
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 3, 2}));
}

TEST_F(SqliteStoreTest, CommitOutsideAUseForWritingIsAMistakeOfTheCaller)
{
  const auto project = makeSqliteStore(file());
  EXPECT_THROW(project->commit({}), std::logic_error);
  project->begin(Access::Read, noPatience);
  EXPECT_THROW(project->commit(logChanges({exampleLog(1, 9)})), std::logic_error);
  project->end();
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_THROW(project->commit({}), std::logic_error); // the commit has ended the use
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_F(SqliteStoreTest, RefusedValueStoresNothingOfTheCommit)
{
  const auto project = makeSqliteStore(file());
  runSql(file(), "CREATE UNIQUE INDEX one ON logs(name)");
  StoredLog twin = exampleLog(2, 9);
  twin.name = exampleLog(1, 9).name;
  EXPECT_EQ(errorOf([&] {
              store(*project, logChanges({exampleLog(1, 9), twin}));
            }),
            "Refused: " + file().native() + ": not stored (UNIQUE constraint failed: logs.name)");
  EXPECT_EQ(numbersOf(*project), Numbers{});
}

TEST_F(SqliteStoreTest, DeletionTakesTheFieldsOfItsLogsAlong)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  Changes changes;
  changes.deleted = {1};
  store(*project, changes);
  EXPECT_EQ(runSql(file(), "SELECT group_concat(DISTINCT log) FROM fields"), "2");
}

/// Pages in the write-ahead log of an open project, as long as none of it has moved into the file.
std::size_t pagesInLog(const fs::path& project)
{
  constexpr std::size_t logHeader = 32, frame = 24 + 4096;
  const std::size_t size = fs::file_size(project.native() + "-wal");
  return size < logHeader ? 0 : (size - logHeader) / frame;
}

TEST_F(SqliteStoreTest, ChangeOfOneFieldWritesFewerThanFourPagesOnAverage)
{
  constexpr int reels = 10'000, commits = 100;
  {
    const auto project = makeSqliteStore(file());
    std::vector<StoredLog> logs;
    for (int number = 1; number <= reels; ++number)
      logs.push_back(exampleLog(number, 9));
    store(*project, logChanges(logs));
  }
  const auto project = makeSqliteStore(file());
  numbersOf(*project); // opens it
  const std::size_t before = pagesInLog(file());
  for (int commit = 0; commit < commits; ++commit) {
    StoredLog log = exampleLog(1 + commit * 97 % reels, 9);
    log.fields.emplace_back("reel_userfield0", "scene " + std::to_string(commit));
    Changes changes = logChanges({log});
    changes.origin = {1700000000, "reeldb 14.0.0.0", "reeldb set A001 scene=7", "anna", "suite1", "/work/site", {}};
    store(*project, changes);
  }
  const std::size_t pages = pagesInLog(file()) - before;
  std::cout << static_cast<double>(pages) / commits << " pages per commit\n";
  EXPECT_LT(pages, 4u * commits);
}

TEST_F(SqliteStoreTest, ReadingARevisionDoesNotReadLaterOnes)
{
  const CountedSteps steps;
  const auto project = makeSqliteStore(file());
  Changes changes = logChanges({exampleLog(1, 9), exampleLog(2, 9)});
  changes.options = {{"k", "v"}};
  store(*project, changes);
  int commits = 0;
  const auto stepsAfterCommits = [&](int count) {
    for (int i = 0; i < count; ++i) {
      StoredLog log = exampleLog(2, 9);
      log.name = std::to_string(++commits);
      store(*project, logChanges({log}));
    }
    const long before = steps.count();
    EXPECT_EQ(changesOf(*project, 1).logs.at(1).next, 2);
    return steps.count() - before;
  };
  const long few = stepsAfterCommits(2);
  EXPECT_GT(few, 100);
  EXPECT_NEAR(static_cast<double>(stepsAfterCommits(200)), static_cast<double>(few), 10);
}

TEST_F(SqliteStoreTest, NewLogsWithNumbersThatWereNotGivenOutAreDamage)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  for (const std::string range : {"first_new = 1, last_new = 4611686018427387904", "first_new = 2, last_new = 1",
                                  "first_new = -9, last_new = 2"}) {
    runSql(file(), "UPDATE revisions SET " + range);
    EXPECT_EQ(project->check().at(0), "revision 1: new logs with numbers that were not given out") << range;
    for (const auto& read : std::vector<std::function<void()>>{
             [&] { changesOf(*project, 1); },
             [&] { project->history()->readChangedLogs([](std::int64_t, std::int64_t, bool) {}); },
             [&] { project->feed()->since({}); }}) {
      project->begin(Access::Read, noPatience);
      const std::string error = errorOf(read);
      project->end();
      EXPECT_EQ(error.substr(0, 12), "Unreadable: ") << error;
      EXPECT_NE(error.find("numbers that were not given out"), std::string::npos) << error;
    }
  }
}

TEST_F(SqliteStoreTest, NumbersThatNoLogEverHadAreNotCountedThrough)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  runSql(file(), "UPDATE revisions SET last_new = 4611686018427387904;"
                 "UPDATE project SET value = 4611686018427387904 WHERE key = 'last_number'");
  EXPECT_EQ(changesOf(*project, 1).logs.size(), 2u);
  project->begin(Access::Read, noPatience);
  EXPECT_EQ(project->feed()->since({}).logs.size(), 2u);
  project->end();
}

TEST_F(SqliteStoreTest, CheckNamesWhatDoesNotFitInTheHistory)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  store(*project, logChanges({exampleLog(1, 1)}));
  Changes changes;
  changes.options = {{"k", "v"}};
  store(*project, changes);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  runSql(file(), "UPDATE revisions SET token = x'00112233445566778899aabbccddeeff' WHERE number < 3;"
                 "UPDATE revisions SET takes_back = 2 WHERE number = 2; UPDATE revisions SET last_new = 3;"
                 "UPDATE changes SET before = x'00' WHERE revision = 2;"
                 "UPDATE changes SET before = x'41' WHERE revision = 3;"
                 "UPDATE revisions SET logs = '0,1' WHERE number = 3; INSERT INTO changes VALUES(1, 9, NULL)");
  EXPECT_EQ(
      project->check(),
      (std::vector<std::string>{
          "revision 3: other changes than it says", "revision 9: changes without a revision",
          "revision 2: takes back a later revision", "revision 1: new logs with numbers that were not given out",
          "revision 2: new logs with numbers that were not given out",
          "revision 3: new logs with numbers that were not given out", "revision 2: the token of another revision",
          "revision 3: no image of log 0", "revision 2: no image of log 1"}));
  EXPECT_EQ(errorOf([&] { changesOf(*project, 2); }),
            "Unreadable: " + file().native() + ": damaged (revision 2: no image of log 1)");
  EXPECT_EQ(errorOf([&] { changesOf(*project, 3); }),
            "Unreadable: " + file().native() + ": damaged (revision 3: no image of log 0)");
}

TEST_F(SqliteStoreTest, ChangedLogsThatAreNotNumbersOrHaveNoRowAreDamage)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9)}));
  store(*project, logChanges({exampleLog(1, 1)}));
  for (const char* const logs : {"x", "1,", ",1", "1,,2", "1 2", "99999999999999999999"}) {
    runSql(file(), "UPDATE revisions SET logs = '" + std::string(logs) + "' WHERE number = 2");
    EXPECT_EQ(project->check(), std::vector<std::string>{"revision 2: other changes than it says"}) << logs;
    EXPECT_EQ(errorOf([&] { changesOf(*project, 2); }),
              "Unreadable: " + file().native() + ": damaged (changed logs " + logs + ": not numbers)");
  }
  runSql(file(), "UPDATE revisions SET logs = '1,7' WHERE number = 2");
  EXPECT_EQ(errorOf([&] { changesOf(*project, 2); }),
            "Unreadable: " + file().native() + ": damaged (revision 2: no image of log 7)");
}

TEST_F(SqliteStoreTest, CheckNamesRevisionsThatChangedOtherLogsThanTheyCount)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  store(*project, logChanges({exampleLog(1, 1)}));
  const std::string whole = "UPDATE revisions SET created = 2, is_redo = 0, first_new = 1 WHERE number = 1;"
                            "UPDATE revisions SET first_new = NULL, last_new = NULL WHERE number = 2;";
  const std::string counts = ": other numbers of created, changed and deleted logs than its changes have";
  const auto problemOf = [&](const std::string& damage) {
    runSql(file(), damage);
    const std::vector<std::string> problems = project->check();
    runSql(file(), whole);
    return problems.size() == 1 ? problems.front() : testing::PrintToString(problems);
  };
  EXPECT_EQ(problemOf("UPDATE revisions SET created = 55 WHERE number = 1"), "revision 1" + counts);
  EXPECT_EQ(problemOf("UPDATE revisions SET created = 0 WHERE number = 1"), "revision 1" + counts);
  EXPECT_EQ(problemOf("UPDATE revisions SET first_new = 1, last_new = 2 WHERE number = 2"), "revision 2" + counts);
  EXPECT_EQ(problemOf("UPDATE revisions SET is_redo = 5 WHERE number = 1"), "revision 1: is_redo is neither 0 nor 1");
  EXPECT_EQ(problemOf("UPDATE changes SET before = NULL WHERE revision = 2"), "revision 2" + counts);
}

TEST_F(SqliteStoreTest, FileWithoutWriteAheadModeIsUsedAndGetsItBackWithACommit)
{
  runSql(file(), "PRAGMA journal_mode = DELETE"); // as some tools leave a copy
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(numbersOf(*project), Numbers{});
  store(*project, {});
  EXPECT_EQ(bytesOf(file()).substr(18, 2), "\x01\x01");
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(bytesOf(file()).substr(18, 2), "\x02\x02");
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_F(SqliteStoreTest, FileThatIsHeldCompletelyDidNotChangeYet)
{
  runSql(file(), "PRAGMA journal_mode = DELETE"); // in write-ahead mode nobody keeps readers out
  const auto project = makeSqliteStore(file());
  project->begin(Access::Read, noPatience);
  project->end();
  sqlite::Database other(file().native(), sqlite::Database::Mode::ReadWrite);
  other.execute("BEGIN EXCLUSIVE; UPDATE project SET value = 'x' WHERE key = 'name'");
  EXPECT_FALSE(project->changedElsewhere());
  other.execute("COMMIT");
  EXPECT_TRUE(project->changedElsewhere());
}

TEST_F(SqliteStoreTest, HolderOfAFileWithoutWriteAheadModeIsNamed)
{
  runSql(file(), "PRAGMA journal_mode = DELETE");
  Child other([this] {
    static std::unique_ptr<Store> held;
    held = makeSqliteStore(file());
    held->begin(Access::Write, noPatience);
  });
  other.waitUntilDone();
  const auto project = makeSqliteStore(file());
  const std::string error = errorOf([&] { project->begin(Access::Write, noPatience); });
  EXPECT_EQ(error.rfind("Busy: " + file().native() + ": held by another process (pid " + std::to_string(other.pid()) +
                            ", store_test",
                        0),
            0u)
      << error;
}

TEST_F(SqliteStoreTest, CheckReportsFaults)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 9)}));
  runSql(file(), "PRAGMA foreign_keys = 0; INSERT INTO fields VALUES(77, 'k', 'v'), (77, 'l', 'v'); "
                 "UPDATE project SET value = 2 WHERE key = 'last_number'; "
                 "UPDATE logs SET uuid = (SELECT uuid FROM logs WHERE number = 1), tag = 1 WHERE number = 2");
  EXPECT_EQ(project->check(),
            (std::vector<std::string>{"log 77: fields without a log", "log 3: a number that was never given to a log",
                                      "log 2: the identity of another log",
                                      "revision 1: new logs with numbers that were not given out"}));
}

TEST_F(SqliteStoreTest, NewLogReplacesNoOtherAlthoughTheLastNumberIsTooSmall)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9)}));
  runSql(file(), "UPDATE project SET value = 1 WHERE key = 'last_number'");
  project->begin(Access::Write, noPatience);
  EXPECT_EQ(project->nextNumber(), 3);
  project->commit(logChanges({exampleLog(3, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 2, 3}));
}

TEST_F(SqliteStoreTest, ProjectWithoutALastNumberIsDamaged)
{
  const auto project = makeSqliteStore(file());
  for (const char* sql :
       {"UPDATE project SET value = 'x' WHERE key = 'last_number'", "DELETE FROM project WHERE key = 'last_number'"}) {
    runSql(file(), sql);
    project->begin(Access::Read, noPatience);
    EXPECT_EQ(errorOf([&] { project->nextNumber(); }),
              "Unreadable: " + file().native() + ": damaged (the project has no last number)");
    project->end();
  }
}

TEST_F(SqliteStoreTest, CheckNamesLogsOfTheInvalidKind)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 9), exampleLog(3, 1), exampleLog(4, 1)}));
  runSql(file(), "UPDATE logs SET kind = 'I' WHERE number IN (2, 3)");
  EXPECT_EQ(project->check(), (std::vector<std::string>{"log 2: no valid identity (its kind is 'I')",
                                                        "log 3: no valid identity (its kind is 'I')"}));
}

TEST_F(SqliteStoreTest, CheckOfAFileThatIsNotAProjectSaysSo)
{
  writeBytes(file(), "text");
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(project->check(), std::vector<std::string>{file().native() + ": not a project (not an SQLite file)"});
}

TEST_F(SqliteStoreTest, CheckOfAFileCutShortSaysSo)
{
  const std::string content = bytesOf(file());
  writeBytes(file(), content.substr(0, content.size() - 1));
  EXPECT_EQ(makeSqliteStore(file())->check().back(), "only " + std::to_string(content.size() - 1) + " of " +
                                                         std::to_string(content.size()) + " bytes are there");
}

TEST_F(SqliteStoreTest, CheckOfAMissingFileThrows)
{
  fs::remove(file());
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(errorOf([&] { project->check(); }), "NotFound: " + file().native() + ": no such project");
}

TEST_F(SqliteStoreTest, CheckFindsADamagedIndex)
{
  {
    const auto project = makeSqliteStore(file());
    store(*project, logChanges({exampleLog(1, 1), exampleLog(2, 1)}));
  }
  const auto root = static_cast<std::size_t>(
      std::stoi(runSql(file(), "SELECT rootpage FROM sqlite_schema WHERE name = 'others_by_reel'")));
  std::string content = bytesOf(file());
  const std::size_t at = content.find("R1", (root - 1) * 4096);
  ASSERT_LT(at, root * 4096);
  content[at] = 'Z';
  writeBytes(file(), content);
  EXPECT_FALSE(makeSqliteStore(file())->check().empty());
}

TEST_F(SqliteStoreTest, BytesOfAListAreStoredOncePerDigest)
{
  const auto project = makeSqliteStore(file());
  store(*project, listChanges({exampleList(1, {})}));
  Changes changes;
  changes.deletedLists = {1};
  store(*project, changes);
  KeptList again = exampleList(2, {});
  again.digest = exampleList(1, {}).digest;
  changes = {};
  changes.lists = {again};
  changes.listBytes = {{again.digest, exampleListBytes(1)}};
  store(*project, changes);
  EXPECT_EQ(runSql(file(), "SELECT count(*) FROM list_bytes"), "1");
}

TEST_F(SqliteStoreTest, CheckNamesWhatDoesNotFitInTheLists)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 1), exampleLog(2, 9)}));
  store(*project, listChanges({exampleList(1, {1}), exampleList(2, {1}), exampleList(3, {1}), exampleList(4, {1})}));
  store(*project, listChanges({exampleList(4, {1, 1})}));
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  runSql(file(), "UPDATE lists SET events = x'00' WHERE number = 1;"
                 "UPDATE lists SET event_count = 9, digest = zeroblob(32) WHERE number = 2;"
                 "UPDATE project SET value = 3 WHERE key = 'last_list';"
                 "UPDATE changes SET before = x'00' WHERE revision = 3;"
                 "UPDATE list_bytes SET bytes = x'00' WHERE digest = (SELECT digest FROM lists WHERE number = 3)");
  store(*project, listChanges({exampleList(3, {1, 2, 77})}));
  EXPECT_EQ(project->check(),
            (std::vector<std::string>{"revision 3: no image of list 4", "list 1: no valid events",
                                      "list 2: another number of events than it says", "list 2: its bytes are missing",
                                      "list 3: an event without its shot (line 8, log 2)",
                                      "list 3: an event without its shot (line 11, log 77)",
                                      "list 4: a number that was never given to a list",
                                      "lists: 1 with other bytes than those that were stored"}));
  EXPECT_EQ(errorOf([&] { listsOf(*project); }),
            "Unreadable: " + file().native() + ": damaged (list 1 has no valid events)");
}

} // namespace
