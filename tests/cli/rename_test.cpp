// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"
#include "cli/stored_field.h"

using namespace reeldb_tests;

namespace {

class Rename : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: ONE\n" +
                              event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
    dir_.write("more.edl", event(1, "a001", "V", "02:00:00:00", "02:00:01:00") + "* FROM CLIP NAME: TWO\n");
    ASSERT_EQ(reeldb({"import", "cut.edl", "more.edl"}).code, 0);
  }
};

TEST_F(Rename, TakesItsShotsAlongWhateverTheirCase)
{
  const ProcessResult result = reeldb({"rename", "a001", "C001"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "Shot: E0000001  Changing reel from A001 to C001\n"
                        "Shot: E0000005  Changing reel from A001 to C001\n");
  EXPECT_EQ(result.out, "CLIP  TRACKS  SOURCE IN    SOURCE OUT   RECORD IN    RECORD OUT\n"
                        "ONE   V       01:00:00:00  01:00:01:00  01:00:00:00  01:00:01:00\n"
                        "TWO   V       02:00:00:00  02:00:01:00  01:00:00:00  01:00:01:00\n"
                        "A001 is now C001, also in 2 shots\n");
  EXPECT_EQ(reelIds(), (Words{"C001", "B001"}));
  EXPECT_EQ(reel("C001").at("shots"), 2);
  EXPECT_EQ(reel("B001").at("shots"), 1);
  EXPECT_EQ(json({"shots", "--json", "C001"}).at(1).at("reel"), "C001");
}

TEST_F(Rename, JsonListsTheShots)
{
  const ProcessResult result = reeldb({"rename", "A001", "C001", "--json"});
  const Json report = Json::parse(result.out);
  EXPECT_EQ(report.at("from"), "A001");
  EXPECT_EQ(report.at("to"), "C001");
  EXPECT_EQ(report.at("stored"), true);
  ASSERT_EQ(report.at("shots").size(), 2u);
  EXPECT_EQ(report.at("shots").at(0).at("clip"), "ONE");
}

TEST_F(Rename, DryRunChangesNothing)
{
  const std::string before = readFile("projects/main.reels");
  const ProcessResult result = reeldb({"rename", "--dry-run", "A001", "C001"});
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.out.find("A001 would be C001, also in 2 shots\ndry run: the project stays as it was\n"),
            std::string::npos)
      << result.out;
  EXPECT_NE(result.out.find("\nONE   V       01:00:00:00"), std::string::npos) << result.out;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(Rename, DryRunReportsTheShotsAsTheRenamingWould)
{
  Json would = json({"rename", "--dry-run", "A001", "C001", "--json"});
  EXPECT_EQ(would.at("dry_run"), true);
  EXPECT_EQ(would.at("stored"), false);
  EXPECT_EQ(would.at("shots").at(1).at("reel"), "C001");
  would["dry_run"] = false;
  would["stored"] = true;
  EXPECT_EQ(Json::parse(reeldb({"rename", "A001", "C001", "--json"}).out), would);
  Json shots = json({"shots", "C001", "--json"});
  for (Json& shot : shots)
    shot.erase("number");
  EXPECT_EQ(shots, would.at("shots"));
}

TEST_F(Rename, OtherSpellingOfItsOwnNameIsTaken)
{
  EXPECT_EQ(reeldb({"rename", "A001", "a001"}).code, 0);
  EXPECT_EQ(reelIds(), (Words{"a001", "B001"}));
  EXPECT_EQ(reel("a001").at("shots"), 2);
}

TEST_F(Rename, SameNameChangesNothing)
{
  EXPECT_EQ(output({"rename", "A001", "A001"}), "A001: already has this name\n");
}

TEST_F(Rename, NameOfAnotherReelIsRefused)
{
  expectRefusal({"rename", "A001", "b001"}, "\"B001\": already exists");
  expectRefusal({"rename", "A001", " B001 "}, "\"B001\": already exists");
}

TEST_F(Rename, UnknownReelIsRefused)
{
  expectRefusal({"rename", "X", "Y"}, "X: no such reel");
}

TEST_F(Rename, InvalidNameIsRefused)
{
  expectRefusal({"rename", "A001", ""}, "\"\": not a valid reel name (it is blank)");
  expectRefusal({"rename", "A001", "  "}, "\"  \": not a valid reel name (it is blank)");
  expectRefusal({"rename", "A001", "A*"}, "\"A*\": not a valid reel name (a star denotes generated material)");
  const std::string prefix(79, 'x');
  expectRefusal({"rename", "A001", std::string(2048, 'x')},
                "\"" + prefix + "\xe2\x80\xa6\": not a valid reel name (it has 2048 bytes; at most 2047)");
}

TEST_F(Rename, NameThatCannotBeHandedOnIsAUsageError)
{
  expectRefusal({"rename", "A001", "A\x1b"}, "\"A\\x1b\": not a valid reel name (it holds a control character)", 2);
  expectRefusal({"rename", "A001", "A\xff"}, "\"A\\xff\": not a valid reel name (it is not UTF-8)", 2);
  expectRefusal({"rename", "--dry-run", "A001", "\n"}, "\"\\n\": not a valid reel name (it holds a control character)",
                2);
}

TEST_F(Rename, ReelOfAnOddNameIsFoundAndGetsAnother)
{
  respell(path("projects/main.reels"), "B001", "b\x1b\xff");
  const ProcessResult result = reeldb({"rename", "B\x1b\xff", "C001"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("\nb\\x1b\\xff is now C001, also in 1 shot\n"), std::string::npos) << result.out;
  EXPECT_EQ(reelIds(), (Words{"A001", "C001"}));
}

TEST_F(Rename, LibrarysOwnLinesAreEscapedToo)
{
  respell(path("projects/main.reels"), "A001", "a\nb\x1b\xff");
  const ProcessResult result = reeldb({"rename", "a\nb\x1b\xff", "C001"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err.substr(0, result.err.find('\n') + 1),
            "Shot: E0000001  Changing reel from a\\nb\\x1b\\xff to C001\n");
}

TEST_F(Rename, NameThatCutListsUseForNoReelIsTakenWithAWarning)
{
  const std::string warning =
      "reeldb: BARS: stored, but import cannot find a reel by this name (its meaning in cut lists: colour "
      "bars)\n";
  EXPECT_EQ(reeldb({"rename", "--dry-run", "B001", "BARS"}).err, warning);
  const ProcessResult result = reeldb({"rename", "B001", "BARS"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "Shot: E0000003  Changing reel from B001 to BARS\n" + warning);
  EXPECT_EQ(reelIds(), (Words{"A001", "BARS"}));
  EXPECT_EQ(reeldb({"rename", "BARS", "BARS"}).err, "");
}

TEST_F(Rename, OuterBlanksDoNotCount)
{
  EXPECT_EQ(reeldb({"rename", "A001", " C001 "}).code, 0);
  EXPECT_EQ(reelIds(), (Words{"C001", "B001"}));
}

} // namespace
