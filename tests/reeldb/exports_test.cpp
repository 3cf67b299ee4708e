// SPDX-License-Identifier: Apache-2.0
#include "ReelDbVersion.h"

#include <gtest/gtest.h>

namespace reeldb_tests {

TEST(Version, IsTheLibrarysOwn)
{
  EXPECT_STREQ(reeldbDllVersionStr(), "14.0.0.0");
}

TEST(Version, TextStaysWhereItIs)
{
  EXPECT_EQ(reeldbDllVersionStr(), reeldbDllVersionStr());
}

} // namespace reeldb_tests
