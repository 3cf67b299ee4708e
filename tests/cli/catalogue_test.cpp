// SPDX-License-Identifier: Apache-2.0
//
// What the facility has: types, devices, user field names.
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Types : public FacilityTest {};

TEST_F(Types, JsonListsNamesInTheOrderOfTheFileWithChannelsAndParameters)
{
  EXPECT_EQ(json({"type", "list", "--json"}), Json::parse(R"([
    {"name": "Tape 2ch", "video_channels": 1, "audio_channels": 2, "parameters": "VideoChannels=1 AudioChannels=2"},
    {"name": "Tape 4ch", "video_channels": 1, "audio_channels": 4, "parameters": "VideoChannels=1 AudioChannels=4"},
    {"name": "Audio only", "video_channels": 0, "audio_channels": 8, "parameters": "AudioChannels=8"},
    {"name": "Live", "video_channels": 1, "audio_channels": 0, "parameters": "VideoChannels=1"}])"));
}

TEST_F(Types, TableHasALineEach)
{
  EXPECT_EQ(output({"type", "list"}), "TYPE        VIDEO  AUDIO  PARAMETERS\n"
                                      "Tape 2ch        1      2  VideoChannels=1 AudioChannels=2\n"
                                      "Tape 4ch        1      4  VideoChannels=1 AudioChannels=4\n"
                                      "Audio only      0      8  AudioChannels=8\n"
                                      "Live            1      0  VideoChannels=1\n");
}

TEST_F(Types, EmptyNameIsShownAsSuch)
{
  dir_.write("devicedata/reeltype.dat", ":VideoChannels=1\n");
  EXPECT_EQ(output({"type", "list"}), "TYPE  VIDEO  AUDIO  PARAMETERS\n"
                                      "\"\"        1      0  VideoChannels=1\n");
  EXPECT_EQ(json({"type", "list", "--json"}).at(0).at("name"), "");
}

TEST_F(Types, EmptyCatalogueSaysSo)
{
  dir_.write("devicedata/reeltype.dat", "");
  EXPECT_EQ(output({"type", "list"}), "no reel types (add them to devicedata/reeltype.dat of the facility)\n");
  EXPECT_EQ(output({"type", "list", "--json"}), "[]\n");
}

TEST_F(Types, NeedsNoProject)
{
  EXPECT_EQ(json({"type", "list", "--json", "-p", "nope"}).size(), 4u);
}

class Devices : public FacilityTest {};

TEST_F(Devices, JsonHasEveryKey)
{
  const Json devices = json({"device", "list", "--json"});
  ASSERT_EQ(devices.size(), 2u);
  for (const Json& device : devices) {
    EXPECT_TRUE(device.at("number").is_number_integer());
    EXPECT_NE(device.at("name").get<std::string>(), "");
    for (const char* key : {"port", "input", "label_map", "last_reel"})
      EXPECT_TRUE(device.at(key).is_string()) << key;
    EXPECT_TRUE(device.at("audio_inputs").is_number_integer());
    EXPECT_TRUE(device.at("tapes").is_array());
  }
}

TEST_F(Devices, TableHasALineEach)
{
  const std::string text = output({"device", "list"});
  EXPECT_EQ(text.substr(0, 14), "NUMBER  NAME  ");
  for (const Json& device : json({"device", "list", "--json"}))
    EXPECT_NE(text.find("  " + device.at("name").get<std::string>() + "  "), std::string::npos) << text;
}

class Fields : public FacilityTest {
protected:
  Json field(int number) { return json({"field", "list", "--json"}).at(static_cast<std::size_t>(number)); }
};

TEST_F(Fields, DefaultNamesCountFrom1)
{
  EXPECT_EQ(json({"field", "list", "--json"}).size(), 6u);
  EXPECT_EQ(field(0), Json::parse(R"({"key": 0, "name": "User field 1", "stored": "", "default": "User field 1"})"));
  EXPECT_EQ(output({"field", "list"}).substr(0, 55), "KEY  NAME  DEFAULT\n  0  -     User field 1\n  1  -     U");
}

TEST_F(Fields, StoredNameIsShownAndKept)
{
  output({"field", "name", "0=Scene", "5=a=b"});
  EXPECT_EQ(field(0), Json::parse(R"({"key": 0, "name": "Scene", "stored": "Scene", "default": "User field 1"})"));
  EXPECT_EQ(field(5).at("name"), "a=b");
}

TEST_F(Fields, EmptyNameTakesTheNameBack)
{
  output({"field", "name", "0=Scene"});
  output({"field", "name", "0="});
  EXPECT_EQ(field(0).at("name"), "User field 1");
  EXPECT_EQ(field(0).at("stored"), "");
}

TEST_F(Fields, SameNameAgainSaysThatNothingChanged)
{
  output({"field", "name", "0=Scene"});
  EXPECT_EQ(output({"field", "name", "0=Scene"}).substr(0, 16), "nothing changed\n");
}

TEST_F(Fields, NameThatSetWouldTakeForAnotherFieldIsRefused)
{
  dir_.write("facility.toml", "[facility]\ndefault_project = \"main\"\n[system]\nreel_userfield4 = \"Light\"\n");
  output({"field", "name", "1=Take"});
  const auto expectNoName = [this](const Words& assignments, const std::string& message) {
    Words words = {"field", "name"};
    words.insert(words.end(), assignments.begin(), assignments.end());
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: " + message + "\n");
    EXPECT_EQ(field(0).at("stored"), "");
  };
  const auto fact = [](const std::string& name) { return "\"" + name + "\": not a valid name for user field 0 "; };
  for (const std::string name : {"bin", "Type", "LABEL_mapping", "last-device", "available", "inhibit"})
    expectNoName({"0=" + name}, fact(name) + "(reeldb set uses it for another field)");
  for (const std::string name : {"3", "0", "99", "-1", "user-field.0", "User-Field.x"})
    expectNoName({"0=" + name}, fact(name) + "(reeldb set uses it for another field)");
  expectNoName({"0= "}, fact(" ") + "(it is blank)");
  expectNoName({"0=tAKE"}, fact("tAKE") + "(user field 1 has this name)");
  expectNoName({"0=light"}, fact("light") + "(user field 4 has this name)");
  expectNoName({"0=user field 3"}, fact("user field 3") + "(user field 2 has this name)");
  expectNoName({"0=Scene", "3=scene"}, fact("Scene") + "(user field 3 has this name)");
  // Taken back, field 1 would be called what field 5 is.
  output({"field", "name", "5=x"});
  expectNoName({"1=", "5=User field 2"},
               "\"User field 2\": not a valid name for user field 1 (user field 5 has this name)");
  EXPECT_EQ(field(1).at("name"), "Take");
}

TEST_F(Fields, NamesMayChangePlacesAndTakeWhatBecomesFree)
{
  output({"field", "name", "0=Scene", "1=Take"});
  output({"field", "name", "0=Take", "1=Scene"});
  EXPECT_EQ(field(0).at("name"), "Take");
  output({"field", "name", "2=Weather", "3=User field 3"});
  EXPECT_EQ(field(3).at("name"), "User field 3");
}

TEST_F(Fields, NumberWithoutANameIsAUsageError)
{
  const ProcessResult result = reeldb({"field", "name", "0"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: \"0\": not of the form NUMBER=NAME\n");
}

TEST_F(Fields, NameThatCannotBeHandedOnIsAUsageError)
{
  const ProcessResult result = reeldb({"field", "name", "0=a\x1b"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: 0: \"a\\x1b\" cannot be stored (it holds a control character)\n");
  EXPECT_EQ(field(0).at("stored"), "");
}

TEST_F(Fields, NameTakenBackLeavesNothingInTheStateFile)
{
  output({"field", "name", "0=Scene"});
  EXPECT_NE(readFile("state.toml").find("reel_userfield0"), std::string::npos);
  output({"field", "name", "0="});
  EXPECT_EQ(readFile("state.toml").find("reel_userfield"), std::string::npos);
}

TEST_F(Fields, NamesServeEveryProject)
{
  output({"project", "new", "film"});
  output({"-p", "film", "field", "name", "0=Scene"});
  output({"create", "R1"});
  output({"set", "R1", "Scene=4"});
  EXPECT_EQ(reel("R1").at("user_fields"), Json::parse(R"({"0": "4"})"));
}

TEST_F(Fields, BadArgumentsAreUsageErrorsAndChangeNothing)
{
  for (const Words& words : std::vector<Words>{{"field", "name", "0=a", "6=x"},
                                               {"field", "name", "0=a", "x=y"},
                                               {"field", "name", "0=a", "plain"},
                                               {"field", "name", "0=a", "0=b"}})
    EXPECT_EQ(reeldb(words).code, 2) << words.back();
  EXPECT_EQ(field(0).at("stored"), "");
}

} // namespace
