// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Device : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n"
                                "[[device]]\nnumber = 3\nid = 7\nname = \"Deck\"\nport = \"9-pin\"\ninput = \"none\"\n"
                                "audio_inputs = 2\ntapes = [\"Tape 2ch\"]\n"
                                "[[device]]\nnumber = 4\nid = 8\nname = \"Cam 2\"\nport = \"device-named\"\n"
                                "input = \"sdi\"\naudio_inputs = 1\ntapes = [\"Live\", \"Tape 4ch\"]\n"
                                "[[device]]\nnumber = 5\nid = 9\nname = \"Box\"\nport = \"1394\"\ninput = \"1394\"\n");
  }
};

TEST_F(Device, ListHasThemAll)
{
  EXPECT_EQ(json({"device", "list", "--json"}).size(), 3u);
}

TEST_F(Device, ShowHasOne)
{
  EXPECT_EQ(json({"device", "show", "3", "--json"}), Json::parse(R"({
    "number": 3, "name": "Deck", "port": "9-pin", "input": "none", "audio_inputs": 2, "tapes": ["Tape 2ch"],
    "label_map": "", "last_reel": ""})"));
  EXPECT_EQ(output({"device", "show", "4"}), "NUMBER  NAME   PORT          INPUT  AUDIO  ACCEPTS\n"
                                             "     4  Cam 2  device-named  sdi        1  Live, Tape 4ch\n");
}

TEST_F(Device, UnknownNumberIsRefused)
{
  const ProcessResult result = reeldb({"device", "show", "1"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: 1: no such device (this facility has: 3 Deck, 4 Cam 2, 5 Box)\n");
}

TEST_F(Device, ReelsAreThoseOfAnAcceptedOrUnknownType)
{
  for (const std::string id : {"two", "four", "none", "odd"})
    output({"create", id});
  output({"set", "two", "type=Tape 2ch"});
  output({"set", "four", "type=Tape 4ch"});
  output({"set", "none", "type="});
  reeldb({"set", "odd", "type=Unheard of"});
  EXPECT_EQ(json({"device", "reels", "3", "--json"}), Json::parse(R"([
    {"id": "two", "type": "Tape 2ch", "accepted": true, "why": "the device accepts type \"Tape 2ch\""},
    {"id": "none", "type": "", "accepted": true, "why": "the reel has no type"},
    {"id": "odd", "type": "Unheard of", "accepted": true, "why": "type \"Unheard of\" is not in the catalogue"}])"));
  EXPECT_EQ(json({"device", "reels", "3", "--why", "--json"}), Json::parse(R"([
    {"id": "two", "type": "Tape 2ch", "accepted": true, "why": "the device accepts type \"Tape 2ch\""},
    {"id": "four", "type": "Tape 4ch", "accepted": false, "why": "the device does not accept type \"Tape 4ch\""},
    {"id": "none", "type": "", "accepted": true, "why": "the reel has no type"},
    {"id": "odd", "type": "Unheard of", "accepted": true, "why": "type \"Unheard of\" is not in the catalogue"}])"));
}

TEST_F(Device, LiveMakesTheReelOnceAndTheDeviceRemembersIt)
{
  EXPECT_EQ(output({"device", "live", "4"}), "Cam 2 live feed\n");
  const Json made = reel("Cam 2 live feed");
  EXPECT_EQ(made.at("type"), "Live");
  EXPECT_EQ(made.at("last_device"), "Cam 2");
  EXPECT_EQ(json({"device", "show", "4", "--json"}).at("last_reel"), "Cam 2 live feed");
  const std::string before = readFile("projects/main.reels");
  EXPECT_EQ(output({"device", "live", "4"}), "Cam 2 live feed (already existed)\n");
  EXPECT_EQ(reelIds().size(), 1u);
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(Device, CreateIsRefusedIfTheNameOfTheDeviceIsNotAValidReelName)
{
  dir_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n"
                              "[[device]]\nnumber = 4\nid = 8\nname = \"C*m\"\nport = \"device-named\"\n"
                              "input = \"sdi\"\naudio_inputs = 1\ntapes = []\n");
  expectRefusal({"create", "R1", "--device", "4"},
                "\"C*m\": not a valid reel name (a star denotes generated material)");
  EXPECT_EQ(reelIds(), Words{});
}

TEST_F(Device, LiveIsRefusedForADeviceThatIsNotALiveSource)
{
  const ProcessResult result = reeldb({"device", "live", "3"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: Deck: not a live source (\"Live\" is not one of the types it accepts)\n");
}

TEST_F(Device, DeviceNamedPortGivesTheReelTheDevicesName)
{
  EXPECT_EQ(output({"create", "asked", "--device", "4"}), "Cam 2\n");
  const ProcessResult result = reeldb({"create", "again", "--device", "4"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: \"Cam 2\": already exists\n");
  EXPECT_EQ(reelIds(), Words{"Cam 2"});
}

TEST_F(Device, LabelMapIsTheUsualOneForPortAndRate)
{
  EXPECT_EQ(output({"label-map", "for", "--device", "3"}), "pal9pin\n");
  EXPECT_EQ(output({"label-map", "for", "--device", "4"}), "paltofd\n");
  output({"project", "new", "us", "--rate", "29.97"});
  EXPECT_EQ(output({"-p", "us", "label-map", "for", "--device", "5"}), "ntsc1394\n");
  EXPECT_EQ(json({"label-map", "for", "--device", "5", "--json"}),
            Json::parse(R"({"device": 5, "label_map": "pal1394"})"));
}

// --- Label maps ----------------------------------------------------------------------------------

class LabelMapCommand : public Device {};

TEST_F(LabelMapCommand, ListHasTheNineUsualOnes)
{
  const Json maps = json({"label-map", "list", "--json"});
  ASSERT_EQ(maps.size(), 9u);
  EXPECT_EQ(maps.at(0).at("name"), "24f1394");
  for (const Json& map : maps) {
    EXPECT_TRUE(map.at("uses_vitc").is_boolean());
    EXPECT_TRUE(map.at("fits_project").is_boolean());
    EXPECT_FALSE(map.contains("fault"));
  }
}

TEST_F(LabelMapCommand, CheckReportsWhatFits)
{
  const ProcessResult result = reeldb({"label-map", "check", "pal9pin", "--device", "3", "--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  const Json report = Json::parse(result.out);
  EXPECT_EQ(report.at("fits_project"), true);
  EXPECT_EQ(report.at("fits_device"), true);
}

TEST_F(LabelMapCommand, CheckSaysWhyTheProjectIsNotSuited)
{
  const std::string why = "the project runs at 25 fps, some labels of the map are 30 fps";
  const ProcessResult result = reeldb({"label-map", "check", "nts9pin"});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.out.find("nts9pin: does not fit the project's frame rate (" + why + ")\n"), std::string::npos)
      << result.out;
  const ProcessResult report = reeldb({"label-map", "check", "nts9pin", "--json"});
  EXPECT_EQ(Json::parse(report.out).at("why"), why);
  EXPECT_FALSE(json({"label-map", "check", "pal9pin", "--json"}).contains("why"));
}

TEST_F(LabelMapCommand, CheckNamesTheFormatsThatDoNotSuitTheProjectAndNoOthers)
{
  const std::string entry = "[[entry]]\nlabel = \"timecode\"\nsource = \"ltc\"\n";
  std::string entries;
  for (const char* format : {"25 fps", "24 fps", "text", "50 fps", "30 fps", "60 fps"})
    entries += entry + "in_use = true\nformat = \"" + format + "\"\n";
  for (int unused = 6; unused < 14; ++unused)
    entries += entry + "in_use = false\nformat = \"30 fps\"\n";
  dir_.write("labelmaps/mixed.toml", entries);
  const auto why = [this](const std::string& project) {
    const ProcessResult result = reeldb({"-p", project, "label-map", "check", "mixed", "--json"});
    EXPECT_EQ(result.code, 1) << result.err;
    return Json::parse(result.out).at("why");
  };
  for (const std::string rate : {"50", "29.97", "59.94"})
    output({"project", "new", "at" + rate, "--rate", rate});
  EXPECT_EQ(why("main"), "the project runs at 25 fps, some labels of the map are 30 fps, 60 fps");
  EXPECT_EQ(why("at50"), "the project runs at 50 fps, some labels of the map are 30 fps, 60 fps");
  EXPECT_EQ(why("at29.97"), "the project runs at 29.97 fps, some labels of the map are 25 fps, 50 fps");
  EXPECT_EQ(why("at59.94"), "the project runs at 59.94 fps, some labels of the map are 25 fps, 50 fps");
}

TEST_F(LabelMapCommand, CheckSaysWhyADeviceIsNotSuited)
{
  const ProcessResult result = reeldb({"label-map", "check", "pal1394", "--device", "3"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "Label map <pal1394> requires 1394 labels - device <Deck> is not controllable via 1394\n");
  EXPECT_NE(result.out.find("pal1394: does not fit the device Deck\n"), std::string::npos) << result.out;
}

const std::string nine = "24f1394, 24f9pin, 24ftofd, nts9pin, ntsc1394, ntstofd, pal1394, pal9pin, paltofd";

TEST_F(LabelMapCommand, CheckOfAnUnknownMapIsRefusedWithThoseThatAre)
{
  for (const std::string name : {"nope", "../facility", "", "."}) {
    const ProcessResult result = reeldb({"label-map", "check", name});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "reeldb: \"" + name + "\": no such label map (this facility has: " + nine + ")\n");
  }
  std::filesystem::remove_all(path("labelmaps"));
  EXPECT_EQ(reeldb({"label-map", "check", "nope"}).err,
            "reeldb: \"nope\": no such label map (this facility has no label maps)\n");
}

TEST_F(LabelMapCommand, UnreadableMapIsReportedWithFileAndLine)
{
  dir_.write("labelmaps/bad.toml",
             "\n[[entry]]\nlabel = \"timecode\"\nin_use = true\nsource = \"smoke signals\"\nformat = \"25 fps\"\n");
  const ProcessResult result = reeldb({"label-map", "check", "bad"});
  EXPECT_EQ(result.code, 3);
  EXPECT_NE(result.err.find("bad.toml:5"), std::string::npos) << result.err;
  const ProcessResult list = reeldb({"label-map", "list", "--json"});
  EXPECT_EQ(list.code, 3);
  const Json maps = Json::parse(list.out);
  ASSERT_EQ(maps.size(), 10u);
  const Json& bad = maps.at(3);
  EXPECT_EQ(bad.at("name"), "bad");
  EXPECT_TRUE(bad.at("uses_vitc").is_null());
  EXPECT_TRUE(bad.at("fits_project").is_null());
  EXPECT_NE(bad.at("fault").get<std::string>().find("bad.toml:5"), std::string::npos);
  const std::string text = reeldb({"label-map", "list"}).out;
  EXPECT_NE(text.find("\nbad        -     unreadable    "), std::string::npos) << text;
  EXPECT_NE(text.find("bad.toml:5: entry.source: \"smoke signals\""), std::string::npos) << text;
}

TEST_F(LabelMapCommand, ResultThatTheFacilityDoesNotHaveIsWarnedAbout)
{
  std::filesystem::remove(path("labelmaps/pal9pin.toml"));
  const std::string fault = "\"pal9pin\": no such label map (this facility has: 24f1394, 24f9pin, 24ftofd, nts9pin, "
                            "ntsc1394, ntstofd, pal1394, paltofd)";
  ProcessResult result = reeldb({"label-map", "for", "--device", "3"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "pal9pin\n");
  EXPECT_EQ(result.err, "reeldb: " + fault + "\n");
  output({"create", "R1"});
  result = reeldb({"label-map", "for", "R1", "--device", "3", "--json"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "reeldb: " + fault + "\n");
  EXPECT_EQ(Json::parse(result.out), Json({{"reel", "R1"}, {"device", 3}, {"label_map", "pal9pin"}, {"fault", fault}}));
  dir_.write("labelmaps/pal9pin.toml", "x =");
  result = reeldb({"label-map", "for", "--device", "3"});
  EXPECT_EQ(result.out, "pal9pin\n");
  EXPECT_NE(result.err.find("pal9pin.toml:1: not valid TOML"), std::string::npos) << result.err;
}

TEST_F(LabelMapCommand, ReelsOwnMapComesBeforeTheDevices)
{
  output({"create", "R1"});
  EXPECT_EQ(output({"label-map", "for", "r1", "--device", "3"}), "pal9pin\n");
  reeldb({"set", "R1", "label-map=anything at all"});
  EXPECT_EQ(reeldb({"label-map", "for", "R1", "--device", "3"}).out, "anything at all\n");
  output({"set", "R1", "label-map=Device default"});
  EXPECT_EQ(json({"label-map", "for", "R1", "--device", "3", "--json"}),
            Json::parse(R"({"reel": "R1", "device": 3, "label_map": "pal9pin"})"));
  EXPECT_EQ(reeldb({"label-map", "for", "X", "--device", "3"}).code, 1);
  EXPECT_EQ(reeldb({"label-map", "for", "R1"}).code, 2);
}

} // namespace
