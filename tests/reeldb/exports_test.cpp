// SPDX-License-Identifier: Apache-2.0
#include "ReelDbVersion.h"

#include <string>

#include <gtest/gtest.h>

namespace reeldb_tests {

TEST(Version, IsTheLibrarysOwn)
{
  EXPECT_STREQ(reeldbDllVersionStr(), "14.0.0.0");
}

TEST(Version, HeadersAreOfTheVersionOfTheLibrary)
{
  EXPECT_EQ(std::to_string(REELDB_VERSION_MAJOR) + "." + std::to_string(REELDB_VERSION_MINOR) + "." +
                std::to_string(REELDB_VERSION_PATCH) + ".0",
            reeldbDllVersionStr());
}

TEST(Version, TextStaysWhereItIs)
{
  EXPECT_EQ(reeldbDllVersionStr(), reeldbDllVersionStr());
}

} // namespace reeldb_tests
