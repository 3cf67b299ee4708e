// SPDX-License-Identifier: Apache-2.0
#include "store/log_fields.h"

#include <gtest/gtest.h>

namespace {

using namespace reelhost;

TEST(LeadingPlace, KnownAndOtherKeys)
{
  EXPECT_EQ(leadingPlace("reelid"), 0u);
  EXPECT_EQ(leadingPlace("aliases"), 7u);
  EXPECT_EQ(leadingPlace("reel_type"), leadingKeys.size());
  EXPECT_EQ(leadingPlace("REELID"), leadingKeys.size());
  EXPECT_EQ(leadingPlace(""), leadingKeys.size());
}

TEST(Arranged, LeadingKeysFirstThenByBytesAndTheLastOfTwins)
{
  EXPECT_EQ(arranged({{"b", "1"}, {"aliases", "2"}, {"\xFF", "3"}, {"reelid", "4"}, {"B", "5"}, {"b", "6"}, {"", "7"}}),
            (KeyValues{{"reelid", "4"}, {"aliases", "2"}, {"", "7"}, {"B", "5"}, {"b", "6"}, {"\xFF", "3"}}));
  EXPECT_EQ(arranged({}), KeyValues{});
}

} // namespace
