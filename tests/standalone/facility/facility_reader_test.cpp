// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;
using Rates = std::vector<std::pair<std::string, int>>;

class FacilityReaderTest : public testing::Test {
protected:
  fs::path file() const { return folder_ / "facility.toml"; }
  fs::path folder() const { return folder_.path(); }
  Facility read(std::string_view toml) const
  {
    writeBytes(file(), toml);
    return Facility::read(folder());
  }
  std::string errorFor(std::string_view toml) const
  {
    return errorOf([&] { read(toml); });
  }

private:
  TempFolder folder_;
};

TEST_F(FacilityReaderTest, EmptyFileIsAFacilityOfDefaults)
{
  const Facility facility = read("");
  EXPECT_EQ(facility.directory(), folder());
  EXPECT_EQ(facility.defaultProject(), "");
  EXPECT_EQ(facility.configString("default_reel_type"), std::nullopt);
  EXPECT_EQ(facility.resourceText(10043), "Reel");
  EXPECT_EQ(facility.frameRates(), Facility().frameRates());
  EXPECT_TRUE(facility.devices().empty());
  EXPECT_FALSE(facility.stateChanged());
  EXPECT_TRUE(facility.keepsNames());
}

TEST_F(FacilityReaderTest, HistoryWithoutNamesIsRead)
{
  EXPECT_FALSE(read("[history]\nnames = false\n").keepsNames());
  EXPECT_TRUE(read("[history]\nnames = true\n").keepsNames());
  EXPECT_TRUE(read("[history]\n").keepsNames());
  EXPECT_NE(errorFor("[history]\nnames = 0\n").find("facility.toml:2: history.names"), std::string::npos);
  EXPECT_NE(errorFor("[history]\nname = true\n").find("facility.toml:2: history.name"), std::string::npos);
}

TEST_F(FacilityReaderTest, EveryValueIsRead)
{
  const Facility facility = read(R"(
[facility]
name = "Site"
default_project = "main"
default_reel_type = "Tape 2ch"
[texts]
reel = "Band"
[frame_rates]
"25p" = 3
"100" = 12
"25" = 3
[system]
reel_userfield0 = "Scene"
"any key" = ""
[[device]]
number = 7
id = 4294967295
name = "Deck é"
port = "9-pin"
input = "hdmi"
audio_inputs = 4
tapes = ["Tape 2ch", "Live"]
label_map = "pal9pin"
[[device]]
number = 0
id = 1
name = "Plain"
)");
  EXPECT_EQ(facility.defaultProject(), "main");
  EXPECT_EQ(facility.configString("default_reel_type"), "Tape 2ch");
  EXPECT_EQ(facility.configString("other"), std::nullopt);
  EXPECT_EQ(facility.resourceText(10043), "Band");
  EXPECT_EQ(facility.frameRates(), (Rates{{"25p", 3}, {"100", 12}, {"25", 3}})); // in the order of the file
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "Scene");
  EXPECT_EQ(facility.systemValue("any key"), "");
  ASSERT_EQ(facility.devices().size(), 2u);
  const DeviceSettings& deck = facility.devices()[0];
  EXPECT_EQ(deck.number, 7);
  EXPECT_EQ(deck.id, 4294967295u);
  EXPECT_EQ(deck.name, "Deck \xC3\xA9");
  EXPECT_EQ(deck.portType, 0);
  EXPECT_EQ(deck.inputType, 4);
  EXPECT_EQ(deck.audioInputs, 4);
  EXPECT_EQ(deck.tapes, (std::vector<std::string>{"Tape 2ch", "Live"}));
  EXPECT_EQ(deck.labelMap, "pal9pin");
  EXPECT_EQ(deck.lastReel, "");
  const DeviceSettings& plain = facility.devices()[1];
  EXPECT_EQ(plain.portType, 3);
  EXPECT_EQ(plain.inputType, 9);
  EXPECT_EQ(plain.audioInputs, 0);
  EXPECT_TRUE(plain.tapes.empty());
  EXPECT_EQ(plain.labelMap, "");
}

TEST_F(FacilityReaderTest, WordsOfPortsAndInputsStandForTheirCodes)
{
  const auto device = [&](const std::string& key, const std::string& word) {
    return read("[[device]]\nnumber = 0\nid = 1\nname = \"D\"\n" + key + " = \"" + word + "\"\n").devices()[0];
  };
  const std::pair<const char*, int> ports[] = {{"9-pin", 0}, {"1394", 1}, {"device-named", 2}, {"none", 3}};
  for (const auto& [word, code] : ports)
    EXPECT_EQ(device("port", word).portType, code) << word;
  const std::pair<const char*, int> inputs[] = {{"composite", 0}, {"s-video", 1}, {"component", 2}, {"sdi", 3},
                                                {"hdmi", 4},      {"1394", 5},    {"none", 9}};
  for (const auto& [word, code] : inputs)
    EXPECT_EQ(device("input", word).inputType, code) << word;
}

TEST(FacilityWords, CodesHaveTheWordsThatAreRead)
{
  const char* const ports[] = {"9-pin", "1394", "device-named", "none"};
  for (int code = 0; code < 4; ++code)
    EXPECT_EQ(portWord(code), ports[code]);
  const char* const inputs[] = {"composite", "s-video", "component", "sdi", "hdmi", "1394"};
  for (int code = 0; code < 6; ++code)
    EXPECT_EQ(inputWord(code), inputs[code]);
  EXPECT_EQ(inputWord(9), "none");
}

TEST(FacilityWords, CodeWithoutAWordIsItsNumber)
{
  EXPECT_EQ(portWord(4), "4");
  EXPECT_EQ(portWord(-1), "-1");
  EXPECT_EQ(inputWord(6), "6");
}

TEST_F(FacilityReaderTest, StateFileOverridesTheFacility)
{
  writeBytes(folder() / "state.toml", "[system]\nreel_userfield0 = \"Stored\"\nempty = \"\"\n"
                                      "[last_reel]\n1 = \"R1\"\n99 = \"of a device that is gone\"\n");
  const Facility facility = read("[system]\nreel_userfield0 = \"Scene\"\nempty = \"full\"\nkept = \"kept\"\n"
                                 "[[device]]\nnumber = 3\nid = 1\nname = \"A\"\n"
                                 "[[device]]\nnumber = 1\nid = 2\nname = \"B\"\n");
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "Stored");
  EXPECT_EQ(facility.systemValue("empty"), "");
  EXPECT_EQ(facility.systemValue("kept"), "kept");
  EXPECT_EQ(facility.devices()[0].lastReel, "R1");
  EXPECT_EQ(facility.devices()[1].lastReel, "");
}

TEST_F(FacilityReaderTest, TypeRulesAreReadInTheirOrder)
{
  std::filesystem::create_directory(folder() / "devicedata");
  writeBytes(folder() / "devicedata/reeltype.dat", " Tape 2ch :VideoChannels=1\nDisc:VideoChannels=1\n");
  const Facility facility = read("[[type_rule]]\ntype = \"Tape 2ch\"\nname = \"BC*\"\ntracks = \"both\"\n"
                                 "[[type_rule]]\ntype = \"Disc\"\nextensions = [\"mov\", \"mxf\"]\n");
  ASSERT_EQ(facility.typeRules().size(), 2u);
  const TypeRule& first = facility.typeRules()[0];
  EXPECT_EQ(first.type, "Tape 2ch");
  EXPECT_EQ(first.name, "BC*");
  EXPECT_TRUE(first.extensions.empty());
  EXPECT_EQ(first.tracks, TypeRule::Tracks::Both);
  EXPECT_EQ(facility.typeRules()[1].extensions, (std::vector<std::string>{"mov", "mxf"}));
  EXPECT_EQ(facility.typeRules()[1].tracks, TypeRule::Tracks::Any);
}

TEST_F(FacilityReaderTest, EveryErrorNamesFileLineAndKey)
{
  const std::string device = "[[device]]\nnumber = 0\nid = 1\nname = \"D\"\n"; // four lines
  const std::string second = device + "[[device]]\nnumber = 1\nid = 2\nname = \"E\"\n";
  const std::pair<std::string, std::string> cases[] = {
      {"a = \n", "1: not valid TOML (Error while parsing key-value pair: expected value, saw '\\n')"},
      {"[facility]\nname = \"a\"\nname = \"b\"\n",
       "3: not valid TOML (Error while parsing key-value pair: cannot redefine existing string 'name')"},
      {"\n[system]\nkey = \"\xFF\"\n", "3: not valid TOML (Encountered invalid utf-8 sequence)"},
      {"\nfoo = 1\n", "2: foo: unknown key (known: facility, texts, frame_rates, system, device, history, type_rule)"},
      {"zoo = 1\nair = 2\n",
       "1: zoo: unknown key (known: facility, texts, frame_rates, system, device, history, type_rule)"},
      {"[devices]\n",
       "1: devices: unknown key (known: facility, texts, frame_rates, system, device, history, type_rule)"},
      {"facility = 3\n", "1: facility: a table is needed (this is a whole number)"},
      {"[facility]\n\nnam = \"x\"\n", "3: facility.nam: unknown key (known: name, default_project, default_reel_type)"},
      {"[facility]\nname = 3.5\n", "2: facility.name: a text is needed (this is a decimal number)"},
      {"[facility]\nname = \"a\\nb\"\n", "2: facility.name: \"a\\nb\" holds a control character"},
      {"[facility]\nname = \"\\u0000\"\n", "2: facility.name: \"\\x00\" holds a control character"},
      {"[facility]\nname = \"\\u009B2J\"\n", "2: facility.name: \"\\u009b2J\" holds a control character"},
      {"[frame_rates]\n\"a\\u001bb\" = 3\n",
       "2: frame_rates.a\\x1bb: the name of a frame rate holds a control character"},
      {"[facility]\ndefault_reel_type = [1]\n", "2: facility.default_reel_type: a text is needed (this is an array)"},
      {"[facility]\ndefault_project = \"\"\n",
       "2: facility.default_project: \"\": not a valid project name (it is empty)"},
      {"[facility]\ndefault_project = \"../x\"\n",
       "2: facility.default_project: \"../x\": not a valid project name (it begins with a dot)"},
      {"texts = \"x\"\n", "1: texts: a table is needed (this is a text)"},
      {"[texts]\nreal = \"x\"\n", "2: texts.real: unknown key (known: reel)"},
      {"[texts]\nreel = true\n", "2: texts.reel: a text is needed (this is true or false)"},
      {"[frame_rates]\n\"25\" = \"3\"\n", "2: frame_rates.25: a whole number is needed (this is a text)"},
      {"[frame_rates]\n\"25\" = 3.0\n", "2: frame_rates.25: a whole number is needed (this is a decimal number)"},
      {"[frame_rates]\n\"25\" = -1\n", "2: frame_rates.25: -1 is out of range (0 to 255)"},
      {"[frame_rates]\n\"25\" = 256\n", "2: frame_rates.25: 256 is out of range (0 to 255)"},
      {"[frame_rates]\n29.97 = 4\n", "2: frame_rates.29: a whole number is needed (this is a table)"},
      {"[frame_rates]\n\" \" = 4\n", "2: frame_rates. : a frame rate needs a name"},
      {"[system]\nkey = 1979-05-27\n", "2: system.key: a text is needed (this is a date or time)"},
      {"[system]\n\"a\\nb\" = 1\n", "2: system.a\\nb: a text is needed (this is a whole number)"},
      {"[device]\nnumber = 0\n", "1: device: tables [[device]] are needed (this is a table)"},
      {"device = [1]\n", "1: device: a table is needed (this is a whole number)"},
      {"[[device]]\nid = 1\nname = \"D\"\n", "1: device.number: a device needs one"},
      {"\n[[device]]\nnumber = 0\nname = \"D\"\n", "2: device.id: a device needs one"},
      {"[[device]]\nnumber = 0\nid = 1\n", "1: device.name: a device needs one"},
      {"[[device]]\nnumber = 0\nid = 1\nname = \"\"\n", "4: device.name: a device needs one"},
      {"[[device]]\nnumber = 0\nid = 1\nname = \"  \"\n", "4: device.name: a device needs one"},
      {"[[device]]\nnumber = -1\n", "2: device.number: -1 is out of range (0 to 9999)"},
      {"[[device]]\nnumber = 10000\n", "2: device.number: 10000 is out of range (0 to 9999)"},
      {"[[device]]\nnumber = \"0\"\n", "2: device.number: a whole number is needed (this is a text)"},
      {"[[device]]\nnumber = 0\nid = 0\n", "3: device.id: 0 is out of range (1 to 4294967295)"},
      {"[[device]]\nnumber = 0\nid = 4294967296\n", "3: device.id: 4294967296 is out of range (1 to 4294967295)"},
      {device + "prot = \"9-pin\"\n",
       "5: device.prot: unknown key (known: number, id, name, port, input, audio_inputs, tapes, label_map)"},
      {device + "port = \"9pin\"\n", "5: device.port: \"9pin\" is unknown (known: 9-pin, 1394, device-named, none)"},
      {device + "port = 0\n", "5: device.port: a text is needed (this is a whole number)"},
      {device + "input = \"SDI\"\n", "5: device.input: \"SDI\" is unknown (known: composite, s-video, component, "
                                     "sdi, hdmi, 1394, none)"},
      {device + "audio_inputs = -2\n", "5: device.audio_inputs: -2 is out of range (0 to 1024)"},
      {device + "audio_inputs = 1025\n", "5: device.audio_inputs: 1025 is out of range (0 to 1024)"},
      {device + "tapes = \"Live\"\n", "5: device.tapes: an array of texts is needed (this is a text)"},
      {device + "tapes = [\n\"Live\",\n7]\n", "7: device.tapes: a text is needed (this is a whole number)"},
      {device + "tapes = [\"Live\", \"\"]\n", "5: device.tapes: a reel type without a name"},
      {device + "label_map = {}\n", "5: device.label_map: a text is needed (this is a table)"},
      {second + "[[device]]\nnumber = 1\nid = 3\nname = \"F\"\n", "10: device.number: 1 is taken (by device \"E\")"},
      {second + "[[device]]\nnumber = 2\nid = 1\nname = \"F\"\n", "11: device.id: 1 is taken (by device \"D\")"},
      {second + "[[device]]\nnumber = 2\nid = 3\nname = \"E\"\n", "12: device.name: \"E\" is taken (by device 1)"},
      {"[[type_rule]]\nname = \"SR*\"\n", "1: type_rule.type: a rule needs one"},
      {"[[type_rule]]\nname = \"SR*\"\ntype = \"Betacam\"\n",
       "3: type_rule.type: \"Betacam\" is not a type of devicedata/reeltype.dat"},
      {"[[type_rule]]\ntype = \"Disc\"\n", "1: type_rule: a rule needs a name, extensions or tracks"},
      {"[[type_rule]]\ntype = \"Disc\"\nextensions = [\"mov\", \".mxf\"]\n",
       "3: type_rule.extensions: \".mxf\" is not an extension (write it without the dot)"},
      {"[[type_rule]]\ntype = \"Disc\"\ntracks = \"sound\"\n",
       "3: type_rule.tracks: \"sound\" is unknown (known: audio, video, both)"},
      {"[[type_rule]]\ntype = \"Disc\"\ntrack = \"video\"\n",
       "3: type_rule.track: unknown key (known: type, name, extensions, tracks)"},
  };
  std::filesystem::create_directory(folder() / "devicedata");
  writeBytes(folder() / "devicedata/reeltype.dat", "Disc:VideoChannels=1\n");
  for (const auto& [toml, message] : cases)
    EXPECT_EQ(errorFor(toml), "Unreadable: " + file().native() + ":" + message) << toml;
}

TEST_F(FacilityReaderTest, NamesThatDifferInCaseAreTwoDevices)
{
  EXPECT_EQ(read("[[device]]\nnumber = 0\nid = 1\nname = \"d\"\n[[device]]\nnumber = 1\nid = 2\nname = \"D\"\n")
                .devices()
                .size(),
            2u);
}

TEST_F(FacilityReaderTest, FolderWithoutTheFileIsNotFound)
{
  EXPECT_EQ(errorOf([&] { Facility::read(folder()); }),
            "NotFound: " + folder().native() + ": not a facility (facility.toml not found)");
}

TEST_F(FacilityReaderTest, AnythingButAFolderIsNotFound)
{
  const fs::path none = folder() / "none", notAFolder = folder() / "f";
  writeBytes(notAFolder, "");
  EXPECT_EQ(errorOf([&] { Facility::read(none); }), "NotFound: " + none.native() + ": not a facility (no such folder)");
  EXPECT_EQ(errorOf([&] { Facility::read(notAFolder); }),
            "NotFound: " + notAFolder.native() + ": not a facility (not a folder)");
}

TEST_F(FacilityReaderTest, AnythingButARegularFileIsRefusedWithoutWaiting)
{
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] { Facility::read(folder()); }),
            "Unreadable: " + file().native() + ": not a regular file (a named pipe)");
  fs::remove(file());
  fs::create_directory(file());
  EXPECT_EQ(errorOf([&] { Facility::read(folder()); }),
            "Unreadable: " + file().native() + ": not a regular file (a folder)");
}

TEST_F(FacilityReaderTest, LinkToTheFileIsFollowed)
{
  writeBytes(folder() / "real.toml", "[texts]\nreel = \"Linked\"\n");
  fs::create_symlink("real.toml", file());
  EXPECT_EQ(Facility::read(folder()).resourceText(10043), "Linked");
}

TEST_F(FacilityReaderTest, RelativeFolderStaysTheSameWhenTheWorkingFolderChanges)
{
  writeBytes(file(), "");
  const fs::path before = fs::current_path();
  fs::current_path(folder());
  const Facility facility = Facility::read(".");
  fs::current_path(before);
  EXPECT_TRUE(facility.directory().is_absolute());
  EXPECT_TRUE(fs::equivalent(facility.directory(), folder()));
}

} // namespace
