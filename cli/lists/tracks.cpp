// SPDX-License-Identifier: Apache-2.0
#include "lists/tracks.h"

#include <algorithm>

#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// No list has more tracks than this many letters and digits can name.
constexpr std::size_t kLongest = 256;

std::string_view takeDigits(std::string_view& text)
{
  const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
  const std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(digits.size());
  return digits;
}

bool risesFromOne(std::string_view digits)
{
  return digits.front() > '0' &&
         std::adjacent_find(digits.begin(), digits.end(), std::greater_equal<>()) == digits.end();
}

} // namespace

std::optional<Tracks> parseTracks(std::string_view text, Digits digits)
{
  Tracks tracks;
  if (sameName(text, "NONE") || sameName(text, "D"))
    return tracks;
  if (text.empty() || text.size() > kLongest || text.back() == '/')
    return std::nullopt;
  while (!text.empty()) {
    const char kind = text.front();
    text.remove_prefix(1);
    const std::string_view numbers = takeDigits(text);
    if (kind == 'V' || kind == 'v') {
      ++tracks.video;
    } else if ((kind == 'B' || kind == 'b') && numbers.empty()) {
      ++tracks.video;
      ++tracks.audio;
    } else if (kind == 'A' || kind == 'a') {
      const bool set = digits == Digits::Set && numbers.size() > 1 && risesFromOne(numbers);
      tracks.audio += set ? static_cast<int>(numbers.size()) : 1;
    } else {
      return std::nullopt;
    }
    if (text.starts_with('/'))
      text.remove_prefix(1);
  }
  return tracks;
}

bool hasChannelNumber(std::string_view text)
{
  while (!text.empty()) {
    const std::string_view digits = takeDigits(text);
    if (digits.size() > 1 && !risesFromOne(digits))
      return true;
    if (!text.empty())
      text.remove_prefix(1);
  }
  return false;
}

} // namespace reeldb::lists
