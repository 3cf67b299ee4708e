// SPDX-License-Identifier: Apache-2.0
#include "lists/tracks.h"

#include <string>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

/// "video/audio", or "none".
std::string count(std::string_view text, Digits digits = Digits::Set)
{
  const auto tracks = parseTracks(text, digits);
  return tracks ? std::to_string(tracks->video) + "/" + std::to_string(tracks->audio) : "none";
}

TEST(ParseTracks, EveryWayToWriteThemIsCounted)
{
  EXPECT_EQ(count("V"), "1/0");
  EXPECT_EQ(count("v"), "1/0");
  EXPECT_EQ(count("V2"), "1/0");
  EXPECT_EQ(count("A"), "0/1");
  EXPECT_EQ(count("A2"), "0/1");
  EXPECT_EQ(count("AA"), "0/2");
  EXPECT_EQ(count("aa/v"), "1/2");
  EXPECT_EQ(count("A2/V"), "1/1");
  EXPECT_EQ(count("B"), "1/1");
  EXPECT_EQ(count("V1A12"), "1/2");
  EXPECT_EQ(count("A1234V"), "1/4");
  EXPECT_EQ(count("A34"), "0/2");
  EXPECT_EQ(count("VA1A2A3A4"), "1/4");
  EXPECT_EQ(count("NONE"), "0/0");
  EXPECT_EQ(count("D"), "0/0");
}

TEST(ParseTracks, DigitsThatDoNotRiseAreOneChannel)
{
  EXPECT_EQ(count("A10"), "0/1");
  EXPECT_EQ(count("A11"), "0/1");
  EXPECT_EQ(count("A21"), "0/1");
  EXPECT_EQ(count("A01"), "0/1");
}

TEST(ParseTracks, ReadAsNumbersEachIsOneChannel)
{
  EXPECT_EQ(count("A12", Digits::Number), "0/1");
  EXPECT_EQ(count("VA1A12", Digits::Number), "1/2");
}

TEST(ParseTracks, OtherTextsAreNotChannels)
{
  for (const char* bad : {"", "C", "REEL", "V/", "/V", "A//V", "B2", "V-A", "A1-4", "12"})
    EXPECT_EQ(count(bad), "none") << bad;
  EXPECT_EQ(count(std::string(256, 'A')), "0/256");
  EXPECT_EQ(count(std::string(257, 'A')), "none");
}

std::string logCount(std::string_view text)
{
  const auto tracks = parseLogTracks(text);
  return tracks ? std::to_string(tracks->video) + "/" + std::to_string(tracks->audio) : "none";
}

TEST(ParseLogTracks, EveryWayToWriteThemIsCounted)
{
  EXPECT_EQ(logCount("V"), "1/0");
  EXPECT_EQ(logCount("V1"), "1/0");
  EXPECT_EQ(logCount("A"), "0/1");
  EXPECT_EQ(logCount("A1A2"), "0/2");
  EXPECT_EQ(logCount("VA1A2"), "1/2");
  EXPECT_EQ(logCount("va1a2"), "1/2");
  EXPECT_EQ(logCount("D"), "0/0");
  EXPECT_EQ(logCount("VA1A2D1"), "1/2");
  EXPECT_EQ(logCount("AA/V"), "1/2");
  EXPECT_EQ(logCount("V1, A1, A2"), "1/2");
  EXPECT_EQ(logCount("NONE"), "0/0");
  EXPECT_EQ(logCount("B"), "1/1");
}

TEST(ParseLogTracks, NumbersAreOneTrackAndRangesAreAsManyAsTheySay)
{
  EXPECT_EQ(logCount("VA12"), "1/1");
  EXPECT_EQ(logCount("V1-3"), "3/0");
  EXPECT_EQ(logCount("V1 A1-8"), "1/8");
  EXPECT_EQ(logCount("VA1-A4"), "1/4");
  EXPECT_EQ(logCount("A3-3"), "0/1");
  EXPECT_EQ(logCount("A744-999"), "0/256");
  EXPECT_EQ(logCount("V1-100A1-156"), "100/156");
}

TEST(ParseLogTracks, OtherTextsAreNotTracks)
{
  for (const char* bad :
       {"",        "XYZ",   "C",      "VX",           "V-A", "A1-", "A-4", "A4-1", "A0", "A0-4", "A1-V4",
        "A1-1000", "A1000", "A1-257", "V1-100A1-157", "12",  "1",   "B2",  "TAPE", " V", "V;A"})
    EXPECT_EQ(logCount(bad), "none") << bad;
  EXPECT_EQ(logCount(std::string(256, 'A')), "0/256");
  EXPECT_EQ(logCount(std::string(257, 'A')), "none");
}

TEST(HasChannelNumber, DistinguishesTenFromOneAndTwo)
{
  EXPECT_TRUE(hasChannelNumber("A10"));
  EXPECT_TRUE(hasChannelNumber("VA1A22"));
  EXPECT_FALSE(hasChannelNumber("A12"));
  EXPECT_FALSE(hasChannelNumber("A1234V"));
  EXPECT_FALSE(hasChannelNumber("V"));
}

} // namespace
