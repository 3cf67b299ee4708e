// SPDX-License-Identifier: Apache-2.0
//
// A disk without room, and one that is not to be written: what cannot be stored is said, and what was there stays.
#include <algorithm>

#include "cli/command_fixture.h"
#include "standalone/store/support.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;
using store_tests::bytesOf;
using store_tests::namesIn;
using store_tests::TempMount;

namespace {

/// A facility on a disk of its own, of half a megabyte. Lists lie elsewhere.
class SmallDisk : public CommandTest {
protected:
  void SetUp() override
  {
    if (!disk_.mounted())
      GTEST_SKIP() << "mounting a file system is not allowed here";
    setting_.folder = disk_ / "";
    output({"init"});
    output({"import", dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                                                event(2, "B001", "V", "01:00:00:00", "01:00:01:00"))});
  }

  std::string listOf(std::size_t events)
  {
    std::string list;
    for (std::size_t i = 1; i <= events; ++i)
      list += event(static_cast<int>(i), numbered("T", i), "V", "01:00:00:00", "01:00:01:00");
    return dir_.write("large.edl", list);
  }

  /// Leaves that much room.
  void fillUpTo(std::size_t bytes)
  {
    const std::size_t room = fs::space(disk_ / "").available;
    ASSERT_GT(room, bytes);
    store_tests::writeBytes(disk_ / "filling", std::string(room - bytes, 'x'));
  }

  /// Runs it, and expects this refusal, and that all that was there is as it was.
  void expectNothingDone(const Words& words, int code, const std::string& message)
  {
    SCOPED_TRACE(testing::PrintToString(words));
    const auto before = everything();
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: " + message + "\n");
    EXPECT_TRUE(everything() == before); // too much to be shown
    EXPECT_EQ(output({"project", "check"}), "main: sound\n");
  }

  std::map<std::string, std::string> everything()
  {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(disk_ / ""))
      all[entry.path().native()] = entry.is_regular_file() ? bytesOf(entry.path()) : "";
    return all;
  }

  std::string project() const { return (disk_ / "projects/main.reels").native(); }

  TempMount disk_{"size=512k"};
};

TEST_F(SmallDisk, ImportThatDoesNotFitStoresNothing)
{
  expectNothingDone({"import", listOf(5000)}, 3, project() + ": not stored (database or disk is full)");
  EXPECT_EQ(json({"list", "--json"}).size(), 2u);
  EXPECT_EQ(json({"import", "--json", listOf(20)}).at("stored"), true);
  EXPECT_EQ(json({"list", "--json"}).size(), 22u);
}

TEST_F(SmallDisk, CompactThatDoesNotFitForgetsNothing)
{
  output({"import", listOf(300)});
  output({"undo"}); // the history has all of it now
  fillUpTo(40 * 1024);
  expectNothingDone({"project", "compact", "--before", "4"}, 3, project() + ": not stored (database or disk is full)");
  fs::remove(disk_ / "filling");
  const auto size = fs::file_size(project());
  EXPECT_EQ(output({"project", "compact", "--before", "4"}), "3 revisions forgotten\n");
  EXPECT_LT(fs::file_size(project()), size);
}

TEST_F(SmallDisk, ExportThatDoesNotFitKeepsTheOldFile)
{
  output({"import", listOf(200)});
  store_tests::writeBytes(disk_ / "out", "mine");
  fillUpTo(64 * 1024);
  expectNothingDone({"export", "--json", "-o", "out", "--force"}, 3,
                    "out: cannot be written (No space left on device)");
}

TEST_F(SmallDisk, FullDiskIsReadAndNotWritten)
{
  const Words readers[] = {{"list"}, {"show", "A001"}, {"export", "--json"}, {"project", "list"}};
  std::vector<std::string> answers;
  for (const Words& words : readers)
    answers.push_back(output(words));
  fillUpTo(0);
  for (std::size_t i = 0; i < answers.size(); ++i)
    EXPECT_EQ(output(readers[i]), answers[i]);
  const std::string before = bytesOf(project());
  for (const Words& words : std::vector<Words>{{"set", "A001", "bin=x"}, {"delete", "A001", "--yes"}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.err, "reeldb: " + project() + ": cannot be opened (database or disk is full)\n");
    EXPECT_EQ(bytesOf(project()), before);
    EXPECT_EQ(output({"project", "check"}), "main: sound\n");
  }
  fs::remove(disk_ / "filling");
  output({"set", "A001", "bin=x"});
  EXPECT_EQ(namesIn(disk_ / "projects"), Words{"main.reels"});
}

TEST_F(SmallDisk, ReadOnlyDiskIsReadAndNotWritten)
{
  const Words readers[] = {{"list"}, {"show", "A001"}, {"export", "--json"}, {"project", "check"}};
  std::vector<std::string> answers;
  for (const Words& words : readers)
    answers.push_back(output(words));
  ASSERT_TRUE(disk_.makeReadOnly());
  const std::string message = project() + ": read-only (Read-only file system)";
  for (const Words& words : std::vector<Words>{{"set", "A001", "bin=x"},
                                               {"rename", "A001", "X"},
                                               {"create", "X"},
                                               {"copy", "A001", "B001"},
                                               {"delete", "A001", "--yes"},
                                               {"undelete"},
                                               {"import", dir_.path() / "cut.edl"},
                                               {"project", "compact"}})
    expectNothingDone(words, 1, message);
  expectNothingDone({"export", "--json", "-o", "out"}, 3, "out: cannot be made (Read-only file system)");
  for (std::size_t i = 0; i < answers.size(); ++i)
    EXPECT_EQ(output(readers[i]), answers[i]);
}

} // namespace
