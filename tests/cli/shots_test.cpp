// SPDX-License-Identifier: Apache-2.0
#include <sstream>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Shots : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                              "* FROM CLIP NAME: KITCHEN WIDE\n* SOURCE FILE: kitchen.mov\n" +
                              event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
    dir_.write("more.edl", event(1, "a001", "A2", "02:00:00:00", "02:00:01:00") + "* FROM CLIP NAME: kitchen wide\n");
    ASSERT_EQ(reeldb({"import", "cut.edl", "more.edl"}).code, 0);
    ASSERT_EQ(reeldb({"create", "EMPTY"}).code, 0);
  }
};

TEST_F(Shots, AllOfAReelWhateverTheirCase)
{
  const ProcessResult result = reeldb({"shots", "a001", "--json"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  const Json shots = Json::parse(result.out);
  ASSERT_EQ(shots.size(), 2u);
  EXPECT_EQ(shots.at(0).at("reel"), "A001");
  EXPECT_EQ(shots.at(0).at("clip"), "KITCHEN WIDE");
  EXPECT_EQ(shots.at(0).at("tracks"), "V");
  EXPECT_EQ(shots.at(0).at("source_in"), "01:00:00:00");
  EXPECT_EQ(shots.at(0).at("source_out"), "01:00:01:00");
  EXPECT_EQ(shots.at(0).at("record_in"), "01:00:00:00");
  EXPECT_EQ(shots.at(0).at("record_out"), "01:00:01:00");
  EXPECT_EQ(shots.at(0).at("source_file"), "kitchen.mov");
  EXPECT_EQ(shots.at(0).at("video_channels"), 1);
  EXPECT_EQ(shots.at(1).at("reel"), "a001");
  EXPECT_LT(shots.at(0).at("number"), shots.at(1).at("number"));
  EXPECT_EQ(shots.at(1).at("audio_channels"), 1);
}

TEST_F(Shots, TableEndsWithTheirNumber)
{
  const std::string text = output({"shots", "A001"});
  EXPECT_EQ(text.substr(0, 10), "SHOT  CLIP");
  EXPECT_NE(text.find("  KITCHEN WIDE  V       01:00:00:00  01:00:01:00"), std::string::npos) << text;
  EXPECT_NE(text.find("\n2 shots from reel A001\n"), std::string::npos) << text;
}

TEST_F(Shots, ReelWithoutShotsHasNone)
{
  EXPECT_EQ(output({"shots", "EMPTY"}), "0 shots from reel EMPTY\n");
  EXPECT_EQ(output({"shots", "EMPTY", "--json"}), "[]\n");
}

TEST_F(Shots, UnknownReelIsRefused)
{
  const ProcessResult result = reeldb({"shots", "X"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: X: no such reel\n");
}

/// The same, with the reel in a column of eight characters.
std::string narrowEvent(const std::string& reel, const std::string& clip)
{
  return "001  " + reel + " V     C        01:00:00:00 01:00:01:00 01:00:00:00 01:00:01:00\n* FROM CLIP NAME: " + clip +
         "\n";
}

class ReelsOf : public Shots {
protected:
  void SetUp() override
  {
    Shots::SetUp();
    ASSERT_EQ(reeldb({"set", "B001", "type=Unheard of"}).code, 0);
    ASSERT_EQ(reeldb({"set", "A001", "type=Tape 2ch", "bin=shelf"}).code, 0);
  }
};

TEST_F(ReelsOf, ClipNamesFindTheirReelsInAnyCase)
{
  EXPECT_EQ(json({"reels-of", "--json", "Kitchen Wide"}), Json::parse(R"([
    {"id": "A001", "shots": 2, "state": "ready", "type": "Tape 2ch", "bin": "shelf", "names": [],
     "candidates": [], "last_device": ""}])"));
}

TEST_F(ReelsOf, ListReportsReelsThatAreMissingUnavailableOrOfUnknownType)
{
  dir_.write("online.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                               event(2, "B001", "V", "01:00:00:00", "01:00:01:00") +
                               event(3, "C001", "V", "01:00:00:00", "01:00:01:00") +
                               event(4, "EMPTY", "V", "01:00:00:00", "01:00:01:00") +
                               event(5, "C001", "V", "01:00:02:00", "01:00:03:00"));
  output({"set", "EMPTY", "available=no"});
  const std::string before = readFile("projects/main.reels");
  const Json needs = json({"reels-of", "--json", "--file", "online.edl"}, 1);
  ASSERT_EQ(needs.size(), 4u);
  EXPECT_EQ(needs.at(0).at("state"), "ready");
  EXPECT_EQ(needs.at(1).at("state"), "unknown type");
  EXPECT_EQ(needs.at(2).at("shots"), 2);
  EXPECT_EQ(needs.at(2).at("state"), "missing");
  EXPECT_EQ(needs.at(2).at("names").size(), 1u);
  EXPECT_EQ(needs.at(3).at("state"), "unavailable");
  EXPECT_EQ(output({"reels-of", "--file", "online.edl"}, 1),
            "REEL   SHOTS  STATE         TYPE        BIN\n"
            "C001       2  missing       -\n"
            "EMPTY      1  unavailable   Tape 2ch\n"
            "B001       1  unknown type  Unheard of\n"
            "A001       1  ready         Tape 2ch    shelf\n"
            "4 reels needed, 1 ready, 1 missing, 1 unavailable, 1 unknown type\n");
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(ReelsOf, ReelsOfOneStateAreInTheOrderOfShelfAndNameInTheTableAndInTheOrderOfTheListInJson)
{
  std::string list;
  int number = 0;
  for (const char* const reel : {"R4", "R3", "R2", "R1", "B001"}) {
    if (reel != std::string("B001")) {
      ASSERT_EQ(reeldb({"create", reel}).code, 0);
    }
    list += event(++number, reel, "V", "01:00:00:00", "01:00:01:00");
  }
  dir_.write("online.edl", list);
  output({"set", "B001", "type=Tape 2ch"});
  output({"set", "R1", "R4", "bin=b"});
  output({"set", "R3", "bin=A"});
  output({"set", "R3", "last-device=Deck 1"});
  const std::string text = output({"reels-of", "--file", "online.edl"});
  Words order;
  std::istringstream lines(text);
  std::string line;
  std::getline(lines, line);
  EXPECT_NE(line.find("  LAST DEVICE"), std::string::npos) << line;
  while (std::getline(lines, line))
    order.push_back(line.substr(0, line.find(' ')));
  EXPECT_EQ(order, (Words{"R3", "R1", "R4", "B001", "R2", "5"})) << text;
  const Json needs = json({"reels-of", "--file", "online.edl", "--json"});
  EXPECT_EQ(needs.at(0).at("id"), "R4");
  EXPECT_EQ(needs.at(4).at("id"), "B001");
  EXPECT_NE(needs.at(1).at("last_device"), "");
}

TEST_F(ReelsOf, MissingShowsOnlyReelsThatTheProjectDoesNotHave)
{
  ASSERT_EQ(reeldb({"create", "C001C001_X"}).code, 0);
  ASSERT_EQ(reeldb({"create", "C001C001_Y"}).code, 0);
  dir_.write("online.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                               event(2, "Z001", "V", "01:00:00:00", "01:00:01:00") + narrowEvent("C001C001", "X"));
  EXPECT_EQ(output({"reels-of", "--file", "online.edl", "--missing"}, 1),
            "REEL      SHOTS  STATE    TYPE\n"
            "Z001          1  missing  -\n"
            "C001C001      1  perhaps  -\n"
            "  C001C001 is perhaps C001C001_X, C001C001_Y\n"
            "3 reels needed, 1 ready, 1 missing, 1 perhaps\n");
  const Json needs = json({"reels-of", "--file", "online.edl", "--missing", "--json"}, 1);
  ASSERT_EQ(needs.size(), 2u);
  EXPECT_EQ(needs.at(0).at("id"), "Z001");
  EXPECT_EQ(output({"reels-of", "--reel", "A001", "--missing"}), "1 reel needed, 1 ready\n");
  EXPECT_EQ(json({"reels-of", "--reel", "A001", "--missing", "--json"}), Json::array());
  const ProcessResult result = reeldb({"reels-of", "--reel", "A001", "--missing", "--by", "roll"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: reels-of: --by and --missing exclude each other\n");
}

TEST_F(ReelsOf, ClipsWhoseReelIsNotReadyAreExitCode0)
{
  EXPECT_NE(output({"reels-of", "--reel", "B001"}).find("unknown type"), std::string::npos);
}

TEST_F(ReelsOf, AllTroublesOfAReelAreReported)
{
  output({"set", "B001", "available=no"});
  dir_.write("online.edl", event(1, "B001", "V", "01:00:00:00", "01:00:01:00"));
  EXPECT_EQ(json({"reels-of", "--json", "--file", "online.edl"}, 1).at(0).at("state"), "unavailable, unknown type");
}

TEST_F(ReelsOf, SourcesOfAListThatAreNotReelsAreReported)
{
  dir_.write("online.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                               event(2, "BL", "V", "00:00:00:00", "00:00:01:00") +
                               event(3, "AX", "V", "01:00:00:00", "01:00:01:00") +
                               event(4, "A*1", "V", "01:00:00:00", "01:00:01:00"));
  const ProcessResult result = reeldb({"reels-of", "--json", "--file", "online.edl"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(Json::parse(result.out).size(), 1u);
  EXPECT_NE(result.err.find("reeldb: online.edl: BL: not a reel (black; 1 clip, line 2)\n"), std::string::npos)
      << result.err;
  EXPECT_NE(result.err.find("reeldb: online.edl: AX: not a reel (AX without a clip name or source file; 1 clip, line "
                            "3)\n"),
            std::string::npos)
      << result.err;
  EXPECT_NE(result.err.find("reeldb: online.edl: A*1: not a reel (a star denotes internally generated material; "
                            "1 clip, line 4)\n"),
            std::string::npos)
      << result.err;
}

TEST_F(ReelsOf, ReelFindsItsOwnShots)
{
  EXPECT_EQ(json({"reels-of", "--json", "--reel", "a001"}).at(0).at("shots"), 2);
}

TEST_F(ReelsOf, NothingFoundIsRefused)
{
  EXPECT_EQ(reeldb({"reels-of", "no such clip"}).err, "reeldb: no such clip: no shot has this clip name\n");
  EXPECT_EQ(reeldb({"reels-of", "no such clip"}).code, 1);
  const ProcessResult result = reeldb({"reels-of", "--reel", "EMPTY"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: EMPTY: no shot was recorded from this reel\n");
  EXPECT_EQ(reeldb({"reels-of", "--reel", "X"}).err, "reeldb: X: no such reel\n");
}

TEST_F(ReelsOf, EmptyNameIsAUsageError)
{
  // B001's shot has no name.
  ProcessResult result = reeldb({"reels-of", ""});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: reels-of: \"\": not a clip name\n");
  EXPECT_EQ(reeldb({"reels-of", "KITCHEN WIDE", ""}).code, 2);
  result = reeldb({"reels-of", "--reel", ""});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: reels-of: \"\": not a reel\n");
}

TEST_F(ReelsOf, ListWithoutAClipReportsItsRejectedLinesAndThatItHasNoReel)
{
  dir_.write("bad.edl", "TITLE: x\n" + event(1, "BL", "V", "01:00:00:00", "01:00:01:00") +
                            "002  C001  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  const ProcessResult result = reeldb({"reels-of", "--file", "bad.edl"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err.find("reeldb: bad.edl: BL: not a reel (black; 1 clip, line 2)\n"), 0u) << result.err;
  EXPECT_NE(result.err.find("\nreeldb: bad.edl: line 3 rejected:"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("\nreeldb: bad.edl: none of its clips has a reel\n"), std::string::npos) << result.err;
}

TEST_F(ReelsOf, OneSourceMustBeGiven)
{
  EXPECT_EQ(reeldb({"reels-of"}).code, 2);
  const ProcessResult result = reeldb({"reels-of", "clip", "--reel", "A001"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: reels-of: use only one of clip names, --reel ID and --file FILE\n");
}

TEST_F(ReelsOf, NameThatMayBeSeveralReelsIsShownWithThese)
{
  ASSERT_EQ(reeldb({"create", "C001C001_X"}).code, 0);
  ASSERT_EQ(reeldb({"create", "C001C001_Y"}).code, 0);
  ASSERT_EQ(reeldb({"create", "OLD"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "OLD", "NEW"}).code, 0);
  dir_.write("short.edl", narrowEvent("C001C001", "X"));
  dir_.write("file.edl", event(2, "kitchen.mov", "V", "01:00:00:00", "01:00:01:00"));
  std::string text = output({"reels-of", "--file", "short.edl", "--names", "list"}, 1);
  EXPECT_NE(text.find("C001C001      1  perhaps  -"), std::string::npos) << text;
  EXPECT_NE(text.find("\n  C001C001 is perhaps C001C001_X, C001C001_Y\n1 reel needed"), std::string::npos) << text;
  text = output({"reels-of", "--file", "file.edl"}, 1);
  EXPECT_NE(text.find("  kitchen.mov is perhaps A001: other name in a list\n"), std::string::npos) << text;
  EXPECT_EQ(json({"reels-of", "--json", "--file", "file.edl"}, 1).at(0).at("candidates").at(0).at("reel"), "A001");
}

TEST_F(ReelsOf, WordsOfMatchAndNamesAreChecked)
{
  dir_.write("one.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  for (const std::string command : {"import", "diff"}) {
    ProcessResult result = reeldb({command, "--match", "close", "one.edl"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "reeldb: --match close: invalid (use all or exact)\n");
    result = reeldb({command, "--names", "x", "one.edl"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "reeldb: --names x: invalid (use list or clip)\n");
  }
  EXPECT_EQ(reeldb({"reels-of", "--file", "one.edl", "--match", "close"}).code, 2);
  const ProcessResult result = reeldb({"reels-of", "--reel", "A001", "--match", "exact"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: reels-of: --match and --names need --file FILE\n");
}

TEST_F(ReelsOf, OptionsOfNamesReachEachCommand)
{
  dir_.write("cut.edl", narrowEvent("C001C001", "C001C001_X"));
  EXPECT_EQ(json({"reels-of", "--json", "--file", "cut.edl", "--names", "clip"}, 1).at(0).at("id"), "C001C001_X");
  EXPECT_EQ(json({"import", "--json", "--names", "clip", "cut.edl"}).at("files").at(0).at("created"),
            Json({"C001C001_X"}));
  dir_.write("cut2.edl", narrowEvent("C001C001", "another"));
  const auto reelsOf = [&](const Words& more) {
    Words words = {"reels-of", "--json", "--file", "cut2.edl"};
    words.insert(words.end(), more.begin(), more.end());
    return Json::parse(reeldb(words).out).at(0).at("id");
  };
  EXPECT_EQ(reelsOf({}), "C001C001_X");
  EXPECT_EQ(reelsOf({"--match", "exact"}), "C001C001");
  const Json diff = Json::parse(reeldb({"diff", "--json", "--match", "exact", "cut2.edl"}).out);
  EXPECT_EQ(diff.at("reels_new").at(0).at("reel"), "C001C001");
  EXPECT_EQ(json({"import", "--json", "--match", "exact", "cut2.edl"}).at("files").at(0).at("created"),
            Json({"C001C001"}));
}

TEST_F(ReelsOf, RejectedLinesOfTheListAreExitCode4WhateverTheReelsAre)
{
  dir_.write("bad.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                            "002  C001  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  const ProcessResult result = reeldb({"reels-of", "--file", "bad.edl"});
  EXPECT_EQ(result.code, 4);
  EXPECT_NE(result.err.find("reeldb: bad.edl: line 2 rejected: "), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("01:00:99:00"), std::string::npos) << result.err;
  output({"set", "A001", "available=no"});
  EXPECT_EQ(reeldb({"reels-of", "--file", "bad.edl"}).code, 4);
}

} // namespace
