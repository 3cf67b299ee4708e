// SPDX-License-Identifier: Apache-2.0
#include "store/project_file.h"

#include <fcntl.h>

#include <gtest/gtest.h>

#include "base/files.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

TEST(InspectProjectFile, ReportsPathSizeAndFilesBeside)
{
  const TempFolder folder;
  const fs::path file = folder / "p";
  writeBytes(file, "12345");
  fs::create_symlink(file, folder / "link");
  ProjectFile found = inspectProjectFile(folder / "link");
  EXPECT_EQ(found.path, file.native());
  EXPECT_TRUE(found.writable);
  EXPECT_EQ(found.whyNot, "");
  EXPECT_EQ(found.size, 5u);
  EXPECT_EQ(found.logSize, 0u);
  EXPECT_FALSE(found.hasLogIndex);
  EXPECT_EQ(found.modified, modificationTime(file));
  writeBytes(file.native() + "-wal", "123");
  writeBytes(file.native() + "-shm", "");
  found = inspectProjectFile(file);
  EXPECT_EQ(found.logSize, 3u);
  EXPECT_TRUE(found.hasLogIndex);
}

TEST(InspectProjectFile, ReadOnlyFileComesBeforeReadOnlyFolder)
{
  const TempFolder folder;
  const fs::path file = folder / "p";
  writeBytes(file, "");
  fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_FALSE(inspectProjectFile(file).writable);
  EXPECT_EQ(inspectProjectFile(file).whyNot, "the mode of its folder does not allow writing");
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_EQ(inspectProjectFile(file).whyNot, "its mode does not allow writing");
}

TEST(InspectProjectFile, RelativeNameOfTheWorkingFolder)
{
  const TempFolder folder;
  writeBytes(folder / "p", "");
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  const ProjectFile found = inspectProjectFile("p");
  fs::current_path(before);
  EXPECT_EQ(found.path, (folder / "p").native());
  EXPECT_TRUE(found.writable);
}

TEST(InspectProjectFile, FileThatIsDeletedButStillOpenHasNoPath)
{
  const TempFolder folder;
  writeBytes(folder / "p", "");
  const reeldb::base::FileDescriptor open(::open((folder / "p").c_str(), O_RDWR));
  fs::remove(folder / "p");
  const std::string path = "/proc/self/fd/" + std::to_string(open.get());
  EXPECT_EQ(errorOf([&] { inspectProjectFile(path); }),
            "Io: " + path + ": cannot be opened (No such file or directory)");
}

} // namespace
