// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class ListFile : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    evening_ = "TITLE: EVENING\r\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
               event(2, "B001", "V", "01:00:00:00", "01:00:01:00") + "* \xFF\x1A";
    dir_.write("evening.edl", evening_);
    dir_.write("night.edl", "TITLE: NIGHT\n" + event(1, "B001", "V", "01:00:00:00", "01:00:01:00"));
    output({"import", "evening.edl", "night.edl"});
  }

  std::string evening_;
};

TEST_F(ListFile, ListHasEachList)
{
  EXPECT_EQ(output({"list-file", "list"}), "LIST  FILE         FORMAT  EVENTS  TITLE\n"
                                           "   1  evening.edl  edl          2  EVENING\n"
                                           "   2  night.edl    edl          1  NIGHT\n");
  EXPECT_EQ(json({"list-file", "list", "--json"}).at(1).at("file"), "night.edl");
}

TEST_F(ListFile, NewProjectHasNoList)
{
  output({"project", "new", "empty"});
  EXPECT_EQ(output({"-p", "empty", "list-file", "list"}), "no lists (reeldb import keeps those that it imports)\n");
  EXPECT_EQ(json({"-p", "empty", "list-file", "list", "--json"}), Json::array());
}

TEST_F(ListFile, ShowHasTheEventsAndTheReelsOfNow)
{
  reeldb({"rename", "A001", "C001"});
  const std::string shown = output({"list-file", "show", "1"});
  EXPECT_EQ(shown.substr(0, shown.find('\n')), "list 1: evening.edl (edl), EVENING");
  EXPECT_NE(shown.find("A001  C001"), std::string::npos) << shown;
  EXPECT_EQ(shown.substr(shown.size() - 9), "2 events\n");
  const Json events = json({"list-file", "show", "EVENING", "--json"}).at("events");
  EXPECT_EQ(events.at(0).at("reel"), "A001");
  EXPECT_EQ(events.at(0).at("reel_now"), "C001");
}

TEST_F(ListFile, OriginalIsTheFileByteForByte)
{
  EXPECT_EQ(output({"list-file", "show", "evening.edl", "--original"}), evening_);
  EXPECT_EQ(output({"list-file", "show", "evening.edl", "--original", "-o", "copy.edl"}), "");
  EXPECT_EQ(readFile("copy.edl"), evening_);
  EXPECT_EQ(reeldb({"list-file", "show", "evening.edl", "--original", "-o", "copy.edl"}).code, 1);
  EXPECT_EQ(output({"list-file", "show", "night.edl", "--original", "-o", "copy.edl", "--force"}), "");
  EXPECT_NE(readFile("copy.edl"), evening_);
}

TEST_F(ListFile, OptionsThatDoNotGoTogetherAreRefused)
{
  for (const Words& options : {Words{"-o", "x"}, Words{"--force"}, Words{"--original", "--force"},
                               Words{"--original", "--json"}, Words{"--original", "-o", "x", "--json"}}) {
    Words words = {"list-file", "show", "1"};
    words.insert(words.end(), options.begin(), options.end());
    EXPECT_EQ(reeldb(words).code, 2) << options.front();
  }
  EXPECT_FALSE(std::filesystem::exists(path("x")));
}

TEST_F(ListFile, UsedInHasTheListsOfAReel)
{
  const std::string shown = output({"list-file", "used-in", "b001"});
  EXPECT_NE(shown.find("list 1: evening.edl (edl), EVENING: 1 event\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find("list 2: night.edl (edl), NIGHT: 1 event\n"), std::string::npos) << shown;
  EXPECT_EQ(json({"list-file", "used-in", "A001", "--json"}).size(), 1u);
  output({"create", "ALONE"});
  const ProcessResult unused = reeldb({"list-file", "used-in", "ALONE"});
  EXPECT_EQ(unused.code, 1);
  EXPECT_EQ(unused.out, "no list uses ALONE\n");
  EXPECT_EQ(reeldb({"list-file", "used-in", "nosuch"}).err.substr(0, 15), "reeldb: nosuch:");
}

TEST_F(ListFile, RemoveTakesTheListAndWhatOnlyItNamed)
{
  const std::string before = output({"export", "--json"});
  EXPECT_EQ(output({"list-file", "remove", "--dry-run", "evening.edl"}),
            "list 1: evening.edl (edl), EVENING: would be removed\n"
            "1 reel and 1 shot that only this list used: A001\n"
            "dry run: the project stays as it was\n");
  EXPECT_EQ(output({"export", "--json"}), before);
  EXPECT_EQ(output({"list-file", "remove", "evening.edl"}), "list 1: evening.edl (edl), EVENING: removed\n"
                                                            "1 reel and 1 shot that only this list used: A001\n"
                                                            "reeldb undo brings all of it back\n");
  EXPECT_EQ(reelIds(), Words{"B001"});
  EXPECT_EQ(reeldb({"list-file", "show", "evening.edl"}).err,
            "reeldb: evening.edl: no such list (reeldb list-file list shows them)\n");
  EXPECT_EQ(output({"undo"}), "revision 2 taken back: reeldb list-file remove evening.edl\n"
                              "1 reel and 1 shot restored: A001\n"
                              "1 list restored: evening.edl\n");
  EXPECT_EQ(output({"export", "--json"}), before);
  EXPECT_EQ(json({"history", "--json"}).at("commits").at(2).at("lists"), 2); // the import
  EXPECT_NE(output({"history"}).find("4 new, 2 lists"), std::string::npos) << output({"history"});
  EXPECT_EQ(output({"list-file", "show", "evening.edl", "--original"}), evening_);
}

TEST_F(ListFile, TablesShowARateAndDropFrameIfTheListSaysThem)
{
  dir_.write("drop.edl", "TITLE: DROP\nFCM: DROP FRAME\n" + event(1, "D001", "V", "01:00:00;00", "01:00:01;58"));
  reeldb({"import", "drop.edl"});
  for (const Words& words : {Words{"list-file", "show", "drop.edl"}, Words{"shots", "D001"}}) {
    const std::string table = output(words);
    EXPECT_NE(table.find("  RATE"), std::string::npos) << table;
    EXPECT_NE(table.find("  59.94 drop frame"), std::string::npos) << table;
  }
  EXPECT_EQ(output({"list-file", "show", "evening.edl"}).find("RATE"), std::string::npos);
}

TEST_F(ListFile, CompactRemovesRemovedListsForGood)
{
  output({"list-file", "remove", "evening.edl"});
  EXPECT_EQ(output({"project", "compact"}), "2 deleted reels and shots and 1 list removed for good\n");
  EXPECT_EQ(output({"project", "compact"}), "nothing to remove\n");
  EXPECT_EQ(reeldb({"undo", "2"}).code, 1);
}

TEST_F(ListFile, ImportPutsAVersionInThePlaceOfTheList)
{
  dir_.write("evening.edl", "TITLE: EVENING\n" + event(1, "A001", "V", "01:00:00:10", "01:00:01:00") +
                                event(2, "C001", "V", "01:00:00:00", "01:00:01:00"));
  EXPECT_EQ(output({"import", "--replace", "evening.edl"}),
            "evening.edl (edl): 2 clips, 2 shots added\n"
            "  new version: 1 added, 1 gone, 1 trimmed, 0 elsewhere in the cut\n"
            "  1 reel created: C001\n"
            "  1 reel already there\n"
            "1 shot removed: only earlier versions had it\n");
  EXPECT_EQ(json({"list-file", "list", "--json"}).size(), 2u);
  EXPECT_EQ(reelIds(), (Words{"A001", "B001", "C001"}));
}

TEST_F(ListFile, ReplaceWithoutAnEarlierVersionReportsThatNothingWasReplaced)
{
  dir_.write("other.edl", "TITLE: OTHER\n" + event(1, "A001", "V", "01:00:00:10", "01:00:01:00"));
  EXPECT_EQ(output({"import", "--replace", "other.edl"}),
            "other.edl (edl): 1 clip, 1 shot added\n"
            "  nothing replaced: no list of the project has this file name or title (the list is new)\n"
            "  1 reel already there\n");
}

TEST_F(ListFile, ImportWithoutReplaceNamesTheEarlierVersion)
{
  dir_.write("evening.edl", "TITLE: EVENING\n" + event(1, "A001", "V", "01:00:00:10", "01:00:01:00"));
  EXPECT_EQ(output({"import", "evening.edl"}), "evening.edl (edl): 1 clip, 1 shot added\n"
                                               "  list 1 stays beside it (--as 1 puts this one in its place)\n"
                                               "  1 reel already there\n");
  EXPECT_EQ(json({"import", "--as", "2", "evening.edl", "--json"}).at("files").at(0).at("kept"), "new version");
}

TEST_F(ListFile, SeveralFilesAsOneListAreRefused)
{
  const ProcessResult refused = reeldb({"import", "--as", "1", "evening.edl", "night.edl"});
  EXPECT_EQ(refused.code, 2);
  EXPECT_EQ(refused.err, "reeldb: import: one list cannot be replaced by several files\n");
}

TEST_F(ListFile, NamesOfListsAreCompleted)
{
  setting_.environment["REELDB_COMPLETE"] = "1";
  EXPECT_EQ(output({"list-file", "show", "n"}), "words\nnight.edl\tNIGHT\n");
  EXPECT_EQ(output({"import", "--as", "e"}), "words\nevening.edl\tEVENING\n");
}

} // namespace
