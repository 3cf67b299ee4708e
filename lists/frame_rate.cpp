// SPDX-License-Identifier: Apache-2.0
#include "lists/frame_rate.h"

#include <algorithm>
#include <numeric>

#include "base/number.h"
#include "lists/text.h"
#include "lists/timecode.h"

namespace reeldb::lists {
namespace {

constexpr int secondsAMinute = 60;
constexpr int minutesAnHour = 60;
constexpr int hoursADay = 24;
constexpr int tenth = 10; ///< drop frame leaves the labels of each tenth minute alone

constexpr const char* tooLarge = "more than 64 bits hold";

/// The number of labels that each minute lacks, but for the tenth.
int dropped(Counting counting)
{
  constexpr int framesForEach = 15;
  return counting.dropFrame ? counting.rate.frames / framesForEach : 0;
}

/// Frames in a second, in lowest terms.
Seconds perSecond(FrameRate rate)
{
  constexpr std::int64_t thousand = 1000, slowedThousand = 1001;
  if (!rate.slowed)
    return {rate.frames, 1};
  const std::int64_t divisor = std::gcd(rate.frames * thousand, slowedThousand);
  return {rate.frames * thousand / divisor, slowedThousand / divisor};
}

/// Whether the rate, cut or rounded at these decimals, is the number: 23.97 and 23.98 are both 23.976...
bool isWrittenAs(FrameRate rate, std::int64_t number, std::int64_t unit)
{
  const Seconds exact = perSecond(rate);
  const std::int64_t scaled = exact.numerator * unit;
  return scaled / exact.denominator == number || (2 * scaled + exact.denominator) / (2 * exact.denominator) == number;
}

std::optional<FrameRate> rateOfFraction(std::string_view numerator, std::string_view denominator)
{
  const std::optional<int> above = base::parseNumber(numerator);
  const std::optional<int> below = base::parseNumber(denominator);
  if (!above || !below || *below == 0)
    return std::nullopt;
  for (const FrameRate rate : frameRates)
    if (const Seconds exact = perSecond(rate); exact.numerator * *below == exact.denominator * *above)
      return rate;
  return std::nullopt;
}

/// Appends the last digits of a number.
void append(std::string& text, std::int64_t number, std::size_t digits)
{
  constexpr int ten = 10;
  text.append(digits, '0');
  for (auto digit = text.rbegin(); digits > 0; --digits, ++digit, number /= ten)
    *digit = static_cast<char>('0' + number % ten);
}

/// The number of the two digits there.
int twoDigits(std::string_view label, std::size_t at)
{
  constexpr int ten = 10;
  return (label[at] - '0') * ten + (label[at + 1] - '0');
}

std::string countingFault(Counting counting)
{
  if (counting.dropFrame && !hasDropFrame(counting.rate))
    return "no drop frame at " + rateName(counting.rate) + " frames per second";
  return {};
}

} // namespace

std::string rateName(FrameRate rate)
{
  constexpr std::int64_t hundred = 100;
  if (!rate.slowed)
    return std::to_string(rate.frames);
  const Seconds exact = perSecond(rate);
  const std::int64_t hundredths = (2 * exact.numerator * hundred + exact.denominator) / (2 * exact.denominator);
  std::string name = std::to_string(hundredths / hundred) + ".";
  append(name, hundredths, 2);
  return name;
}

std::optional<FrameRate> rateOf(std::string_view text)
{
  constexpr std::size_t fewestDecimals = 2, mostDecimals = 9;
  constexpr std::int64_t ten = 10;
  if (const std::size_t slash = text.find('/'); slash != std::string_view::npos)
    return rateOfFraction(text.substr(0, slash), text.substr(slash + 1));
  const std::size_t point = text.find('.');
  const std::optional<int> whole = base::parseNumber(text.substr(0, point));
  std::string_view decimals = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  if (!whole || decimals.size() > mostDecimals || !std::all_of(decimals.begin(), decimals.end(), isDigit))
    return std::nullopt;
  while (decimals.ends_with('0'))
    decimals.remove_suffix(1);
  std::int64_t number = *whole, unit = 1;
  for (const char digit : decimals) {
    number = number * ten + (digit - '0');
    unit *= ten;
  }
  for (const FrameRate rate : frameRates)
    if (rate.slowed ? decimals.size() >= fewestDecimals && isWrittenAs(rate, number, unit)
                    : decimals.empty() && number == rate.frames)
      return rate;
  return std::nullopt;
}

bool hasDropFrame(FrameRate rate)
{
  constexpr int usual = 30, twice = 60;
  return rate.slowed && (rate.frames == usual || rate.frames == twice);
}

std::int64_t framesADay(Counting counting)
{
  constexpr std::int64_t minutes = std::int64_t{hoursADay} * minutesAnHour;
  return minutes * secondsAMinute * counting.rate.frames - (minutes - minutes / tenth) * dropped(counting);
}

std::string frameOf(std::string_view label, Counting counting, std::int64_t& frame)
{
  constexpr std::size_t minutesAt = 3, secondsAt = 6;
  if (std::string fault = countingFault(counting); !fault.empty())
    return fault;
  if (std::string fault = timecodeFault(label); !fault.empty())
    return fault;
  const int frames = framesOf(label);
  if (frames >= counting.rate.frames)
    return "frames above " + std::to_string(counting.rate.frames - 1);
  if (!counting.dropFrame && label.find(';') != std::string_view::npos)
    return "';' is drop frame";
  const std::int64_t minutes = twoDigits(label, 0) * minutesAnHour + twoDigits(label, minutesAt);
  const std::int64_t seconds = minutes * secondsAMinute + twoDigits(label, secondsAt);
  if (frames < dropped(counting) && twoDigits(label, secondsAt) == 0 && minutes % tenth != 0)
    return "drop frame leaves out the first " + std::to_string(dropped(counting)) + " frames of this minute";
  frame = seconds * counting.rate.frames + frames - dropped(counting) * (minutes - minutes / tenth);
  return {};
}

std::string labelOf(std::int64_t frame, Counting counting, std::string& label)
{
  constexpr int twoDigitFrames = 100;
  if (std::string fault = countingFault(counting); !fault.empty())
    return fault;
  if (frame < 0)
    return "before the first frame of the day";
  if (frame >= framesADay(counting))
    return "after the last frame of the day, " + std::to_string(framesADay(counting) - 1);
  // Count as without drop frame: add the labels that are left out at the start of minutes.
  const std::int64_t whole = std::int64_t{secondsAMinute} * counting.rate.frames;
  const std::int64_t ofTen = whole * tenth - std::int64_t{tenth - 1} * dropped(counting);
  const std::int64_t within = frame % ofTen;
  const std::int64_t minutesWithin = within < whole ? 0 : (within - whole) / (whole - dropped(counting)) + 1;
  const std::int64_t count = frame + dropped(counting) * (frame / ofTen * (tenth - 1) + minutesWithin);
  const std::int64_t seconds = count / counting.rate.frames;
  const std::int64_t minutes = seconds / secondsAMinute;
  label.clear();
  append(label, minutes / minutesAnHour, 2);
  append(label += ':', minutes % minutesAnHour, 2);
  append(label += ':', seconds % secondsAMinute, 2);
  append(label += counting.dropFrame ? ';' : ':', count % counting.rate.frames,
         counting.rate.frames > twoDigitFrames ? 3 : 2);
  return {};
}

std::string secondsOf(std::int64_t frames, FrameRate rate, Seconds& seconds)
{
  const Seconds exact = perSecond(rate);
  const std::int64_t divisor = std::gcd(frames % exact.numerator, exact.numerator);
  std::int64_t numerator = 0;
  if (__builtin_mul_overflow(frames / divisor, exact.denominator, &numerator))
    return tooLarge;
  seconds = {numerator, exact.numerator / divisor};
  return {};
}

std::string framesIn(Seconds seconds, FrameRate rate, std::int64_t& frames)
{
  if (seconds.denominator <= 0)
    return "a denominator below 1";
  // Both fractions in lowest terms, and no factor of one above that is in the other below.
  Seconds exact = perSecond(rate);
  for (std::int64_t* above : {&seconds.numerator, &exact.numerator}) {
    for (std::int64_t* below : {&seconds.denominator, &exact.denominator}) {
      const std::int64_t divisor = std::gcd(*above % *below, *below);
      *above /= divisor;
      *below /= divisor;
    }
  }
  if (seconds.denominator != 1 || exact.denominator != 1)
    return "no whole number of frames at " + rateName(rate) + " frames per second";
  std::int64_t product = 0;
  if (__builtin_mul_overflow(seconds.numerator, exact.numerator, &product))
    return tooLarge;
  frames = product;
  return {};
}

} // namespace reeldb::lists
