// SPDX-License-Identifier: Apache-2.0
#include "lists/timecode.h"

#include <algorithm>

#include "base/number.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// The highest frame number: two digits count up to 60 frames per second, three digits up to 120. Only lists of higher
/// rates have three digits.
constexpr std::string_view mostFrames = "59";
constexpr std::string_view mostFramesOfThree = "119";

/// Of a frame number: more than a month at any rate, and fewer than an int holds.
constexpr std::size_t mostDigits = 9;

bool isSeparator(char c)
{
  return c == ':' || c == ';' || c == '.' || c == ',';
}

/// Whether separators and digits stand where a timecode has them.
bool isShaped(std::string_view text)
{
  if (text.size() != 11 && text.size() != 12)
    return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (!(i == 2 || i == 5 || i == 8 ? isSeparator(text[i]) : isDigit(text[i])))
      return false;
  return true;
}

/// hhmmssfff: the order of these texts is the order of time.
std::string digitsOf(std::string_view timecode)
{
  std::string digits;
  for (const std::size_t part : {0U, 3U, 6U})
    digits += timecode.substr(part, 2);
  const std::string_view frames = timecode.substr(9);
  return digits.append(3 - frames.size(), '0').append(frames);
}

} // namespace

std::string timecodeFault(std::string_view text)
{
  if (!isShaped(text))
    return "not hh:mm:ss:ff";
  if (text.substr(0, 2) > "23")
    return "hours above 23";
  if (text[3] > '5')
    return "minutes above 59";
  if (text[6] > '5')
    return "seconds above 59";
  const std::string_view frames = text.substr(9);
  const std::string_view most = frames.size() == 2 ? mostFrames : mostFramesOfThree;
  return frames > most ? "frames above " + std::string(most) : std::string();
}

int framesOf(std::string_view timecode)
{
  int frames = 0;
  for (const char digit : timecode.substr(9))
    frames = frames * 10 + (digit - '0');
  return frames;
}

bool isFrameNumber(std::string_view text)
{
  return !text.empty() && text.size() <= mostDigits && std::all_of(text.begin(), text.end(), isDigit);
}

bool isDropFrame(std::string_view timecode)
{
  return timecode.find(';') != std::string_view::npos;
}

bool isAfter(std::string_view a, std::string_view b)
{
  if (isFrameNumber(a) && isFrameNumber(b))
    return base::parseNumber(a) > base::parseNumber(b);
  return digitsOf(a) > digitsOf(b);
}

bool looksLikeTimecode(std::string_view text)
{
  const auto colons = std::count_if(text.begin(), text.end(), [](char c) { return c == ':' || c == ';'; });
  if (colons >= 2)
    return true;
  const auto separators = std::count_if(text.begin(), text.end(), isSeparator);
  const auto digits = std::count_if(text.begin(), text.end(), isDigit);
  return separators == 3 && digits > 0 && separators + digits == static_cast<std::ptrdiff_t>(text.size());
}

} // namespace reeldb::lists
