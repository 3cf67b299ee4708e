// SPDX-License-Identifier: Apache-2.0
//
// Every commit of another process is noticed, however it is made and however long it takes.
#include "store/file_watch.h"

#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <sqlite3.h>
#include <unistd.h>

#include "standalone/store/support.h"
#include "store/sqlite.h"

namespace {

using namespace reelhost;
using namespace store_tests;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
namespace fs = std::filesystem;

class FileWatchTest : public testing::Test {
protected:
  void SetUp() override
  {
    createSqliteProject(file(), exampleInfo(), {});
    project_ = makeSqliteStore(file());
    ASSERT_GE(feed().waitHandle(), 0) << feed().whyNoWaitHandle();
    project_->begin(Access::Read, muchPatience);
    position_ = feed().position();
    project_->end();
    feed().readEvents(); // opening the project has made files
    ASSERT_FALSE(project_->changedElsewhere());
  }
  fs::path file() const { return folder_ / "main.reels"; }
  Feed& feed() { return *project_->feed(); }

  bool isReadable(milliseconds time)
  {
    pollfd handle{feed().waitHandle(), POLLIN, 0};
    return ::poll(&handle, 1, static_cast<int>(time.count())) > 0;
  }

  /// Waits as a program with a feed does. Returns whether another process has committed.
  bool noticesACommit(milliseconds patience = milliseconds(20'000))
  {
    const auto end = steady_clock::now() + patience;
    while (steady_clock::now() < end) {
      if (!isReadable(std::chrono::duration_cast<milliseconds>(end - steady_clock::now())))
        return false;
      AskAgain again = feed().readEvents();
      for (; again && again->count() != 0; again = feed().readEvents()) {
        ++pauses_;
        std::this_thread::sleep_for(*again);
      }
      if (again && project_->changedElsewhere())
        return true;
    }
    return false;
  }

  Delta delta()
  {
    project_->begin(Access::Read, muchPatience);
    Delta found = feed().since(position_);
    position_ = feed().position();
    project_->end();
    return found;
  }

  void storeElsewhere(std::int64_t number) const
  {
    Child other([&] {
      const auto project = makeSqliteStore(file());
      store(*project, logChanges({exampleLog(number, 9)}));
    });
    EXPECT_EQ(other.waitForExit(), 0);
  }

  TempFolder folder_;
  std::unique_ptr<Store> project_;
  FeedPosition position_;
  int pauses_ = 0;
};

TEST_F(FileWatchTest, OneCommitThenSilenceIsNoticed)
{
  storeElsewhere(1);
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
}

TEST_F(FileWatchTest, CommitOfAWriterThatStaysOpenIsNoticed)
{
  Child writer([&] {
    static std::unique_ptr<Store> project; // stays open after the work
    project = makeSqliteStore(file());
    store(*project, logChanges({exampleLog(1, 9)}));
  });
  writer.waitUntilDone();
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
}

TEST_F(FileWatchTest, CommitOfAWriterThatIsKilledAfterItIsNoticed)
{
  storeAndDie(file(), logChanges({exampleLog(1, 9)}));
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
}

TEST_F(FileWatchTest, EveryCommitOfManyIsNoticed)
{
  for (std::int64_t number = 1; number <= 40; ++number) {
    storeElsewhere(number);
    ASSERT_TRUE(noticesACommit()) << number;
    const Delta found = delta();
    ASSERT_FALSE(found.whole);
    ASSERT_EQ(found.logs.size(), 1u);
    ASSERT_EQ(found.logs.front().number, number);
  }
}

// The log is written to long before the commit can be seen, as on a slow disk.
TEST_F(FileWatchTest, CommitIsNoticedHoweverLongItTakesAfterTheFirstWrite)
{
  int pipes[2];
  ASSERT_EQ(::pipe(pipes), 0);
  Child writer([&] {
    sqlite::Database database(file().native(), sqlite::Database::Mode::ReadWrite);
    database.execute("PRAGMA cache_size = 1; PRAGMA cache_spill = 1; BEGIN IMMEDIATE");
    database.execute("CREATE TABLE filler(text); WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM n WHERE "
                     "i < 2000) INSERT INTO filler SELECT zeroblob(500) FROM n; DROP TABLE filler");
    if (::write(pipes[1], "w", 1) != 1)
      throw std::runtime_error("no pipe");
    std::this_thread::sleep_for(milliseconds(400));
    database.execute("INSERT INTO options VALUES('late', 'x'); COMMIT");
  });
  char written = 0;
  ASSERT_EQ(::read(pipes[0], &written, 1), 1);
  EXPECT_TRUE(isReadable(milliseconds(10'000)));
  EXPECT_TRUE(noticesACommit());
  EXPECT_GT(pauses_, 0);
  EXPECT_EQ(writer.waitForExit(), 0);
  EXPECT_TRUE(delta().whole); // no revision says what was written
  ::close(pipes[0]);
  ::close(pipes[1]);
}

/// Writes, and returns a while later, as a slow disk does.
ssize_t writeSlowly(int file, const void* bytes, std::size_t size, off_t at)
{
  const ssize_t written = ::pwrite(file, bytes, size, at);
  std::this_thread::sleep_for(milliseconds(150));
  return written;
}

// Every write is reported long before the commit can be seen, the last one, too.
TEST_F(FileWatchTest, CommitToASlowDiskIsNoticed)
{
  Child writer([&] {
    sqlite3_vfs* const system = sqlite3_vfs_find(nullptr);
    for (const char* call : {"pwrite", "pwrite64"})
      if (system->xGetSystemCall(system, call))
        system->xSetSystemCall(system, call, reinterpret_cast<sqlite3_syscall_ptr>(writeSlowly));
    const auto project = makeSqliteStore(file());
    store(*project, logChanges({exampleLog(1, 9)}));
  });
  EXPECT_TRUE(noticesACommit());
  EXPECT_GT(pauses_, 0);
  EXPECT_EQ(delta().logs.size(), 1u);
  EXPECT_EQ(writer.waitForExit(), 0);
}

TEST_F(FileWatchTest, CommitAfterACheckpointIsNoticed)
{
  storeElsewhere(1);
  EXPECT_TRUE(noticesACommit());
  delta();
  runSql(file(), "PRAGMA wal_checkpoint(TRUNCATE)");
  noticesACommit(milliseconds(300)); // a checkpoint may look like a commit
  delta();
  storeElsewhere(2);
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
}

TEST_F(FileWatchTest, FileInThePlaceOfTheProjectIsNoticedAndWhole)
{
  const fs::path other = folder_ / "other.reels";
  createSqliteProject(other, exampleInfo(), {});
  for (const char* ending : {"-wal", "-shm"}) // of the project that is replaced
    fs::remove(file().native() + ending);
  fs::rename(other, file());
  EXPECT_TRUE(noticesACommit());
  EXPECT_TRUE(delta().whole);
  storeElsewhere(1); // commits to the new file are noticed, too
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
}

TEST_F(FileWatchTest, CommitsToALogThatWasRemovedAndMadeAgainAreNoticed)
{
  storeElsewhere(1);
  EXPECT_TRUE(noticesACommit());
  delta();
  runSql(file(), "PRAGMA wal_checkpoint(TRUNCATE)");
  for (const char* ending : {"-wal", "-shm"})
    fs::remove(file().native() + ending);
  storeElsewhere(2);
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
  storeElsewhere(3);
  EXPECT_TRUE(noticesACommit());
  EXPECT_EQ(delta().logs.size(), 1u);
}

TEST_F(FileWatchTest, OwnCommitGoesToTheLogThatWasMadeAgain)
{
  storeElsewhere(1);
  runSql(file(), "PRAGMA wal_checkpoint(TRUNCATE)");
  for (const char* ending : {"-wal", "-shm"})
    fs::remove(file().native() + ending);
  storeElsewhere(2);
  store(*project_, logChanges({exampleLog(3, 9)}));
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())), (std::vector<std::int64_t>{1, 2, 3}));
}

TEST_F(FileWatchTest, ProgramThatKeepsNoHistoryIsNoticedAndWhole)
{
  storeElsewhere(1);
  EXPECT_TRUE(noticesACommit());
  delta();
  runSql(file(), "UPDATE logs SET name = 'by hand'");
  EXPECT_TRUE(noticesACommit());
  EXPECT_TRUE(delta().whole);
}

TEST_F(FileWatchTest, EachWriteOfSuchAProgramIsWholeAlsoWithACommitBehindIt)
{
  storeElsewhere(1);
  runSql(file(), "INSERT INTO fields VALUES(1, 'bin', 'x')");
  EXPECT_TRUE(noticesACommit());
  delta();
  for (const char* sql :
       {"UPDATE logs SET name = 'by hand'", "UPDATE fields SET value = 'y' WHERE log = 1", "DELETE FROM fields",
        "INSERT INTO fields VALUES(1, 'bin', 'x')", "INSERT INTO options VALUES('o', 'x')",
        "UPDATE options SET value = 'y'", "DELETE FROM options",
        "INSERT INTO logs SELECT 100, type, uuid, tag, kind, imported, entire_medium, name, reel_type, video, audio, "
        "reel_id, source_file, source_in, source_out, record_in, record_out, tracks, aliases FROM logs LIMIT 1",
        "DELETE FROM logs WHERE number = 100"}) {
    runSql(file(), sql);
    storeElsewhere(2);
    EXPECT_TRUE(delta().whole) << sql;
    storeElsewhere(3);
    EXPECT_FALSE(delta().whole) << sql;
  }
}

TEST_F(FileWatchTest, ProjectThatGaveItsSpaceBackIsNoticedAndTheSame)
{
  storeElsewhere(1);
  EXPECT_TRUE(noticesACommit());
  delta();
  Child other([&] {
    const auto project = makeSqliteStore(file());
    project->history()->giveSpaceBack();
  });
  EXPECT_EQ(other.waitForExit(), 0);
  EXPECT_TRUE(noticesACommit());
  const Delta same = delta();
  EXPECT_FALSE(same.whole);
  EXPECT_TRUE(same.logs.empty() && same.gone.empty() && !same.options);
}

TEST_F(FileWatchTest, ReadersAndOtherFilesWakeNobodyForLong)
{
  Child reader([&] {
    const auto project = makeSqliteStore(file());
    project->begin(Access::Read, muchPatience);
    project->end();
  });
  EXPECT_EQ(reader.waitForExit(), 0);
  EXPECT_FALSE(isReadable(milliseconds(100)));
  writeBytes(folder_ / "main.reels-old", "x");
  writeBytes(folder_ / "another.reels", "x");
  EXPECT_FALSE(noticesACommit(milliseconds(100)));
  EXPECT_EQ(feed().readEvents(), AskAgain());
  EXPECT_FALSE(isReadable(milliseconds(100))); // the events are read
}

TEST_F(FileWatchTest, OwnCommitIsNotOneOfOthers)
{
  store(*project_, logChanges({exampleLog(1, 9)}));
  EXPECT_FALSE(noticesACommit(milliseconds(200)));
}

TEST(FileWatchWithoutAFolder, SaysWhyItCannotWatch)
{
  const FileWatch watch("/nowhere/at/all/main.reels");
  EXPECT_EQ(watch.handle(), -1);
  EXPECT_EQ(watch.whyNot(), "/nowhere/at/all: cannot be watched (No such file or directory)");
}

} // namespace
