// SPDX-License-Identifier: Apache-2.0
//
// What the host answers while libraries are loaded: in a process of its own, for it looks at its environment once.
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

/// The lines that the probe prints in this environment.
Lines probe(const std::string& environment)
{
  const std::string command = "env -u REELDB_FACILITY " + environment + " '" HOST_PROBE "'";
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

TEST(Settings, WithoutAFacilityThereIsNoFolderThatCouldHoldAFile)
{
  const Lines none = {"<default>", "/dev/null/", "", "1"};
  EXPECT_EQ(probe(""), none);
  EXPECT_EQ(probe("REELDB_FACILITY="), none);
}

TEST(Settings, TheFacilityIsTheOneInTheEnvironment)
{
  const TempFolder folder;
  const std::string facility = (folder.path() / "site").string();
  reelhost::createFacility(facility);
  EXPECT_EQ(probe("REELDB_FACILITY='" + facility + "'"), (Lines{"Tape 2ch", facility + "/devicedata/", facility, "1"}));
}

TEST(Settings, ABadFacilityIsToldLaterAndItsFolderIsStillTheFolder)
{
  const TempFolder folder;
  const std::string facility = folder.path().string();
  std::ofstream(facility + "/facility.toml") << "[facility]\nname = 5\n";
  const Lines lines = probe("REELDB_FACILITY='" + facility + "'");
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0], "<default>");
  EXPECT_EQ(lines[1], facility + "/devicedata/");
  EXPECT_EQ(lines[2].substr(0, facility.size() + 16), facility + "/facility.toml:2");
}

TEST(Settings, AFacilityThatIsNotThereIsToldLater)
{
  const Lines lines = probe("REELDB_FACILITY=/nowhere/at/all");
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0], "<default>");
  EXPECT_EQ(lines[1], "/nowhere/at/all/devicedata/");
  EXPECT_NE(lines[2].find("/nowhere/at/all"), std::string::npos);
}

} // namespace
