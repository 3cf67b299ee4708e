// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <filesystem>
#include <unistd.h>

#include "cli/command_fixture.h"
#include "cli/stored_field.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

class ListCommand : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    output({"create", "A001"});
    output({"set", "A001", "type=Tape 2ch"});
  }
};

TEST_F(ListCommand, EmptyProjectSaysSo)
{
  output({"project", "new", "film"});
  EXPECT_EQ(output({"list", "-p", "film"}), "no reels yet (reeldb import FILE makes them, or reeldb create ID)\n");
  EXPECT_EQ(output({"list", "-p", "film", "--json"}), "[]\n");
}

TEST_F(ListCommand, JsonHasEveryKeyInItsType)
{
  output({"set", "A001", "0=twelve", "3=rain", "bin=Shelf", "label-map=pal9pin", "inhibit=yes", "available=no"});
  EXPECT_EQ(json({"list", "--json"}), Json::parse(R"([{
    "id": "A001", "type": "Tape 2ch", "available": false, "inhibit": true, "label_mapping": "pal9pin",
    "bin": "Shelf", "last_device": "", "video_channels": 1, "audio_channels": 2,
    "user_fields": {"0": "twelve", "3": "rain"}, "shots": 0}])"));
}

TEST_F(ListCommand, ShotsAreCountedWithoutRegardToCase)
{
  dir_.write("a.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                          event(2, "a001", "V", "01:00:02:00", "01:00:03:00") +
                          event(3, "B001", "V", "01:00:00:00", "01:00:01:00"));
  output({"import", "a.edl"});
  EXPECT_EQ(reel("A001").at("shots"), 2);
  EXPECT_EQ(reel("B001").at("shots"), 1);
}

TEST_F(ListCommand, AskingDoesNotAddTypesToTheCatalogue)
{
  output({"set", "A001", "bin=x"});
  ASSERT_EQ(reeldb({"set", "A001", "type=Unheard of"}).code, 0);
  EXPECT_EQ(json({"show", "--json", "A001"}).at("known_type"), false);
  EXPECT_EQ(json({"type", "list", "--json"}).size(), 4u);
}

TEST_F(ListCommand, TableLinesUpAndLeavesOutWhatNobodyUses)
{
  output({"create", "a reel with a long name"});
  EXPECT_EQ(output({"list"}).substr(0, output({"list"}).find('\n')),
            "REEL                     TYPE      AVAILABLE  INHIBIT  SHOTS  VIDEO  AUDIO");
  const std::string text = output({"list"});
  EXPECT_NE(text.find("\nA001                     Tape 2ch  yes        no           0      1      2\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\n2 reels\n"), std::string::npos) << text;
}

TEST_F(ListCommand, TableShowsUserFieldsUnderTheirNames)
{
  output({"field", "name", "1=Scene"});
  output({"set", "A001", "1=12A"});
  const std::string text = output({"list"});
  EXPECT_NE(text.find("Scene\n"), std::string::npos) << text;
  EXPECT_NE(text.find("12A\n"), std::string::npos) << text;
}

TEST_F(ListCommand, WideCharactersLineUp)
{
  output({"create", "\xe3\x83\x86\xe3\x83\xbc\xe3\x83\x97"}); // three characters of two columns
  const std::string text = output({"list"});
  EXPECT_NE(text.find("\nA001    Tape 2ch"), std::string::npos) << text;
  EXPECT_NE(text.find("\n\xe3\x83\x86\xe3\x83\xbc\xe3\x83\x97  "), std::string::npos) << text;
}

TEST_F(ListCommand, ControlCharactersNeverReachTheTable)
{
  output({"create", "odd"});
  respell(path("projects/main.reels"), "odd", "x\x1b[31m\ny");
  const std::string text = output({"list"});
  EXPECT_NE(text.find("x\\x1b[31m\\ny"), std::string::npos) << text;
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
  EXPECT_EQ(reel("x\x1b[31m\ny").at("available"), true);
}

TEST_F(ListCommand, BytesThatAreNotUtf8AreReplacedInJsonAndEscapedInTheTable)
{
  output({"create", "odd"});
  respell(path("projects/main.reels"), "odd", "x\xffy");
  EXPECT_EQ(reelIds(), (Words{"A001", "x\xef\xbf\xbdy"}));
  EXPECT_NE(output({"list"}).find("x\\xffy"), std::string::npos);
}

TEST_F(ListCommand, NarrowTerminalWrapsOtherColumnsButNoIdentifier)
{
  const std::string id(60, 'i'), type(60, 't');
  output({"create", id});
  ASSERT_EQ(reeldb({"set", id, "type=" + type}).code, 0);
  ProcessSetting terminal = setting_;
  terminal.terminal = true;
  const std::string shown = reeldb({"list"}, terminal).out;
  EXPECT_NE(shown.find(id + "  tttttttt "), std::string::npos) << shown;
  EXPECT_EQ(std::count(shown.begin(), shown.end(), 't'), 60) << shown;
  EXPECT_NE(output({"list"}).find(id + "  " + type), std::string::npos);
}

TEST_F(ListCommand, ColourOnlyOnATerminalThatWantsIt)
{
  ProcessSetting terminal = setting_;
  terminal.terminal = true;
  terminal.environment["TERM"] = "xterm";
  EXPECT_NE(reeldb({"list"}, terminal).out.find('\x1b'), std::string::npos);
  terminal.environment["NO_COLOR"] = "1";
  EXPECT_EQ(reeldb({"list"}, terminal).out.find('\x1b'), std::string::npos);
  terminal.environment.erase("NO_COLOR");
  terminal.environment["TERM"] = "dumb";
  EXPECT_EQ(reeldb({"list"}, terminal).out.find('\x1b'), std::string::npos);
  EXPECT_EQ(output({"list"}).find('\x1b'), std::string::npos);
}

TEST_F(ListCommand, ReadOnlyProjectIsRead)
{
  const std::string before = readFile("projects/main.reels");
  fs::permissions(path("projects/main.reels"), fs::perms::owner_read);
  fs::permissions(path("projects"), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(reelIds(), Words{"A001"});
  const ProcessResult result = reeldb({"set", "A001", "bin=x"});
  fs::permissions(path("projects"), fs::perms::owner_all);
  EXPECT_EQ(result.code, 1); // of a mode without any write bit the host takes note for root as well
  EXPECT_NE(result.err.find("read-only"), std::string::npos) << result.err;
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

class ListByRoll : public FacilityTest {};

TEST_F(ListByRoll, CountsReelsAndShotsAndTheOthersLast)
{
  dir_.write("log.ale",
             "Heading\nFIELD_DELIM\tTABS\n\nColumn\nName\tTape\tTracks\tStart\tEnd\tCamroll\tSoundroll\n\nData\n"
             "one\tA012C001\tVA1\t01:00:00:00\t01:00:01:00\tA012\tSR7\n"
             "two\tA012C002\tVA1\t01:00:02:00\t01:00:03:00\tA012\tSR7\n");
  ASSERT_EQ(reeldb({"import", "log.ale"}).code, 0);
  EXPECT_EQ(output({"list", "--by", "roll"}), "ROLL  REELS  SHOTS\n"
                                              "A012      2      2\n"
                                              "-         1      2\n"
                                              "1 roll\n");
  EXPECT_EQ(json({"list", "--by", "roll", "--json"}), Json::parse(R"([
    {"roll": "A012", "reels": ["A012C001", "A012C002"], "shots": 2}, {"roll": "", "reels": ["SR7"], "shots": 2}])"));
  const std::string shots = output({"shots", "SR7"});
  EXPECT_NE(shots.find("SOUND OF\n"), std::string::npos) << shots;
  EXPECT_NE(shots.find("A012C002\n"), std::string::npos) << shots;
  const std::string log = output({"export", "log.ale"});
  EXPECT_NE(log.find("two\tVA1\t01:00:02:00\t01:00:03:00\tA012C002\tA012\tSR7"), std::string::npos) << log;
}

TEST_F(ListByRoll, ReelsOfCountsThoseThatAListNeedsAndThatAreReady)
{
  dir_.write("log.ale", "Heading\nFIELD_DELIM\tTABS\n\nColumn\nName\tTape\tTracks\tStart\tEnd\tCamroll\n\nData\n"
                        "one\tXY7_1\tV\t01:00:00:00\t01:00:01:00\tXY7\n"
                        "two\tXY7_2\tV\t01:00:02:00\t01:00:03:00\tXY7\n"
                        "three\tXY7_2\tV\t01:00:04:00\t01:00:05:00\tXY7\n"
                        "four\tTAPE\tV\t01:00:02:00\t01:00:03:00\t\n");
  EXPECT_EQ(output({"reels-of", "--file", "log.ale", "--by", "roll"}, 1), "ROLL  REELS  READY  SHOTS\n"
                                                                          "XY7       2      0      3\n"
                                                                          "-         1      0      1\n"
                                                                          "1 roll; 3 reels needed, 0 ready\n");
  ASSERT_EQ(reeldb({"import", "log.ale"}).code, 0);
  ASSERT_EQ(reeldb({"set", "XY7_1", "available=no"}).code, 0);
  EXPECT_EQ(json({"reels-of", "--file", "log.ale", "--by", "roll", "--json"}, 1), Json::parse(R"([
    {"roll": "XY7", "reels": ["XY7_1", "XY7_2"], "shots": 3, "ready": 1},
    {"roll": "", "reels": ["TAPE"], "shots": 1, "ready": 1}])"));
  EXPECT_EQ(output({"reels-of", "one", "two", "--by", "roll"}), "ROLL  REELS  READY  SHOTS\n"
                                                                "XY7       2      1      2\n"
                                                                "1 roll; 2 reels needed, 1 ready\n");
}

TEST_F(ListByRoll, OtherWordIsAUsageError)
{
  EXPECT_EQ(reeldb({"reels-of", "one", "--by", "type"}).err, "reeldb: --by type: invalid (use roll)\n");
  const ProcessResult result = reeldb({"list", "--by", "type"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: --by type: invalid (use roll)\n");
}

} // namespace
