// SPDX-License-Identifier: Apache-2.0
#include "lists/tracks.h"

#include <algorithm>

#include "base/ascii.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// The longest channel field in characters; no list needs more.
constexpr std::size_t longestText = 256;

/// The most tracks of a range.
constexpr int mostTracks = 256;

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

/// A track number; 0 if no source can have a track of this number.
int trackNumber(std::string_view digits)
{
  constexpr std::size_t mostDigits = 3;
  int number = 0;
  for (const char digit : digits.size() > mostDigits ? std::string_view() : digits)
    number = number * 10 + (digit - '0');
  return number;
}

/// Takes "", "7", "1-8" or "1-A8" off the text behind the letter of the tracks. Returns the number of these tracks; 0
/// if the numbers are not valid.
int takeTrackNumbers(std::string_view& text, char kind)
{
  const std::string_view first = takeDigits(text);
  if (first.empty())
    return 1;
  const int from = trackNumber(first);
  if (from == 0)
    return 0;
  if (!text.starts_with('-'))
    return 1;
  text.remove_prefix(1);
  if (base::startsWithName(text, {&kind, 1}))
    text.remove_prefix(1);
  const int to = trackNumber(takeDigits(text));
  return to >= from ? to - from + 1 : 0;
}

} // namespace

std::optional<Tracks> parseLogTracks(std::string_view text)
{
  constexpr std::string_view between = " ,/";
  Tracks tracks;
  if (base::sameName(text, "NONE"))
    return tracks;
  if (base::sameName(text, "B"))
    return Tracks{1, 1};
  if (text.empty() || text.size() > longestText)
    return std::nullopt;
  while (!text.empty()) {
    const char kind = text.front();
    text.remove_prefix(1);
    const int count = takeTrackNumbers(text, kind);
    if (count == 0)
      return std::nullopt;
    if (kind == 'V' || kind == 'v')
      tracks.video += count;
    else if (kind == 'A' || kind == 'a')
      tracks.audio += count;
    else if (kind != 'D' && kind != 'd')
      return std::nullopt;
    if (tracks.video + tracks.audio > mostTracks)
      return std::nullopt;
    text.remove_prefix(std::min(text.find_first_not_of(between), text.size()));
  }
  return tracks;
}

std::optional<Tracks> parseTracks(std::string_view text, Digits digits)
{
  Tracks tracks;
  if (base::sameName(text, "NONE") || base::sameName(text, "D"))
    return tracks;
  if (text.empty() || text.size() > longestText || text.back() == '/')
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

std::string logTracks(int video, int audio)
{
  std::string result;
  for (int i = 1; i <= video; ++i)
    result.append("V").append(video == 1 ? "" : std::to_string(i));
  for (int i = 1; i <= audio; ++i)
    result.append("A").append(std::to_string(i));
  return result.empty() ? "NONE" : result;
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
