// SPDX-License-Identifier: Apache-2.0
#include "lists/seconds.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();

TEST(ParseFraction, ReadsFractionsAndDecimalsInLowestTerms)
{
  EXPECT_EQ(parseFraction("1001/24000"), (Seconds{1001, 24000}));
  EXPECT_EQ(parseFraction("96096000/1920000"), (Seconds{1001, 20}));
  EXPECT_EQ(parseFraction(" 86400 "), (Seconds{86400, 1}));
  EXPECT_EQ(parseFraction("-3.50"), (Seconds{-7, 2}));
  EXPECT_EQ(parseFraction("1055.0"), (Seconds{1055, 1}));
  EXPECT_EQ(parseFraction("2.4e1"), (Seconds{24, 1}));
  EXPECT_EQ(parseFraction("25e-1"), (Seconds{5, 2}));
  EXPECT_EQ(parseFraction("0"), (Seconds{0, 1}));
  EXPECT_EQ(parseFraction("9223372036854775807"), (Seconds{most, 1}));
}

TEST(ParseFraction, RefusesTextsAndLargeNumbers)
{
  for (const char* text : {"", "x", "1/", "/2", "1/0", "1.x", "1e", "e1", "--1", "NaN", "Infinity",
                           "9223372036854775808", "1e19", "0.1234567890123456789", "1/2/3", "."})
    EXPECT_FALSE(parseFraction(text)) << text;
}

TEST(SecondsArithmetic, IsExactOrHasNoResult)
{
  EXPECT_EQ(sum({1, 3}, {1, 6}), (Seconds{1, 2}));
  EXPECT_EQ(difference({1, 3}, {1, 2}), (Seconds{-1, 6}));
  EXPECT_EQ(product({1001, 24000}, {24000, 1001}), (Seconds{1, 1}));
  EXPECT_EQ(quotient({1, 2}, {-1, 4}), (Seconds{-2, 1}));
  EXPECT_FALSE(quotient({1, 2}, {0, 1}));
  EXPECT_FALSE(sum({most, 1}, {1, 1}));
  EXPECT_FALSE(product({1, most}, {1, 3}));
  EXPECT_EQ(product({most, 1}, {1, most}), (Seconds{1, 1}));
}

TEST(FrameAt, SaysWhetherTheTimeBeginsTheFrame)
{
  const auto at = [](Seconds time, FrameRate rate) {
    const FrameAt found = frameAt(time, rate).value();
    return std::pair(found.frame, found.isWhole);
  };
  EXPECT_EQ(at({1001, 24000}, {24, true}), std::pair(std::int64_t{1}, true));
  EXPECT_EQ(at({1, 24}, {24, true}), std::pair(std::int64_t{0}, false));
  EXPECT_EQ(at({-1, 50}, {25, false}), std::pair(std::int64_t{-1}, false));
  EXPECT_EQ(at({-1, 25}, {25, false}), std::pair(std::int64_t{-1}, true));
}

TEST(RateOfFrames, KnowsTheRatesOfVideo)
{
  EXPECT_EQ(rateOfFrames({1001, 30000}), (FrameRate{30, true}));
  EXPECT_EQ(rateOfFrames({1, 25}), (FrameRate{25, false}));
  EXPECT_FALSE(rateOfFrames({1, 15}));
  for (const FrameRate rate : frameRates)
    EXPECT_EQ(rateOfFrames(frameDuration(rate)), rate);
}

} // namespace
