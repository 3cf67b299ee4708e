// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Show : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    output({"create", "A001"});
  }
};

TEST_F(Show, FindsTheReelInAnyCaseAndShowsItsOwnSpelling)
{
  EXPECT_EQ(json({"show", "--json", "a001"}).at("id"), "A001");
  EXPECT_EQ(output({"show", "a001"}).substr(0, 21), "reel            A001\n");
}

TEST_F(Show, UnknownReelIsRefused)
{
  const ProcessResult result = reeldb({"show", "B001"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "reeldb: B001: no such reel\n");
  EXPECT_EQ(reeldb({"show", ""}).err, "reeldb: \"\": no such reel\n");
}

TEST_F(Show, TellsWhetherTypeIsKnownAndTheReelIsLive)
{
  output({"set", "A001", "type=Live"});
  Json shown = json({"show", "--json", "A001"});
  EXPECT_EQ(shown.at("known_type"), true);
  EXPECT_EQ(shown.at("live"), true);
  reeldb({"set", "A001", "type=live"});
  shown = json({"show", "--json", "A001"});
  EXPECT_EQ(shown.at("known_type"), false);
  EXPECT_EQ(shown.at("live"), false);
  EXPECT_NE(output({"show", "A001"}).find("\ntype            live  (not in the reel type catalogue)\n"),
            std::string::npos);
}

TEST_F(Show, HasAllThatTheListHas)
{
  output({"set", "A001", "2=x", "bin=y"});
  Json shown = json({"show", "--json", "A001"});
  const Json listed = reel("A001");
  for (const auto& [key, value] : listed.items())
    EXPECT_EQ(shown.at(key), value) << key;
}

TEST_F(Show, NamesUserFieldsByTheirDisplayNames)
{
  output({"fields", "2=Weather"});
  output({"set", "A001", "2=rain"});
  EXPECT_NE(output({"show", "A001"}).find("\nWeather         rain\n"), std::string::npos);
}

} // namespace
