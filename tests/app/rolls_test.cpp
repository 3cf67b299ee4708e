// SPDX-License-Identifier: Apache-2.0
#include "app/rolls.h"

#include "app/import.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Names = std::vector<std::string>;

class Rolls : public reeldb_tests::AppTest {
protected:
  void importLog(const std::string& rows)
  {
    std::string text =
        "Heading\nFIELD_DELIM|TABS\n\nColumn\nName|Tape|Tracks|Start|End|Camroll|Soundroll\n\nData\n" + rows;
    std::replace(text.begin(), text.end(), '|', '\t');
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(folder_.write("log.ale", text))}, false);
  }
};

TEST(RollOfCameraClip, IsWhatStandsBeforeTheNumberOfTheClip)
{
  for (const auto& [name, roll] :
       std::vector<std::pair<std::string, std::string>>{{"A012C003_210609_H1KV", "A012"},
                                                        {"a012c003", "a012"},
                                                        {"A_0076C001_230511_184122_h1CTJ", "A_0076"},
                                                        {"B1234C0001.mov", "B1234"},
                                                        {"A12C003", ""},
                                                        {"A012C03", ""},
                                                        {"A012C00003", ""},
                                                        {"A01234C003", ""},
                                                        {"A012", ""},
                                                        {"A012D003", ""},
                                                        {"0012C003", ""},
                                                        {"", ""},
                                                        {"A_", ""}})
    EXPECT_EQ(app::rollOfCameraClip(name), roll) << name;
}

TEST_F(Rolls, ReelsAreGroupedByTheRollOfTheLogAndElseByTheirNames)
{
  importLog("1|XY7_001|V|||XY7|\n2|XY77_001|V|||xy77|\n3|XY7_002|V||||\n4|B008C001_X|V||||\n5|B008C002_X|V||||\n"
            "6|TAPE 1|V||||SR1\n7||V|||C3|\n");
  app::Session session({}, app::Access::Read);
  std::vector<std::pair<std::string, Names>> rolls;
  std::int64_t shots = 0;
  for (const app::Roll& roll : app::reelsByRoll(session)) {
    rolls.emplace_back(roll.name, roll.reels);
    shots += roll.shots;
  }
  EXPECT_EQ(rolls, (std::vector<std::pair<std::string, Names>>{{"B008", {"B008C001_X", "B008C002_X"}},
                                                               {"C3", {"C3"}},
                                                               {"XY7", {"XY7_001", "XY7_002"}},
                                                               {"xy77", {"XY77_001"}},
                                                               {"", {"TAPE 1", "SR1"}}}));
  EXPECT_EQ(shots, 8);
}

} // namespace
