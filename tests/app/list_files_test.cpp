// SPDX-License-Identifier: Apache-2.0
#include "app/list_files.h"

#include <filesystem>

#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

class ListFiles : public reeldb_tests::AppTest {
protected:
  void SetUp() override {}

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }
  app::ErrorKind kindOfReading(const std::string& name) const
  {
    return errorOf([&] { app::readListFile(path(name)); }).kind();
  }
};

TEST_F(ListFiles, ListIsReadWithItsPath)
{
  const std::string file = cutList("cut.edl", {"A001", "B002"});
  const app::ListFile read = app::readListFile(file);
  EXPECT_EQ(read.path, file);
  EXPECT_EQ(read.list.clips.size(), 2u);
}

TEST_F(ListFiles, FolderOfFcpxmlIsAListWithTheNameOfTheFolder)
{
  std::filesystem::create_directory(path("cut.fcpxmld"));
  folder_.write("cut.fcpxmld/Info.fcpxml", "<fcpxml version='1.10'><asset-clip name='a' duration='1s'/></fcpxml>");
  for (const std::string& name : {path("cut.fcpxmld"), path("cut.fcpxmld/")}) {
    const app::ListFile read = app::readListFile(name);
    EXPECT_EQ(read.path, path("cut.fcpxmld"));
    EXPECT_EQ(read.list.format, lists::Format::Fcpxml);
    EXPECT_EQ(read.list.clips.size(), 1u);
  }
}

TEST_F(ListFiles, WhatCannotBeReadIsOfTheRightKind)
{
  folder_.write("empty.edl", "");
  EXPECT_EQ(kindOfReading("missing.edl"), app::ErrorKind::NotFound);
  EXPECT_EQ(kindOfReading("."), app::ErrorKind::Unreadable);
  EXPECT_EQ(kindOfReading("empty.edl"), app::ErrorKind::Unreadable);
}

TEST_F(ListFiles, EachFileOfSeveralThatCannotBeReadIsReported)
{
  const app::ListFiles files = app::readListFiles({path("a.edl"), cutList("cut.edl", {"A001"}), path("b.edl")});
  EXPECT_EQ(files.read.size(), 1u);
  ASSERT_EQ(files.failures.size(), 2u);
  EXPECT_EQ(files.failures.front().path, path("a.edl"));
  EXPECT_EQ(std::string(files.failures.front().error.what()), path("a.edl") + ": " + files.failures.front().reason());
  EXPECT_EQ(files.failures.front().reason(), "cannot be opened (No such file or directory)");
}

/// The names of the lists and of the files that cannot be read, from the folder on.
class FolderOfLists : public ListFiles {
protected:
  void SetUp() override
  {
    for (const char* file : {"b.edl", "a.edl", ".hidden.edl", "deep/c.edl", "deep/.svn/d.edl"})
      cutList(file, {"A001"});
    std::filesystem::create_directories(path("cut.fcpxmld"));
    folder_.write("cut.fcpxmld/Info.fcpxml", "<fcpxml version='1.10'><asset-clip name='a' duration='1s'/></fcpxml>");
    std::filesystem::create_directory_symlink(path("deep"), path("link"));
  }

  std::vector<std::string> read(app::Folders folders)
  {
    const app::ListFiles files = app::readListFiles({folder_.path().native()}, {}, folders);
    std::vector<std::string> names;
    for (const app::ListFile& file : files.read)
      names.push_back(std::filesystem::relative(file.path, folder_.path()).native());
    for (const app::UnreadFile& file : files.failures)
      names.push_back("not " + std::filesystem::path(file.path).lexically_relative(folder_.path()).native() + ": " +
                      file.reason());
    return names;
  }
};

TEST_F(FolderOfLists, IsNotAListUnlessFoldersAreRead)
{
  EXPECT_EQ(read(app::Folders::NotLists), (std::vector<std::string>{"not .: not a regular file (a folder)"}));
}

TEST_F(FolderOfLists, GivesItsFilesInOrderWithoutHiddenOnes)
{
  EXPECT_EQ(read(app::Folders::Files), (std::vector<std::string>{"a.edl", "b.edl", "cut.fcpxmld"}));
}

TEST_F(FolderOfLists, GivesTheFilesOfItsFoldersAndNamesLinksToFolders)
{
  EXPECT_EQ(read(app::Folders::AllFiles),
            (std::vector<std::string>{"a.edl", "b.edl", "cut.fcpxmld", "deep/c.edl",
                                      "not link: a link to a folder (name the folder itself)"}));
}

TEST_F(FolderOfLists, WithoutFilesIsReported)
{
  std::filesystem::create_directories(path("empty/deep"));
  for (const auto& [folders, reason] : {std::pair(app::Folders::Files, "holds no files (--recursive reads its folders, "
                                                                       "too)"),
                                        std::pair(app::Folders::AllFiles, "holds no files")}) {
    const app::ListFiles files = app::readListFiles({path("empty")}, {}, folders);
    ASSERT_EQ(files.failures.size(), 1u);
    EXPECT_EQ(files.failures.front().reason(), reason);
    EXPECT_EQ(files.failures.front().error.kind(), app::ErrorKind::Unreadable);
  }
}

TEST_F(ListFiles, FileIsReplacedOnlyOnRequest)
{
  app::writeOutputFile(path("out"), "one", false);
  const app::Error error = errorOf([&] { app::writeOutputFile(path("out"), "two", false); });
  EXPECT_EQ(error.kind(), app::ErrorKind::Refused);
  EXPECT_EQ(std::filesystem::file_size(path("out")), 3u);
  app::writeOutputFile(path("out"), "three", true);
  EXPECT_EQ(std::filesystem::file_size(path("out")), 5u);
}

TEST_F(ListFiles, OptionsOfReadingHoldForEachFile)
{
  const std::string file =
      folder_.write("cut.edl", "001  A001C001 V     C        01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                               "* FROM CLIP NAME: A001C001_200303_F701\n");
  const lists::ReadOptions byClipNames{.clipNames = true};
  EXPECT_EQ(app::readListFile(file).list.clips.at(0).reel, "A001C001");
  EXPECT_EQ(app::readListFile(file, byClipNames).list.clips.at(0).reel, "A001C001_200303_F701");
  EXPECT_EQ(app::readListFiles({file}, byClipNames).read.at(0).list.clips.at(0).reel, "A001C001_200303_F701");
}

} // namespace
