// SPDX-License-Identifier: Apache-2.0
#include "lists/speed.h"

#include <algorithm>
#include <numeric>

#include "lists/text.h"
#include "lists/timecode.h"

namespace reeldb::lists {
namespace {

constexpr std::size_t mostDigits = 9, mostDecimals = 6;

} // namespace

std::optional<FramesPerSecond> exactSpeed(std::string_view framesPerSecond)
{
  std::string_view rest = framesPerSecond;
  const bool backwards = rest.starts_with('-');
  if (backwards || rest.starts_with('+'))
    rest.remove_prefix(1);
  const std::size_t point = rest.find('.');
  const std::string_view whole = rest.substr(0, point);
  const std::string_view decimals = point == std::string_view::npos ? "0" : rest.substr(point + 1);
  const auto isDigits = [](std::string_view text, std::size_t most) {
    return !text.empty() && text.size() <= most && std::all_of(text.begin(), text.end(), isDigit);
  };
  if (!isDigits(whole, mostDigits) || !isDigits(decimals, mostDecimals))
    return std::nullopt;
  std::int64_t numerator = 0, denominator = 1;
  const auto append = [&](char digit) { numerator = numerator * 10 + (digit - '0'); };
  std::for_each(whole.begin(), whole.end(), append);
  for (const char digit : decimals) {
    append(digit);
    denominator *= 10;
  }
  const std::int64_t divisor = std::gcd(numerator, denominator);
  return FramesPerSecond{(backwards ? -numerator : numerator) / divisor, denominator / divisor};
}

std::string parseSpeedLine(std::string_view text, SpeedLine& line)
{
  line = SpeedLine();
  std::string_view rest = trim(text);
  std::string_view before = rest;
  const std::string_view last = takeLast(before);
  std::string_view reel = before;
  const bool numbered = isFrameNumber(last) && exactSpeed(takeLast(reel)) && !reel.empty();
  if (numbered || looksLikeTimecode(last)) {
    if (const std::string fault = numbered ? std::string() : timecodeFault(last); !fault.empty())
      return inQuotes(last) + " is not a timecode (" + fault + ")";
    line.speed.timecode = last;
    rest = before;
  }
  line.speed.framesPerSecond = takeLast(rest);
  if (!exactSpeed(line.speed.framesPerSecond))
    return inQuotes(line.speed.framesPerSecond) + " is not a number of frames per second";
  if (rest.empty())
    return "no reel";
  line.reel = rest;
  return {};
}

} // namespace reeldb::lists
