// SPDX-License-Identifier: Apache-2.0
//
// The catalogue after the library has been loaded. Each case runs a separate program.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include "support/temp_folder.h"

namespace reeldb_tests {
namespace {

struct Outcome {
  int exitCode = -1; ///< -1 if a signal ended the program
  int signal = 0;
  std::string out, err;
};

class LoadTime : public ::testing::Test {
protected:
  /// Runs the program in the folder "cwd" of the test, with these environment variables. There is no facility unless
  /// the variables name one.
  Outcome run(const char* program, const std::map<std::string, std::string>& environment = {})
  {
    const std::string out = dir.write("out", ""), err = dir.write("err", "");
    std::filesystem::create_directories(dir.path() / "cwd");
    const pid_t child = fork();
    if (child == 0) {
      unsetenv("REELDB_FACILITY");
      for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
      const rlimit none = {0, 0};
      setrlimit(RLIMIT_CORE, &none);
      if (dup2(open(out.c_str(), O_WRONLY), STDOUT_FILENO) < 0 ||
          dup2(open(err.c_str(), O_WRONLY), STDERR_FILENO) < 0 || chdir((dir.path() / "cwd").c_str()) != 0)
        _exit(126);
      execl(program, program, static_cast<char*>(nullptr));
      _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
      ADD_FAILURE() << program << ": cannot be run";
      return {};
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0, read(out),
            read(err)};
  }

  /// A facility whose type file has these bytes.
  std::string facilityWith(const std::string& bytes)
  {
    dir.write("facility/facility.toml", "");
    dir.write("facility/devicedata/reeltype.dat", bytes);
    return (dir.path() / "facility").string();
  }

  TempFolder dir;

private:
  static std::string read(const std::string& file)
  {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

TEST_F(LoadTime, TypesOfTheFacilityAreThere)
{
  const Outcome outcome = run(
      CATALOGUE_PROBE, {{"REELDB_FACILITY", facilityWith("z:VideoChannels=1 AudioChannels=2\n b : A=4 \nz:Q=1\n")}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "z|Q=1\nb|A=4\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(LoadTime, RecordWithoutParametersIsWarnedOfOnTheDebugOutput)
{
  const Outcome outcome = run(CATALOGUE_PROBE, {{"REELDB_FACILITY", facilityWith("a:A=1\nScratch\n")}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "a|A=1\n");
  EXPECT_EQ(outcome.err, "ReelTypeList Warning: Scratch: no parameters. Line 2\n");
}

TEST_F(LoadTime, NoFacilityIsAnEmptyCatalogue)
{
  const Outcome outcome = run(CATALOGUE_PROBE);
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(LoadTime, FacilityWithoutTypeFileIsAnEmptyCatalogue)
{
  const std::string facility = facilityWith("a:A=1\n");
  std::filesystem::remove(dir.path() / "facility/devicedata/reeltype.dat");
  const Outcome outcome = run(CATALOGUE_PROBE, {{"REELDB_FACILITY", facility}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(LoadTime, FieldOf2047BytesIsLoaded)
{
  const std::string longest(2047, 'x');
  const Outcome outcome = run(CATALOGUE_PROBE, {{"REELDB_FACILITY", facilityWith(longest + ":A=1\n")}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, longest + "|A=1\n");
}

TEST_F(LoadTime, FieldOf2048BytesIsRefusedByTheStandaloneHost)
{
  const Outcome outcome =
      run(CATALOGUE_PROBE, {{"REELDB_FACILITY", facilityWith("a:A=1\n" + std::string(2048, 'x') + ":A=1\n")}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(LoadTime, FieldOf2048BytesAbortsTheProgramWhereTheHostLetsItPass)
{
  for (const std::string& bytes : {std::string(2048, 'x') + ":A=1\n", "n:" + std::string(2048, 'x') + "\n"}) {
    dir.write("data/reeltype.dat", bytes);
    EXPECT_EQ(run(CATALOGUE_PROBE_OWN_DIRECTORY, {{"PROBE_DIRECTORY", (dir.path() / "data/").string()}}).signal,
              SIGABRT);
  }
}

/// The host calls of the library while it is loaded, in order: the default type is read before the catalogue is made.
const char* const questions = "config_string(default_reel_type,)\ngetDeviceDataDirectory(1)\n";

TEST_F(LoadTime, DirectoryTextIsFollowedByTheFileName)
{
  dir.write("data/reeltype.dat", "a:A=1\n");
  const Outcome outcome = run(CATALOGUE_PROBE_OWN_DIRECTORY, {{"PROBE_DIRECTORY", (dir.path() / "data/").string()}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, std::string(questions) + "a|A=1\n");
}

TEST_F(LoadTime, DirectoryTextWithoutSeparatorIsGluedToTheFileName)
{
  dir.write("data/reeltype.dat", "a:A=1\n");
  dir.write("datareeltype.dat", "glued:A=1\n");
  const Outcome outcome = run(CATALOGUE_PROBE_OWN_DIRECTORY, {{"PROBE_DIRECTORY", (dir.path() / "data").string()}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, std::string(questions) + "glued|A=1\n");
}

TEST_F(LoadTime, EmptyDirectoryTextIsTheBareFileName)
{
  dir.write("cwd/reeltype.dat", "here:A=1\n");
  const Outcome outcome = run(CATALOGUE_PROBE_OWN_DIRECTORY, {{"PROBE_DIRECTORY", ""}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, std::string(questions) + "here|A=1\n");
}

// An empty parameter name would find the first parameter, whatever it is.
TEST_F(LoadTime, NamesOfTheParametersAreThereWhenTheCatalogueIsMade)
{
  const Outcome outcome =
      run(CATALOGUE_PROBE_OWN_DIRECTORY,
          {{"PROBE_DIRECTORY", ""}, {"PROBE_PARAMETERS", "Other=9 VideoChannels=1 AudioChannels=2"}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, std::string(questions) + "1 video, 2 audio\nearly|Other=9 VideoChannels=1 AudioChannels=2\n");
}

TEST_F(LoadTime, FileIsNotReadAgainWhenItChanges)
{
  const std::string facility = facilityWith("old:A=1\n");
  const Outcome outcome =
      run(CATALOGUE_PROBE, {{"REELDB_FACILITY", facility}, {"PROBE_REWRITES", facility + "/devicedata/reeltype.dat"}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "old|A=1\n");
}

TEST_F(LoadTime, DirectoryBeyondAsciiIsFoundByItsUtf8Name)
{
  dir.write("d\xC3\xA9j\xC3\xA0/reeltype.dat", "a:A=1\n");
  const Outcome outcome =
      run(CATALOGUE_PROBE_OWN_DIRECTORY, {{"PROBE_DIRECTORY", (dir.path() / "d\xC3\xA9j\xC3\xA0/").string()}});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, std::string(questions) + "a|A=1\n");
}

} // namespace
} // namespace reeldb_tests
