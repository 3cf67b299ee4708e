// SPDX-License-Identifier: Apache-2.0
#include <sys/utsname.h>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class HistoryCommand : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    output({"create", "A001"});
  }
};

TEST_F(HistoryCommand, UndoSaysWhatItTookBack)
{
  output({"rename", "A001", "B 1"});
  EXPECT_EQ(output({"undo"}), "revision 2 taken back: reeldb rename A001 'B 1'\n1 reel or shot changed back\n");
  EXPECT_EQ(output({"undo"}), "revision 1 taken back: reeldb create A001\n1 reel removed: A001\n");
  const ProcessResult nothing = reeldb({"undo"});
  EXPECT_EQ(nothing.code, 1);
  EXPECT_EQ(nothing.err, "reeldb: undo: nothing to undo\n");
  EXPECT_EQ(output({"redo"}), "revision 1 repeated: reeldb create A001\n1 reel restored: A001\n");
}

TEST_F(HistoryCommand, UndoOfAProjectWithoutHistorySaysThatTheProjectStays)
{
  output({"project", "new", "promo"});
  EXPECT_EQ(
      reeldb({"-p", "promo", "undo"}).err,
      "reeldb: undo: nothing to undo (no command is in the history of this project; that it was made is not taken "
      "back)\n");
}

TEST_F(HistoryCommand, OptionsThatChangedAreNamed)
{
  output({"project", "rate", "30"});
  EXPECT_NE(output({"history"}).find("  options  reeldb project rate 30\n"), std::string::npos) << output({"history"});
  EXPECT_EQ(json({"history", "--json"}).at("commits").at(0).at("options"), true);
  EXPECT_EQ(json({"history", "--json"}).at("commits").at(1).at("options"), false);
  EXPECT_EQ(output({"undo"}), "revision 2 taken back: reeldb project rate 30\noptions of the project changed back\n");
  EXPECT_EQ(json({"redo", "--json"}).at("options"), true);
}

TEST_F(HistoryCommand, UndoOfAnImportNamesItsListAndWrapsItsReels)
{
  std::string list = "TITLE: LONG\n";
  for (int i = 10; i < 30; ++i)
    list += event(i, numbered("REEL0", static_cast<std::size_t>(i)), "V", "01:00:00:00", "01:00:01:00");
  dir_.write("long.edl", list);
  reeldb({"import", "long.edl"});
  EXPECT_EQ(output({"undo"}),
            "revision 2 taken back: reeldb import long.edl\n"
            "20 reels and 20 shots removed: REEL010, REEL011, REEL012, REEL013, REEL014, REEL015, REEL016,\n"
            "  REEL017, REEL018, REEL019, REEL020, REEL021, REEL022, REEL023, REEL024, REEL025, REEL026, REEL027,\n"
            "  REEL028, REEL029\n"
            "1 list removed: long.edl\n");
  const Json again = json({"redo", "--json"});
  EXPECT_EQ(again.at("lists_restored"), Json({"long.edl"}));
  EXPECT_EQ(again.at("lists_removed"), Json::array());
}

TEST_F(HistoryCommand, UndoTakesARevisionByItsNumber)
{
  output({"set", "A001", "bin=1"});
  output({"set", "A001", "available=no"});
  EXPECT_EQ(json({"undo", "2", "--json"}).at("commit").at("command"), "reeldb set A001 bin=1");
  EXPECT_EQ(json({"show", "A001", "--json"}).at("bin"), "");
  EXPECT_EQ(json({"show", "A001", "--json"}).at("available"), false);
  EXPECT_EQ(reeldb({"undo", "77"}).err, "reeldb: undo: no revision 77 (reeldb history lists them)\n");
  const ProcessResult bad = reeldb({"undo", "x"});
  EXPECT_EQ(bad.code, 2);
  EXPECT_EQ(bad.err, "reeldb: \"x\": not a revision (reeldb history lists them)\n");
}

TEST_F(HistoryCommand, HistoryListsTheNewestCommitFirst)
{
  output({"set", "A001", "bin=shelf"});
  output({"undo"});
  const Json commits = json({"history", "--json"}).at("commits");
  ASSERT_EQ(commits.size(), 3u);
  utsname machine = {};
  uname(&machine);
  EXPECT_EQ(commits[0].at("revision"), 3);
  EXPECT_EQ(commits[0].at("takes_back"), 2);
  EXPECT_EQ(commits[1].at("taken_back_by"), 3);
  EXPECT_EQ(commits[1].at("command"), "reeldb set A001 bin=shelf");
  EXPECT_EQ(commits[1].at("machine"), machine.nodename);
  EXPECT_EQ(commits[2].at("created"), 1);
  const std::string table = output({"history"});
  EXPECT_NE(table.find("taken back by 3"), std::string::npos) << table;
  EXPECT_NE(table.find("takes back 2"), std::string::npos) << table;
  EXPECT_NE(output({"history", "A001"}).find("bin: shelf (was -)"), std::string::npos);
  EXPECT_EQ(reeldb({"history", "X9"}).err, "reeldb: X9: no such reel, now or in the history\n");
}

TEST_F(HistoryCommand, NamesFalseKeepsNeitherNamesNorFolders)
{
  dir_.write("facility.toml", readFile("facility.toml") + "\n[history]\nnames = false\n");
  dir_.write("list.edl", "TITLE: T\n001  R1 V C 01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n");
  output({"import", path("list.edl")});
  const Json commit = json({"history", "--json"}).at("commits").at(0);
  EXPECT_EQ(commit.at("command"), "reeldb import list.edl");
  for (const char* key : {"user", "machine", "folder"})
    EXPECT_EQ(commit.at(key), "") << key;
}

TEST_F(HistoryCommand, NamesFalseKeepsValuesAndNamesWithASlash)
{
  dir_.write("facility.toml", readFile("facility.toml") + "\n[history]\nnames = false\n");
  output({"set", "A001", "bin=Shelf 4/5"});
  output({"create", "B/2"});
  const Json commits = json({"history", "--json"}).at("commits");
  EXPECT_EQ(commits.at(1).at("command"), "reeldb set A001 'bin=Shelf 4/5'");
  EXPECT_EQ(commits.at(0).at("command"), "reeldb create B/2");
}

TEST_F(HistoryCommand, DeletionsOfAnEarlierVersionAreNotListedButBroughtBack)
{
  for (const char* ending : {"", "-wal", "-shm"})
    std::filesystem::remove(path("projects/main.reels") + ending);
  std::filesystem::copy_file(REELDB_SOURCE_DIR "/tests/standalone/store/data/version-1.reels",
                             path("projects/main.reels"));
  EXPECT_EQ(reeldb({"undelete", "--list"}).err,
            "reeldb: main: the deletions of a project of an earlier version cannot be listed (reeldb undelete brings "
            "the last one back; after the next command that stores something, they can be)\n");
  EXPECT_EQ(reeldb({"undelete"}).out, "2 reels and 3 shots brought back: PIER CAM 2, A021C012_210609_H1KV\n");
  EXPECT_EQ(json({"undelete", "--list", "--json"}).size(), 1u);
}

TEST_F(HistoryCommand, CommandsThatStoreNothingHaveNoRevision)
{
  const std::string before = readFile("projects/main.reels");
  output({"set", "A001", "bin="});
  output({"rename", "--dry-run", "A001", "B001"});
  EXPECT_EQ(reeldb({"undo", "99"}).code, 1);
  EXPECT_EQ(readFile("projects/main.reels"), before);
  EXPECT_EQ(json({"history", "--json"}).at("commits").size(), 1u);
}

} // namespace
