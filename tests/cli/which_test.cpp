// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"
#include "reelhost/store.h"

using namespace reeldb_tests;

namespace {

class Which : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", "TITLE: CUT\n" + event(1, "A021C012", "V", "01:00:00:00", "01:00:01:00") +
                              event(2, "B001", "V", "01:00:00:00", "01:00:01:00") +
                              event(3, "A021C013_2", "V", "01:00:00:00", "01:00:01:00") +
                              event(4, "A021C013_3", "V", "01:00:00:00", "01:00:01:00") +
                              ">>> SOURCE A021C012_210609_H1KV    A021C012 "
                              "060a2b340101010501010d4313000000-{0a21c012-2106-09aa}\n");
    ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  }

  /// What the project holds of old names, of whatever reel.
  reelhost::KeyValues storedOldNames() const
  {
    reelhost::KeyValues names;
    const auto store = reelhost::makeSqliteStore(path("projects/main.reels"));
    store->begin(reelhost::Access::Read, std::chrono::seconds(1));
    store->readReels([&](reelhost::StoredLog&& log) {
      for (const auto& field : log.fields)
        if (field.first.find("old_name") != std::string::npos)
          names.push_back(field);
    });
    store->end();
    return names;
  }
};

TEST_F(Which, NameInOtherCaseIsTheReelThatDiffersInCase)
{
  EXPECT_EQ(output({"which", "b001"}), "REEL  SHOTS  WHY\n"
                                       "B001      1  differs in case\n"
                                       "b001 is B001\n");
  EXPECT_EQ(output({"which", "B001"}), "REEL  SHOTS  WHY\n"
                                       "B001      1  exact\n"
                                       "B001 is B001\n");
}

TEST_F(Which, CutNameOfASourceTableIsReportedWithBothReasons)
{
  Json meaning = json({"which", "A021C012", "--json"});
  EXPECT_EQ(meaning.at("as_list").at("reel"), "A021C012_210609_H1KV");
  EXPECT_EQ(meaning.at("as_list").at("match"), "cut");
  meaning.erase("as_list");
  EXPECT_EQ(meaning, Json::parse(R"({"name": "A021C012", "reel": "A021C012_210609_H1KV", "candidates": [
              {"reel": "A021C012_210609_H1KV", "reasons": ["cut", "alias"], "record": true, "shots": 1}]})"));
}

TEST_F(Which, CutFormOfTwoReelsIsAmbiguous)
{
  EXPECT_EQ(output({"which", "A021C013"}), "REEL        SHOTS  WHY\n"
                                           "A021C013_2      1  cut form\n"
                                           "A021C013_3      1  cut form\n"
                                           "A021C013 is ambiguous: 2 reels\n");
  EXPECT_EQ(json({"which", "A021C013", "--json"}).at("reel"), nullptr);
}

TEST_F(Which, OldNameFindsTheReelAfterEveryRename)
{
  for (const Words& names : {Words{"B001", "C001"}, Words{"C001", "D001"}, Words{"D001", "d001"}})
    ASSERT_EQ(reeldb({"rename", names[0], names[1]}).code, 0);
  for (const char* old : {"B001", "c001"}) {
    const Json found = json({"which", old, "--json"});
    EXPECT_EQ(found.at("reel"), "d001");
    EXPECT_EQ(found.at("candidates").at(0).at("reasons"), Words{"old-name"});
  }
  EXPECT_EQ(json({"which", "D001", "--json"}).at("candidates").at(0).at("reasons"), Words{"case"});
}

TEST_F(Which, CurrentNameIsNotAnOldName)
{
  for (const Words& names : {Words{"B001", "C001"}, Words{"C001", "B001"}})
    ASSERT_EQ(reeldb({"rename", names[0], names[1]}).code, 0);
  const Json reels = json({"export", "--json"}).at("reels");
  for (const Json& reel : reels)
    EXPECT_EQ(reel.at("old_names"), reel.at("id") == "B001" ? Words{"C001"} : Words()) << reel;
}

TEST_F(Which, OldNamesAreStoredOnceEachUnderKeysOfTheirOwn)
{
  for (const Words& names :
       {Words{"B001", "C001"}, Words{"C001", "b001"}, Words{"b001", "D001"}, Words{"D001", "E001"}})
    ASSERT_EQ(reeldb({"rename", names[0], names[1]}).code, 0);
  EXPECT_EQ(storedOldNames(),
            (reelhost::KeyValues{{"reel_old_name0", "B001"}, {"reel_old_name1", "C001"}, {"reel_old_name2", "D001"}}));
}

TEST_F(Which, DryRunOfARenameKeepsNoOldName)
{
  ASSERT_EQ(reeldb({"rename", "--dry-run", "B001", "C001"}).code, 0);
  expectRefusal({"which", "C001"}, "C001: no such reel");
}

TEST_F(Which, ReelThatTookTheOldNameComesFirst)
{
  ASSERT_EQ(reeldb({"rename", "B001", "C001"}).code, 0);
  output({"create", "B001"});
  const Json found = json({"which", "B001", "--json"});
  EXPECT_EQ(found.at("reel"), "B001");
  ASSERT_EQ(found.at("candidates").size(), 2u);
  EXPECT_EQ(found.at("candidates").at(1).at("reel"), "C001");
}

TEST_F(Which, NothingFoundIsRefusedAndNamesWhatIsSimilar)
{
  expectRefusal({"which", "X"}, "X: no such reel");
  expectRefusal({"which", "B-001", "--json"}, "B-001: no such reel (but there is B001)");
  expectRefusal({"which", ""}, "\"\": no such reel");
}

TEST_F(Which, NameThatMeansNoReelInListsSaysWhat)
{
  expectRefusal({"which", "bl"}, "bl: no reel has this name (its meaning in lists: black)");
  expectRefusal({"which", "AX"}, "AX: no reel has this name (its meaning in lists: a source without a tape)");
}

} // namespace
