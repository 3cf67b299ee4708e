// SPDX-License-Identifier: Apache-2.0
#include "lists/speed.h"

#include <string>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

/// "reel|speed|timecode", or the fault.
std::string read(const std::string& text)
{
  SpeedLine line;
  const std::string fault = parseSpeedLine(text, line);
  return fault.empty() ? std::string(line.reel) + "|" + line.speed.framesPerSecond + "|" + line.speed.timecode : fault;
}

TEST(ExactSpeed, IsTheFractionOfTheDecimalsInLowestTerms)
{
  EXPECT_EQ(exactSpeed("047.6"), (FramesPerSecond{238, 5}));
  EXPECT_EQ(exactSpeed("-024.0"), (FramesPerSecond{-24, 1}));
  EXPECT_EQ(exactSpeed("+12.5"), (FramesPerSecond{25, 2}));
  EXPECT_EQ(exactSpeed("000.0"), (FramesPerSecond{0, 1}));
  EXPECT_EQ(exactSpeed("-000.0"), (FramesPerSecond{0, 1}));
  EXPECT_EQ(exactSpeed("24"), (FramesPerSecond{24, 1}));
  EXPECT_EQ(exactSpeed("999999999.999999"), (FramesPerSecond{999999999999999, 1000000}));
}

TEST(ExactSpeed, OtherTextsHaveNone)
{
  for (const char* text : {"", "-", "fast", "24,0", "24.", ".5", "2 4", "--24", "1000000000", "1.0000000", "24.0x"})
    EXPECT_FALSE(exactSpeed(text)) << text;
}

TEST(ParseSpeedLine, ReelSpeedAndTimecode)
{
  EXPECT_EQ(read(" Z686_5A.       047.6                01:00:06:00 "), "Z686_5A.|047.6|01:00:06:00");
  EXPECT_EQ(read("AX -25.0 00:00:00;00"), "AX|-25.0|00:00:00;00");
}

TEST(ParseSpeedLine, AReelMayContainBlanks)
{
  EXPECT_EQ(read("PIER CAM 2   012.5 01:04:11:00"), "PIER CAM 2|012.5|01:04:11:00");
}

TEST(ParseSpeedLine, TheTimecodeMayBeMissingOrAFrameNumber)
{
  EXPECT_EQ(read("A001 024.0"), "A001|024.0|");
  EXPECT_EQ(read("A001 024.0 1009"), "A001|024.0|1009");
  EXPECT_EQ(read("A001 24 1009"), "A001|24|1009");
  EXPECT_EQ(read("24 1009"), "24|1009|"); // a reel has to stand before the speed
}

TEST(ParseSpeedLine, WhatIsMissingOrWrongIsTheFault)
{
  EXPECT_EQ(read(""), "'' is not a number of frames per second");
  EXPECT_EQ(read("A001"), "'A001' is not a number of frames per second");
  EXPECT_EQ(read("A001 fast 01:00:00:00"), "'fast' is not a number of frames per second");
  EXPECT_EQ(read("024.0 01:00:00:00"), "no reel");
  EXPECT_EQ(read("A001 024.0 01:60:00:00"), "'01:60:00:00' is not a timecode (minutes above 59)");
}

} // namespace
