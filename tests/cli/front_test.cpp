// SPDX-License-Identifier: Apache-2.0
//
// The C front: where the facility is, what is wrong with it, and the type file that must not end the process.
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/command_fixture.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

class Front : public CommandTest {
protected:
  /// Makes a facility in a folder of that name.
  void makeFacility(const std::string& name) { ASSERT_EQ(reeldb({"init", name}).code, 0); }
  /// Makes the folder's facility recognisable by its only reel.
  void mark(const std::string& name, const std::string& reel)
  {
    makeFacility(name);
    ASSERT_EQ(reeldb({"-C", name, "create", reel}).code, 0);
  }
  std::string firstReel(const Words& words, const ProcessSetting& setting)
  {
    const ProcessResult result = reeldb(words, setting);
    EXPECT_EQ(result.code, 0) << result.err;
    return result.code == 0 ? Json::parse(result.out).at(0).at("id").get<std::string>() : "";
  }
};

TEST_F(Front, OptionIsTakenInEveryFormBeforeAndAfterTheCommand)
{
  mark("one", "R1");
  for (const Words& words : std::vector<Words>{{"-C", "one", "list", "--json"},
                                               {"list", "--json", "-C", "one"},
                                               {"list", "-C=one", "--json"},
                                               {"-Cone", "list", "--json"},
                                               {"list", "--facility", "one", "--json"},
                                               {"--facility=one", "list", "--json"}})
    EXPECT_EQ(firstReel(words, setting_), "R1") << words[0] << " " << words[1];
}

TEST_F(Front, LastOfTwoFoldersCounts)
{
  mark("one", "R1");
  mark("two", "R2");
  EXPECT_EQ(firstReel({"-C", "one", "list", "--json", "-C", "two"}, setting_), "R2");
}

TEST_F(Front, OptionComesBeforeEnvironmentBeforeWorkingFolder)
{
  mark("one", "R1");
  mark("two", "R2");
  mark("three", "R3");
  ProcessSetting inThree = setting_;
  inThree.folder = path("three");
  EXPECT_EQ(firstReel({"list", "--json"}, inThree), "R3");
  inThree.environment["REELDB_FACILITY"] = "../two";
  EXPECT_EQ(firstReel({"list", "--json"}, inThree), "R2");
  EXPECT_EQ(firstReel({"list", "--json", "-C", "../one"}, inThree), "R1");
}

TEST_F(Front, EmptyEnvironmentVariableCountsAsNone)
{
  mark("one", "R1");
  ProcessSetting inOne = setting_;
  inOne.folder = path("one");
  inOne.environment["REELDB_FACILITY"] = "";
  EXPECT_EQ(firstReel({"list", "--json"}, inOne), "R1");
}

TEST_F(Front, NearestFolderUpwardsIsFound)
{
  mark("one", "R1");
  fs::create_directories(path("one/a/b"));
  ProcessSetting below = setting_;
  below.folder = path("one/a/b");
  EXPECT_EQ(firstReel({"list", "--json"}, below), "R1");
  mark("one/a", "R2");
  EXPECT_EQ(firstReel({"list", "--json"}, below), "R2");
}

TEST_F(Front, FolderNameMayHoldAnyByte)
{
  const std::string name = "b\xff \xc3\xa9\n'\"[x]";
  mark(name, "R1");
  EXPECT_EQ(firstReel({"-C", name, "list", "--json"}, setting_), "R1");
}

TEST_F(Front, NoFacilityAnywhereIsRefused)
{
  const ProcessResult result = reeldb({"list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "reeldb: " + fs::canonical(dir_.path()).string() +
                            ": no facility (facility.toml not found here or above; reeldb init makes one, -C DIR or "
                            "REELDB_FACILITY names one)\n");
}

TEST_F(Front, FolderWithoutFacilityIsRefused)
{
  fs::create_directory(path("empty"));
  const ProcessResult result = reeldb({"-C", "empty", "list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: empty: no facility (facility.toml not found)\n");
}

TEST_F(Front, MissingFolderIsRefused)
{
  const ProcessResult result = reeldb({"-C", "nowhere", "list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: nowhere: no facility (no such folder)\n");
}

TEST_F(Front, FileInPlaceOfFolderIsRefused)
{
  dir_.write("file", "");
  const ProcessResult result = reeldb({"-C", "file", "list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: file: no facility (Not a directory)\n");
}

TEST_F(Front, EnvironmentIsRefusedLikeTheOption)
{
  ProcessSetting setting = setting_;
  setting.environment["REELDB_FACILITY"] = "nowhere";
  const ProcessResult result = reeldb({"list"}, setting);
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: nowhere: no facility (no such folder)\n");
}

TEST_F(Front, ControlCharactersOfAPathAreEscapedInTheMessage)
{
  const ProcessResult result = reeldb({"-C", "a\x1b[31m\n\xc2\x9b", "list"});
  EXPECT_EQ(result.err, "reeldb: a\\x1b[31m\\x0a\\xc2\\x9b: no facility (no such folder)\n");
}

TEST_F(Front, PipeInPlaceOfTheFileIsRefusedWithoutWaiting)
{
  fs::create_directory(path("pipe"));
  ASSERT_EQ(mkfifo(path("pipe/facility.toml").c_str(), 0600), 0);
  const ProcessResult result = reeldb({"-C", "pipe", "list"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, "reeldb: pipe: no facility (facility.toml is no regular file)\n");
}

TEST_F(Front, UnreadableFileIsTold)
{
  if (geteuid() == 0)
    GTEST_SKIP() << "root reads every file";
  makeFacility("one");
  fs::permissions(path("one/facility.toml"), fs::perms::none);
  const ProcessResult result = reeldb({"-C", "one", "list"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err,
            "reeldb: " + fs::canonical(path("one")).string() + "/facility.toml: cannot be read (Permission denied)\n");
}

TEST_F(Front, OptionWithoutFolderIsAUsageError)
{
  for (const Words& words : std::vector<Words>{{"list", "-C"}, {"list", "-C", ""}, {"list", "--facility="}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "reeldb: -C: no folder given (-C DIR names the facility)\n");
  }
}

TEST_F(Front, AfterTwoDashesTheOptionIsAnArgument)
{
  makeFacility("one");
  EXPECT_EQ(output({"-C", "one", "create", "--", "-C"}), "-C\n");
}

TEST_F(Front, UsageErrorsComeBeforeAMissingFacility)
{
  const ProcessResult result = reeldb({"frobnicate"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: \"frobnicate\": no such command (reeldb --help tells more)\n");
}

TEST_F(Front, BrokenFacilityDoesNoHarmToWhatNeedsNone)
{
  dir_.write("broken/facility.toml", "this is no TOML [");
  dir_.write("broken/devicedata/reeltype.dat", std::string(5000, 'x') + ":VideoChannels=1\n");
  ProcessSetting broken = setting_;
  broken.environment["REELDB_FACILITY"] = path("broken");
  for (const Words& words :
       std::vector<Words>{{"--help"}, {"--version"}, {"list", "--help"}, {"project", "new", "-h"}, {"init", "fresh"}}) {
    const ProcessResult result = reeldb(words, broken);
    EXPECT_EQ(result.code, 0) << words[0] << result.err;
    EXPECT_EQ(result.err, "");
  }
}

// --- The type file
// ---------------------------------------------------------------------------------------------------------------------

class FrontTypeFile : public Front {
protected:
  void SetUp() override
  {
    makeFacility("one");
    typeFile_ = fs::canonical(path("one")).string() + "/devicedata/reeltype.dat";
  }
  ProcessResult typesWith(const std::string& bytes)
  {
    dir_.write("one/devicedata/reeltype.dat", bytes);
    return reeldb({"-C", "one", "types", "--json"});
  }
  void expectRefusal(const std::string& bytes, const std::string& message)
  {
    const ProcessResult result = typesWith(bytes);
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: " + typeFile_ + message + "\n");
  }
  void expectTypes(const std::string& bytes, std::size_t count)
  {
    const ProcessResult result = typesWith(bytes);
    EXPECT_EQ(result.code, 0) << result.err;
    ASSERT_EQ(result.signal, 0);
    EXPECT_EQ(Json::parse(result.out).size(), count);
  }

  static std::string text(std::size_t length) { return std::string(length, 'n'); }
  std::string typeFile_;
};

const std::string longName = ": the name is longer than 2047 bytes";
const std::string longParameters = ": the parameters are longer than 2047 bytes";
const std::string longWarning = ": the record has no parameters and is too long for the warning of that";

TEST_F(FrontTypeFile, NameOf2047BytesIsGood)
{
  expectTypes(text(2047) + ":VideoChannels=1\n", 1);
}

TEST_F(FrontTypeFile, NameOf2048BytesIsRefused)
{
  expectRefusal(text(2048) + ":VideoChannels=1\n", ":1" + longName);
}

TEST_F(FrontTypeFile, LeadingWhiteSpaceOfANameDoesNotCount)
{
  expectTypes(" \t\v\f" + text(2047) + ":VideoChannels=1\n", 1);
}

TEST_F(FrontTypeFile, TrailingWhiteSpaceOfANameCounts)
{
  expectRefusal(text(2040) + std::string(8, ' ') + ":VideoChannels=1\n", ":1" + longName);
}

TEST_F(FrontTypeFile, NameOfWhiteSpaceAloneIsGoodAtAnyLength)
{
  expectTypes(std::string(9000, ' ') + ":VideoChannels=1\n", 1);
}

TEST_F(FrontTypeFile, ParametersOf2047BytesAreGood)
{
  expectTypes("a:" + text(2047) + "\n", 1);
}

TEST_F(FrontTypeFile, ParametersOf2048BytesAreRefused)
{
  expectRefusal("a:1\nb:" + text(2048) + "\n", ":2" + longParameters);
}

TEST_F(FrontTypeFile, TextBehindASecondColonDoesNotCount)
{
  expectTypes("a:1:" + text(5000) + "\n", 1);
}

TEST_F(FrontTypeFile, ParametersOfWhiteSpaceAloneAreGoodAtAnyLength)
{
  expectTypes("a:" + std::string(9000, '\t') + "\n", 1);
}

TEST_F(FrontTypeFile, WarningThatJustFitsIsPrinted)
{
  // 45 characters of the warning, the name and one digit make 2,047.
  const ProcessResult result = typesWith(text(2001) + "\n");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, "[]\n");
  EXPECT_EQ(result.err, "ReelTypeList Warning: " + text(2001) + ": no parameters. Line 1\n");
}

TEST_F(FrontTypeFile, WarningOneByteLongerIsRefused)
{
  expectRefusal(text(2002) + "\n", ":1" + longWarning);
}

TEST_F(FrontTypeFile, DigitsOfTheLineNumberCount)
{
  std::string bytes(9, '\n');
  EXPECT_EQ(typesWith(bytes + text(2000)).code, 0);
  expectRefusal(bytes + text(2001), ":10" + longWarning);
}

TEST_F(FrontTypeFile, WarningCountsTheNameUntrimmed)
{
  expectRefusal(std::string(3000, ' ') + "\n", ":1" + longWarning);
}

TEST_F(FrontTypeFile, ColonAtTheEndIsARecordWithoutParameters)
{
  expectRefusal(text(2002) + ":\n", ":1" + longWarning);
}

TEST_F(FrontTypeFile, LinesAreCountedAsTheEditorDoes)
{
  expectRefusal("a:1\r\nb:1\r\n" + text(2048) + ":1\r\n", ":3" + longName);
  expectRefusal("a:1\rb:1\r" + text(2048) + ":1\r", ":3" + longName);
  expectRefusal("a:1\n\r" + text(2048) + ":1", ":3" + longName);
  expectRefusal("\n\n" + text(2048) + ":1", ":3" + longName);
}

TEST_F(FrontTypeFile, TextBehindANulDoesNotCount)
{
  expectTypes("a:1" + std::string(1, '\0') + text(5000) + "\n", 1);
}

TEST_F(FrontTypeFile, MissingFileIsGood)
{
  fs::remove(typeFile_);
  EXPECT_EQ(output({"-C", "one", "types", "--json"}), "[]\n");
}

TEST_F(FrontTypeFile, PipeIsRefusedWithoutWaiting)
{
  fs::remove(typeFile_);
  ASSERT_EQ(mkfifo(typeFile_.c_str(), 0600), 0);
  const ProcessResult result = reeldb({"-C", "one", "types"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, "reeldb: " + typeFile_ + ": cannot be read (no regular file)\n");
}

} // namespace
