// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"
#include "cli/stored_field.h"

using namespace reeldb_tests;

namespace {

class Copy : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    output({"create", "A001"});
    output({"create", "B001"});
    output({"set", "A001", "type=Tape 4ch", "available=no", "inhibit=yes", "label-map=pal9pin", "0=x", "5=y",
            "bin=shelf"});
  }
};

TEST_F(Copy, TakesOverWhatIsKnownOfTheReelButNotItsPlace)
{
  EXPECT_EQ(output({"copy", "a001", "b001"}), "B001: now like A001\n");
  Json from = reel("A001"), to = reel("B001");
  EXPECT_EQ(to.at("bin"), "");
  for (const char* key : {"type", "available", "inhibit", "label_mapping", "user_fields", "audio_channels"})
    EXPECT_EQ(to.at(key), from.at(key)) << key;
}

TEST_F(Copy, SecondTimeChangesNothing)
{
  output({"copy", "A001", "B001"});
  const std::string before = readFile("projects/main.reels");
  EXPECT_EQ(output({"copy", "A001", "B001"}), "B001: already like A001\n");
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(Copy, UnknownReelsAreRefused)
{
  EXPECT_EQ(reeldb({"copy", "X", "B001"}).err, "reeldb: X: no such reel\n");
  const ProcessResult result = reeldb({"copy", "A001", "X"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: X: no such reel\n");
}

TEST_F(Copy, TextThatCannotBeHandedOnIsNotSpread)
{
  setStored(path("projects/main.reels"), "A001", "reel_userfield5", "y\x1b");
  expectRefusal({"copy", "A001", "B001"}, "A001: its user field 5 cannot be copied (it holds a control character)", 2);
}

TEST_F(Copy, ReelOfAnOddNameIsFound)
{
  respell(path("projects/main.reels"), "A001", "a\xff");
  EXPECT_EQ(output({"copy", "a\xff", "B001"}), "B001: now like a\\xff\n");
}

TEST_F(Copy, JsonHasTheReelAsItIsNow)
{
  const Json report = json({"copy", "--json", "A001", "B001"});
  EXPECT_EQ(report.at("stored"), true);
  EXPECT_EQ(report.at("reel"), reel("B001"));
}

} // namespace
