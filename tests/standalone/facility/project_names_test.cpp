// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

class ProjectNames : public testing::Test {
protected:
  ProjectNames()
  {
    writeBytes(folder_ / "facility.toml", "");
    fs::create_directory(folder_ / "projects");
  }
  Facility facility() const { return Facility::read(folder_.path()); }
  fs::path projects() const { return folder_ / "projects"; }

private:
  TempFolder folder_;
};

TEST_F(ProjectNames, FileOfAPlainName)
{
  EXPECT_EQ(facility().projectFile("main"), projects() / "main.reels");
  EXPECT_EQ(facility().projectFile("Film \xC3\xA9 (2)"), projects() / "Film \xC3\xA9 (2).reels");
  EXPECT_EQ(facility().projectFile("a..b"), projects() / "a..b.reels");
  EXPECT_EQ(facility().projectFile(std::string(200, 'n')), projects() / (std::string(200, 'n') + ".reels"));
}

TEST_F(ProjectNames, NamesThatAreNotFileNamesAreRefused)
{
  const std::pair<std::string, std::string> cases[] = {
      {"", "\"\": not a valid project name (it is empty)"},
      {".", "\".\": not a valid project name (it begins with a dot)"},
      {"..", "\"..\": not a valid project name (it begins with a dot)"},
      {".hidden", "\".hidden\": not a valid project name (it begins with a dot)"},
      {"a/b", "\"a/b\": not a valid project name (it holds a slash)"},
      {"/etc/x", "\"/etc/x\": not a valid project name (it holds a slash)"},
      {"a\nb", "\"a\\nb\": not a valid project name (it holds a control character)"},
      {std::string("a\0b", 3), "\"a\\x00b\": not a valid project name (it holds a control character)"},
      {"a\xC2\x9B", "\"a\\u009b\": not a valid project name (it holds a control character)"},
  };
  for (const auto& [name, message] : cases)
    EXPECT_EQ(errorOf([&, &wanted = name] { facility().projectFile(wanted); }), "Refused: " + message);
  EXPECT_EQ(errorOf([&] { facility().projectFile(std::string(201, 'n')); }),
            "Refused: \"" + std::string(201, 'n') + "\": not a valid project name (it is longer than 200 bytes)");
}

TEST_F(ProjectNames, LinkIsFollowedWithinTheFacilityOnly)
{
  const TempFolder elsewhere;
  const std::string real = fs::canonical(elsewhere.path()).native();
  fs::create_symlink("main.reels", projects() / "near.reels");
  fs::create_symlink("nowhere", projects() / "gone.reels");
  fs::create_symlink("loop.reels", projects() / "loop.reels");
  writeBytes(elsewhere / "far.reels", "");
  fs::create_symlink(elsewhere / "far.reels", projects() / "far.reels");
  for (const std::string name : {"near", "gone", "loop"})
    EXPECT_EQ(facility().projectFile(name), projects() / (name + ".reels"));
  EXPECT_EQ(errorOf([&] { facility().projectFile("far"); }), "Refused: " + (projects() / "far.reels").native() +
                                                                 ": leads out of the facility (to " + real +
                                                                 "/far.reels)");
}

TEST_F(ProjectNames, FolderThatIsALinkToElsewhereHoldsNoProjects)
{
  const TempFolder elsewhere;
  const std::string real = fs::canonical(elsewhere.path()).native();
  fs::remove(projects());
  fs::create_symlink(elsewhere.path(), projects());
  EXPECT_EQ(errorOf([&] { facility().projectFile("new"); }), "Refused: " + (projects() / "new.reels").native() +
                                                                 ": leads out of the facility (to " + real +
                                                                 "/new.reels)");
}

TEST_F(ProjectNames, FolderWhoseNameBeginsLikeTheFacilitysIsElsewhere)
{
  const fs::path beside = projects().parent_path().native() + "2";
  fs::create_directory(beside);
  writeBytes(beside / "far.reels", "");
  fs::create_symlink(beside / "far.reels", projects() / "far.reels");
  EXPECT_NE(errorOf([&] { facility().projectFile("far"); }).find(": leads out of the facility (to "),
            std::string::npos);
  fs::remove_all(beside);
}

TEST_F(ProjectNames, FacilityBehindALinkHasItsProjects)
{
  const TempFolder elsewhere;
  const fs::path link = elsewhere / "link";
  fs::create_directory_symlink(projects().parent_path(), link);
  EXPECT_EQ(Facility::read(link).projectFile("main"), link / "projects" / "main.reels");
}

TEST_F(ProjectNames, MarksOfDirectionAreNotControlCharacters)
{
  EXPECT_EQ(facility().projectFile("\xE2\x80\x8F\xD7\x90"), projects() / "\xE2\x80\x8F\xD7\x90.reels");
}

TEST_F(ProjectNames, ProjectsAreListedSorted)
{
  for (const char* name : {"b.reels", "a.reels", "\xC3\xA9.reels", "B.reels", "a.reels-wal", "a.reels-shm", "notes.txt",
                           ".hidden.reels", ".a.reels.new-1-0", ".reels", "reels", "x\ny.reels"})
    writeBytes(projects() / name, "");
  fs::create_directory(projects() / "folder.reels");
  fs::create_symlink("a.reels", projects() / "link.reels");
  fs::create_symlink("nowhere", projects() / "broken.reels");
  EXPECT_EQ(facility().projectNames(), (std::vector<std::string>{"B", "a", "b", "link", "\xC3\xA9"}));
}

TEST_F(ProjectNames, MissingFolderHasNoProjects)
{
  fs::remove(projects());
  EXPECT_TRUE(facility().projectNames().empty());
}

TEST_F(ProjectNames, LongestNameIsCreatedOpenedAndListed)
{
  const std::string name(200, 'n');
  createSqliteProject(facility().projectFile(name), exampleInfo(), {});
  const auto project = makeSqliteStore(facility().projectFile(name));
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*project), std::vector<std::int64_t>{1});
  EXPECT_EQ(facility().projectNames(), std::vector<std::string>{name});
}

} // namespace
