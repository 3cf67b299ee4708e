// SPDX-License-Identifier: Apache-2.0
//
// A commit is stored completely or not at all, whatever happens to the process, the disk or the write-ahead log.
#include <iostream>
#include <memory>
#include <random>
#include <set>
#include <tuple>

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;
using Numbers = std::vector<std::int64_t>;

Changes batch(std::int64_t first, int count)
{
  Changes changes;
  for (int i = 0; i < count; ++i)
    changes.logs.push_back(exampleLog(first + i, i % 2 == 0 ? 9 : 1));
  return changes;
}

std::uint32_t bigEndian(std::string_view bytes)
{
  std::uint32_t value = 0;
  for (const char byte : bytes.substr(0, 4))
    value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

/// The number of complete commits in the first @p size bytes of a write-ahead log. After the log's header come frames,
/// each a header and a page. The last frame of a commit has the number of pages that the database then has.
std::size_t commitsIn(std::string_view log, std::size_t size)
{
  constexpr std::size_t logHeader = 32, pageSizeAt = 8, frameHeader = 24, commitAt = 4;
  const std::size_t frame = frameHeader + bigEndian(log.substr(pageSizeAt));
  std::size_t commits = 0;
  for (std::size_t at = logHeader; at + frame <= size; at += frame)
    commits += bigEndian(log.substr(at + commitAt)) != 0 ? 1 : 0;
  return commits;
}

class SqliteDurability : public testing::Test {
protected:
  void SetUp() override { createSqliteProject(file(), exampleInfo(), {}); }
  fs::path file() const { return folder_ / "main.reels"; }
  fs::path folder() const { return folder_.path(); }
  std::size_t countLogs(const fs::path& project) const
  {
    const auto opened = makeSqliteStore(project);
    EXPECT_EQ(opened->check(), std::vector<std::string>{});
    return numbersOf(*opened).size();
  }

private:
  TempFolder folder_;
};

TEST_F(SqliteDurability, CommitWithoutChangesWritesNothing)
{
  {
    const auto project = makeSqliteStore(file());
    store(*project, batch(1, 10));
  }
  const std::string bytes = bytesOf(file());
  const std::int64_t time = modificationTime(file());
  ::usleep(20'000); // a write would show in the time
  {
    const auto project = makeSqliteStore(file());
    store(*project, {});
    EXPECT_EQ(fs::file_size(file().native() + "-wal"), 0u);
    project->begin(Access::Write, noPatience);
    project->end();
    EXPECT_EQ(fs::file_size(file().native() + "-wal"), 0u);
  }
  EXPECT_EQ(bytesOf(file()), bytes);
  EXPECT_EQ(modificationTime(file()), time);
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"main.reels"});
}

TEST_F(SqliteDurability, KilledWriterLeavesItsCommitsToTheNextOpen)
{
  storeAndDie(file(), batch(1, 10));
  EXPECT_EQ(countLogs(file()), 10u);
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"main.reels"}); // taken in and tidied up
  EXPECT_EQ(countLogs(file()), 10u);
}

TEST_F(SqliteDurability, KilledBeforeCommitLeavesNothing)
{
  Child writer([&] {
    const auto project = makeSqliteStore(file());
    project->begin(Access::Write, noPatience);
    ::raise(SIGKILL);
  });
  EXPECT_EQ(writer.waitForExit(), -1);
  const auto project = makeSqliteStore(file());
  project->begin(Access::Write, noPatience); // the lock died with its holder
  EXPECT_EQ(project->nextNumber(), 1);
}

TEST_F(SqliteDurability, KilledAtAnyMomentEachCommitIsThereWholeOrNotAtAll)
{
  constexpr int perCommit = 25;
  constexpr int rounds = 50;
  auto* reported = static_cast<volatile std::int64_t*>(
      ::mmap(nullptr, sizeof(std::int64_t), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(static_cast<volatile void*>(reported), MAP_FAILED);
  *reported = 0;
  std::mt19937 random(4711);
  for (int round = 0; round < rounds; ++round) {
    const std::int64_t before = *reported;
    Child writer([&] {
      const auto project = makeSqliteStore(file());
      for (;;) {
        project->begin(Access::Write, muchPatience);
        const std::int64_t next = project->nextNumber();
        Changes changes = batch(next, perCommit);
        changes.options = {{"last", std::to_string(next + perCommit - 1)}};
        project->commit(changes);
        *reported = next + perCommit - 1;
      }
    });
    // Every other round is killed after a commit, the rest on the way to the first commit.
    for (int i = 0; round % 2 == 0 && *reported == before && i < 60'000; ++i)
      ::usleep(1000);
    ::usleep(static_cast<useconds_t>(random() % 40'000));
    writer.kill();
    const auto project = makeSqliteStore(file());
    ASSERT_EQ(project->check(), std::vector<std::string>{}) << "round " << round;
    project->begin(Access::Read, noPatience);
    const std::int64_t last = project->nextNumber() - 1;
    std::int64_t logs = 0;
    project->readReels([&](StoredLog&&) { ++logs; });
    project->readOthers([&](StoredLog&&) { ++logs; });
    const KeyValues options = project->options();
    project->end();
    EXPECT_EQ(last % perCommit, 0) << "round " << round;
    EXPECT_EQ(logs, last) << "round " << round;
    EXPECT_EQ(options, last == 0 ? KeyValues{} : (KeyValues{{"last", std::to_string(last)}})) << "round " << round;
    EXPECT_GE(last, static_cast<std::int64_t>(*reported)) << "round " << round; // what was reported is there
    EXPECT_LE(last, *reported + perCommit) << "round " << round;
    if (round % 2 == 0) {
      EXPECT_GT(*reported, before) << "round " << round;
    }
    *reported = last;
  }
  ::munmap(const_cast<std::int64_t*>(reported), sizeof(std::int64_t));
}

TEST_F(SqliteDurability, LogCutShortAnywhereHoldsTheStateOfAnEarlierCommit)
{
  constexpr int perCommit = 20;
  Child writer([&] {
    const auto project = makeSqliteStore(file());
    for (int i = 0; i < 8; ++i)
      store(*project, batch(1 + i * perCommit, perCommit));
    ::raise(SIGKILL);
  });
  EXPECT_EQ(writer.waitForExit(), -1);
  const std::string log = bytesOf(file().native() + "-wal");
  ASSERT_EQ(commitsIn(log, log.size()), 8u);
  std::mt19937 random(7);
  std::size_t partial = 0;
  for (int round = 0; round < 60; ++round) {
    const std::size_t length = round == 0 ? log.size() : random() % log.size();
    const fs::path copy = folder() / ("cut" + std::to_string(round) + ".reels");
    fs::copy_file(file(), copy);
    writeBytes(copy.native() + "-wal", std::string_view(log).substr(0, length));
    const std::size_t commits = commitsIn(log, length);
    EXPECT_EQ(countLogs(copy), commits * perCommit) << "cut to " << length << " of " << log.size();
    partial += commits > 0 && commits < 8 ? 1 : 0;
  }
  EXPECT_GT(partial, 20u);
}

TEST_F(SqliteDurability, LogWithADamagedFrameHoldsTheStateBeforeIt)
{
  constexpr int perCommit = 20;
  Child writer([&] {
    const auto project = makeSqliteStore(file());
    for (int i = 0; i < 4; ++i)
      store(*project, batch(1 + i * perCommit, perCommit));
    ::raise(SIGKILL);
  });
  EXPECT_EQ(writer.waitForExit(), -1);
  const std::string log = bytesOf(file().native() + "-wal");
  ASSERT_EQ(commitsIn(log, log.size()), 4u);
  std::mt19937 random(11);
  std::set<std::size_t> seen;
  for (int round = 0; round < 40; ++round) {
    const fs::path copy = folder() / ("bad" + std::to_string(round) + ".reels");
    fs::copy_file(file(), copy);
    const std::size_t place = random() % (round < 8 ? 32 : log.size()); // the log's own header is short
    std::string damaged = log;
    damaged[place] ^= 0x20;
    writeBytes(copy.native() + "-wal", damaged);
    const std::size_t commits = commitsIn(log, place);
    EXPECT_EQ(countLogs(copy), commits * perCommit) << "byte " << place << " of " << log.size();
    seen.insert(commits);
  }
  EXPECT_EQ(seen, (std::set<std::size_t>{0, 1, 2, 3}));
}

// --- Disk full, I/O errors -----------------------------------------------------------------------

/// Lets the n-th call of a kind that SQLite makes in this process, and all later ones, fail.
class Fault {
public:
  enum Kind { Write, Truncate, Sync };

  Fault(Kind kind, int n, int error)
  {
    failing = kind;
    left = n;
    errorNumber = error;
    hits = 0;
    vfs_ = sqlite3_vfs_find(nullptr);
    for (const Replacement& call : calls)
      if (vfs_->xGetSystemCall(vfs_, call.name))
        vfs_->xSetSystemCall(vfs_, call.name, call.function);
  }
  ~Fault()
  {
    left = 0;
    for (const Replacement& call : calls)
      vfs_->xSetSystemCall(vfs_, call.name, nullptr);
  }
  Fault(const Fault&) = delete;
  Fault& operator=(const Fault&) = delete;

  static bool fails(Kind kind)
  {
    if (kind != failing || left == 0)
      return false;
    if (left > 1) {
      --left;
      return false;
    }
    ++hits;
    errno = errorNumber;
    return true;
  }
  static inline int hits = 0;

private:
  static ssize_t write(int fd, const void* bytes, size_t count)
  {
    return fails(Write) ? -1 : ::write(fd, bytes, count);
  }
  static ssize_t pwrite(int fd, const void* bytes, size_t count, off_t at)
  {
    return fails(Write) ? -1 : ::pwrite(fd, bytes, count, at);
  }
  static int ftruncate(int fd, off_t size) { return fails(Truncate) ? -1 : ::ftruncate(fd, size); }

  struct Replacement {
    const char* name;
    sqlite3_syscall_ptr function;
  };
  static inline const Replacement calls[] = {{"write", reinterpret_cast<sqlite3_syscall_ptr>(&write)},
                                             {"pwrite", reinterpret_cast<sqlite3_syscall_ptr>(&pwrite)},
                                             {"pwrite64", reinterpret_cast<sqlite3_syscall_ptr>(&pwrite)},
                                             {"ftruncate", reinterpret_cast<sqlite3_syscall_ptr>(&ftruncate)}};
  static inline Kind failing = Write;
  static inline int left = 0; ///< the number of the first failing call; 0: no call fails
  static inline int errorNumber = 0;
  sqlite3_vfs* vfs_;
};

TEST_F(SqliteDurability, EveryWriteThatFailsInTurnLosesNothing)
{
  {
    const auto project = makeSqliteStore(file());
    store(*project, batch(1, 30));
  }
  const std::string atRest = bytesOf(file());
  for (const int error : {ENOSPC, EIO}) {
    const std::string expected =
        "Io: " + file().native() +
        (error == ENOSPC ? ": not stored (database or disk is full)" : ": not stored (disk I/O error)");
    int refused = 0;
    for (int n = 1;; ++n) {
      writeBytes(file(), atRest);
      std::string answer;
      int hits = 0;
      {
        const auto project = makeSqliteStore(file());
        project->begin(Access::Write, noPatience);
        {
          const Fault fault(Fault::Write, n, error);
          answer = errorOf([&] { project->commit(batch(31, 30)); });
          hits = Fault::hits;
        }
        if (answer != "nothing") {
          ++refused;
          EXPECT_EQ(answer, expected) << "write " << n;
          EXPECT_EQ(numbersOf(*project).size(), 30u) << "write " << n;
          if (n % 2 == 0) { // the same store works again when there is room
            store(*project, batch(31, 5));
            EXPECT_EQ(numbersOf(*project).size(), 35u) << "write " << n;
          }
        }
      }
      const std::size_t logs = answer == "nothing" ? 60u : n % 2 == 0 ? 35u : 30u;
      EXPECT_EQ(countLogs(file()), logs) << "write " << n;
      if (hits == 0) {
        EXPECT_EQ(answer, "nothing");
        break;
      }
      ASSERT_LT(n, 1000);
    }
    EXPECT_GT(refused, 5);
    std::cout << refused << " writes failed in turn (" << std::strerror(error) << ")\n";
  }
}

TEST_F(SqliteDurability, EveryTruncateAndSyncThatFailsInTurnLosesNothing)
{
  store(*makeSqliteStore(file()), batch(1, 30));
  const std::string atRest = bytesOf(file());
  for (const auto& [kind, call, fact] :
       {std::tuple(Fault::Truncate, "truncate", "cannot be opened"), std::tuple(Fault::Sync, "sync", "not stored")}) {
    int refused = 0;
    for (int n = 1;; ++n) {
      SCOPED_TRACE(std::string(call) + " " + std::to_string(n));
      writeBytes(file(), atRest);
      std::string answer;
      int hits = 0;
      {
        const Fault fault(kind, n, EIO);
        answer = errorOf([&] { store(*makeSqliteStore(file()), batch(31, 30)); }); // opened, stored and closed
        hits = Fault::hits;
      }
      const std::size_t logs = answer == "nothing" ? 60 : 30;
      EXPECT_EQ(countLogs(file()), logs);
      if (answer != "nothing") {
        ++refused;
        EXPECT_EQ(answer, "Io: " + file().native() + ": " + fact + " (disk I/O error)");
      }
      store(*makeSqliteStore(file()), batch(61, 5));
      EXPECT_EQ(countLogs(file()), logs + 5);
      if (hits == 0) {
        EXPECT_EQ(answer, "nothing");
        EXPECT_GT(n, 2); // one that is refused and one while closing, at least
        break;
      }
      ASSERT_LT(n, 1000);
    }
    EXPECT_GT(refused, 0);
  }
}

TEST_F(SqliteDurability, CallsThatFailWhileClosingLeaveTheCommitInTheLog)
{
  const std::string atRest = bytesOf(file());
  for (const auto& [kind, calls] : {std::pair(Fault::Write, 3), std::pair(Fault::Sync, 1)})
    for (int n = 1;; ++n) {
      for (const char* ending : {"-wal", "-shm"})
        fs::remove(file().native() + ending);
      writeBytes(file(), atRest);
      int hits = 0;
      {
        auto project = makeSqliteStore(file());
        store(*project, batch(1, 30));
        const Fault fault(kind, n, ENOSPC);
        project.reset();
        hits = Fault::hits;
      }
      EXPECT_EQ(countLogs(file()), 30u) << "call " << n;
      if (hits == 0) {
        EXPECT_GT(n, calls);
        break;
      }
      ASSERT_LT(n, 1000);
    }
}

/// A project on a disk of half a megabyte.
class SqliteDiskFull : public testing::Test {
protected:
  void SetUp() override
  {
    if (!disk_.mounted())
      GTEST_SKIP() << "mounting a file system is not allowed here";
    createSqliteProject(file(), exampleInfo(), {});
  }

  fs::path file() const { return disk_ / "main.reels"; }

  /// Fills the disk until makeRoom().
  void fill() { writeBytes(filling(), std::string(fs::space(file()).available, 'x')); }
  void makeRoom() { fs::remove(filling()); }

private:
  fs::path filling() const { return disk_ / "filling"; }

  const TempMount disk_{"size=512k"};
};

TEST_F(SqliteDiskFull, CommitThatDoesNotFitIsRefusedAndTheProjectStays)
{
  {
    const auto project = makeSqliteStore(file());
    store(*project, batch(1, 20));
    Changes large = batch(21, 20);
    large.logs[5].name = std::string(2'000'000, 'x');
    EXPECT_EQ(errorOf([&] { store(*project, large); }),
              "Io: " + file().native() + ": not stored (database or disk is full)");
    EXPECT_EQ(numbersOf(*project).size(), 20u);
    store(*project, batch(21, 20));
    EXPECT_EQ(project->check(), std::vector<std::string>{});
  }
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(numbersOf(*project).size(), 40u);
}

TEST_F(SqliteDiskFull, ProjectIsReadAndItsReaderKeepsNobodyAwayAfterwards)
{
  store(*makeSqliteStore(file()), batch(1, 2));
  fill();
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(numbersOf(*project).size(), 2u);
  EXPECT_FALSE(project->changedElsewhere());
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }),
            "Io: " + file().native() + ": cannot be opened (database or disk is full)");
  EXPECT_EQ(numbersOf(*project).size(), 2u);
  EXPECT_FALSE(project->changedElsewhere());
  makeRoom();
  Child other([&] { store(*makeSqliteStore(file()), batch(3, 1)); });
  EXPECT_EQ(other.waitForExit(), 0);
  EXPECT_TRUE(project->changedElsewhere());
  store(*project, batch(4, 1));
  EXPECT_EQ(numbersOf(*project).size(), 4u);
}

TEST_F(SqliteDiskFull, ReadersWaitForOneAnother)
{
  store(*makeSqliteStore(file()), batch(1, 2));
  fill();
  const auto readOften = [&] {
    for (int i = 0; i < 50; ++i)
      if (numbersOf(*makeSqliteStore(file())).size() != 2)
        throw std::runtime_error("not all of it");
  };
  Child one(readOften), another(readOften);
  EXPECT_EQ(one.waitForExit(), 0);
  EXPECT_EQ(another.waitForExit(), 0);
}

TEST_F(SqliteDiskFull, UnfinishedLogIsReadWithoutRoom)
{
  storeAndDie(file(), batch(1, 2));
  fs::remove(file().native() + "-shm");
  fill();
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())).size(), 2u);
  makeRoom();
  store(*makeSqliteStore(file()), batch(3, 1));
  EXPECT_EQ(numbersOf(*makeSqliteStore(file())).size(), 3u);
}

TEST(SqliteDiskFullFromTheStart, NewProjectLeavesNothing)
{
  const TempMount mount("size=16k");
  if (!mount.mounted())
    GTEST_SKIP() << "mounting a file system is not allowed here";
  EXPECT_EQ(errorOf([&] { createSqliteProject(mount / "main.reels", exampleInfo(), {}); }),
            "Io: " + (mount / "main.reels").native() + ": cannot be made (database or disk is full)");
  EXPECT_EQ(namesIn(mount / ""), std::vector<std::string>{});
}

} // namespace

// SQLite calls these functions by name, not through its table, so those of the program replace them.
int fsync(int fd)
{
  return Fault::fails(Fault::Sync) ? -1 : static_cast<int>(::syscall(SYS_fsync, fd));
}

int fdatasync(int fd)
{
  return Fault::fails(Fault::Sync) ? -1 : static_cast<int>(::syscall(SYS_fdatasync, fd));
}
