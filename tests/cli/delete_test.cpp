// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Delete : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                              event(2, "A001", "V", "01:00:02:00", "01:00:03:00") +
                              event(3, "B001", "V", "01:00:00:00", "01:00:01:00") +
                              event(4, "C001", "V", "01:00:00:00", "01:00:01:00"));
    ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  }
  std::string everything()
  {
    std::string all = output({"list", "--json"});
    for (const std::string& id : reelIds())
      all += output({"shots", "--json", id});
    return all;
  }
};

TEST_F(Delete, TakesReelsAndTheirShots)
{
  const ProcessResult result = reeldb({"delete", "a001", "--yes"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "A001: 2 shots\n"
                        "  CLIP  TRACKS  SOURCE IN    SOURCE OUT   RECORD IN    RECORD OUT\n"
                        "  -     V       01:00:00:00  01:00:01:00  01:00:00:00  01:00:01:00\n"
                        "  -     V       01:00:02:00  01:00:03:00  01:00:00:00  01:00:01:00\n"
                        "1 reel and 2 shots deleted (reeldb undelete brings them back)\n");
  EXPECT_NE(result.err.find(" from Reel: A001\n"), std::string::npos) << result.err;
  EXPECT_EQ(reelIds(), (Words{"B001", "C001"}));
}

TEST_F(Delete, KeptReelAndItsShotsStay)
{
  const ProcessResult result = reeldb({"delete", "A001", "B001", "C001", "--keep", "b001", "--yes", "--json"});
  EXPECT_EQ(result.code, 0);
  Json report = Json::parse(result.out);
  const Json reels = report.at("reels");
  report.erase("reels");
  EXPECT_EQ(report, Json::parse(R"({"dry_run": false, "deleted": ["A001", "C001"], "shots": 3, "kept": ["B001"]})"));
  ASSERT_EQ(reels.size(), 3u);
  EXPECT_EQ(reels.at(0).at("id"), "A001");
  EXPECT_EQ(reels.at(0).at("kept"), false);
  EXPECT_FALSE(reels.at(0).contains("why"));
  ASSERT_EQ(reels.at(0).at("shots").size(), 2u);
  EXPECT_EQ(reels.at(0).at("shots").at(1).at("source_in"), "01:00:02:00");
  EXPECT_EQ(reels.at(1).at("id"), "B001");
  EXPECT_EQ(reels.at(1).at("kept"), true);
  EXPECT_EQ(reels.at(1).at("why"), "--keep");
  EXPECT_EQ(reels.at(1).at("shots").size(), 1u);
  EXPECT_NE(result.err.find("Couldn't delete reel: B001 because it was marked as in use.\n"), std::string::npos)
      << result.err;
  EXPECT_EQ(reelIds(), Words{"B001"});
  EXPECT_EQ(reel("B001").at("shots"), 1);
}

TEST_F(Delete, KeepTakesOneReelEachTime)
{
  const ProcessResult result = reeldb({"delete", "--keep", "A001", "B001", "--keep", "C001", "--yes", "--json"});
  EXPECT_EQ(Json::parse(result.out).at("deleted"), Words{"B001"});
}

TEST_F(Delete, NothingToDeleteIsRefused)
{
  const ProcessResult result = reeldb({"delete", "A001", "--keep", "A001", "--yes"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "A001: kept, with its 2 shots (--keep)\nnothing deleted\n");
  EXPECT_EQ(reelIds().size(), 3u);
}

TEST_F(Delete, UnknownReelDeletesNothing)
{
  EXPECT_EQ(reeldb({"delete", "A001", "X", "--yes"}).err, "reeldb: X: no such reel\n");
  EXPECT_EQ(reeldb({"delete", "A001", "--keep", "X", "--yes"}).code, 1);
  EXPECT_EQ(reelIds().size(), 3u);
}

TEST_F(Delete, SameReelTwiceCountsOnce)
{
  EXPECT_EQ(Json::parse(reeldb({"delete", "A001", "a001", "--yes", "--json"}).out).at("deleted"), Words{"A001"});
}

TEST_F(Delete, WithoutATerminalNobodyIsAsked)
{
  ProcessSetting answering = setting_;
  answering.input = "y\n";
  const ProcessResult result = reeldb({"delete", "A001"}, answering);
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find("reeldb: delete 1 reel and 2 shots? cannot ask (standard input is not a terminal; --yes "
                            "confirms)\n"),
            std::string::npos)
      << result.err;
  EXPECT_EQ(reelIds().size(), 3u);
}

TEST_F(Delete, OnATerminalTheReplyDecides)
{
  ProcessSetting terminal = setting_;
  terminal.terminal = true;
  terminal.input = "n\n";
  ProcessResult result = reeldb({"delete", "A001"}, terminal);
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.out.find("delete 1 reel and 2 shots? [y/N] "), std::string::npos) << result.out;
  EXPECT_EQ(reelIds().size(), 3u);
  terminal.input = "y\n";
  result = reeldb({"delete", "A001"}, terminal);
  EXPECT_EQ(result.code, 0) << result.out;
  EXPECT_EQ(reelIds().size(), 2u);
}

TEST_F(Delete, DryRunShowsWhatWouldGo)
{
  const std::string before = readFile("projects/main.reels");
  const ProcessResult result = reeldb({"delete", "--dry-run", "A001", "B001", "--keep", "B001"});
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.out.find("B001: kept, with its 1 shot (--keep)\n"
                            "dry run: 1 reel and 2 shots would be deleted, the project stays as it was\n"),
            std::string::npos)
      << result.out;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(Delete, OfManyShotsTheFirstTwentyAreShownAndJsonHasAll)
{
  std::string list;
  for (int i = 1; i <= 21; ++i)
    list += event(i, "MANY", "V", "02:00:" + std::to_string(i + 10) + ":00", "02:01:00:00");
  dir_.write("many.edl", list);
  ASSERT_EQ(reeldb({"import", "many.edl"}).code, 0);
  const std::string text = reeldb({"delete", "--dry-run", "MANY"}).out;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + 1 + 20 + 1 + 1) << text;
  EXPECT_NE(text.find("  02:00:30:00  02:01:00:00  01:00:00:00  01:00:01:00\n  and 1 more (--json lists all)\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(Json::parse(reeldb({"delete", "--dry-run", "--json", "MANY"}).out).at("reels").at(0).at("shots").size(),
            21u);
}

TEST_F(Delete, DryRunThatKeepsAllSaysThatNothingWouldGo)
{
  const ProcessResult result = reeldb({"delete", "--dry-run", "C001", "--keep", "C001"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "C001: kept, with its 1 shot (--keep)\ndry run: nothing would be deleted\n");
}

TEST_F(Delete, UndeleteRestoresEveryByte)
{
  const std::string before = everything();
  ASSERT_EQ(reeldb({"delete", "A001", "B001", "--yes"}).code, 0);
  EXPECT_EQ(output({"undelete"}), "2 reels and 3 shots brought back: A001, B001\n");
  EXPECT_EQ(everything(), before);
}

TEST_F(Delete, UndeleteRestoresOneDeletionAfterTheOther)
{
  reeldb({"delete", "A001", "--yes"});
  reeldb({"delete", "B001", "--yes"});
  EXPECT_EQ(json({"undelete", "--json"}), Json::parse(R"({"reels": ["B001"], "shots": 1})"));
  EXPECT_EQ(json({"undelete", "--json"}), Json::parse(R"({"reels": ["A001"], "shots": 2})"));
  const ProcessResult result = reeldb({"undelete"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: undelete: there is no deletion to bring back\n");
}

TEST_F(Delete, DeletionsThatCanBeBroughtBackAreListedTheNewestFirst)
{
  EXPECT_EQ(output({"undelete", "--list"}), "no deletion to bring back\n");
  ASSERT_EQ(reeldb({"delete", "A001", "C001", "--yes"}).code, 0);
  ASSERT_EQ(reeldb({"delete", "B001", "--yes"}).code, 0);
  const Json deletions = json({"undelete", "--list", "--json"});
  ASSERT_EQ(deletions.size(), 2u);
  EXPECT_EQ(deletions.at(0).at("reels"), Words{"B001"});
  EXPECT_EQ(deletions.at(0).at("shots"), 1);
  EXPECT_EQ(deletions.at(0).at("commit").at("revision"), 3);
  EXPECT_EQ(deletions.at(1).at("reels"), (Words{"A001", "C001"}));
  EXPECT_EQ(deletions.at(1).at("shots"), 3);
  const std::string table = output({"undelete", "--list"});
  EXPECT_EQ(table.find("REVISION  TIME"), 0u) << table;
  EXPECT_NE(table.find("3  A001, C001\n"), std::string::npos) << table;
  EXPECT_EQ(reelIds(), Words{});

  ASSERT_EQ(reeldb({"undelete"}).code, 0);
  EXPECT_EQ(json({"undelete", "--list", "--json"}).size(), 1u);
  ASSERT_EQ(reeldb({"project", "compact"}).code, 0);
  EXPECT_EQ(json({"undelete", "--list", "--json"}), Json::array());
}

TEST_F(Delete, CompactMakesDeletionsFinal)
{
  reeldb({"delete", "A001", "--yes"});
  EXPECT_EQ(output({"project", "compact"}), "3 deleted reels and shots removed for good\n");
  EXPECT_EQ(output({"project", "compact"}), "nothing to remove\n");
  EXPECT_EQ(reeldb({"undelete"}).code, 1);
  EXPECT_EQ(reelIds(), (Words{"B001", "C001"}));
}

TEST_F(Delete, UndeleteIsRefusedWhileAnotherReelHasTheName)
{
  ASSERT_EQ(reeldb({"delete", "A001", "--yes"}).code, 0);
  output({"create", "a001"});
  const std::string before = everything();
  const ProcessResult result = reeldb({"undelete"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err,
            "reeldb: undelete: A001: another reel now has this name, nothing brought back (rename that reel "
            "first)\n");
  EXPECT_EQ(everything(), before);
  ASSERT_EQ(reeldb({"rename", "a001", "X001"}).code, 0);
  EXPECT_EQ(reeldb({"undelete"}).code, 0);
  EXPECT_EQ(reelIds(), (Words{"A001", "B001", "C001", "X001"}));
}

} // namespace
