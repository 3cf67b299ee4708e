// SPDX-License-Identifier: Apache-2.0
//
// The settings that the host returns while libraries are loaded. Each case needs a process of its own, because the host
// reads its environment only once.
#include <stdio.h>

#include <array>
#include <fstream>
#include <string>
#include <vector>

#include "standalone/model/host_test.h"
#include "support/temp_folder.h"

namespace {

using reeldb_tests::TempFolder;
using Lines = std::vector<std::string>;

/// The lines that the program prints in this environment.
Lines linesOf(const char* program, const std::string& environment)
{
  const std::string command = "env -u REELDB_FACILITY " + environment + " '" + program + "'";
  std::FILE* const pipe = ::popen(command.c_str(), "r");
  if (!pipe)
    return {"cannot be started"};
  std::string text;
  std::array<char, 256> part;
  while (std::fgets(part.data(), static_cast<int>(part.size()), pipe))
    text += part.data();
  const int status = ::pclose(pipe);
  if (status != 0)
    return {"ended with " + std::to_string(status)};
  Lines lines;
  for (std::size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
    lines.push_back(text.substr(at, end - at));
  return lines;
}

Lines probe(const std::string& environment)
{
  return linesOf(HOST_PROBE, environment);
}

TEST(Settings, WithoutAFacilityTheFolderCannotContainAFile)
{
  const Lines none = {"<default>", "/dev/null/", "", "1"};
  EXPECT_EQ(probe(""), none);
  EXPECT_EQ(probe("REELDB_FACILITY="), none);
}

TEST(Settings, TheFacilityIsTheOneInTheEnvironment)
{
  const TempFolder folder;
  const std::string facility = (folder.path() / "site").string();
  reelhost::NewFacility(facility).keep();
  EXPECT_EQ(probe("REELDB_FACILITY='" + facility + "'"), (Lines{"Tape 2ch", facility + "/devicedata/", facility, "1"}));
}

TEST(Settings, BadFacilityCountsAsNoneAndIsReportedLater)
{
  const TempFolder folder;
  const std::string facility = folder.path().string();
  std::ofstream(facility + "/facility.toml") << "[facility]\nname = 5\n";
  const Lines lines = probe("REELDB_FACILITY='" + facility + "'");
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0], "<default>");
  EXPECT_EQ(lines[1], "/dev/null/");
  EXPECT_EQ(lines[2].substr(0, facility.size() + 16), facility + "/facility.toml:2");
}

TEST(Settings, MissingFacilityCountsAsNoneAndIsReportedLater)
{
  const Lines lines = probe("REELDB_FACILITY=/nowhere/at/all");
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0], "<default>");
  EXPECT_EQ(lines[1], "/dev/null/");
  EXPECT_NE(lines[2].find("/nowhere/at/all"), std::string::npos);
}

// If the host did not check the file first, the library would end the process.
TEST(Settings, ProgramStartsWithATypeFileThatTheLibraryCannotTakeAndReportsIt)
{
  const TempFolder folder;
  const std::string facility = folder.path().string();
  reelhost::NewFacility(facility).keep();
  const std::string environment = "REELDB_FACILITY='" + facility + "'";
  EXPECT_EQ(linesOf(FACILITY_PROBE, environment), Lines{facility + ", 10 types"});
  std::ofstream(facility + "/devicedata/reeltype.dat") << "a:VideoChannels=1\n" << std::string(3000, 'n') << ":A=1\n";
  EXPECT_EQ(linesOf(FACILITY_PROBE, environment),
            Lines{facility + "/devicedata/reeltype.dat:2: the name is longer than 2047 bytes, 0 types"});
}

} // namespace
