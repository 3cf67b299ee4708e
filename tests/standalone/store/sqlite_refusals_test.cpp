// SPDX-License-Identifier: Apache-2.0
//
// A file that is not a project, or cannot be used now, causes an error with the reason, and is not changed.
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>

#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

class SqliteRefusals : public testing::Test {
protected:
  fs::path file() const { return folder_ / "main.reels"; }
  fs::path folder() const { return folder_.path(); }

  /// A closed project of a few pages with logs.
  void makeProject(int logs = 200) const
  {
    createSqliteProject(file(), exampleInfo(), {{"a", "b"}});
    Changes changes;
    for (int number = 1; number <= logs; ++number)
      changes.logs.push_back(exampleLog(number, number % 3 == 0 ? 1 : 9));
    const auto project = makeSqliteStore(file());
    store(*project, changes);
  }

  std::string beginError(Access access) const
  {
    const auto project = makeSqliteStore(file());
    return errorOf([&] { project->begin(access, noPatience); });
  }

  /// Both accesses are refused with this error, and no file in the folder is changed, made or removed.
  void expectRefused(const std::string& kindAndFact) const
  {
    const auto before = everything();
    for (const Access access : {Access::Read, Access::Write}) {
      const std::string error = beginError(access);
      EXPECT_EQ(error, withSubject(kindAndFact));
      EXPECT_EQ(everything(), before) << error;
    }
  }

  /// "Kind: FILE: fact" for "Kind: fact".
  std::string withSubject(const std::string& kindAndFact) const
  {
    const std::size_t colon = kindAndFact.find(": ");
    return kindAndFact.substr(0, colon + 2) + file().native() + kindAndFact.substr(colon);
  }

  std::map<std::string, std::string> everything() const
  {
    std::map<std::string, std::string> out;
    for (const std::string& name : namesIn(folder())) {
      const fs::path path = folder() / name;
      std::error_code error;
      if (!fs::is_regular_file(path, error))
        out[name] = "";
      else if (name.ends_with("-shm"))
        out[name] = "index"; // made again whenever it is needed
      else
        out[name] = std::to_string(modificationTime(path)) + bytesOf(path);
    }
    return out;
  }

  void overwrite(std::size_t at, std::string_view bytes) const
  {
    std::string content = bytesOf(file());
    content.replace(at, bytes.size(), bytes);
    writeBytes(file(), content);
  }

  std::size_t pageSize() const { return 4096; }

private:
  TempFolder folder_;
};

TEST_F(SqliteRefusals, NoSuchFileIsNotFoundAndNotMade)
{
  expectRefused("NotFound: no such project");
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{});
}

TEST_F(SqliteRefusals, FileInsideAFileIsNotFound)
{
  writeBytes(file(), "x");
  const auto project = makeSqliteStore(file() / "inner.reels");
  EXPECT_EQ(errorOf([&] { project->begin(Access::Read, noPatience); }),
            "NotFound: " + file().native() + "/inner.reels: no such project");
}

TEST_F(SqliteRefusals, LinkToNowhereIsNotFoundAndItsTargetNotMade)
{
  fs::create_symlink(folder() / "gone.reels", file());
  expectRefused("NotFound: no such project");
}

TEST_F(SqliteRefusals, LinkToItselfCannotBeOpened)
{
  fs::create_symlink(file(), file());
  EXPECT_EQ(beginError(Access::Read), withSubject("Io: cannot be opened (Too many levels of symbolic links)"));
}

TEST_F(SqliteRefusals, Folder)
{
  fs::create_directory(file());
  expectRefused("Unreadable: not a project (a folder)");
}

TEST_F(SqliteRefusals, NamedPipeIsRefusedWithoutWaiting)
{
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  expectRefused("Unreadable: not a project (a named pipe)");
}

TEST_F(SqliteRefusals, LinkToADevice)
{
  fs::create_symlink("/dev/zero", file());
  expectRefused("Unreadable: not a project (a device)");
}

TEST_F(SqliteRefusals, Socket)
{
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = file().native();
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  expectRefused("Unreadable: not a project (a socket)");
  ::close(socket);
}

TEST_F(SqliteRefusals, EmptyFileIsNotTakenForANewDatabase)
{
  writeBytes(file(), "");
  expectRefused("Unreadable: not a project (not an SQLite file)");
}

TEST_F(SqliteRefusals, TextFile)
{
  writeBytes(file(), "TITLE: CUT 1\nFCM: NON-DROP FRAME\n");
  expectRefused("Unreadable: not a project (not an SQLite file)");
}

TEST_F(SqliteRefusals, SecondBeginIsRefusedAsTheFirstWas)
{
  writeBytes(file(), std::string(4096, 'x'));
  const auto project = makeSqliteStore(file());
  for (const Access access : {Access::Read, Access::Read, Access::Write})
    EXPECT_EQ(errorOf([&] { project->begin(access, noPatience); }),
              withSubject("Unreadable: not a project (not an SQLite file)"));
}

TEST_F(SqliteRefusals, ProjectCutToNinetyNineBytes)
{
  makeProject();
  writeBytes(file(), bytesOf(file()).substr(0, 99));
  expectRefused("Unreadable: not a project (not an SQLite file)");
}

TEST_F(SqliteRefusals, LargeFileOfZeroes)
{
  writeBytes(file(), "");
  fs::resize_file(file(), std::uintmax_t{5} << 30); // sparse
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }),
            withSubject("Unreadable: not a project (not an SQLite file)"));
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"main.reels"});
}

TEST_F(SqliteRefusals, DatabaseOfAnotherApplication)
{
  runSql(file(), "CREATE TABLE logs(number); INSERT INTO logs VALUES(1)");
  expectRefused("Unreadable: not a project (an SQLite file of another application)");
}

TEST_F(SqliteRefusals, DatabaseOfAnotherApplicationWithAnUnfinishedLog)
{
  Child other([&] {
    sqlite3* database = nullptr;
    sqlite3_open(file().c_str(), &database);
    sqlite3_exec(database, "PRAGMA journal_mode = WAL; CREATE TABLE t(x); INSERT INTO t VALUES(1)", nullptr, nullptr,
                 nullptr);
    ::raise(SIGKILL);
  });
  EXPECT_EQ(other.waitForExit(), -1);
  ASSERT_GT(fs::file_size(file().native() + "-wal"), 0u);
  expectRefused("Unreadable: not a project (an SQLite file of another application)");
}

TEST_F(SqliteRefusals, NewerVersion)
{
  makeProject();
  runSql(file(), "PRAGMA user_version = 3");
  expectRefused("Unreadable: of a newer version (3; this program reads up to 2)");
}

TEST_F(SqliteRefusals, NewerVersionThatIsStillInTheLog)
{
  makeProject();
  const auto reader = makeSqliteStore(file()); // keeps the log from being moved into the file
  reader->begin(Access::Read, noPatience);
  runSql(file(), "PRAGMA user_version = 4");
  EXPECT_EQ(bytesOf(file())[63], 2);
  EXPECT_EQ(beginError(Access::Read), withSubject("Unreadable: of a newer version (4; this program reads up to 2)"));
  reader->end();
  EXPECT_EQ(errorOf([&] { reader->begin(Access::Write, noPatience); }),
            withSubject("Unreadable: of a newer version (4; this program reads up to 2)"));
}

TEST_F(SqliteRefusals, VersionZero)
{
  makeProject();
  runSql(file(), "PRAGMA user_version = 0");
  expectRefused("Unreadable: damaged (version 0)");
}

TEST_F(SqliteRefusals, FileCutShort)
{
  makeProject();
  const std::string content = bytesOf(file());
  writeBytes(file(), content.substr(0, content.size() - pageSize()));
  expectRefused("Unreadable: damaged (" + std::to_string(content.size() - pageSize()) + " of " +
                std::to_string(content.size()) + " bytes)");
}

TEST_F(SqliteRefusals, FileCutShortInsideItsLastPage)
{
  makeProject();
  const std::string content = bytesOf(file());
  writeBytes(file(), content.substr(0, content.size() - 1));
  expectRefused("Unreadable: damaged (" + std::to_string(content.size() - 1) + " of " + std::to_string(content.size()) +
                " bytes)");
}

TEST_F(SqliteRefusals, EveryPageOverwrittenInTurnIsDamage)
{
  makeProject();
  const std::string content = bytesOf(file());
  const std::size_t pages = content.size() / pageSize();
  ASSERT_GT(pages, 8u);
  for (std::size_t page = 1; page < pages; ++page) {
    writeBytes(file(), content);
    overwrite(page * pageSize(), std::string(pageSize(), '\x5A'));
    const auto before = everything();
    for (const Access access : {Access::Read, Access::Write}) {
      const std::string error = beginError(access);
      EXPECT_EQ(error.rfind(withSubject("Unreadable: damaged ("), 0), 0u) << "page " << page << ": " << error;
      EXPECT_EQ(error.find('\n'), std::string::npos);
      EXPECT_EQ(everything(), before) << "page " << page;
    }
  }
  std::cout << pages - 1 << " pages overwritten in turn\n";
}

TEST_F(SqliteRefusals, TablesOverwrittenInTheFirstPage)
{
  makeProject();
  overwrite(100, std::string(500, '\xFF'));
  expectRefused("Unreadable: damaged (database disk image is malformed)");
}

TEST_F(SqliteRefusals, DamagedFileKeepsItsUnfinishedLog)
{
  makeProject();
  storeAndDie(file(), logChanges({exampleLog(1000, 9)}));
  overwrite(pageSize(), std::string(bytesOf(file()).size() - pageSize(), '\x5A'));
  const auto before = everything();
  const std::string error = beginError(Access::Write);
  EXPECT_EQ(error.rfind(withSubject("Unreadable: damaged ("), 0), 0u) << error;
  EXPECT_EQ(everything(), before);
}

TEST_F(SqliteRefusals, MissingTableIsDamage)
{
  makeProject();
  runSql(file(), "DROP TABLE fields; DROP TABLE options");
  const auto project = makeSqliteStore(file());
  project->begin(Access::Write, noPatience);
  EXPECT_EQ(errorOf([&] { project->options(); }), withSubject("Unreadable: damaged (no such table: options)"));
  EXPECT_EQ(errorOf([&] { project->readReels([](StoredLog&&) {}); }),
            withSubject("Unreadable: damaged (no such table: fields)"));
  Changes changes;
  changes.options = {{"a", "b"}};
  EXPECT_EQ(errorOf([&] { project->commit(changes); }), withSubject("Unreadable: damaged (no such table: options)"));
}

TEST_F(SqliteRefusals, ViewInPlaceOfATableIsDamage)
{
  makeProject();
  runSql(file(), "DROP TABLE options; CREATE VIEW options AS SELECT 'k' AS key, 'v' AS value");
  const auto project = makeSqliteStore(file());
  project->begin(Access::Read, noPatience);
  EXPECT_EQ(errorOf([&] { project->options(); }).rfind(withSubject("Unreadable: damaged ("), 0), 0u);
}

TEST_F(SqliteRefusals, TriggersInTheFileDoNothing)
{
  makeProject();
  runSql(file(), "CREATE TRIGGER t AFTER INSERT ON options BEGIN DELETE FROM fields; DELETE FROM logs; END");
  const auto project = makeSqliteStore(file());
  const auto reels = reelsOf(*project);
  Changes changes;
  changes.options = {{"new", "b"}};
  store(*project, changes);
  EXPECT_EQ(reelsOf(*project), reels);
}

TEST_F(SqliteRefusals, ProjectWithoutItsNameOrUuidIsDamage)
{
  for (const char* key : {"name", "uuid"}) {
    fs::remove(file());
    makeProject();
    runSql(file(), std::string("DELETE FROM project WHERE key = '") + key + "'");
    const auto project = makeSqliteStore(file());
    project->begin(Access::Read, noPatience);
    EXPECT_EQ(errorOf([&] { project->info(); }),
              withSubject("Unreadable: damaged (the project has no name or no uuid)"))
        << key;
  }
}

TEST_F(SqliteRefusals, UuidOfAnotherLengthIsDamage)
{
  makeProject();
  runSql(file(), "UPDATE project SET value = x'0102' WHERE key = 'uuid'");
  const auto project = makeSqliteStore(file());
  project->begin(Access::Read, noPatience);
  EXPECT_EQ(errorOf([&] { project->info(); }), withSubject("Unreadable: damaged (the project has no name or no uuid)"));
}

TEST_F(SqliteRefusals, LogWithoutAnIdentityIsDamage)
{
  for (const char* change : {"uuid = x'01'", "kind = ''", "kind = 'EE'"}) {
    fs::remove(file());
    makeProject();
    runSql(file(), std::string("PRAGMA ignore_check_constraints = 1; UPDATE logs SET ") + change + " WHERE number = 4");
    EXPECT_EQ(beginError(Access::Read), withSubject("Unreadable: damaged (CHECK constraint failed in logs)")) << change;
    const auto project = makeSqliteStore(file());
    EXPECT_EQ(project->check().front(), "CHECK constraint failed in logs") << change;
  }
}

TEST_F(SqliteRefusals, LogOfTheInvalidKindIsDamageWhenItIsRead)
{
  createSqliteProject(file(), exampleInfo(), {});
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9), exampleLog(2, 1)}));
  const std::function<void(StoredLog &&)> ignore = [](StoredLog&&) {};
  runSql(file(), "UPDATE logs SET kind = 'I' WHERE number = 1");
  project->begin(Access::Read, noPatience);
  EXPECT_EQ(errorOf([&] { project->readReels(ignore); }),
            withSubject("Unreadable: damaged (log 1 has no valid identity)"));
  EXPECT_EQ(errorOf([&] { project->readOthers(ignore); }), "nothing");
  runSql(file(), "UPDATE logs SET kind = char(64 + number * 4 + 1)"); // 'E' and 'I'
  project->begin(Access::Read, noPatience);
  EXPECT_EQ(errorOf([&] { project->readReels(ignore); }), "nothing");
  EXPECT_EQ(errorOf([&] { project->readOthers(ignore); }),
            withSubject("Unreadable: damaged (log 2 has no valid identity)"));
}

TEST_F(SqliteRefusals, DamageInALargeFileIsFoundWhenItIsRead)
{
  createSqliteProject(file(), exampleInfo(), {});
  {
    Changes changes;
    for (int number = 1; number <= 20; ++number) {
      changes.logs.push_back(exampleLog(number, 9));
      changes.logs.back().name = std::string(500'000, 'n');
    }
    const auto project = makeSqliteStore(file());
    store(*project, changes);
  }
  ASSERT_GT(fs::file_size(file()), 9'000'000u);
  // The root page of the logs. The start of the file is not damaged.
  const auto root = static_cast<std::size_t>(
      std::stoi(runSql(file(), "SELECT rootpage FROM sqlite_schema WHERE type = 'table' AND name = 'logs'")));
  overwrite((root - 1) * pageSize(), std::string(pageSize(), '\x5A'));
  const auto before = everything();
  {
    const auto project = makeSqliteStore(file());
    project->begin(Access::Write, noPatience);
    EXPECT_EQ(errorOf([&] { project->readReels([](StoredLog&&) {}); }),
              withSubject("Unreadable: damaged (database disk image is malformed)"));
    EXPECT_EQ(errorOf([&] { project->commit(logChanges({exampleLog(21, 9)})); }),
              withSubject("Unreadable: damaged (database disk image is malformed)"));
    EXPECT_FALSE(project->check().empty());
  }
  EXPECT_EQ(everything(), before);
}

TEST_F(SqliteRefusals, LinksAndFoldersBesideTheProjectAreRefused)
{
  makeProject();
  const fs::path elsewhere = folder() / "elsewhere";
  writeBytes(elsewhere, "precious");
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    const fs::path beside = file().native() + ending;
    fs::create_symlink(elsewhere, beside);
    expectRefused("Unreadable: damaged (" + beside.native() + " is a symbolic link)");
    fs::remove(beside);
    fs::create_directory(beside);
    expectRefused("Unreadable: damaged (" + beside.native() + " is a folder)");
    fs::remove(beside);
  }
  EXPECT_EQ(bytesOf(elsewhere), "precious");
}

TEST_F(SqliteRefusals, PathTooLongForSqlite)
{
  fs::path deep = folder();
  while (deep.native().size() < 500)
    deep /= std::string(100, 'd');
  fs::create_directories(deep);
  EXPECT_EQ(errorOf([&] { createSqliteProject(deep / "x.reels", exampleInfo(), {}); }),
            "Io: " + (deep / "x.reels").native() + ": cannot be made (its full path is too long)");
  writeBytes(deep / "x.reels", "x");
  const auto project = makeSqliteStore(deep / "x.reels");
  EXPECT_EQ(errorOf([&] { project->begin(Access::Read, noPatience); }),
            "Io: " + (deep / "x.reels").native() + ": cannot be opened (its full path is longer than 500 bytes)");
}

TEST_F(SqliteRefusals, ControlCharactersOfANameAreShownEscaped)
{
  const auto project = makeSqliteStore(folder() / "a\nb\x1B[2J.reels");
  EXPECT_EQ(project->subject(), (folder() / "a\\nb\\x1b[2J.reels").native());
  EXPECT_EQ(errorOf([&] { project->begin(Access::Read, noPatience); }),
            "NotFound: " + (folder() / "a\\nb\\x1b[2J.reels").native() + ": no such project");
}

TEST_F(SqliteRefusals, UseContinuesAfterARefusalWithTheNextBegin)
{
  makeProject(3);
  const auto project = makeSqliteStore(file());
  const std::string content = bytesOf(file());
  writeBytes(file(), content.substr(0, content.size() - 1));
  EXPECT_NE(errorOf([&] { project->begin(Access::Read, noPatience); }), "nothing");
  writeBytes(file(), content);
  EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 2, 3}));
}

// --- Read-only -----------------------------------------------------------------------------------

class SqliteReadOnly : public SqliteRefusals {
protected:
  void SetUp() override
  {
    makeProject(3);
    whole_ = [this] {
      const auto project = makeSqliteStore(file());
      return reelsOf(*project);
    }();
  }

  /// Writing is refused with this fact, reading works, and the folder stays as it is.
  void expectReadOnly(const std::string& fact)
  {
    const auto before = everything();
    EXPECT_EQ(beginError(Access::Write), withSubject("ReadOnly: read-only (" + fact + ")"));
    {
      const auto project = makeSqliteStore(file());
      EXPECT_EQ(reelsOf(*project), whole_);
      EXPECT_FALSE(project->changedElsewhere());
      EXPECT_EQ(project->check(), std::vector<std::string>{});
      EXPECT_EQ(reelsOf(*project), whole_);
      EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }),
                withSubject("ReadOnly: read-only (" + fact + ")"));
    }
    EXPECT_EQ(everything(), before);
  }

  std::vector<std::string> whole_;
};

TEST_F(SqliteReadOnly, ModeOfTheFileCountsForRootToo)
{
  fs::permissions(file(), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  expectReadOnly("its mode does not allow writing");
}

TEST_F(SqliteReadOnly, ModeOfTheFolderCountsForRootToo)
{
  fs::permissions(folder(), fs::perms::owner_read | fs::perms::owner_exec);
  expectReadOnly("the mode of its folder does not allow writing");
  fs::permissions(folder(), fs::perms::owner_all);
}

TEST_F(SqliteReadOnly, LinkToAReadOnlyFile)
{
  const fs::path real = folder() / "real.reels";
  fs::rename(file(), real);
  fs::create_symlink(real, file());
  fs::permissions(real, fs::perms::owner_read);
  expectReadOnly("its mode does not allow writing");
}

TEST_F(SqliteReadOnly, WritableAgainIsWrittenAgain)
{
  const auto project = makeSqliteStore(file());
  fs::permissions(file(), fs::perms::owner_read);
  EXPECT_EQ(reelsOf(*project), whole_);
  fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write);
  store(*project, logChanges({exampleLog(4, 9)}));
  EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 2, 4, 3}));
}

TEST_F(SqliteReadOnly, AnotherCommitIsSeenThroughAReadOnlyFile)
{
  // A project that is read without locks has no version, so the file's time and size are compared.
  const auto reader = makeSqliteStore(file());
  fs::permissions(file(), fs::perms::owner_read);
  EXPECT_EQ(reelsOf(*reader), whole_);
  fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write);
  {
    const auto writer = makeSqliteStore(file());
    store(*writer, logChanges({exampleLog(4, 9)}));
  }
  fs::permissions(file(), fs::perms::owner_read);
  EXPECT_TRUE(reader->changedElsewhere());
  EXPECT_FALSE(reader->changedElsewhere());
  EXPECT_EQ(numbersOf(*reader), (std::vector<std::int64_t>{1, 2, 4, 3}));
}

TEST_F(SqliteReadOnly, ReadOnlyFileWithAnUnfinishedLogIsReadWithIt)
{
  storeAndDie(file(), logChanges({exampleLog(4, 9)}));
  fs::permissions(file(), fs::perms::owner_read);
  const auto before = everything();
  {
    const auto project = makeSqliteStore(file());
    EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 2, 4, 3}));
  }
  EXPECT_EQ(everything(), before);
  fs::remove(file().native() + "-shm"); // as after a copy that left it out
  const auto beforeAgain = everything();
  {
    const auto project = makeSqliteStore(file());
    EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 2, 4, 3}));
    EXPECT_FALSE(project->changedElsewhere());
    EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 2, 4, 3}));
  }
  EXPECT_EQ(everything(), beforeAgain);
}

TEST_F(SqliteReadOnly, IndexWithoutALogIsSkipped)
{
  fs::permissions(file(), fs::perms::owner_read);
  writeBytes(file().native() + "-shm", std::string(32768, '\0'));
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(reelsOf(*project), whole_);
}

class SqliteReadOnlyMount : public testing::Test {
protected:
  SqliteReadOnlyMount() : mount_("size=4m") {}
  void SetUp() override
  {
    if (!mount_.mounted())
      GTEST_SKIP() << "mounting a file system is not allowed here";
    createSqliteProject(file(), exampleInfo(), {});
    const auto project = makeSqliteStore(file());
    store(*project, logChanges({exampleLog(1, 9)}));
  }
  void expectNumbers(const std::vector<std::int64_t>& numbers)
  {
    const auto project = makeSqliteStore(file());
    EXPECT_EQ(numbersOf(*project), numbers);
    EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }),
              "ReadOnly: " + file().native() + ": read-only (Read-only file system)");
  }
  fs::path file() const { return mount_ / "main.reels"; }
  TempMount mount_;
};

TEST_F(SqliteReadOnlyMount, ProjectAtRestIsReadAndNotWritten)
{
  ASSERT_TRUE(mount_.makeReadOnly());
  expectNumbers({1});
  EXPECT_EQ(namesIn(mount_ / ""), std::vector<std::string>{"main.reels"});
}

TEST_F(SqliteReadOnlyMount, UnfinishedLogWithItsIndexIsRead)
{
  storeAndDie(file(), logChanges({exampleLog(2, 9)}));
  ASSERT_TRUE(mount_.makeReadOnly());
  expectNumbers({1, 2});
}

TEST_F(SqliteReadOnlyMount, UnfinishedLogWithoutItsIndexIsRead)
{
  storeAndDie(file(), logChanges({exampleLog(2, 9)}));
  fs::remove(file().native() + "-shm");
  ASSERT_TRUE(mount_.makeReadOnly());
  expectNumbers({1, 2});
}

TEST_F(SqliteReadOnlyMount, IndexWithoutALogIsSkipped)
{
  writeBytes(file().native() + "-shm", std::string(32768, '\0'));
  ASSERT_TRUE(mount_.makeReadOnly());
  expectNumbers({1});
}

TEST_F(SqliteReadOnlyMount, EmptyLogIsSkipped)
{
  writeBytes(file().native() + "-wal", "");
  ASSERT_TRUE(mount_.makeReadOnly());
  expectNumbers({1});
}

TEST_F(SqliteReadOnlyMount, NewProjectIsRefused)
{
  ASSERT_TRUE(mount_.makeReadOnly());
  EXPECT_EQ(errorOf([&] { createSqliteProject(mount_ / "new.reels", exampleInfo(), {}); }),
            "Io: " + (mount_ / "new.reels").native() + ": cannot be made (Read-only file system)");
}

} // namespace
