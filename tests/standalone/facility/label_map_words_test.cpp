// SPDX-License-Identifier: Apache-2.0
#include "facility/label_map_words.h"

#include <gtest/gtest.h>

namespace {

using namespace reelhost;

// The library tests the codes, and people have the words in their files. Neither ever changes.
TEST(LabelSourceCode, EveryWord)
{
  const std::pair<const char*, unsigned> words[] = {
      {"none", 0},        {"vitc", 1}, {"vitc2", 2}, {"9-pin ltc", 3},   {"9-pin vitc", 4},
      {"9-pin timer", 5}, {"ltc", 6},  {"rp188", 7}, {"time of day", 8}, {"1394", 9}};
  for (const auto& [word, code] : words)
    EXPECT_EQ(labelSourceCode(word), code) << word;
  EXPECT_EQ(labelSourceCode("VITC"), std::nullopt);
  EXPECT_EQ(labelSourceCode(""), std::nullopt);
}

TEST(LabelFormatCode, EveryWord)
{
  const std::pair<const char*, unsigned> words[] = {{"30 fps", 0},           {"25 fps", 1},           {"24 fps", 2},
                                                    {"35mm feet+frames", 3}, {"16mm feet+frames", 4}, {"key number", 5},
                                                    {"ink number", 6},       {"frame count", 7},      {"text", 8},
                                                    {"50 fps", 9},           {"60 fps", 10}};
  for (const auto& [word, code] : words)
    EXPECT_EQ(labelFormatCode(word), code) << word;
  EXPECT_EQ(labelFormatCode("25fps"), std::nullopt);
}

TEST(LabelWords, AreListedInTheOrderOfTheirCodes)
{
  EXPECT_EQ(labelSourceWords(), "none, vitc, vitc2, 9-pin ltc, 9-pin vitc, 9-pin timer, ltc, rp188, time of day, 1394");
  EXPECT_EQ(labelFormatWords(), "30 fps, 25 fps, 24 fps, 35mm feet+frames, 16mm feet+frames, key number, ink number, "
                                "frame count, text, 50 fps, 60 fps");
}

} // namespace
