// SPDX-License-Identifier: Apache-2.0
#include "base/files.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include "support/temp_folder.h"

namespace {

using namespace reeldb::base;
using reeldb_tests::TempFolder;
namespace fs = std::filesystem;

int renameError = 0; ///< the error with which renameat2 fails without doing anything; 0: it works

} // namespace

/// Replaces the function of the C library, because file systems without the call are rare.
extern "C" int renameat2(int oldFolder, const char* oldName, int newFolder, const char* newName,
                         unsigned flags) noexcept
{
  if (renameError != 0) {
    errno = renameError;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_renameat2, oldFolder, oldName, newFolder, newName, flags));
}

namespace {

std::string wordFor(FileFault fault)
{
  switch (fault) {
  case FileFault::NotFound:
    return "NotFound";
  case FileFault::Exists:
    return "Exists";
  case FileFault::NotRegular:
    return "NotRegular";
  case FileFault::TooLarge:
    return "TooLarge";
  case FileFault::System:
    return "System";
  }
  return {};
}

/// The fault and the text of the FileError that @p work throws; "nothing" without one.
std::string errorOf(const std::function<void()>& work)
{
  try {
    work();
  } catch (const FileError& error) {
    return wordFor(error.fault()) + ": " + error.what();
  }
  return "nothing";
}

std::string bytesOf(const fs::path& file)
{
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in.is_open()) << file;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const fs::path& file, std::string_view bytes)
{
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(out.flush().good()) << file;
}

std::vector<std::string> namesIn(const fs::path& folder)
{
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().native());
  std::sort(names.begin(), names.end());
  return names;
}

mode_t modeOf(const fs::path& file)
{
  struct stat status = {};
  EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
  return status.st_mode & 07777;
}

/// While it lives, a file takes no more bytes than @p limit. For a writer that is a full disk.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t limit) : before_(::signal(SIGXFSZ, SIG_IGN))
  {
    EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &usual_), 0);
    const rlimit small = {limit, usual_.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  }
  ~FileSizeLimit()
  {
    ::setrlimit(RLIMIT_FSIZE, &usual_);
    ::signal(SIGXFSZ, before_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
  void (*before_)(int);
  rlimit usual_ = {};
};

/// While it lives, the permissions of files count for this process, which root's do not.
class OrdinaryUser {
public:
  OrdinaryUser() : before_(::geteuid()) { EXPECT_EQ(before_ == 0 ? ::seteuid(65534) : 0, 0); }
  ~OrdinaryUser() { EXPECT_EQ(before_ == 0 ? ::seteuid(0) : 0, 0); }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
  uid_t before_;
};

TEST(FileErrorTest, NamesPathFactAndCause)
{
  const FileError error("a\nb", "cannot be read", ENOSPC);
  EXPECT_STREQ(error.what(), "a\\nb: cannot be read (No space left on device)");
  EXPECT_EQ(error.fault(), FileFault::System);
  EXPECT_EQ(error.fact(), "cannot be read");
  EXPECT_EQ(error.cause(), "No space left on device");
  EXPECT_STREQ(FileError(FileFault::Exists, "", "already exists").what(), "\"\": already exists");
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

TEST(TemporaryFileTest, IsRemovedUnlessKept)
{
  const TempFolder folder;
  writeBytes(folder.path() / "a", "");
  writeBytes(folder.path() / "b", "");
  {
    const TemporaryFile gone(folder.path() / "a");
    TemporaryFile kept(folder.path() / "b");
    kept.keep();
  }
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"b"});
}

TEST(FolderOf, PathsWithAndWithoutAFolder)
{
  EXPECT_EQ(folderOf("a/b"), "a");
  EXPECT_EQ(folderOf("b"), ".");
  EXPECT_EQ(folderOf("/b"), "/");
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

TEST(RequireRegularFile, FilePassesAnythingElseIsNamed)
{
  const TempFolder folder;
  writeBytes(folder.path() / "f", "");
  requireRegularFile(folder.path() / "f");
  EXPECT_EQ(errorOf([&] { requireRegularFile(folder.path()); }),
            "NotRegular: " + folder.path().native() + ": not a regular file (a folder)");
}

TEST(ReadRegularFile, WholeContent)
{
  const TempFolder folder;
  const std::string content = std::string(200'000, 'a') + std::string("\0b", 2);
  writeBytes(folder.path() / "f", content);
  EXPECT_EQ(readRegularFile(folder.path() / "f", content.size()), content);
  fs::create_symlink(folder.path() / "f", folder.path() / "link");
  EXPECT_EQ(readRegularFile(folder.path() / "link", content.size()), content);
  writeBytes(folder.path() / "empty", "");
  EXPECT_EQ(readRegularFile(folder.path() / "empty", 0), "");
}

TEST(ReadRegularFile, LargerThanTheLimit)
{
  const TempFolder folder;
  writeBytes(folder.path() / "f", "12345");
  EXPECT_EQ(readRegularFile(folder.path() / "f", 5), "12345");
  EXPECT_EQ(errorOf([&] { readRegularFile(folder.path() / "f", 4); }),
            "TooLarge: " + (folder.path() / "f").native() + ": too large (more than 4 bytes)");
  writeBytes(folder.path() / "sparse", "");
  fs::resize_file(folder.path() / "sparse", std::uintmax_t{4} << 30);
  EXPECT_EQ(errorOf([&] { readRegularFile(folder.path() / "sparse", 1000); }),
            "TooLarge: " + (folder.path() / "sparse").native() + ": too large (more than 1000 bytes)");
}

TEST(ReadRegularFile, FileThatGrowsMeanwhileIsReadAsFarAsItGoesOrIsTooLarge)
{
  const TempFolder folder;
  constexpr std::size_t pieceSize = 1 << 16, start = 64 * pieceSize, most = 4096 * pieceSize;
  writeBytes(folder.path() / "f", std::string(start, 'x'));
  const auto size = [&] { return static_cast<std::size_t>(fs::file_size(folder.path() / "f")); };
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    const FileDescriptor file(::open((folder.path() / "f").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    const std::string piece(pieceSize, 'x');
    for (std::size_t end = start; !stop && end < most; end += pieceSize) {
      EXPECT_EQ(::write(file.get(), piece.data(), pieceSize), static_cast<ssize_t>(pieceSize));
      ::usleep(500);
    }
  });
  bool grew = false;
  while (!grew && size() < most) {
    const std::size_t before = size();
    const std::string content = readRegularFile(folder.path() / "f", most);
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
    error = errorOf([&] { readRegularFile(folder.path() / "f", limit); });
  }
  EXPECT_EQ(error, "TooLarge: " + (folder.path() / "f").native() + ": too large (more than " + std::to_string(limit) +
                       " bytes)");
  stop = true;
  writer.join();
}

TEST(ReadRegularFile, AnythingElseIsRefusedWithoutWaiting)
{
  const TempFolder folder;
  const auto error = [&](const char* name) { return errorOf([&] { readRegularFile(folder.path() / name, 10); }); };
  EXPECT_EQ(error("none"),
            "NotFound: " + (folder.path() / "none").native() + ": cannot be opened (No such file or directory)");
  fs::create_directory(folder.path() / "d");
  EXPECT_EQ(error("d"), "NotRegular: " + (folder.path() / "d").native() + ": not a regular file (a folder)");
  ASSERT_EQ(::mkfifo((folder.path() / "p").c_str(), 0600), 0);
  EXPECT_EQ(error("p"), "NotRegular: " + (folder.path() / "p").native() + ": not a regular file (a named pipe)");
  fs::create_symlink("/dev/zero", folder.path() / "z");
  EXPECT_EQ(error("z"), "NotRegular: " + (folder.path() / "z").native() + ": not a regular file (a device)");
  fs::create_symlink("loop", folder.path() / "loop");
  EXPECT_EQ(error("loop"),
            "System: " + (folder.path() / "loop").native() + ": cannot be opened (Too many levels of symbolic links)");
}

TEST(SyncFolder, MissingFolderIsAnError)
{
  const TempFolder folder;
  syncFolder(folder.path());
  EXPECT_EQ(errorOf([&] { syncFolder(folder.path() / "none"); }),
            "System: " + (folder.path() / "none").native() + ": cannot be written (No such file or directory)");
}

TEST(WriteNewFile, MakesTheFileWithTheUsualPermissions)
{
  const TempFolder folder;
  const std::string content(300'000, 'c');
  const mode_t before = ::umask(027);
  writeNewFile(folder.path() / "f", content);
  ::umask(before);
  EXPECT_EQ(bytesOf(folder.path() / "f"), content);
  EXPECT_EQ(modeOf(folder.path() / "f"), 0640u);
}

TEST(WriteNewFile, WhatIsThereIsRefusedAndStays)
{
  const TempFolder folder;
  writeBytes(folder.path() / "f", "old");
  EXPECT_EQ(errorOf([&] { writeNewFile(folder.path() / "f", "new"); }),
            "Exists: " + (folder.path() / "f").native() + ": cannot be made (File exists)");
  EXPECT_EQ(bytesOf(folder.path() / "f"), "old");
  fs::create_symlink(folder.path() / "elsewhere", folder.path() / "link");
  EXPECT_EQ(errorOf([&] { writeNewFile(folder.path() / "link", "new"); }),
            "Exists: " + (folder.path() / "link").native() + ": cannot be made (File exists)");
  EXPECT_FALSE(fs::exists(folder.path() / "elsewhere"));
}

TEST(WriteNewFile, FailedWriteLeavesNoFile)
{
  const TempFolder folder;
  const FileSizeLimit limit(100'000);
  EXPECT_EQ(errorOf([&] { writeNewFile(folder.path() / "f", std::string(200'000, 'x')); }),
            "System: " + (folder.path() / "f").native() + ": cannot be written (File too large)");
  EXPECT_FALSE(fs::exists(folder.path() / "f"));
}

TEST(WriteNewFile, MissingFolder)
{
  EXPECT_EQ(errorOf([] { writeNewFile("/nonexistent-folder/f", ""); }),
            "System: /nonexistent-folder/f: cannot be made (No such file or directory)");
}

TEST(NewFileBeside, LiesInTheSameFolderAndIsRemoved)
{
  const TempFolder folder;
  const fs::path path = folder.path() / "f";
  {
    const TemporaryFile one = newFileBeside(path), two = newFileBeside(path);
    EXPECT_NE(one.path(), two.path());
    for (const TemporaryFile* const file : {&one, &two}) {
      EXPECT_EQ(file->path().parent_path(), folder.path());
      EXPECT_EQ(file->path().filename().native().rfind(".f.new-", 0), 0u) << file->path();
      EXPECT_EQ(bytesOf(file->path()), "");
    }
  }
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{});
}

TEST(NewFileBeside, NameOfAnyLengthHasOne)
{
  const TempFolder folder;
  const std::string longest(255, 'n');
  TemporaryFile file = newFileBeside(folder.path() / longest);
  nameNewFile(file, folder.path() / longest);
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{longest});
}

TEST(NewFileBeside, ErrorNamesThePathThatItIsToBecome)
{
  EXPECT_EQ(errorOf([] { newFileBeside("/nonexistent-folder/f"); }),
            "System: /nonexistent-folder/f: cannot be made (No such file or directory)");
}

/// With a file system that knows renameat2 (0) and with one that does not.
class NameNewFile : public testing::TestWithParam<int> {
protected:
  NameNewFile() { renameError = GetParam(); }
  ~NameNewFile() override { renameError = 0; }
  const fs::path& folder() const { return folder_.path(); }

private:
  TempFolder folder_;
};

TEST_P(NameNewFile, FreeNameIsTaken)
{
  {
    TemporaryFile file(folder() / "new");
    writeBytes(file.path(), "content");
    nameNewFile(file, folder() / "f");
  }
  EXPECT_EQ(bytesOf(folder() / "f"), "content");
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"f"});
}

TEST_P(NameNewFile, TakenNameIsRefused)
{
  writeBytes(folder() / "f", "old");
  fs::create_symlink("nowhere", folder() / "link");
  for (const char* name : {"f", "link"}) {
    TemporaryFile file(folder() / "new");
    writeBytes(file.path(), "content");
    EXPECT_EQ(errorOf([&] { nameNewFile(file, folder() / name); }),
              "Exists: " + (folder() / name).native() + ": already exists");
  }
  EXPECT_EQ(bytesOf(folder() / "f"), "old");
  EXPECT_EQ(namesIn(folder()), (std::vector<std::string>{"f", "link"}));
}

TEST_P(NameNewFile, MissingFolderIsAnError)
{
  TemporaryFile file(folder() / "new");
  writeBytes(file.path(), "content");
  EXPECT_EQ(errorOf([&] { nameNewFile(file, folder() / "none" / "f"); }),
            "System: " + (folder() / "none" / "f").native() + ": cannot be made (No such file or directory)");
}

INSTANTIATE_TEST_SUITE_P(FileSystems, NameNewFile, testing::Values(0, EINVAL, ENOSYS));

TEST(NameNewFileError, OtherErrorsOfRenameAreNotTriedWithALink)
{
  const TempFolder folder;
  TemporaryFile file(folder.path() / "new");
  writeBytes(file.path(), "content");
  renameError = EIO;
  EXPECT_EQ(errorOf([&] { nameNewFile(file, folder.path() / "f"); }),
            "System: " + (folder.path() / "f").native() + ": cannot be made (Input/output error)");
  renameError = 0;
  EXPECT_FALSE(fs::exists(folder.path() / "f"));
}

class ReplaceFile : public testing::Test {
protected:
  fs::path file(const char* name = "f") const { return folder_.path() / name; }
  std::vector<std::string> names() const { return namesIn(folder_.path()); }
  std::string error(IfThere ifThere, const char* name = "f") const
  {
    return errorOf([&] { replaceFile(file(name), "new", ifThere); });
  }
  static constexpr IfThere all[] = {IfThere::Refuse, IfThere::Replace, IfThere::ReplaceLink};

private:
  TempFolder folder_;
};

TEST_F(ReplaceFile, NewFileHasTheUsualPermissions)
{
  const mode_t before = ::umask(027);
  for (const IfThere ifThere : all) {
    replaceFile(file(), "new", ifThere);
    EXPECT_EQ(bytesOf(file()), "new");
    EXPECT_EQ(modeOf(file()), 0640u);
    EXPECT_EQ(names(), std::vector<std::string>{"f"});
    fs::remove(file());
  }
  ::umask(before);
}

TEST_F(ReplaceFile, FileIsReplacedAndLeavesItsPermissions)
{
  for (const IfThere ifThere : {IfThere::Replace, IfThere::ReplaceLink})
    for (const mode_t mode : {0600u, 0666u, 0444u, 0755u}) {
      writeBytes(file(), "old, and longer");
      ASSERT_EQ(::chmod(file().c_str(), mode), 0);
      replaceFile(file(), "new", ifThere);
      EXPECT_EQ(bytesOf(file()), "new");
      EXPECT_EQ(modeOf(file()), mode);
      EXPECT_EQ(names(), std::vector<std::string>{"f"});
      fs::remove(file());
    }
}

TEST_F(ReplaceFile, FileIsRefusedAndStays)
{
  writeBytes(file(), "old");
  EXPECT_EQ(error(IfThere::Refuse), "Exists: " + file().native() + ": already exists");
  EXPECT_EQ(bytesOf(file()), "old");
  EXPECT_EQ(names(), std::vector<std::string>{"f"});
}

TEST_F(ReplaceFile, FileThatAppearsMeanwhileIsRefused)
{
  renameError = EEXIST;
  EXPECT_EQ(error(IfThere::Refuse), "Exists: " + file().native() + ": already exists");
  renameError = 0;
  EXPECT_EQ(names(), std::vector<std::string>{});
}

TEST_F(ReplaceFile, LinkStaysAndTheFileThatItLeadsToIsReplaced)
{
  fs::create_directory(file("d"));
  writeBytes(file("d/target"), "old");
  fs::create_symlink("d/target", file());
  ASSERT_EQ(::chmod(file("d/target").c_str(), 0600), 0);
  EXPECT_EQ(error(IfThere::Refuse), "Exists: " + file().native() + ": already exists");
  EXPECT_EQ(bytesOf(file("d/target")), "old");
  replaceFile(file(), "new", IfThere::Replace);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(bytesOf(file("d/target")), "new");
  EXPECT_EQ(modeOf(file("d/target")), 0600u);
  EXPECT_EQ(namesIn(file("d")), std::vector<std::string>{"target"});
}

TEST_F(ReplaceFile, LinkIsReplacedAndWhatItLeadsToStays)
{
  writeBytes(file("target"), "old");
  for (const char* const target : {"target", "nowhere", "."}) {
    fs::create_symlink(target, file());
    replaceFile(file(), "new", IfThere::ReplaceLink);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(file())));
    EXPECT_EQ(bytesOf(file()), "new");
    fs::remove(file());
  }
  EXPECT_EQ(bytesOf(file("target")), "old");
  EXPECT_EQ(names(), std::vector<std::string>{"target"});
}

TEST_F(ReplaceFile, AnythingButAFileIsRefused)
{
  fs::create_directory(file("d"));
  ASSERT_EQ(::mkfifo(file("p").c_str(), 0600), 0);
  for (const IfThere ifThere : all) {
    EXPECT_EQ(error(ifThere, "d"), "NotRegular: " + file("d").native() + ": not a regular file (a folder)");
    EXPECT_EQ(error(ifThere, "p"), "NotRegular: " + file("p").native() + ": not a regular file (a named pipe)");
  }
  fs::create_symlink("d", file("to-d"));
  fs::create_symlink("nowhere", file("to-nothing"));
  fs::create_symlink("loop", file("loop"));
  for (const IfThere ifThere : {IfThere::Refuse, IfThere::Replace}) {
    EXPECT_EQ(error(ifThere, "to-d"), "NotRegular: " + file("to-d").native() + ": not a regular file (a folder)");
    for (const char* const name : {"to-nothing", "loop"})
      EXPECT_EQ(error(ifThere, name), "NotRegular: " + file(name).native() + ": a link that leads to no file");
  }
  EXPECT_EQ(names(), (std::vector<std::string>{"d", "loop", "p", "to-d", "to-nothing"}));
}

TEST_F(ReplaceFile, FailedWriteLeavesWhatWasThere)
{
  writeBytes(file(), "old");
  const FileSizeLimit limit(100'000);
  for (const IfThere ifThere : {IfThere::Replace, IfThere::ReplaceLink})
    EXPECT_EQ(errorOf([&] { replaceFile(file(), std::string(200'000, 'x'), ifThere); }),
              "System: " + file().native() + ": cannot be written (File too large)");
  EXPECT_EQ(errorOf([&] { replaceFile(file("g"), std::string(200'000, 'x'), IfThere::Refuse); }),
            "System: " + file("g").native() + ": cannot be written (File too large)");
  EXPECT_EQ(bytesOf(file()), "old");
  EXPECT_EQ(names(), std::vector<std::string>{"f"});
}

TEST_F(ReplaceFile, FolderThatCannotBeWritten)
{
  writeBytes(file(), "old");
  ASSERT_EQ(::chmod(file().parent_path().c_str(), 0555), 0);
  {
    const OrdinaryUser user;
    EXPECT_EQ(error(IfThere::Replace), "System: " + file().native() + ": cannot be replaced (Permission denied)");
    EXPECT_EQ(error(IfThere::Refuse, "g"), "System: " + file("g").native() + ": cannot be made (Permission denied)");
    EXPECT_EQ(error(IfThere::Replace, "g"), "System: " + file("g").native() + ": cannot be made (Permission denied)");
  }
  EXPECT_EQ(errorOf([] { replaceFile("", "new", IfThere::Refuse); }),
            "System: \"\": cannot be made (No such file or directory)");
  EXPECT_EQ(bytesOf(file()), "old");
  ASSERT_EQ(::chmod(file().parent_path().c_str(), 0755), 0);
}

TEST_F(ReplaceFile, FolderThatCanBeWrittenButNotRead)
{
  fs::create_directory(file("d"));
  ASSERT_EQ(::chmod(file().parent_path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(file("d").c_str(), 0333), 0);
  {
    const OrdinaryUser user;
    EXPECT_EQ(error(IfThere::Refuse, "d/f"), "nothing");
    EXPECT_EQ(error(IfThere::Replace, "d/f"), "nothing");
  }
  ASSERT_EQ(::chmod(file("d").c_str(), 0755), 0);
  EXPECT_EQ(bytesOf(file("d/f")), "new");
}

TEST_F(ReplaceFile, PlaceThatTheCallerNamesIsUsedAndCleared)
{
  writeBytes(file("place"), "half, of a killed process");
  replaceFile(file(), "new", IfThere::ReplaceLink, file("place"));
  EXPECT_EQ(bytesOf(file()), "new");
  EXPECT_EQ(names(), std::vector<std::string>{"f"});
  EXPECT_EQ(errorOf([&] { replaceFile(file(), "newer", IfThere::ReplaceLink, file("none/place")); }),
            "System: " + file().native() + ": cannot be replaced (No such file or directory)");
  EXPECT_EQ(bytesOf(file()), "new");
}

} // namespace
