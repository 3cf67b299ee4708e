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

TEST_F(Front, TwoFoldersAreAUsageError)
{
  mark("one", "R1");
  mark("two", "R2");
  for (const Words& words :
       std::vector<Words>{{"-C", "one", "list", "-C", "two"}, {"-Cone", "list", "--facility=one"}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: list: -C: given more than once (-C DIR names the facility)\n");
  }
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

TEST_F(Front, FacilityTomlThatIsNotAFileIsSkippedOnTheWayUpwards)
{
  mark("one", "R1");
  fs::create_directories(path("one/a/facility.toml"));
  ProcessSetting below = setting_;
  below.folder = path("one/a");
  EXPECT_EQ(firstReel({"list", "--json"}, below), "R1");
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
  EXPECT_EQ(result.err,
            "reeldb: " + fs::canonical(dir_.path()).string() +
                ": not in a facility (facility.toml not found here or above; reeldb init makes one, -C DIR or "
                "REELDB_FACILITY names one)\n");
}

TEST_F(Front, FolderWithoutFacilityIsRefused)
{
  fs::create_directory(path("empty"));
  const ProcessResult result = reeldb({"-C", "empty", "list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: " + path("") + "empty: not a facility (facility.toml not found)\n");
}

TEST_F(Front, MissingFolderIsRefused)
{
  const ProcessResult result = reeldb({"-C", "nowhere", "list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: " + path("") + "nowhere: not a facility (no such folder)\n");
}

TEST_F(Front, FileInPlaceOfFolderIsRefused)
{
  dir_.write("file", "");
  const ProcessResult result = reeldb({"-C", "file", "list"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: " + path("") + "file: not a facility (not a folder)\n");
}

TEST_F(Front, EnvironmentIsRefusedLikeTheOption)
{
  ProcessSetting setting = setting_;
  setting.environment["REELDB_FACILITY"] = "nowhere";
  const ProcessResult result = reeldb({"list"}, setting);
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: " + path("") + "nowhere: not a facility (no such folder)\n");
}

TEST_F(Front, ControlCharactersOfAPathAreEscapedInTheMessage)
{
  const ProcessResult result = reeldb({"-C", "a\x1b[31m\n\xc2\x9b", "list"});
  EXPECT_EQ(result.err, "reeldb: " + path("") + "a\\x1b[31m\\n\\u009b: not a facility (no such folder)\n");
}

TEST_F(Front, MissingModuleIsReportedInAsciiOnly)
{
  const std::string folder = path("lone \x1b\xc3\xa9");
  fs::create_directory(folder);
  fs::copy_file(reeldbProgram, folder + "/reeldb");
  const ProcessResult result = runProcess({folder + "/reeldb", "--version"}, setting_);
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.out, "");
  const std::string expected =
      "reeldb: " + fs::canonical(dir_.path()).string() + "/lone \\x1b\\xc3\\xa9: libreelcli.so not found (looked in ";
  EXPECT_EQ(result.err.rfind(expected, 0), 0u) << result.err;
}

TEST_F(Front, PipeInPlaceOfTheFileIsRefusedWithoutWaiting)
{
  fs::create_directory(path("pipe"));
  ASSERT_EQ(mkfifo(path("pipe/facility.toml").c_str(), 0600), 0);
  const ProcessResult result = reeldb({"-C", "pipe", "list"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, "reeldb: " + path("pipe/facility.toml") + ": not a regular file (a named pipe)\n");
}

TEST_F(Front, UnreadableFileIsReported)
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
  for (const auto& [words, message] : std::vector<std::pair<Words, std::string>>{
           {{"list", "-C"}, "list: -C: no folder given (-C DIR names the facility)"},
           {{"list", "-C", ""}, "list: -C: no folder given (-C DIR names the facility)"},
           {{"list", "--facility="}, "-C: no folder given (-C DIR names the facility)"}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "reeldb: " + message + "\n");
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
  EXPECT_EQ(result.err, "reeldb: \"frobnicate\": no such command (see reeldb --help)\n");
}

TEST_F(Front, LibraryPrintsNothingOfAFacilityThatIsNotNeeded)
{
  makeFacility("one");
  dir_.write("one/devicedata/reeltype.dat", "a record without parameters\n");
  EXPECT_NE(reeldb({"-C", "one", "list"}).err, "");
  for (const Words& words : std::vector<Words>{{"-C", "one", "--version"},
                                               {"-C", "one", "list", "--help"},
                                               {"-C", "one", "help", "list"},
                                               {"-C", "one", "init", "fresh"}})
    EXPECT_EQ(reeldb(words).err, "") << words[2];
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

// --- The type file -------------------------------------------------------------------------------

/// The host checks the file; its limits are tried with the host. Here: what the command makes of it.
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
    return reeldb({"-C", "one", "type", "list", "--json"});
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

TEST_F(FrontTypeFile, NameOf2047BytesIsGood)
{
  expectTypes(text(2047) + ":VideoChannels=1\n", 1);
}

TEST_F(FrontTypeFile, NameOf2048BytesIsRefused)
{
  expectRefusal(text(2048) + ":VideoChannels=1\n", ":1" + longName);
}

TEST_F(FrontTypeFile, TypesWarnsOfAMissingFile)
{
  fs::remove(typeFile_);
  for (const Words& words :
       std::vector<Words>{{"-C", "one", "type", "list"}, {"-C", "one", "type", "list", "--json"}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, "reeldb: " + typeFile_ + ": not found, so there are no reel types\n");
  }
}

TEST_F(FrontTypeFile, BothNumbersOfEveryRecordAreWarnedAboutWhereTheFacilityIsUsed)
{
  dir_.write("one/devicedata/reeltype.dat", "a:VideoChannels=x AudioChannels=y\r\nb:AudioChannels=z");
  const std::string said = "reeldb: " + typeFile_ + ":1: VideoChannels: \"x\" is not a number (read as 0)\n" +
                           "reeldb: " + typeFile_ + ":1: AudioChannels: \"y\" is not a number (read as 0)\n" +
                           "reeldb: " + typeFile_ + ":2: AudioChannels: \"z\" is not a number (read as 0)\n";
  const ProcessResult result = reeldb({"-C", "one", "list", "--json"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "[]\n");
  EXPECT_EQ(result.err, said);
  EXPECT_EQ(reeldb({"-C", "one", "list", "--help"}).err, "");
  EXPECT_EQ(reeldb({"-C", "one", "frobnicate"}).err, "reeldb: \"frobnicate\": no such command (see reeldb --help)\n");
}

TEST_F(FrontTypeFile, PipeIsRefusedWithoutWaiting)
{
  fs::remove(typeFile_);
  ASSERT_EQ(mkfifo(typeFile_.c_str(), 0600), 0);
  const ProcessResult result = reeldb({"-C", "one", "type", "list"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, "reeldb: " + typeFile_ + ": not a regular file (a named pipe)\n");
}

} // namespace
