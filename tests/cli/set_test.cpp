// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <filesystem>
#include <thread>

#include "cli/command_fixture.h"
#include "cli/stored_field.h"

using namespace reeldb_tests;

namespace {

class Set : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    output({"create", "A001"});
    output({"set", "A001", "type="});
  }
  void expectRefusal(int code, const Words& assignments, const std::string& message)
  {
    const std::string before = readFile("projects/main.reels");
    Words words = {"set", "A001"};
    words.insert(words.end(), assignments.begin(), assignments.end());
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.substr(0, message.size() + 8), "reeldb: " + message);
    EXPECT_EQ(readFile("projects/main.reels"), before);
  }
};

TEST_F(Set, ReportsWhatChangedAndWhatWasAlreadySo)
{
  EXPECT_EQ(output({"set", "a001", "bin=Shelf 4", "available=yes", "inhibit=on"}), "A001: bin: Shelf 4 (was -)\n"
                                                                                   "A001: available: yes (unchanged)\n"
                                                                                   "A001: inhibit: yes (was no)\n");
  EXPECT_EQ(json({"set", "A001", "bin=Shelf 4", "inhibit=no", "--json"}), Json::parse(R"({
    "id": "A001",
    "changed": [{"field": "inhibit", "from": "yes", "to": "no"}],
    "unchanged": [{"field": "bin", "value": "Shelf 4"}]})"));
}

TEST_F(Set, NothingToChangeLeavesTheProjectFileAlone)
{
  output({"set", "A001", "bin=x"});
  const std::string before = readFile("projects/main.reels");
  EXPECT_EQ(output({"set", "A001", "bin=x"}), "A001: bin: x (unchanged)\n");
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

TEST_F(Set, NewTypeAddsItsChannelsAndNeverTakesAny)
{
  output({"set", "A001", "type=Tape 4ch"});
  EXPECT_EQ(reel("A001").at("audio_channels"), 4);
  EXPECT_EQ(reel("A001").at("video_channels"), 1);
  output({"set", "A001", "type=Tape 2ch"});
  EXPECT_EQ(reel("A001").at("audio_channels"), 4);
  EXPECT_EQ(reel("A001").at("type"), "Tape 2ch");
}

TEST_F(Set, TypeThatIsNotListedIsStoredWithAWarning)
{
  const ProcessResult result = reeldb({"set", "A001", "type=Betacam"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "A001: type: Betacam (was -)\n");
  EXPECT_EQ(result.err,
            "reeldb: Betacam: not in the reel type catalogue (stored anyway; reeldb type list shows the catalogue)\n");
  EXPECT_EQ(reel("A001").at("type"), "Betacam");
}

TEST_F(Set, FlagsTakeTheUsualWords)
{
  for (const std::string word : {"yes", "TRUE", "On", "1"}) {
    output({"set", "A001", "available=" + word});
    EXPECT_EQ(reel("A001").at("available"), true) << word;
    output({"set", "A001", "available=no"});
  }
  for (const std::string word : {"No", "false", "off", "0"}) {
    output({"set", "A001", "available=yes"});
    output({"set", "A001", "available=" + word});
    EXPECT_EQ(reel("A001").at("available"), false) << word;
  }
}

TEST_F(Set, OtherWordForAFlagIsAUsageError)
{
  expectRefusal(2, {"available=maybe"}, "available: \"maybe\" is neither yes nor no\n");
  expectRefusal(2, {"inhibit="}, "inhibit: \"\" is neither yes nor no\n");
}

TEST_F(Set, UnknownFieldIsAUsageErrorThatNamesTheFields)
{
  expectRefusal(2, {"colour=red"},
                "colour: no such field (type, available, inhibit, label-map, bin, last-device, "
                "user-field.0 to user-field.5, or the name of a user field)\n");
}

TEST_F(Set, ArgumentWithoutEqualsSignIsAUsageError)
{
  expectRefusal(2, {"bin"}, "\"bin\": not of the form FIELD=VALUE\n");
  expectRefusal(2, {"=x"}, "\"=x\": not of the form FIELD=VALUE\n");
}

TEST_F(Set, FieldGivenTwiceIsAUsageError)
{
  expectRefusal(2, {"bin=a", "bin=b"}, "bin: given twice\n");
  expectRefusal(2, {"0=a", "user-field.0=b"}, "user-field.0: given twice\n");
}

TEST_F(Set, OneBadValueStoresNothing)
{
  expectRefusal(2, {"bin=new", "available=perhaps"}, "available: ");
  EXPECT_EQ(reel("A001").at("bin"), "");
}

TEST_F(Set, FieldWithTheExpectedValueIsChanged)
{
  output({"set", "A001", "bin=Shelf 4", "--if", "bin="});
  EXPECT_EQ(output({"set", "A001", "--if", "bin=Shelf 4", "bin=Shelf 5", "--if", "available=ON"}),
            "A001: bin: Shelf 5 (was Shelf 4)\n");
}

TEST_F(Set, FieldWithAnotherValueIsAConflictThatNamesTheCommit)
{
  output({"set", "A001", "bin=Shelf 4"});
  output({"set", "A001", "0=night"});
  expectRefusal(1, {"0=day", "--if", "bin=Shelf 3"}, "A001: bin is \"Shelf 4\", not \"Shelf 3\" (changed by ");
  expectRefusal(1, {"0=day", "--if", "0=night", "--if", "bin="}, "A001: bin is \"Shelf 4\", not empty (changed by ");
  expectRefusal(1, {"0=day", "--if", "available=no"}, "A001: available is \"yes\", not \"no\" (changed by ");
  const ProcessResult result = reeldb({"set", "A001", "0=day", "--if", "bin=Shelf 3", "--json"});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find(", revision 3: reeldb set A001 'bin=Shelf 4')\n"), std::string::npos) << result.err;
  const Json conflict = Json::parse(result.out);
  EXPECT_EQ(conflict.at("id"), "A001");
  EXPECT_EQ(conflict.at("field"), "bin");
  EXPECT_EQ(conflict.at("expected"), "Shelf 3");
  EXPECT_EQ(conflict.at("found"), "Shelf 4");
  EXPECT_EQ(conflict.at("commit").at("revision"), 3);
  EXPECT_EQ(reel("A001").at("user_fields"), Json::parse(R"({"0": "night"})"));
}

TEST_F(Set, BadExpectationIsAUsageError)
{
  expectRefusal(2, {"bin=x", "--if", "colour=red"}, "colour: no such field");
  expectRefusal(2, {"bin=x", "--if", "available=maybe"}, "available: \"maybe\" is neither yes nor no\n");
  expectRefusal(2, {"bin=x", "--if", "bin"}, "\"bin\": not of the form field=value\n");
}

TEST_F(Set, OfManyWhoExpectOneValueOneSucceeds)
{
  std::array<int, 6> codes{};
  std::vector<std::thread> all;
  for (std::size_t i = 0; i < codes.size(); ++i)
    all.emplace_back([&, i] { codes[i] = reeldb({"set", "A001", "bin=" + std::to_string(i), "--if", "bin="}).code; });
  for (std::thread& one : all)
    one.join();
  EXPECT_EQ(std::count(codes.begin(), codes.end(), 0), 1);
  EXPECT_EQ(std::count(codes.begin(), codes.end(), 1), static_cast<int>(codes.size()) - 1);
}

TEST_F(Set, UserFieldsGoByNumberByPrefixAndByName)
{
  output({"field", "name", "2=Scene"});
  output({"set", "A001", "0=zero", "user-field.1=one", "scene=two", "User field 4=three", "User-Field.4=four"});
  EXPECT_EQ(reel("A001").at("user_fields"),
            Json::parse(R"({"0": "zero", "1": "one", "2": "two", "3": "three", "4": "four"})"));
}

TEST_F(Set, NumbersCountFrom0WhereDefaultNamesCountFrom1)
{
  output({"set", "A001", "User field 1=x"});
  EXPECT_EQ(reel("A001").at("user_fields"), Json::parse(R"({"0": "x"})"));
}

TEST_F(Set, UserFieldNumberOutOfRangeIsAUsageError)
{
  expectRefusal(2, {"6=x"}, "6: no such user field (they are numbered from 0 to 5)\n");
  expectRefusal(2, {"user-field.x=x"}, "user-field.x: no such user field (they are numbered from 0 to 5)\n");
  expectRefusal(2, {"-1=x"}, "-1: no such user field (they are numbered from 0 to 5)\n");
}

TEST_F(Set, NameThatTwoUserFieldsHaveIsRefused)
{
  dir_.write(
      "facility.toml",
      "[facility]\ndefault_project = \"main\"\n[system]\nreel_userfield0 = \"Scene\"\nreel_userfield3 = \"scene\"\n");
  expectRefusal(1, {"Scene=x"}, "Scene: two user fields have this name (use user-field.0 or user-field.3 instead)\n");
}

TEST_F(Set, LastDeviceMustBeADevice)
{
  const Json devices = json({"device", "list", "--json"});
  const std::string name = devices.at(0).at("name");
  expectRefusal(1, {"last-device=Nope"}, "last-device: no device has the name \"Nope\" (this facility has: ");
  output({"set", "A001", "last-device=" + name});
  EXPECT_EQ(reel("A001").at("last_device"), name);
  // Without a listed type the device says how many channels there are to be.
  EXPECT_EQ(reel("A001").at("audio_channels"), devices.at(0).at("audio_inputs"));
  output({"set", "A001", "last_device="});
  EXPECT_EQ(reel("A001").at("last_device"), "");
}

TEST_F(Set, EmptyValueTakesTheValueAway)
{
  output({"set", "A001", "bin=x", "label-map=pal9pin", "0=y"});
  output({"set", "A001", "bin=", "label-map=", "0="});
  EXPECT_EQ(reel("A001").at("bin"), "");
  EXPECT_EQ(reel("A001").at("label_mapping"), "");
  EXPECT_EQ(reel("A001").at("user_fields"), Json::object());
}

TEST_F(Set, ValueMayHoldEqualsSignsAndBlanks)
{
  const std::string value = " a=b \xc3\xa9 ";
  EXPECT_EQ(output({"set", "A001", "bin=" + value}), "A001: bin:  a=b \xc3\xa9  (was -)\n");
  EXPECT_EQ(reel("A001").at("bin"), value);
}

TEST_F(Set, ValueThatCannotBeHandedOnIsAUsageError)
{
  expectRefusal(2, {"bin=a\x1b[2J"}, "bin: \"a\\x1b[2J\" cannot be stored (it holds a control character)\n");
  expectRefusal(2, {"available=no", "type=\xff"}, "type: \"\\xff\" cannot be stored (it is not UTF-8)\n");
  expectRefusal(2, {"0=\n"}, "0: \"\\n\" cannot be stored (it holds a control character)\n");
  EXPECT_EQ(reel("A001").at("available"), true);
}

TEST_F(Set, ReelOfAnOddNameIsFoundAndItsOddValueMended)
{
  output({"set", "A001", "bin=x"});
  setStored(path("projects/main.reels"), "A001", "profile_bin_name", "x\x1b");
  respell(path("projects/main.reels"), "A001", "a\xff");
  EXPECT_EQ(output({"set", "a\xff", "bin=y"}), "a\\xff: bin: y (was x\\x1b)\n");
}

TEST_F(Set, LabelMapThatCannotBeReadIsStoredWithAWarning)
{
  ProcessResult result = reeldb({"set", "A001", "label-map=nope"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "A001: label-map: nope (was -)\n");
  EXPECT_EQ(result.err, "reeldb: \"nope\": no such label map (this facility has: 24f1394, 24f9pin, 24ftofd, nts9pin, "
                        "ntsc1394, ntstofd, pal1394, pal9pin, paltofd); stored anyway\n");
  EXPECT_EQ(reel("A001").at("label_mapping"), "nope");
  dir_.write("labelmaps/bad.toml", "x =");
  result = reeldb({"set", "A001", "label-map=bad"});
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.err.find("bad.toml:1: not valid TOML"), std::string::npos) << result.err;
  for (const std::string good : {"pal9pin", "Device default", ""})
    EXPECT_EQ(reeldb({"set", "A001", "label-map=" + good}).err, "") << good;
}

TEST_F(Set, TextThatTheLibraryReadsAsNoValueIsWarnedAbout)
{
  ProcessResult result = reeldb({"set", "A001", "bin=default", "label-map=unknown"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "reeldb: bin: \"default\" means no value\nreeldb: label-map: \"unknown\" means no value\n");
  EXPECT_EQ(reel("A001").at("bin"), "");
  EXPECT_EQ(reel("A001").at("label_mapping"), "");
  EXPECT_EQ(reeldb({"set", "A001", "bin=unknown"}).err, "");
  EXPECT_EQ(reel("A001").at("bin"), "unknown");
}

TEST_F(Set, LabelMapWhoseNameTheLibraryCannotFindIsWarnedOf)
{
  std::filesystem::copy_file(path("labelmaps/pal9pin.toml"), path("labelmaps/caf\xc3\xa9.toml"));
  EXPECT_EQ(reeldb({"set", "A001", "label-map=caf\xc3\xa9"}).err,
            "reeldb: \"caf\xc3\xa9\": stored anyway, but a reel's label map is only found if its name is ASCII\n");
}

TEST_F(Set, ValueThatWouldBeCutIsRefused)
{
  output({"set", "A001", "bin=" + std::string(2047, 'b')});
  EXPECT_EQ(reel("A001").at("bin"), std::string(2047, 'b'));
  expectRefusal(1, {"bin=" + std::string(2048, 'c')}, "bin: value too long (2048 bytes; at most 2047)\n");
}

TEST_F(Set, UnknownReelIsRefused)
{
  const ProcessResult result = reeldb({"set", "B001", "bin=x"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: B001: no such reel\n");
}

} // namespace
