// SPDX-License-Identifier: Apache-2.0
#include "lists/frame_rate.h"

#include <array>
#include <limits>
#include <random>

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

constexpr FrameRate rate2397 = {24, true}, rate24 = {24, false}, rate25 = {25, false}, rate2997 = {30, true},
                    rate5994 = {60, true}, rate11988 = {120, true}, rate120 = {120, false};
constexpr Counting drop2997 = {rate2997, true}, drop5994 = {rate5994, true};
constexpr std::int64_t mostOf64Bits = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t leastOf64Bits = std::numeric_limits<std::int64_t>::min();

std::int64_t frame(std::string_view label, Counting counting)
{
  std::int64_t frame = -1;
  EXPECT_EQ(frameOf(label, counting, frame), "") << label;
  return frame;
}

std::string label(std::int64_t frame, Counting counting)
{
  std::string label;
  EXPECT_EQ(labelOf(frame, counting, label), "") << frame;
  return label;
}

/// Why the label has no frame; the frame must stay as it was.
std::string refusal(std::string_view label, Counting counting)
{
  std::int64_t frame = 77;
  std::string fault = frameOf(label, counting, frame);
  EXPECT_EQ(frame, 77) << label;
  return fault;
}

std::vector<Counting> allCountings()
{
  std::vector<Counting> countings;
  for (const FrameRate rate : frameRates) {
    countings.push_back({rate, false});
    if (hasDropFrame(rate))
      countings.push_back({rate, true});
  }
  return countings;
}

/// Writes a number of two digits without the functions under test.
void write(int number, std::string& label, std::size_t at)
{
  label[at] = static_cast<char>('0' + number / 10);
  label[at + 1] = static_cast<char>('0' + number % 10);
}

/// Goes through every label that could be one in order: each has the next frame, or is refused.
void expectEveryLabelThereAndBack(Counting counting, std::int64_t labels, int dropped)
{
  std::int64_t next = 0;
  std::string text = "00:00:00;00", back;
  for (int minute = 0; minute < 24 * 60; ++minute) {
    write(minute / 60, text, 0);
    write(minute % 60, text, 3);
    for (int second = 0; second < 60; ++second) {
      write(second, text, 6);
      for (int frames = 0; frames < counting.rate.frames; ++frames) {
        write(frames, text, 9);
        std::int64_t at = -1;
        const std::string fault = frameOf(text, counting, at);
        const bool left = second == 0 && minute % 10 != 0 && frames < dropped;
        // Millions of times: no assertion for each.
        if (left ? fault.empty() : !fault.empty() || at != next || !labelOf(at, counting, back).empty() || back != text)
          FAIL() << text << " is " << at << " (" << fault << "), which should be " << next << "; that is " << back;
        if (left)
          continue;
        ++next;
      }
    }
  }
  EXPECT_EQ(next, labels);
  EXPECT_EQ(framesADay(counting), labels);
}

TEST(DropFrameDay, Every2997LabelThereAndBack)
{
  expectEveryLabelThereAndBack(drop2997, 2'589'408, 2);
}

TEST(DropFrameDay, Every5994LabelThereAndBack)
{
  expectEveryLabelThereAndBack(drop5994, 5'178'816, 4);
}

TEST(FramesADay, EveryRate)
{
  EXPECT_EQ(framesADay({rate25, false}), 25 * 86'400);
  EXPECT_EQ(framesADay({rate2997, false}), 30 * 86'400);
  EXPECT_EQ(framesADay({rate120, false}), 120 * 86'400);
}

TEST(FrameOf, LabelsWithoutDropFrameCountEveryFrame)
{
  EXPECT_EQ(frame("00:00:00:00", {rate24, false}), 0);
  EXPECT_EQ(frame("01:00:00:00", {rate25, false}), 90'000);
  EXPECT_EQ(frame("01:00:00:00", {rate2397, false}), 86'400);
  EXPECT_EQ(frame("23:59:59:119", {rate11988, false}), 120 * 86'400 - 1);
  EXPECT_EQ(frame("00:01:00:00", {rate2997, false}), 1800);
}

TEST(FrameOf, DropFrameTakesBothSeparators)
{
  EXPECT_EQ(frame("00:01:00;02", drop2997), 1800);
  EXPECT_EQ(frame("00:01:00:02", drop2997), 1800);
  EXPECT_EQ(frame("01;00;00;00", drop2997), 107'892);
  EXPECT_EQ(frame("00:01:00;04", drop5994), 3600);
}

TEST(FrameOf, LabelThatDoesNotExistIsRefusedWithTheReason)
{
  EXPECT_EQ(refusal("00:01:00;00", drop2997), "drop frame leaves out the first 2 frames of this minute");
  EXPECT_EQ(refusal("13:59:00;01", drop2997), "drop frame leaves out the first 2 frames of this minute");
  EXPECT_EQ(refusal("00:01:00;03", drop5994), "drop frame leaves out the first 4 frames of this minute");
  EXPECT_EQ(frame("00:10:00;00", drop2997), 17'982);
  EXPECT_EQ(refusal("01:00:00:25", {rate25, false}), "frames above 24");
  EXPECT_EQ(refusal("01:00:00:24", {rate2397, false}), "frames above 23");
  EXPECT_EQ(refusal("01:00:00:30", drop2997), "frames above 29");
  EXPECT_EQ(refusal("01:00:00;00", {rate2997, false}), "';' is drop frame");
  EXPECT_EQ(refusal("24:00:00:00", {rate25, false}), "hours above 23");
  EXPECT_EQ(refusal("99:59:59:24", {rate25, false}), "hours above 23");
  EXPECT_EQ(refusal("00:60:00:00", {rate25, false}), "minutes above 59");
  EXPECT_EQ(refusal("1009", {rate25, false}), "not hh:mm:ss:ff");
  EXPECT_EQ(refusal("", {rate25, false}), "not hh:mm:ss:ff");
}

TEST(DropFrame, OnlyAt2997And5994)
{
  for (const FrameRate rate : frameRates) {
    const bool has = rate == rate2997 || rate == rate5994;
    EXPECT_EQ(hasDropFrame(rate), has) << rateName(rate);
    if (has)
      continue;
    const std::string reason = "no drop frame at " + rateName(rate) + " frames per second";
    EXPECT_EQ(refusal("01:00:00;00", {rate, true}), reason);
    std::string label = "as it was";
    EXPECT_EQ(labelOf(0, {rate, true}, label), reason);
    EXPECT_EQ(label, "as it was");
  }
}

TEST(LabelOf, FirstAndLastFrameOfTheDay)
{
  EXPECT_EQ(label(0, {rate25, false}), "00:00:00:00");
  EXPECT_EQ(label(0, drop2997), "00:00:00;00");
  EXPECT_EQ(label(2'589'407, drop2997), "23:59:59;29");
  EXPECT_EQ(label(1799, drop2997), "00:00:59;29");
  EXPECT_EQ(label(1800, drop2997), "00:01:00;02");
  EXPECT_EQ(label(120 * 86'400 - 1, {rate120, false}), "23:59:59:119");
  EXPECT_EQ(label(7, {rate120, false}), "00:00:00:007");
}

TEST(LabelOf, FrameOutsideTheDayIsRefusedAndNeverWraps)
{
  std::string label = "as it was";
  for (const std::int64_t before : {std::int64_t{-1}, leastOf64Bits})
    EXPECT_EQ(labelOf(before, {rate25, false}, label), "before the first frame of the day");
  for (const std::int64_t after : {std::int64_t{2'160'000}, mostOf64Bits})
    EXPECT_EQ(labelOf(after, {rate25, false}, label), "after the last frame of the day, 2159999");
  EXPECT_EQ(labelOf(2'589'408, drop2997, label), "after the last frame of the day, 2589407");
  EXPECT_EQ(label, "as it was");
}

TEST(Labels, RandomFramesOfEveryCountingComeBackAndKeepTheirOrder)
{
  std::mt19937_64 random(20'260'101);
  for (const Counting counting : allCountings()) {
    std::uniform_int_distribution<std::int64_t> frames(0, framesADay(counting) - 1);
    for (int i = 0; i < 2000; ++i) {
      const std::int64_t one = frames(random), other = frames(random);
      ASSERT_EQ(frame(label(one, counting), counting), one) << rateName(counting.rate);
      ASSERT_EQ(label(one, counting) < label(other, counting), one < other) << rateName(counting.rate);
    }
  }
}

TEST(RateName, EveryRate)
{
  std::vector<std::string> names;
  for (const FrameRate rate : frameRates)
    names.push_back(rateName(rate));
  EXPECT_EQ(names, (std::vector<std::string>{"23.98", "24", "25", "29.97", "30", "47.95", "48", "50", "59.94", "60",
                                             "119.88", "120"}));
}

TEST(RateOf, NameOfEveryRateComesBack)
{
  for (const FrameRate rate : frameRates)
    EXPECT_EQ(rateOf(rateName(rate)), rate) << rateName(rate);
}

TEST(RateOf, FurtherDecimalsCutOnesAndFractionsMeanTheSame)
{
  for (const char* text : {"23.976", "23.97", "23.9760", "23.980", "23.976024", "23.976023976", "24000/1001"})
    EXPECT_EQ(rateOf(text), rate2397) << text;
  for (const char* text : {"25.00", "25.000000", "25/1", "50/2", "25000/1000"})
    EXPECT_EQ(rateOf(text), rate25) << text;
  EXPECT_EQ(rateOf("59.940"), rate5994);
  EXPECT_EQ(rateOf("29.970030"), rate2997);
  EXPECT_EQ(rateOf("119.880"), rate11988);
  EXPECT_EQ(rateOf("47.952"), (FrameRate{48, true}));
}

TEST(RateOf, OtherTextIsNotARate)
{
  for (const char* text : {"",     "0",   "12",  "12.5",       "23",           "23.9",          "23.99", "24.01",
                           "29.9", "-25", "+25", "25 ",        " 25",          "25fps",         "1/0",   "0/1",
                           "/",    "25/", "/1",  "24000/1002", "999999999999", "25.0000000000", "25.x",  "NTSC"})
    EXPECT_EQ(rateOf(text), std::nullopt) << text;
}

TEST(SecondsOf, ExactFractionsInLowestTerms)
{
  Seconds seconds;
  EXPECT_EQ(secondsOf(0, rate2997, seconds), "");
  EXPECT_EQ(seconds, (Seconds{0, 1}));
  EXPECT_EQ(secondsOf(30'000, rate2997, seconds), "");
  EXPECT_EQ(seconds, (Seconds{1001, 1}));
  EXPECT_EQ(secondsOf(1, rate2397, seconds), "");
  EXPECT_EQ(seconds, (Seconds{1001, 24'000}));
  EXPECT_EQ(secondsOf(-50, rate25, seconds), "");
  EXPECT_EQ(seconds, (Seconds{-2, 1}));
}

TEST(SecondsOf, MoreThan64BitsIsRefused)
{
  Seconds seconds = {1, 2};
  EXPECT_EQ(secondsOf(mostOf64Bits, rate2397, seconds), "more than 64 bits hold");
  EXPECT_EQ(secondsOf(leastOf64Bits + 1, rate2397, seconds), "more than 64 bits hold");
  EXPECT_EQ(seconds, (Seconds{1, 2}));
  EXPECT_EQ(secondsOf(mostOf64Bits, rate25, seconds), "");
  EXPECT_EQ(seconds, (Seconds{mostOf64Bits, 25}));
}

TEST(FramesIn, ExactTimesOnly)
{
  std::int64_t frames = 0;
  EXPECT_EQ(framesIn({1'124'256, 25}, rate25, frames), "");
  EXPECT_EQ(frames, 1'124'256);
  EXPECT_EQ(framesIn({1001, 1}, rate2997, frames), "");
  EXPECT_EQ(frames, 30'000);
  EXPECT_EQ(framesIn({-4004, 96'000}, rate2397, frames), "");
  EXPECT_EQ(frames, -1);
  EXPECT_EQ(framesIn({1, 1}, rate2997, frames), "no whole number of frames at 29.97 frames per second");
  EXPECT_EQ(framesIn({1, 50}, rate25, frames), "no whole number of frames at 25 frames per second");
  EXPECT_EQ(frames, -1);
}

TEST(FramesIn, FractionOutsideItsRangeIsRefused)
{
  std::int64_t frames = 5;
  for (const std::int64_t denominator : {std::int64_t{0}, std::int64_t{-1}, leastOf64Bits})
    EXPECT_EQ(framesIn({1, denominator}, rate25, frames), "a denominator below 1");
  EXPECT_EQ(framesIn({mostOf64Bits, 1}, rate25, frames), "more than 64 bits hold");
  EXPECT_EQ(framesIn({leastOf64Bits, 1}, rate25, frames), "more than 64 bits hold");
  EXPECT_EQ(frames, 5);
  EXPECT_EQ(framesIn({mostOf64Bits, mostOf64Bits}, rate25, frames), "");
  EXPECT_EQ(frames, 25);
  EXPECT_EQ(framesIn({leastOf64Bits, 25}, rate25, frames), "");
  EXPECT_EQ(frames, leastOf64Bits);
}

TEST(Seconds, RandomFramesOfEveryRateComeBack)
{
  std::mt19937_64 random(19'640'901);
  constexpr std::int64_t most = mostOf64Bits / 1001;
  std::uniform_int_distribution<std::int64_t> frames(-most, most);
  for (const FrameRate rate : frameRates) {
    for (int i = 0; i < 2000; ++i) {
      const std::int64_t one = frames(random);
      Seconds seconds;
      ASSERT_EQ(secondsOf(one, rate, seconds), "");
      std::int64_t back = 0;
      ASSERT_EQ(framesIn(seconds, rate, back), "") << one;
      ASSERT_EQ(back, one);
    }
  }
}

} // namespace
