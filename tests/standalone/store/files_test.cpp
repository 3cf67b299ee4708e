// SPDX-License-Identifier: Apache-2.0
#include "store/files.h"

#include <atomic>
#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

TEST(SystemError, NamesSubjectFactAndCause)
{
  EXPECT_EQ(errorOf([] { throwSystemError(ErrorKind::Io, "a\nb", "cannot be read", ENOSPC); }),
            "Io: a\\nb: cannot be read (No space left on device)");
}

TEST(WriteNewFile, MakesTheFile)
{
  const TempDir folder;
  const std::string content(300'000, 'c');
  writeNewFile(folder / "f", content);
  EXPECT_EQ(bytesOf(folder / "f"), content);
}

TEST(WriteNewFile, WhatIsThereIsRefusedAndStays)
{
  const TempDir folder;
  writeBytes(folder / "f", "old");
  EXPECT_EQ(errorOf([&] { writeNewFile(folder / "f", "new"); }),
            "Refused: " + (folder / "f").native() + ": cannot be made (File exists)");
  EXPECT_EQ(bytesOf(folder / "f"), "old");
  fs::create_symlink(folder / "elsewhere", folder / "link");
  EXPECT_EQ(errorOf([&] { writeNewFile(folder / "link", "new"); }),
            "Refused: " + (folder / "link").native() + ": cannot be made (File exists)");
  EXPECT_FALSE(fs::exists(folder / "elsewhere"));
}

TEST(WriteNewFile, DiskFullLeavesNoFile)
{
  const TempMount mount("size=64k");
  if (!mount.mounted())
    GTEST_SKIP() << "mounting a file system is not allowed here";
  EXPECT_EQ(errorOf([&] { writeNewFile(mount / "f", std::string(200'000, 'x')); }),
            "Io: " + (mount / "f").native() + ": cannot be written (No space left on device)");
  EXPECT_FALSE(fs::exists(mount / "f"));
}

TEST(WriteNewFile, MissingFolder)
{
  EXPECT_EQ(errorOf([] { writeNewFile("/nonexistent-folder/f", ""); }),
            "Io: /nonexistent-folder/f: cannot be made (No such file or directory)");
}

TEST(TemporaryFile, GoesUnlessKept)
{
  const TempDir folder;
  writeBytes(folder / "a", "");
  writeBytes(folder / "b", "");
  {
    const TemporaryFile gone(folder / "a");
    TemporaryFile kept(folder / "b");
    kept.keep();
  }
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"b"});
}

TEST(SyncFolder, MissingFolderIsAnError)
{
  const TempDir folder;
  syncFolder(folder.path());
  EXPECT_EQ(errorOf([&] { syncFolder(folder / "none"); }),
            "Io: " + (folder / "none").native() + ": cannot be written (No such file or directory)");
}

TEST(FolderOf, PathsWithAndWithoutAFolder)
{
  EXPECT_EQ(folderOf("a/b"), "a");
  EXPECT_EQ(folderOf("b"), ".");
  EXPECT_EQ(folderOf("/b"), "/");
}

TEST(ReadRegularFile, WholeContent)
{
  const TempDir folder;
  const std::string content = std::string(200'000, 'a') + std::string("\0b", 2);
  writeBytes(folder / "f", content);
  EXPECT_EQ(readRegularFile(folder / "f", content.size()), content);
  fs::create_symlink(folder / "f", folder / "link");
  EXPECT_EQ(readRegularFile(folder / "link", content.size()), content);
  writeBytes(folder / "empty", "");
  EXPECT_EQ(readRegularFile(folder / "empty", 0), "");
}

TEST(ReadRegularFile, LargerThanTheLimit)
{
  const TempDir folder;
  writeBytes(folder / "f", "12345");
  EXPECT_EQ(readRegularFile(folder / "f", 5), "12345");
  EXPECT_EQ(errorOf([&] { readRegularFile(folder / "f", 4); }),
            "Unreadable: " + (folder / "f").native() + ": too large (more than 4 bytes)");
  writeBytes(folder / "sparse", "");
  fs::resize_file(folder / "sparse", std::uintmax_t{4} << 30);
  EXPECT_EQ(errorOf([&] { readRegularFile(folder / "sparse", 1000); }),
            "Unreadable: " + (folder / "sparse").native() + ": too large (more than 1000 bytes)");
}

TEST(ReadRegularFile, FileThatGrowsMeanwhileIsReadAsFarAsItGoesOrIsTooLarge)
{
  const TempDir folder;
  constexpr std::size_t pieceSize = 1 << 16, start = 64 * pieceSize, most = 4096 * pieceSize;
  writeBytes(folder / "f", std::string(start, 'x'));
  const auto size = [&] { return static_cast<std::size_t>(fs::file_size(folder / "f")); };
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    const FileDescriptor file(::open((folder / "f").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    const std::string piece(pieceSize, 'x');
    for (std::size_t end = start; !stop && end < most; end += pieceSize) {
      EXPECT_EQ(::write(file.get(), piece.data(), pieceSize), static_cast<ssize_t>(pieceSize));
      ::usleep(500);
    }
  });
  bool grew = false;
  while (!grew && size() < most) {
    const std::size_t before = size();
    const std::string content = readRegularFile(folder / "f", most);
    const std::size_t after = size();
    EXPECT_GE(content.size(), before);
    EXPECT_LE(content.size(), after);
    EXPECT_EQ(content.find_first_not_of('x'), std::string::npos);
    grew = content.size() > before;
  }
  EXPECT_TRUE(grew);
  std::string error = "nothing";
  std::size_t limit = 0;
  while (error == "nothing" && size() < most) {
    limit = size(); // of a look that came before the reading
    error = errorOf([&] { readRegularFile(folder / "f", limit); });
  }
  EXPECT_EQ(error,
            "Unreadable: " + (folder / "f").native() + ": too large (more than " + std::to_string(limit) + " bytes)");
  stop = true;
  writer.join();
}

TEST(ReadRegularFile, AnythingElseIsRefusedWithoutWaiting)
{
  const TempDir folder;
  const auto error = [&](const char* name) { return errorOf([&] { readRegularFile(folder / name, 10); }); };
  EXPECT_EQ(error("none"),
            "NotFound: " + (folder / "none").native() + ": cannot be opened (No such file or directory)");
  fs::create_directory(folder / "d");
  EXPECT_EQ(error("d"), "Unreadable: " + (folder / "d").native() + ": no regular file (a folder)");
  ASSERT_EQ(::mkfifo((folder / "p").c_str(), 0600), 0);
  EXPECT_EQ(error("p"), "Unreadable: " + (folder / "p").native() + ": no regular file (a named pipe)");
  fs::create_symlink("/dev/zero", folder / "z");
  EXPECT_EQ(error("z"), "Unreadable: " + (folder / "z").native() + ": no regular file (a device)");
  fs::create_symlink("loop", folder / "loop");
  EXPECT_EQ(error("loop"),
            "Io: " + (folder / "loop").native() + ": cannot be opened (Too many levels of symbolic links)");
}

TEST(KindOfFile, Words)
{
  EXPECT_EQ(kindOfFile(S_IFREG | 0644), "");
  EXPECT_EQ(kindOfFile(S_IFDIR), "a folder");
  EXPECT_EQ(kindOfFile(S_IFIFO), "a named pipe");
  EXPECT_EQ(kindOfFile(S_IFSOCK), "a socket");
  EXPECT_EQ(kindOfFile(S_IFLNK), "a symbolic link");
  EXPECT_EQ(kindOfFile(S_IFCHR), "a device");
  EXPECT_EQ(kindOfFile(S_IFBLK), "a device");
}

TEST(FileDescriptorTest, ClosesWithItsOwner)
{
  int raw = -1;
  {
    const FileDescriptor fd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(fd.valid());
    raw = fd.get();
  }
  EXPECT_EQ(::fcntl(raw, F_GETFD), -1);
  EXPECT_FALSE(FileDescriptor(-1).valid());
}

} // namespace
