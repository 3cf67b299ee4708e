// SPDX-License-Identifier: Apache-2.0
//
// The commands by which people decide what names mean. tests/app/decisions_test.cpp follows what is decided.
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class DecisionCommands : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("one.edl", "TITLE: ONE\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                              event(2, "TAPE", "V", "02:00:00:00", "02:00:01:00"));
    output({"import", "one.edl"});
  }
};

TEST_F(DecisionCommands, AliasListsNamesAndWhereTheyComeFrom)
{
  EXPECT_EQ(output({"alias", "A001"}), "A001 has 0 names beside its identifier\n");
  EXPECT_EQ(output({"alias", "a001", "KITCHEN", "ONE"}), "NAME     WHERE IT COMES FROM\n"
                                                         "KITCHEN  given to it\n"
                                                         "ONE      given to it\n"
                                                         "A001 has 2 names beside its identifier\n");
  const Json report = json({"alias", "A001", "--remove", "ONE", "--json"});
  EXPECT_EQ(report.at("stored"), true);
  ASSERT_EQ(report.at("names").size(), 1U);
  EXPECT_EQ(report.at("names").at(0).at("name"), "KITCHEN");
  EXPECT_EQ(report.at("names").at(0).at("from"), "alias");
  EXPECT_EQ(json({"which", "kitchen", "--json"}).at("reel"), "A001");
}

TEST_F(DecisionCommands, AliasThatIsRefusedChangesNothing)
{
  expectRefusal({"alias", "A001", "tape"}, "tape: a reel has this name (reeldb merge joins two reels)");
  expectRefusal({"alias", "A001", "A001"}, "A001: the identifier of the reel itself", 2);
  expectRefusal({"alias", "A001", "--remove", "X"},
                "X: not a name that a person gave to A001 (reeldb split parts a name that lists give)");
  expectRefusal({"alias", "A001", "--remove"}, "alias: --remove needs a name", 2);
}

TEST_F(DecisionCommands, MergeShowsWhatDiffers)
{
  output({"set", "TAPE", "bin=Shelf 4", "user-field.2=reshoot"});
  const std::string report = "1 shot of TAPE moved to A001\n"
                             "FIELD         REEL  HAD      A001 HAS\n"
                             "bin           TAPE  Shelf 4  -\n"
                             "user-field.2  TAPE  reshoot  -\n"
                             "TAPE is now A001\n"
                             "names that mean A001 in lists: TAPE\n"
                             "reeldb undo takes all of it back\n";
  EXPECT_EQ(output({"merge", "TAPE", "A001"}), report);
  EXPECT_EQ(reelIds(), Words{"A001"});
  EXPECT_EQ(reel("A001").at("shots"), 2);
  EXPECT_EQ(reel("A001").at("bin"), "");
}

TEST_F(DecisionCommands, MergeNeedsTwoReels)
{
  expectRefusal({"merge", "A001"}, "merge: at least two reels are needed (the last one remains)", 2);
  expectRefusal({"merge", "A001", "a001"}, "A001: the reel that remains", 2);
  expectRefusal({"merge", "X", "A001"}, "X: no such reel");
}

TEST_F(DecisionCommands, SplitSaysWhatMoves)
{
  EXPECT_EQ(output({"split", "--dry-run", "A001", "A001_DAY2", "--list", "one.edl"}),
            "1 shot of A001 would be moved to A001_DAY2\n"
            "A001_DAY2 would be a reel of its own\n"
            "dry run: the project stays as it was\n");
  EXPECT_EQ(output({"split", "A001", "A001_DAY2", "--list", "1"}), "1 shot of A001 moved to A001_DAY2\n"
                                                                   "A001_DAY2 is a reel of its own\n"
                                                                   "reeldb undo takes all of it back\n");
  EXPECT_EQ(reelIds(), (Words{"A001", "TAPE", "A001_DAY2"}));
  EXPECT_EQ(output({"alias", "A001_DAY2"}), "NAME  WHERE IT COMES FROM\n"
                                            "A001  given to it for list 1\n"
                                            "A001_DAY2 has 1 name beside its identifier\n");
}

TEST_F(DecisionCommands, SplitNeedsOneWayToPart)
{
  const std::string message = "split: use one of --list, --name and --shot (they say what goes to NEW)";
  expectRefusal({"split", "A001", "X"}, message, 2);
  expectRefusal({"split", "A001", "X", "--list", "1", "--shot", "2"}, message, 2);
  expectRefusal({"split", "A001", "X", "--shot", "two"},
                "split: \"two\": not the number of a shot (reeldb shots ID shows them)", 2);
  expectRefusal({"split", "A001", "X", "--name", "Y"}, "Y: not a name of A001 (reeldb alias A001 lists its names)");
}

TEST_F(DecisionCommands, ShotsAreMovedAndDeletedByTheirNumbers)
{
  const std::string number = std::to_string(json({"shots", "A001", "--json"}).at(0).at("number").get<int>());
  EXPECT_EQ(output({"shot", "move", number, "--to", "tape"}), "1 shot of A001 moved to TAPE\n"
                                                              "reeldb undo takes that back\n");
  EXPECT_EQ(output({"shot", "move", number, "--to", "TAPE"}), "TAPE: has these shots already\n");
  EXPECT_EQ(reel("TAPE").at("shots"), 2);
  const std::string deleted = output({"shot", "delete", number});
  EXPECT_NE(deleted.find("1 shot deleted\nlists do not bring them back; reeldb undo does\n"), std::string::npos)
      << deleted;
  const std::string again = output({"import", "one.edl"});
  EXPECT_NE(again.find("2 clips, unchanged, 1 left out (deleted before)\n"), std::string::npos) << again;
  expectRefusal({"shot", "delete", number}, "shot " + number + ": no such shot (reeldb shots REEL shows the numbers)");
}

TEST_F(DecisionCommands, ImportTakesAReelAsANewOne)
{
  dir_.write("two.edl", "TITLE: TWO\n" + event(1, "A001", "V", "03:00:00:00", "03:00:01:00"));
  output({"import", "two.edl", "--as-new", "A001_DAY2"});
  EXPECT_EQ(reelIds(), (Words{"A001", "TAPE", "A001_DAY2"}));
  expectRefusal({"import", "two.edl", "--as-new", "=X"},
                "import: --as-new =X: no name before the equals sign (use NAME=REEL)", 2);
}

} // namespace
