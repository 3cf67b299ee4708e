// SPDX-License-Identifier: Apache-2.0
#include "store/log_fields.h"

#include <iterator>

#include <gtest/gtest.h>

namespace {

using namespace reelhost;

TEST(LeadingPlace, KnownAndOtherKeys)
{
  EXPECT_EQ(leadingPlace("reelid"), 0u);
  EXPECT_EQ(leadingPlace("aliases"), 7u);
  EXPECT_EQ(leadingPlace("reel_type"), shotTexts.size());
  EXPECT_EQ(leadingPlace("REELID"), shotTexts.size());
  EXPECT_EQ(leadingPlace(""), shotTexts.size());
}

// These keys are columns in the project files of all versions.
TEST(LeadingPlace, ReleasedKeysKeepTheirPlaces)
{
  const char* const released[] = {"reelid",    "source_file", "source_in", "source_out",
                                  "record_in", "record_out",  "tracks",    "aliases"};
  for (std::size_t i = 0; i < std::size(released); ++i)
    EXPECT_EQ(leadingPlace(released[i]), i) << released[i];
}

TEST(Arranged, LeadingKeysFirstThenByBytesAndTheLastOfTwins)
{
  EXPECT_EQ(arranged({{"b", "1"}, {"aliases", "2"}, {"\xFF", "3"}, {"reelid", "4"}, {"B", "5"}, {"b", "6"}, {"", "7"}}),
            (KeyValues{{"reelid", "4"}, {"aliases", "2"}, {"", "7"}, {"B", "5"}, {"b", "6"}, {"\xFF", "3"}}));
  EXPECT_EQ(arranged({}), KeyValues{});
}

} // namespace
