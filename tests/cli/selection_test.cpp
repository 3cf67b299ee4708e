// SPDX-License-Identifier: Apache-2.0
//
// Several reels at once: patterns and --where of list, set, delete and shots.
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Selection : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                              event(2, "A002", "V", "01:00:00:00", "01:00:01:00") +
                              event(3, "B001", "V", "01:00:00:00", "01:00:01:00"));
    reeldb({"import", "cut.edl"});
    output({"create", "SPARE"});
  }
  Words names(const Words& options)
  {
    Words words{"list", "--json"};
    words.insert(words.end(), options.begin(), options.end());
    Words ids;
    for (const Json& reel : json(words))
      ids.push_back(reel.at("id"));
    return ids;
  }
};

TEST_F(Selection, ListTakesPatternsConditionsAndAnOrder)
{
  output({"set", "B001", "bin=Shelf 2"});
  output({"set", "A002", "bin=Shelf 10"});
  EXPECT_EQ(names({"A*"}), (Words{"A001", "A002"}));
  EXPECT_EQ(names({"--where", "shelf!=", "--sort", "shelf"}), (Words{"B001", "A002"}));
  EXPECT_EQ(output({"list", "--where", "shelf=Shelf*", "--sort", "-shelf", "--columns", "name", "--columns", "Shelf",
                    "--columns", "last-device"}),
            "REEL  BIN       LAST DEVICE\n"
            "A002  Shelf 10\n"
            "B001  Shelf 2\n"
            "2 reels\n");
  EXPECT_EQ(output({"list", "--where", "unused", "--columns", "name", "--no-header"}), "SPARE\n");
  EXPECT_EQ(output({"list", "--where", "type=nosuch"}), "no reel matches\n");
  EXPECT_EQ(output({"list", "--where", "type=nosuch", "--no-header"}), "");
  EXPECT_EQ(output({"list", "--where", "type=nosuch", "--json"}), "[]\n");
  expectRefusal({"list", "Z*"}, "Z*: no reel matches");
  expectRefusal({"list", "--by", "roll", "--where", "unused"}, "list: --by excludes all other options but --json", 2);
  expectRefusal({"list", "--json", "--no-header"},
                "list: --json excludes --columns and --no-header (it has all fields)", 2);
  EXPECT_EQ(reeldb({"list", "--columns", "nosuch"}).code, 2);
}

TEST_F(Selection, SetChangesSeveralReelsAndOneUndoTakesItBack)
{
  const std::string before = output({"export", "--json"});
  EXPECT_EQ(output({"set", "A*", "SPARE", "bin=x"}),
            "A001: bin: x (was -)\nA002: bin: x (was -)\nSPARE: bin: x (was -)\n");
  EXPECT_EQ(output({"undo"}).substr(0, 54), "revision 3 taken back: reeldb set 'A*' SPARE bin=x\n3 r");
  EXPECT_EQ(output({"export", "--json"}), before);
  EXPECT_EQ(output({"set", "--where", "unused", "bin=y"}), "SPARE: bin: y (was -)\n");
  EXPECT_EQ(output({"set", "bin=z", "--where", "name=A*2"}), "A002: bin: z (was -)\n");
  const Json reels = json({"set", "A*", "bin=x", "--json"});
  ASSERT_EQ(reels.size(), 2u);
  EXPECT_EQ(reels[1].at("changed")[0].at("from"), "z");
  EXPECT_TRUE(json({"set", "A001", "bin=", "--json"}).is_object());
}

TEST_F(Selection, SetOfSeveralReelsChangesNothingIfOneIsRefused)
{
  output({"set", "A002", "bin=other"});
  expectRefusal({"set", "A001", "nosuch", "bin=x"}, "nosuch: no such reel");
  expectRefusal({"set", "--where", "bin=nosuch", "bin=x"},
                "no reel matches all conditions (reeldb list --where shows those that match one)");
  EXPECT_EQ(reeldb({"set", "A*", "bin=x", "--if", "bin="}).code, 1);
  EXPECT_EQ(reel("A001").at("bin"), "");
  expectRefusal({"set", "bin=x"}, "set: FIELD=VALUE is required (see reeldb set --help)", 2);
  expectRefusal({"set"}, "set: ID is required, or --where (see reeldb set --help)", 2);
}

TEST_F(Selection, DeleteTakesPatternsAndConditions)
{
  EXPECT_NE(output({"delete", "--dry-run", "*", "--where", "shots=1"}).find("3 reels and 3 shots would be deleted"),
            std::string::npos);
  EXPECT_NE(output({"delete", "--yes", "--where", "unused"}).find("1 reel deleted"), std::string::npos);
  EXPECT_NE(reeldb({"delete", "--yes", "A*", "--keep", "A002"}).out.find("1 reel and 1 shot deleted"),
            std::string::npos);
  EXPECT_EQ(reelIds(), (Words{"A002", "B001"}));
  expectRefusal({"delete", "--yes", "--where", "unused"},
                "no reel matches all conditions (reeldb list --where shows those that match one)");
  expectRefusal({"delete", "--yes"}, "delete: ID is required, or --where (see reeldb delete --help)", 2);
}

TEST_F(Selection, ShotsOfSeveralReelsFollowEachOther)
{
  const std::string shots = output({"shots", "A*"});
  EXPECT_NE(shots.find("1 shot from reel A001\n"), std::string::npos);
  EXPECT_NE(shots.find("1 shot from reel A002\n"), std::string::npos);
  const Json all = json({"shots", "--where", "unused=no", "--json"});
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[2].at("reel"), "B001");
  expectRefusal({"shots"}, "shots: ID is required, or --where (see reeldb shots --help)", 2);
}

} // namespace
