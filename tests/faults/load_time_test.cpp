// SPDX-License-Identifier: Apache-2.0
//
// Failures while the library is loaded. No code could catch an exception there, so the process ends by abort before it
// works with an incomplete catalogue. A missing or odd file is not an error.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "cli/process.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

namespace {

using Environment = std::map<std::string, std::string>;

class LoadTimeFaults : public ::testing::Test {
protected:
  LoadTimeFaults() { folder_.write("reeltype.dat", "F2:VideoChannels=1\nScratch\nF4:AudioChannels=4"); }

  ProcessResult load(Environment environment)
  {
    environment.try_emplace("DEFAULT_TYPE", "F2");
    return loadWithoutDefaultType(std::move(environment));
  }
  ProcessResult loadWithoutDefaultType(Environment environment = {})
  {
    environment.try_emplace("DATA_DIRECTORY", folder_.path().string() + "/");
    ProcessSetting setting;
    setting.folder = folder_.path();
    setting.environment = std::move(environment);
    return runProcess({LOAD_PROBE}, setting);
  }

  TempFolder folder_;
};

constexpr const char* types = "F2|VideoChannels=1\nF4|AudioChannels=4\n";

TEST_F(LoadTimeFaults, WithoutAnyTheTypesAndTheDefaultTypeAreThere)
{
  const ProcessResult result = load({});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, std::string("F2\n") + types);
  EXPECT_EQ(result.err, "ReelTypeList Warning: Scratch: no parameters. Line 2\n");
}

TEST_F(LoadTimeFaults, HostCallThatThrowsEndsTheProcess)
{
  for (const char* operation : {"config_string", "getDeviceDataDirectory", "vorn_printf"}) {
    const ProcessResult result = load({{"THROW_IN", operation}});
    EXPECT_EQ(result.signal, SIGABRT) << operation;
    EXPECT_EQ(result.out, "") << operation;
  }
}

TEST_F(LoadTimeFaults, AllocationThatFailsEndsTheProcessOrIsDoneWithout)
{
  int faults = 0;
  for (int n = 1;; ++n) {
    const ProcessResult result = load({{"FAIL_ALLOCATION", std::to_string(n)}});
    if (result.code == 3)
      break;
    ++faults;
    ASSERT_LT(n, 1000);
    if (result.signal == SIGABRT)
      continue;
    EXPECT_EQ(result.out, std::string("F2\n") + types) << "allocation " << n << ", code " << result.code;
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(faults, 10);
  std::printf("%7d  allocations that failed, beneath the loading of the library\n", faults);
}

TEST_F(LoadTimeFaults, NoDefaultTypeIsTheEmptyOne)
{
  EXPECT_EQ(loadWithoutDefaultType().out, std::string("\n") + types) << "the host returned null";
  EXPECT_EQ(load({{"DEFAULT_TYPE", ""}}).out, std::string("\n") + types);
}

TEST_F(LoadTimeFaults, OddDefaultTypeIsTakenAsItIs)
{
  for (const std::string& odd :
       {std::string("a type nobody knows"), std::string(5000, 'x'), std::string("\xFF\xC3(\t")})
    EXPECT_EQ(load({{"DEFAULT_TYPE", odd}}).out, odd + "\n" + types);
}

TEST_F(LoadTimeFaults, AnythingButATypeFileDefinesNothing)
{
  const std::filesystem::path file = folder_.path() / "reeltype.dat";
  const auto expectNothing = [this](const char* what) {
    const ProcessResult result = load({});
    EXPECT_EQ(result.code, 0) << what;
    EXPECT_EQ(result.out, "F2\n") << what;
    EXPECT_EQ(result.err, "") << what;
  };
  std::filesystem::remove(file);
  expectNothing("no file");
  std::filesystem::create_directory(file);
  expectNothing("a folder");
  std::filesystem::remove(file);
  std::filesystem::create_symlink(file, file);
  expectNothing("a link to itself");
  std::filesystem::remove(file);
  std::filesystem::create_symlink("/dev/null", file);
  expectNothing("an empty device");
  std::filesystem::remove(file);
  folder_.write("reeltype.dat", "\r\n\n\r\r\n");
  expectNothing("empty lines");
}

TEST_F(LoadTimeFaults, NoDataDirectoryIsTheBareFileName)
{
  const ProcessResult result = load({{"DATA_DIRECTORY", ""}});
  EXPECT_EQ(result.out, std::string("F2\n") + types) << "of the working directory";
}

TEST_F(LoadTimeFaults, RecordsEndAtAByteThatIsNotText)
{
  folder_.write("reeltype.dat", std::string("a:A=1\0B=2\nb\0c:C=3\n", 19));
  const ProcessResult result = load({});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "F2\na|A=1\n");
  EXPECT_EQ(result.err, "ReelTypeList Warning: b: no parameters. Line 2\n");
}

} // namespace

} // namespace reeldb_tests
