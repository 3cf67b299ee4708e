// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

TEST(FindFacility, NearestFolderUpwards)
{
  const TempFolder folder;
  fs::create_directories(folder / "outer/inner/deep");
  writeBytes(folder / "outer/facility.toml", "");
  EXPECT_EQ(findFacility(folder / "outer"), folder / "outer");
  EXPECT_EQ(findFacility(folder / "outer/inner/deep"), folder / "outer");
  writeBytes(folder / "outer/inner/facility.toml", "");
  EXPECT_EQ(findFacility(folder / "outer/inner/deep"), folder / "outer/inner");
  EXPECT_EQ(findFacility(folder.path()), std::nullopt);
}

TEST(FindFacility, FolderOfThatNameIsNone)
{
  const TempFolder folder;
  fs::create_directories(folder / "inner/facility.toml");
  writeBytes(folder / "facility.toml", "");
  EXPECT_EQ(findFacility(folder / "inner"), folder.path());
}

TEST(FindFacility, RelativeStart)
{
  const TempFolder folder;
  fs::create_directories(folder / "site/sub");
  writeBytes(folder / "site/facility.toml", "");
  const fs::path before = fs::current_path();
  fs::current_path(folder / "site/sub");
  const auto found = findFacility(".");
  const auto foundUp = findFacility("..");
  fs::current_path(before);
  ASSERT_TRUE(found);
  EXPECT_TRUE(fs::equivalent(*found, folder / "site"));
  ASSERT_TRUE(foundUp);
  EXPECT_TRUE(fs::equivalent(*foundUp, folder / "site"));
}

} // namespace
