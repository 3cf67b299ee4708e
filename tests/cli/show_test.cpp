// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"
#include "cli/stored_field.h"

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

TEST_F(Show, UnknownReelNamesThoseThatMayBeMeant)
{
  output({"create", "M\xc3\x9cLLER 2"});
  output({"create", "A-001"});
  EXPECT_EQ(reeldb({"show", "m\xc3\xbcller_2"}).err,
            "reeldb: m\xc3\xbcller_2: no such reel (but there is M\xc3\x9cLLER 2)\n");
  EXPECT_EQ(reeldb({"show", " a 001"}).err, "reeldb: \" a 001\": no such reel (but there are A001, A-001)\n");
  EXPECT_EQ(reeldb({"show", "A0010"}).err, "reeldb: A0010: no such reel\n");
  EXPECT_EQ(reeldb({"show", "--", "-"}).err, "reeldb: -: no such reel\n");
  for (int i = 0; i < 5; ++i)
    output({"create", "A 0 01" + std::string(static_cast<std::size_t>(i), '.')});
  EXPECT_EQ(reeldb({"show", "a_001"}).err,
            "reeldb: a_001: no such reel (but there are A001, A-001, A 0 01, A 0 01., A 0 "
            "01.., ...)\n");
}

TEST_F(Show, ReelOfAnOddNameIsFound)
{
  respell(path("projects/main.reels"), "A001", "a\x1b\xff");
  EXPECT_EQ(output({"show", "A\x1b\xff"}).substr(0, 26), "reel            a\\x1b\\xff\n");
  EXPECT_EQ(json({"show", "--json", "a\x1b\xff"}).at("id"), "a\x1b\xef\xbf\xbd");
}

TEST_F(Show, JsonHoldsNothingThatSteersATerminal)
{
  respell(path("projects/main.reels"), "A001", "a\xc2\x9b\xe2\x80\xae");
  const std::string text = output({"show", "--json", "a\xc2\x9b\xe2\x80\xae"});
  EXPECT_NE(text.find("\"id\": \"a\\u009b\\u202e\""), std::string::npos) << text;
  EXPECT_EQ(Json::parse(text).at("id"), "a\xc2\x9b\xe2\x80\xae");
}

TEST_F(Show, ReportsWhetherTheTypeIsKnownAndTheReelIsLive)
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
  output({"field", "name", "2=Weather"});
  output({"set", "A001", "2=rain"});
  EXPECT_NE(output({"show", "A001"}).find("\nWeather         rain\n"), std::string::npos);
}

} // namespace
