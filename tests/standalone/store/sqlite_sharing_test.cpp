// SPDX-License-Identifier: Apache-2.0
//
// One project, several processes.
#include <algorithm>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
namespace fs = std::filesystem;
using Numbers = std::vector<std::int64_t>;

class SqliteSharing : public testing::Test {
protected:
  void SetUp() override { createSqliteProject(file(), exampleInfo(), {}); }
  fs::path file() const { return folder_ / "main.reels"; }
  fs::path folder() const { return folder_.path(); }

  /// A process that has begun to write and holds the project.
  Child holder() const
  {
    return Child([this] {
      static std::unique_ptr<Store> held; // outlives the work
      held = makeSqliteStore(file());
      held->begin(Access::Write, muchPatience);
    });
  }

  std::string busyError(pid_t pid) const
  {
    return "Busy: " + file().native() + ": held by another process (pid " + std::to_string(pid) + ", store_test";
  }

  /// The error of a separate process that tries to write.
  std::string errorElsewhere() const
  {
    const fs::path result = folder_ / "result";
    Child other([&] {
      const auto project = makeSqliteStore(file());
      writeBytes(result, errorOf([&] { project->begin(Access::Write, noPatience); }));
    });
    EXPECT_EQ(other.waitForExit(), 0);
    return bytesOf(result);
  }

  void storeElsewhere(std::int64_t number) const
  {
    Child other([&] {
      const auto project = makeSqliteStore(file());
      store(*project, logChanges({exampleLog(number, 9)}));
    });
    ASSERT_EQ(other.waitForExit(), 0);
  }

private:
  TempFolder folder_;
};

TEST_F(SqliteSharing, ErrorOfTheSecondWriterNamesTheHolderOfTheProject)
{
  Child other = holder();
  other.waitUntilDone();
  const auto project = makeSqliteStore(file());
  const std::string error = errorOf([&] { project->begin(Access::Write, noPatience); });
  EXPECT_EQ(error.rfind(busyError(other.pid()), 0), 0u) << error;
  EXPECT_EQ(error.back(), ')');
  EXPECT_EQ(std::count(error.begin(), error.end(), '\0'), 0);
}

TEST_F(SqliteSharing, SecondWriterWaitsAsLongAsItsBusyTimeout)
{
  Child other = holder();
  other.waitUntilDone();
  const auto project = makeSqliteStore(file());
  const auto start = steady_clock::now();
  EXPECT_EQ(errorOf([&] { project->begin(Access::Write, milliseconds(300)); }).rfind("Busy: ", 0), 0u);
  const auto waited = steady_clock::now() - start;
  EXPECT_GE(waited, milliseconds(290));
  EXPECT_LT(waited, milliseconds(20000));
}

TEST_F(SqliteSharing, SecondWriterContinuesWhenTheFirstIsDone)
{
  Child other([this] {
    const auto project = makeSqliteStore(file());
    project->begin(Access::Write, muchPatience);
    writeBytes(folder() / "begun", "");
    ::usleep(200'000);
    project->commit(logChanges({exampleLog(1, 9)}));
  });
  while (!fs::exists(folder() / "begun"))
    ::usleep(1000);
  const auto project = makeSqliteStore(file());
  project->begin(Access::Write, muchPatience);
  EXPECT_EQ(project->nextNumber(), 2);
  project->commit(logChanges({exampleLog(2, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 2}));
}

TEST_F(SqliteSharing, BusyStoreWritesOnceTheHolderIsGone)
{
  const auto project = makeSqliteStore(file());
  {
    Child other = holder();
    other.waitUntilDone();
    EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }).rfind("Busy: ", 0), 0u);
  }
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_F(SqliteSharing, FirstUseWaitsForAProcessThatHasTheFileToItself)
{
  for (const Access access : {Access::Read, Access::Write}) {
    // A process does this for a moment when it closes the file last, or recovers a log.
    Child closing([this] {
      const int fd = ::open(file().c_str(), O_RDWR | O_CLOEXEC);
      struct flock lock = {};
      lock.l_type = F_WRLCK;
      lock.l_whence = SEEK_SET;
      lock.l_start = 0x40000000;
      lock.l_len = 512;
      if (::fcntl(fd, F_SETLK, &lock) != 0)
        throw std::runtime_error("no lock");
      writeBytes(folder() / "locked", "");
      ::usleep(200'000);
      ::close(fd);
    });
    while (!fs::exists(folder() / "locked"))
      ::usleep(1000);
    const auto project = makeSqliteStore(file());
    project->begin(access, muchPatience);
    EXPECT_EQ(project->nextNumber(), 1);
    EXPECT_EQ(closing.waitForExit(), 0);
    fs::remove(folder() / "locked");
  }
}

TEST_F(SqliteSharing, ProcessesThatOpenAndCloseInTurnAreNeverTurnedAway)
{
  constexpr int commits = 25;
  const auto writeMany = [this] {
    for (int i = 0; i < commits; ++i) {
      const auto project = makeSqliteStore(file());
      project->begin(Access::Write, muchPatience);
      project->commit(logChanges({exampleLog(project->nextNumber(), 9)}));
    }
  };
  const auto readMany = [this] {
    for (int i = 0; i < commits; ++i)
      numbersOf(*makeSqliteStore(file()));
  };
  Child first(writeMany), second(writeMany), reader(readMany);
  EXPECT_EQ(first.waitForExit(), 0);
  EXPECT_EQ(second.waitForExit(), 0);
  EXPECT_EQ(reader.waitForExit(), 0);
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())).size(), 2u * commits);
}

TEST_F(SqliteSharing, BusyProjectIsRead)
{
  const auto before = makeSqliteStore(file());
  store(*before, logChanges({exampleLog(1, 9)}));
  Child other = holder();
  other.waitUntilDone();
  const auto project = makeSqliteStore(file());
  project->begin(Access::Read, noPatience);
  EXPECT_EQ(project->nextNumber(), 2);
  project->end();
  EXPECT_EQ(project->check(), std::vector<std::string>{});
}

TEST_F(SqliteSharing, ReaderKeepsNoWriterAwayAndItsSnapshotStays)
{
  const auto reader = makeSqliteStore(file());
  store(*reader, logChanges({exampleLog(1, 9)}));
  reader->begin(Access::Read, noPatience);
  storeElsewhere(2);
  EXPECT_EQ(reader->nextNumber(), 2);
  int reels = 0;
  reader->readReels([&](StoredLog&&) { ++reels; });
  EXPECT_EQ(reels, 1);
  reader->end();
  EXPECT_EQ(numbersOf(*reader), (Numbers{1, 2}));
}

TEST_F(SqliteSharing, CommitOfAnotherProcessIsReportedOnceAfterTheUse)
{
  const auto project = makeSqliteStore(file());
  EXPECT_FALSE(project->changedElsewhere()); // nothing has begun
  project->begin(Access::Read, noPatience);
  storeElsewhere(1);
  EXPECT_FALSE(project->changedElsewhere()); // the snapshot stays what it is
  project->end();
  EXPECT_TRUE(project->changedElsewhere());
  EXPECT_FALSE(project->changedElsewhere());
  storeElsewhere(2);
  storeElsewhere(3);
  EXPECT_TRUE(project->changedElsewhere());
  EXPECT_FALSE(project->changedElsewhere());
  storeElsewhere(4);
  EXPECT_EQ(numbersOf(*project), (Numbers{1, 2, 3, 4})); // begin has seen it, so it is not reported again
  EXPECT_FALSE(project->changedElsewhere());
}

TEST_F(SqliteSharing, UseWithoutChangesElsewhereReportsNoChange)
{
  const auto project = makeSqliteStore(file());
  numbersOf(*project);
  Child other([this] {
    const auto reader = makeSqliteStore(file());
    numbersOf(*reader);
    store(*reader, {});
  });
  ASSERT_EQ(other.waitForExit(), 0);
  EXPECT_FALSE(project->changedElsewhere());
}

TEST_F(SqliteSharing, CheckDoesNotSwallowTheNews)
{
  const auto project = makeSqliteStore(file());
  numbersOf(*project);
  storeElsewhere(1);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  EXPECT_TRUE(project->changedElsewhere());
}

TEST_F(SqliteSharing, CheckOfAFileThatWasReplacedDoesNotSwallowTheNews)
{
  const auto project = makeSqliteStore(file());
  numbersOf(*project);
  for (const char* ending : {"", "-wal", "-shm"})
    fs::remove(file().native() + ending);
  createSqliteProject(file(), exampleInfo(), {});
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  EXPECT_TRUE(project->changedElsewhere());
}

TEST_F(SqliteSharing, CheckDuringAUseLeavesItBegun)
{
  const auto project = makeSqliteStore(file());
  project->begin(Access::Write, noPatience);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  EXPECT_NE(errorElsewhere(), "nothing");
  project->commit(logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_F(SqliteSharing, BusyBeginReportsNoChange)
{
  const auto project = makeSqliteStore(file());
  numbersOf(*project);
  Child other = holder();
  other.waitUntilDone();
  EXPECT_NE(errorOf([&] { project->begin(Access::Write, noPatience); }), "nothing");
  other.kill();
  EXPECT_FALSE(project->changedElsewhere());
}

TEST_F(SqliteSharing, FileReplacedByAnotherIsNewsAndTheNewOneIsUsed)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9)}));
  createSqliteProject(folder() / "other.reels", exampleInfo(), {});
  {
    const auto other = makeSqliteStore(folder() / "other.reels");
    store(*other, logChanges({exampleLog(5, 9)}));
  }
  for (const char* ending : {"-wal", "-shm"})
    fs::remove(file().native() + ending);
  fs::rename(folder() / "other.reels", file());
  EXPECT_TRUE(project->changedElsewhere());
  EXPECT_FALSE(project->changedElsewhere());
  EXPECT_EQ(numbersOf(*project), (Numbers{5}));
  store(*project, logChanges({exampleLog(6, 9)}));
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())), (Numbers{5, 6}));
}

TEST_F(SqliteSharing, FileReplacedWithoutBeingAskedIsUsedFromTheNextBeginOn)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(1, 9)}));
  for (const char* ending : {"", "-wal", "-shm"})
    fs::remove(file().native() + ending);
  createSqliteProject(file(), exampleInfo(), {});
  EXPECT_EQ(numbersOf(*project), (Numbers{}));
}

TEST_F(SqliteSharing, FileTakenAwayIsNewsAndThenNotFound)
{
  const auto project = makeSqliteStore(file());
  numbersOf(*project);
  for (const char* ending : {"", "-wal", "-shm"})
    fs::remove(file().native() + ending);
  EXPECT_TRUE(project->changedElsewhere());
  EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }),
            "NotFound: " + file().native() + ": no such project");
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{});
}

TEST_F(SqliteSharing, LinkAndFileAreOneProject)
{
  const fs::path link = folder() / "link.reels";
  fs::create_symlink(file(), link);
  const auto throughLink = makeSqliteStore(link);
  store(*throughLink, logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())), (Numbers{1}));
  throughLink->begin(Access::Write, noPatience);
  EXPECT_EQ(errorElsewhere().rfind(busyError(::getpid()), 0), 0u);
}

TEST_F(SqliteSharing, FindingTheHolderOfTheProjectDropsNoLock)
{
  const auto project = makeSqliteStore(file());
  const auto second = makeSqliteStore(file());
  project->begin(Access::Write, noPatience);
  // Within one process the system does not report the holder.
  EXPECT_EQ(errorOf([&] { second->begin(Access::Write, noPatience); }),
            "Busy: " + file().native() + ": held by another process");
  EXPECT_EQ(errorElsewhere().rfind(busyError(::getpid()), 0), 0u);
  project->commit(logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(errorElsewhere(), "nothing");
}

TEST_F(SqliteSharing, RefusedSecondStoreDropsNoLockOfTheFirst)
{
  const auto project = makeSqliteStore(file());
  project->begin(Access::Write, noPatience);
  {
    const auto second = makeSqliteStore(file());
    second->begin(Access::Read, noPatience);
    second->end();
  }
  EXPECT_EQ(errorElsewhere().rfind(busyError(::getpid()), 0), 0u);
  project->commit(logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*project), (Numbers{1}));
}

TEST_F(SqliteSharing, TwoProcessesWritingInALoopLoseNothing)
{
  constexpr int commits = 40;
  const auto writeMany = [this] {
    const auto project = makeSqliteStore(file());
    for (int i = 0; i < commits; ++i) {
      project->begin(Access::Write, muchPatience);
      project->commit(logChanges({exampleLog(project->nextNumber(), 9)}));
    }
  };
  Child first(writeMany), second(writeMany);
  const auto reader = makeSqliteStore(file());
  std::size_t seen = 0;
  for (int i = 0; i < 20; ++i) {
    const Numbers numbers = numbersOf(*reader);
    EXPECT_GE(numbers.size(), seen);
    seen = numbers.size();
    ::usleep(5000);
  }
  EXPECT_EQ(first.waitForExit(), 0);
  EXPECT_EQ(second.waitForExit(), 0);
  Numbers expected;
  for (std::int64_t number = 1; number <= 2 * commits; ++number)
    expected.push_back(number);
  EXPECT_EQ(numbersOf(*reader), expected);
  EXPECT_EQ(reader->check(), std::vector<std::string>{});
}

/// A user who may read the project but write neither it nor its folder.
class SqliteOtherUser : public SqliteSharing {
protected:
  void SetUp() override
  {
    if (::geteuid() != 0)
      GTEST_SKIP() << "only root can try what another user may do";
    SqliteSharing::SetUp();
    store(*makeSqliteStore(file()), logChanges({exampleLog(1, 9)}));
    fs::permissions(folder(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  }

  /// The result of @p work as that user.
  std::string asOtherUser(const std::function<std::string()>& work) const
  {
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    Child other([&] {
      if (::setgid(65534) != 0 || ::setuid(65534) != 0)
        throw std::runtime_error("no other user");
      const std::string text = work();
      if (::write(pipe[1], text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("nothing was written");
    });
    EXPECT_EQ(other.waitForExit(), 0);
    ::close(pipe[1]);
    std::string text(1000, ' ');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::read(pipe[0], text.data(), text.size()))));
    ::close(pipe[0]);
    return text;
  }

  std::string numbersSeen() const
  {
    return asOtherUser([this] {
      const auto project = makeSqliteStore(file());
      std::string out;
      for (const std::int64_t number : numbersOf(*project))
        out += std::to_string(number) + " ";
      return out;
    });
  }
};

TEST_F(SqliteOtherUser, ReadsAProjectAtRestAndLeavesNothingBehind)
{
  EXPECT_EQ(numbersSeen(), "1 ");
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"main.reels"});
}

TEST_F(SqliteOtherUser, ReadsABusyProjectAsItWasCommittedLast)
{
  const auto project = makeSqliteStore(file());
  store(*project, logChanges({exampleLog(2, 9)}));
  project->begin(Access::Write, noPatience);
  EXPECT_EQ(numbersSeen(), "1 2 ");
  project->commit(logChanges({exampleLog(3, 9)}));
  EXPECT_EQ(numbersSeen(), "1 2 3 ");
}

TEST_F(SqliteOtherUser, ReadsWhatAKilledWriterLeft)
{
  storeAndDie(file(), logChanges({exampleLog(2, 9)}));
  EXPECT_EQ(numbersSeen(), "1 2 ");
}

TEST_F(SqliteOtherUser, CannotWrite)
{
  const auto error = [this] {
    return asOtherUser([this] {
      const auto project = makeSqliteStore(file());
      return errorOf([&] { project->begin(Access::Write, noPatience); });
    });
  };
  EXPECT_EQ(error(), "ReadOnly: " + file().native() + ": read-only (Permission denied)");
  fs::permissions(file(), fs::perms::others_write, fs::perm_options::add);
  EXPECT_EQ(error(), "ReadOnly: " + file().native() + ": read-only (Permission denied)"); // for the folder
  fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(error(), "Io: " + file().native() + ": cannot be opened (Permission denied)");
}

TEST_F(SqliteSharing, LastToLeaveLeavesOneFile)
{
  {
    const auto project = makeSqliteStore(file());
    store(*project, logChanges({exampleLog(1, 9)}));
    storeElsewhere(2);
    EXPECT_GT(namesIn(folder()).size(), 1u);
  }
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"main.reels"});
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())), (Numbers{1, 2}));
}

} // namespace
