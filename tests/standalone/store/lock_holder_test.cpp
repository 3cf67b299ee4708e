// SPDX-License-Identifier: Apache-2.0
#include <csignal>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/files.h"
#include "standalone/store/support.h"
#include "store/project_file.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

/// A shell with the command line @p arguments. It holds a lock on bytes of a file while it lives.
class LockingShell {
public:
  LockingShell(const fs::path& file, off_t start, off_t length, const std::vector<std::string>& arguments)
  {
    int ready[2];
    EXPECT_EQ(::pipe(ready), 0);
    pid_ = ::fork();
    if (pid_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      const int fd = ::open(file.c_str(), O_RDWR | O_CREAT, 0600); // stays open and locked in the shell
      struct flock lock = {};
      lock.l_type = F_WRLCK;
      lock.l_whence = SEEK_SET;
      lock.l_start = start;
      lock.l_len = length;
      ::fcntl(fd, F_SETLK, &lock);
      ::dup2(ready[1], 1);
      std::vector<std::string> words = {"/some/where/sh", "-c", "echo x; while :; do sleep 0.1; done"};
      words.insert(words.end(), arguments.begin(), arguments.end());
      std::vector<char*> pointers;
      for (std::string& word : words)
        pointers.push_back(word.data());
      pointers.push_back(nullptr);
      ::execv("/bin/sh", pointers.data());
      ::_exit(1);
    }
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~LockingShell()
  {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  pid_t pid() const { return pid_; }

private:
  pid_t pid_ = -1;
};

constexpr off_t writeByteOfTheIndex = 120;
constexpr off_t lockBytesOfTheFile = 0x40000000;
const std::string script = ", sh -c echo x; while :; do sleep 0.1; done";

TEST(WriteLockHolder, NobodyHoldsAnything)
{
  const TempFolder folder;
  writeBytes(folder / "p", "");
  writeBytes(folder / "p-shm", "");
  const reeldb::base::FileDescriptor file(::open((folder / "p").c_str(), O_RDWR)),
      index(::open((folder / "p-shm").c_str(), O_RDWR));
  EXPECT_EQ(writeLockHolder((folder / "p").native()), "");
}

TEST(WriteLockHolder, HolderOfTheIndexWithItsCommand)
{
  const TempFolder folder;
  const LockingShell shell(folder / "p-shm", writeByteOfTheIndex, 1, {"cut.edl"});
  const reeldb::base::FileDescriptor index(::open((folder / "p-shm").c_str(), O_RDWR));
  EXPECT_EQ(writeLockHolder((folder / "p").native()), "pid " + std::to_string(shell.pid()) + script + " cut.edl");
}

TEST(WriteLockHolder, HolderOfTheFileItself)
{
  const TempFolder folder;
  const LockingShell shell(folder / "p", lockBytesOfTheFile + 1, 1, {});
  const reeldb::base::FileDescriptor file(::open((folder / "p").c_str(), O_RDWR));
  EXPECT_EQ(writeLockHolder((folder / "p").native()), "pid " + std::to_string(shell.pid()) + script);
}

TEST(WriteLockHolder, OtherBytesDoNotCount)
{
  const TempFolder folder;
  const LockingShell before(folder / "p-shm", writeByteOfTheIndex - 1, 1, {});
  const LockingShell after(folder / "p-shm", writeByteOfTheIndex + 1, 8, {});
  const reeldb::base::FileDescriptor index(::open((folder / "p-shm").c_str(), O_RDWR));
  EXPECT_EQ(writeLockHolder((folder / "p").native()), "");
}

TEST(WriteLockHolder, CommandIsCutAndItsControlCharactersAreEscaped)
{
  const TempFolder folder;
  const LockingShell shell(folder / "p-shm", writeByteOfTheIndex, 1, {"a\x1B[2Jb", std::string(500, 'x')});
  const reeldb::base::FileDescriptor index(::open((folder / "p-shm").c_str(), O_RDWR));
  const std::string holder = writeLockHolder((folder / "p").native());
  const std::string start = "pid " + std::to_string(shell.pid()) + script + " a\\x1b[2Jb ";
  EXPECT_EQ(holder.substr(0, start.size()), start);
  EXPECT_EQ(holder.substr(holder.size() - 6), "xxx...");
  EXPECT_LT(holder.size(), 160u);
}

TEST(WriteLockHolder, NotOpenInThisProcessIsNotAsked)
{
  const TempFolder folder;
  const LockingShell shell(folder / "p-shm", writeByteOfTheIndex, 1, {});
  EXPECT_EQ(writeLockHolder((folder / "p").native()), "");
}

} // namespace
