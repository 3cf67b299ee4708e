// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Report : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("evening.edl", "TITLE: EVENING\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                                  event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
    output({"import", "evening.edl"});
    output({"set", "B001", "available=no"});
  }
};

TEST_F(Report, FileIsWrittenAndOnlyReplacedWithForce)
{
  EXPECT_EQ(output({"report", "evening", "-o", "page.html"}), "page.html: 2 reels, 1 ready\n");
  const std::string page = readFile("page.html");
  EXPECT_EQ(page.substr(0, 16), "<!DOCTYPE html>\n");
  EXPECT_NE(page.find("<title>Reels of EVENING (evening.edl)</title>"), std::string::npos);
  expectRefusal({"report", "-o", "page.html"}, "page.html: already exists (--force replaces it)");
  EXPECT_EQ(readFile("page.html"), page);
  EXPECT_EQ(output({"report", "-o", "page.html", "--force"}), "page.html: 2 reels, 1 ready\n");
  EXPECT_NE(readFile("page.html").find("<title>Reels of project main</title>"), std::string::npos);
}

TEST_F(Report, WithoutAFileGoesToStandardOutput)
{
  const std::string page = output({"report"});
  EXPECT_EQ(page.substr(0, 16), "<!DOCTYPE html>\n");
  EXPECT_EQ(page.substr(page.size() - 8), "</html>\n");
}

TEST_F(Report, JsonHasTheNeedsAndTheUses)
{
  const Json report = json({"report", "1", "--json"});
  EXPECT_EQ(report.at("project"), "main");
  EXPECT_EQ(report.at("list").at("title"), "EVENING");
  ASSERT_EQ(report.at("reels").size(), 2u);
  EXPECT_EQ(report.at("reels")[0].at("need").at("id"), "B001");
  EXPECT_EQ(report.at("reels")[0].at("need").at("state"), "unavailable");
  EXPECT_EQ(report.at("reels")[0].at("uses")[0].at("events"), 1);
  EXPECT_FALSE(json({"report", "--json"}).contains("list"));
}

TEST_F(Report, WrongArgumentsAreRefused)
{
  expectRefusal({"report", "nosuch"}, "nosuch: no such list (reeldb list-file list shows them)");
  expectRefusal({"report", "--force"}, "report: --force needs -o FILE", 2);
}

} // namespace
