// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/command_fixture.h"
#include "reelhost/store.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

class Import : public FacilityTest {
protected:
  /// The report on the only file.
  Json import(const std::string& file, int code = 0)
  {
    const ProcessResult result = reeldb({"import", "--json", file});
    EXPECT_EQ(result.code, code) << result.err;
    const Json report = Json::parse(result.out);
    EXPECT_EQ(report.at("files").size(), 1u);
    return report.at("files").at(0);
  }
  std::string projectBytes() { return readFile("projects/main.reels"); }
};

const std::string threeShots = event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                               event(2, "A001", "V", "01:00:02:00", "01:00:03:00") +
                               event(3, "B001", "V", "01:00:00:00", "01:00:01:00");

TEST_F(Import, EverySourceOfACutListGetsItsReel)
{
  dir_.write("cut.edl", "TITLE: EVENING\n" + threeShots);
  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("file"), "cut.edl");
  EXPECT_EQ(report.at("format"), "edl");
  EXPECT_EQ(report.at("title"), "EVENING");
  EXPECT_EQ(report.at("clips"), 3);
  EXPECT_EQ(report.at("shots_added"), 3);
  EXPECT_EQ(report.at("shots_there"), 0);
  EXPECT_EQ(report.at("created"), (Words{"A001", "B001"}));
  EXPECT_EQ(report.at("matched"), Words{});
  EXPECT_EQ(report.at("special"), Words{});
  EXPECT_EQ(report.at("rejected"), Words{});
  EXPECT_EQ(reelIds(), (Words{"A001", "B001"}));
  EXPECT_EQ(reel("A001").at("shots"), 2);
}

TEST_F(Import, EveryTapeOfALogFileGetsItsReel)
{
  dir_.write("rushes", "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nFPS\t25\n\nColumn\n"
                       "Name\tTracks\tStart\tEnd\tTape\n\nData\n"
                       "one\tVA1A2\t01:00:00:00\t01:00:05:00\tT1\n"
                       "two\tV\t01:00:05:00\t01:00:06:00\tT2\n");
  const Json report = import("rushes");
  EXPECT_EQ(report.at("format"), "ale");
  EXPECT_EQ(report.at("clips"), 2);
  EXPECT_EQ(report.at("created"), (Words{"T1", "T2"}));
}

TEST_F(Import, DefaultTypeThatIsNotListedIsReportedOnceWithTheReelsThatGetIt)
{
  dir_.write("devicedata/reeltype.dat", "Live:VideoChannels=1\n");
  dir_.write("cut.edl", threeShots);
  dir_.write("more.edl", event(1, "C001", "V", "01:00:00:00", "01:00:01:00"));
  EXPECT_EQ(reeldb({"import", "cut.edl", "more.edl"}).err,
            "reeldb: Tape 2ch: not in the reel type catalogue (stored anyway; reeldb type list shows the catalogue)\n");
  EXPECT_EQ(reeldb({"import", "cut.edl"}).err, ""); // no reel is made
}

TEST_F(Import, SameFileAgainChangesNothingAndSaysSo)
{
  dir_.write("cut.edl", threeShots);
  import("cut.edl");
  const std::string before = projectBytes();
  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("created"), Words{});
  EXPECT_EQ(report.at("matched"), (Words{"A001", "B001"}));
  EXPECT_EQ(report.at("shots_added"), 0);
  EXPECT_EQ(report.at("shots_there"), 3);
  EXPECT_EQ(output({"import", "cut.edl"}), "cut.edl (edl): 3 clips, unchanged\n"
                                           "nothing new: the project stays as it was\n");
  EXPECT_EQ(projectBytes(), before);
}

TEST_F(Import, SameShotTwiceInOneFileIsAddedOnce)
{
  dir_.write("cut.edl", threeShots + event(4, "a001", "V", "01:00:00:00", "01:00:01:00"));
  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("clips"), 4);
  EXPECT_EQ(report.at("shots_added"), 3);
  EXPECT_EQ(report.at("shots_there"), 0);
  EXPECT_EQ(report.at("shots_repeated"), 1);
  EXPECT_EQ(report.at("spellings"), Json::parse(R"([{"reel": "A001", "other": "a001"}])"));
}

TEST_F(Import, RepeatedShotsAreCountedApartFromExistingOnes)
{
  dir_.write("cut.edl", threeShots + event(4, "A001", "V", "01:00:00:00", "01:00:01:00"));
  const std::string start = "cut.edl (edl): 4 clips, ";
  EXPECT_EQ(output({"import", "cut.edl"}),
            start + "3 shots added, 1 repeated in the list\n  2 reels created: A001, B001\n");
  EXPECT_EQ(output({"import", "cut.edl"}), start + "unchanged\n"
                                                   "nothing new: the project stays as it was\n");
}

TEST_F(Import, ShotDiffersByReelNameInOutAndTracks)
{
  const std::string name = "* FROM CLIP NAME: ONE\n";
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + name +
                            event(2, "A001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: TWO\n" +
                            event(3, "A001", "A", "01:00:00:00", "01:00:01:00") + name +
                            event(4, "A001", "V", "01:00:00:01", "01:00:01:00") + name +
                            event(5, "A001", "V", "01:00:00:00", "01:00:01:01") + name +
                            event(6, "B001", "V", "01:00:00:00", "01:00:01:00") + name);
  EXPECT_EQ(import("cut.edl").at("shots_added"), 6);
}

TEST_F(Import, SecondFileOfOneCommandFindsTheReelsOfTheFirst)
{
  dir_.write("a.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  dir_.write("b.edl",
             event(1, "A001", "V", "02:00:00:00", "02:00:01:00") + event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
  const Json report = json({"import", "--json", "a.edl", "b.edl", "a.edl"});
  ASSERT_EQ(report.at("files").size(), 3u);
  EXPECT_EQ(report.at("files").at(0).at("created"), Words{"A001"});
  EXPECT_EQ(report.at("files").at(1).at("created"), Words{"B001"});
  EXPECT_EQ(report.at("files").at(1).at("matched"), Words{"A001"});
  EXPECT_EQ(report.at("files").at(2).at("shots_there"), 1);
  EXPECT_EQ(report.at("stored"), true);
}

TEST_F(Import, ReelInOtherCaseIsMatchedAndItsSpellingReported)
{
  output({"create", "a001"});
  dir_.write("cut.edl", threeShots);
  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("created"), Words{"B001"});
  EXPECT_EQ(report.at("matched"), Words{"a001"});
  EXPECT_EQ(report.at("spellings"), Json::parse(R"([{"reel": "a001", "other": "A001"}])"));
  EXPECT_EQ(reel("a001").at("shots"), 2);
}

TEST_F(Import, ReelWhoseShotsAreThereButNotItsRecordIsMadeAgain)
{
  dir_.write("cut.edl", threeShots);
  import("cut.edl");
  // Another program of the site took a record away and left its shots.
  const auto store = reelhost::makeSqliteStore(path("projects/main.reels"));
  store->begin(reelhost::Access::Write, std::chrono::seconds(1));
  reelhost::Changes changes;
  store->readReels([&changes](reelhost::StoredLog&& log) {
    if (log.fields.front().second == "A001")
      changes.deleted.push_back(log.number);
  });
  ASSERT_EQ(changes.deleted.size(), 1u);
  store->commit(changes);
  ASSERT_EQ(reelIds(), Words{"B001"});

  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("created"), Words{"A001"});
  EXPECT_EQ(report.at("matched"), Words{"B001"});
  EXPECT_EQ(report.at("shots_added"), 0);
  EXPECT_EQ(reelIds(), (Words{"B001", "A001"}));
}

TEST_F(Import, BlackBarsAndGeneratedPicturesMakeNoReel)
{
  dir_.write("cut.edl", event(1, "BL", "V", "00:00:00:00", "00:00:01:00") +
                            event(2, "BARS", "V", "00:00:00:00", "00:00:01:00") +
                            event(3, "A*1", "V", "00:00:00:00", "00:00:01:00") +
                            event(4, "BL", "V", "00:00:00:00", "00:00:01:00"));
  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("clips"), 0);
  EXPECT_EQ(report.at("created"), Words{});
  ASSERT_EQ(report.at("special").size(), 3u);
  EXPECT_EQ(report.at("special").at(0).at("text"), "BL");
  EXPECT_EQ(report.at("special").at(0).at("count"), 2);
  EXPECT_EQ(report.at("special").at(0).at("lines"), (std::vector<int>{1, 4}));
  EXPECT_NE(report.at("special").at(2).at("reason").get<std::string>(), "");
  EXPECT_EQ(reelIds(), Words{});
}

TEST_F(Import, BadLineCostsThatLineAndIsExitCode4)
{
  dir_.write("cut.edl", threeShots + "004  C001  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  const Json report = import("cut.edl", 4);
  EXPECT_EQ(report.at("clips"), 3);
  ASSERT_EQ(report.at("rejected").size(), 1u);
  EXPECT_EQ(report.at("rejected").at(0).at("line"), 4);
  EXPECT_EQ(report.at("rejected").at(0).at("text"), "004  C001  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00");
  EXPECT_NE(report.at("rejected").at(0).at("reason").get<std::string>(), "");
  EXPECT_EQ(reelIds(), (Words{"A001", "B001"}));
  EXPECT_EQ(reeldb({"import", "cut.edl"}).code, 4);
}

TEST_F(Import, DryRunShowsTheSameReportAndChangesNothing)
{
  dir_.write("cut.edl", threeShots);
  const std::string before = projectBytes();
  Json dry = json({"import", "--dry-run", "--json", "cut.edl"});
  EXPECT_EQ(projectBytes(), before);
  EXPECT_EQ(dry.at("dry_run"), true);
  EXPECT_EQ(dry.at("stored"), false);
  const std::string text = output({"import", "--dry-run", "cut.edl"});
  EXPECT_EQ(text, "cut.edl (edl): 3 clips, 3 shots would be added\n"
                  "  2 reels would be created: A001, B001\n"
                  "dry run: the project stays as it was\n");
  EXPECT_EQ(reelIds(), Words{});
  const Json real = json({"import", "--json", "cut.edl"});
  EXPECT_EQ(dry.at("files"), real.at("files"));
  EXPECT_EQ(output({"import", "--dry-run", "cut.edl"}), "cut.edl (edl): 3 clips, unchanged\n"
                                                        "dry run: there would be nothing new\n");
}

TEST_F(Import, OddLineIsKeptWithAWarningAndIsNotAFailure)
{
  const std::string odd = event(1, "A001", "V", "23:59:59:00", "00:00:01:00");
  dir_.write("cut.edl", odd);
  const Json report = import("cut.edl");
  EXPECT_EQ(report.at("created"), Words{"A001"});
  EXPECT_EQ(report.at("rejected"), Words{});
  ASSERT_EQ(report.at("warnings").size(), 1u);
  EXPECT_EQ(report.at("warnings").at(0).at("line"), 1);
  EXPECT_EQ(report.at("warnings").at(0).at("text"), odd.substr(0, odd.size() - 1));
  EXPECT_EQ(report.at("warnings").at(0).at("reason"),
            "source in 23:59:59:00 is after source out 00:00:01:00 (backwards, or past midnight)");
}

TEST_F(Import, ListThatContradictsTheProjectIsWarnedOfOnceWithTheLine)
{
  dir_.write("cut.edl", "TITLE: X\nFCM: DROP FRAME\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:28") +
                            event(2, "A002", "V", "01:00:00:26", "01:00:01:29"));
  const ProcessResult result = reeldb({"import", "--json", "cut.edl"});
  EXPECT_EQ(result.code, 0);
  const Json file = Json::parse(result.out).at("files").at(0);
  ASSERT_EQ(file.at("warnings").size(), 1u) << result.out;
  EXPECT_EQ(file.at("warnings").at(0).at("line"), 4);
  EXPECT_EQ(file.at("warnings").at(0).at("reason"),
            "source out 01:00:01:29 counts more than the 25 frames per second of the project (kept as it is)");
  EXPECT_EQ(file.at("timing").at("drop_frame").at("line"), 2);
  EXPECT_EQ(file.at("timing").at("frames"), 29);
  EXPECT_TRUE(json({"shots", "--json", "A001"}).at(0).at("drop_frame").get<bool>());
}

TEST_F(Import, ListOfTheProjectsRateIsNotWarnedOf)
{
  output({"project", "new", "ntsc", "--rate", "29.97"});
  dir_.write("cut.edl", "TITLE: X\nFCM: DROP FRAME\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:29"));
  EXPECT_EQ(json({"-p", "ntsc", "import", "--json", "cut.edl"}).at("files").at(0).at("warnings"), Json::array());
  const std::string report = output({"import", "cut.edl"});
  EXPECT_NE(report.find("\n    line 3: source out 01:00:01:29 counts more than the 25 frames per second of the project "
                        "(kept as it is): 001  "),
            std::string::npos)
      << report;
}

TEST_F(Import, WarningOfTheRateStandsAmongTheOthersByItsLine)
{
  dir_.write("cut.edl", "TITLE: X\n" + event(1, "A001", "V", "02:00:00:00", "01:00:01:00") +
                            event(2, "A001", "V", "01:00:00:00", "01:00:01:29") +
                            event(3, "A001", "V", "02:00:00:00", "01:00:01:00"));
  const Json warnings = json({"import", "--json", "cut.edl"}).at("files").at(0).at("warnings");
  ASSERT_EQ(warnings.size(), 3u);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(warnings.at(static_cast<std::size_t>(i)).at("line"), i + 2);
}

TEST_F(Import, LogOfAnotherRateIsWarnedOfAtItsHeading)
{
  dir_.write("a.ale", "Heading\nFIELD_DELIM\tTABS\nFPS\t23.976\n\nColumn\nName\tTracks\tStart\tEnd\tTape\n\nData\n"
                      "one\tV\t01:00:00:00\t01:00:05:00\tA001\n");
  const Json warnings = json({"import", "--json", "a.ale"}).at("files").at(0).at("warnings");
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_EQ(warnings.at(0),
            (Json{{"line", 3}, {"text", "FPS 23.976"}, {"reason", "frame rate 23.98 (the project has 25)"}}));
  EXPECT_EQ(json({"shots", "--json", "A001"}).at(0).at("frame_rate"), "23.98");
}

TEST_F(Import, FrameNumbersAreKeptAsTheyAre)
{
  dir_.write("cut.edl", "TITLE: X\n001  A001 V C 1009 1064 00:00:00:00 00:00:02:07\n");
  EXPECT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(json({"shots", "--json", "A001"}).at(0).at("source_out"), "1064");
  EXPECT_EQ(json({"import", "--json", "cut.edl"}).at("files").at(0).at("shots_added"), 0);
}

TEST_F(Import, HumanReportNamesEverything)
{
  dir_.write("cut.edl", threeShots + event(4, "b001", "V", "01:00:09:00", "01:00:10:00") +
                            event(5, "BL", "V", "00:00:00:00", "00:00:01:00") +
                            "006  C001  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  output({"create", "A001"});
  const ProcessResult result = reeldb({"import", "cut.edl"});
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out.substr(0, result.out.find("  without")), "cut.edl (edl): 4 clips, 4 shots added\n"
                                                                "  1 reel created: B001\n"
                                                                "  1 reel already there\n");
  EXPECT_NE(result.out.find("  without a reel:\n    BL: black (1 event, line 5)\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("  same reel, other spelling: b001 is B001\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("  1 line rejected:\n    line 6: "), std::string::npos) << result.out;
}

TEST_F(Import, LongListOfReelsIsWrappedWithoutCuttingAny)
{
  std::string list;
  for (std::size_t i = 1; i <= 60; ++i)
    list += event(static_cast<int>(i), numbered("TAPE", 1000 + i), "V", "01:00:00:00", "01:00:01:00");
  dir_.write("cut.edl", list);
  const std::string text = output({"import", "cut.edl"});
  std::size_t start = 0;
  for (std::size_t end = text.find('\n'); end != std::string::npos; start = end + 1, end = text.find('\n', start))
    EXPECT_LE(end - start, 100u);
  for (std::size_t i = 1; i <= 60; ++i)
    EXPECT_NE(text.find(numbered(" TAPE", 1000 + i)), std::string::npos);
}

TEST_F(Import, FileThatCannotBeReadChangesNothing)
{
  dir_.write("cut.edl", threeShots);
  dir_.write("noise.edl", std::string("\x7f"
                                      "ELF\x02\x01\x01\0\0",
                                      9) +
                              std::string(200, '\x01'));
  fs::create_directory(path("folder"));
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const std::string before = projectBytes();
  const std::vector<std::pair<std::string, int>> bad = {
      {"missing.edl", 1}, {"noise.edl", 3}, {"folder", 3}, {"pipe", 3}, {"/dev/null", 3}};
  for (const auto& [file, code] : bad) {
    const ProcessResult result = reeldb({"import", "cut.edl", file});
    EXPECT_EQ(result.code, code) << file;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.compare(0, 10 + file.size(), "reeldb: " + file + ": "), 0) << result.err;
  }
  EXPECT_EQ(projectBytes(), before);
}

TEST_F(Import, EveryFileThatCannotBeReadIsNamed)
{
  dir_.write("cut.edl", threeShots);
  dir_.write("noise.edl", "nothing of a list\n");
  const std::string before = projectBytes();
  ProcessResult result = reeldb({"import", "missing.edl", "cut.edl", "noise.edl"});
  EXPECT_EQ(result.code, 3) << "the worse of the two";
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "reeldb: missing.edl: cannot be opened (No such file or directory)\n"
            "reeldb: noise.edl: not a cut list, a log file or a timeline (it has no event line and no "
            "Heading or Column)\n"
            "reeldb: import: nothing imported (2 of 3 files cannot be read; --skip-unreadable imports the others)\n");
  result = reeldb({"import", "--json", "lost.edl", "cut.edl"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "reeldb: lost.edl: cannot be opened (No such file or directory)\n"
            "reeldb: import: nothing imported (1 of 2 files cannot be read; --skip-unreadable imports the others)\n");
  EXPECT_EQ(projectBytes(), before);
}

TEST_F(Import, TheOnlyFileThatCannotBeReadIsAllThereIsToSay)
{
  EXPECT_EQ(reeldb({"import", "lost.edl"}).err, "reeldb: lost.edl: cannot be opened (No such file or directory)\n");
}

TEST_F(Import, NameTheProjectCannotHoldCostsItsLineAndIsNotCut)
{
  const std::string fits(2047, 'n');
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: " + fits + "\n" +
                            event(2, "B001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: n" + fits + "\n");
  const Json report = import("cut.edl", 4);
  EXPECT_EQ(report.at("created"), Words{"A001"});
  EXPECT_EQ(report.at("rejected").at(0).at("reason"),
            "clip name '" + std::string(40, 'n') + "...' has 2048 bytes (at most 2047)");
  const Json shots = json({"shots", "--json", "A001"});
  ASSERT_EQ(shots.size(), 1u);
  EXPECT_EQ(shots.at(0).at("clip"), fits);
}

TEST_F(Import, EmptyFileIsNotAList)
{
  dir_.write("empty.edl", "");
  const ProcessResult result = reeldb({"import", "empty.edl"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err.compare(0, 19, "reeldb: empty.edl: "), 0) << result.err;
}

TEST_F(Import, FileNameMayHoldAnyByte)
{
  const std::string name = "[x]\n\xff.edl";
  dir_.write(name, threeShots);
  const std::string text = output({"import", name});
  EXPECT_EQ(text.substr(0, text.find(':')), "[x]\\n\\xff.edl (edl)");
}

TEST_F(Import, ControlCharactersOfAListNeverReachTheReport)
{
  dir_.write("cut.edl", event(1, "A\x1b[31m1", "V", "01:00:00:00", "01:00:01:00") +
                            "002  \x1b[2J  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  const ProcessResult result = reeldb({"import", "cut.edl"});
  for (const char c : result.out + result.err)
    EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 || c == '\n') << static_cast<int>(c);
}

TEST_F(Import, ClipNameFileTimecodesAndTracksAreKeptWithTheShot)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                            "* FROM CLIP NAME: KITCHEN WIDE\n* SOURCE FILE: kitchen.mov\n");
  import("cut.edl");
  // Only the same texts make the same shot, so they must have been kept.
  EXPECT_EQ(import("cut.edl").at("shots_there"), 1);
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: KITCHEN CLOSE\n");
  EXPECT_EQ(import("cut.edl").at("shots_added"), 1);
}

TEST_F(Import, ProgressShowsOnATerminalOnly)
{
  std::string large;
  for (std::size_t i = 1; i <= 30000; ++i)
    large += event(static_cast<int>(i), numbered("T", i % 6000), "V", "01:00:00:00", "01:00:01:00");
  dir_.write("large.edl", large);
  const ProcessResult plain = reeldb({"import", "--dry-run", "large.edl"});
  EXPECT_EQ(plain.err, "");
  ProcessSetting terminal = setting_;
  terminal.terminal = true;
  terminal.environment["TERM"] = "xterm";
  const std::string shown = reeldb({"import", "--dry-run", "large.edl"}, terminal).out;
  EXPECT_NE(shown.find("\rimporting ["), std::string::npos) << shown.substr(0, 200);
  EXPECT_NE(shown.find("\r\x1b[K"), std::string::npos);
  terminal.environment["TERM"] = "dumb";
  EXPECT_EQ(reeldb({"import", "--dry-run", "large.edl"}, terminal).out.find("\rimporting"), std::string::npos);
}

} // namespace
