// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_line.h"

#include <algorithm>
#include <optional>

#include "base/ascii.h"
#include "lists/list.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/tracks.h"

namespace reeldb::lists {
namespace {

constexpr std::array<std::string_view, 4> timecodeNames = {"source in", "source out", "record in", "record out"};

bool allDigits(std::string_view text)
{
  return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

/// 001, 0001, 001A.
std::size_t numberDigits(std::string_view word)
{
  if (!word.empty() && isLetter(word.back()))
    word.remove_suffix(1);
  return allDigits(word) ? word.size() : 0;
}

/// The role of the line by a transition without blanks.
std::optional<Transition> transitionOf(std::string_view word)
{
  if (base::sameName(word, "C"))
    return Transition::Cut;
  if (base::sameName(word, "D"))
    return Transition::Into;
  if (base::startsWithName(word, "W") && word.size() <= 4 && (word.size() == 1 || allDigits(word.substr(1))))
    return Transition::Into;
  if (base::sameName(word, "KB"))
    return Transition::Background;
  if (base::sameName(word, "K") || base::sameName(word, "KO"))
    return Transition::Key;
  return std::nullopt;
}

/// Takes the transition off the end and returns its code; empty, and @p fields is unchanged, if there is no transition.
std::string takeTransition(std::string_view& fields)
{
  std::string_view rest = fields;
  std::string code(takeLast(rest));
  if (base::sameName(code, "B") || base::sameName(code, "O"))
    code.insert(0, takeLast(rest));
  if (!transitionOf(code))
    return {};
  fields = rest;
  return base::upperCase(code);
}

/// Splits "reel channels". Returns false if the last word is not a channel field or nothing stands before it.
bool takeChannels(std::string_view fields, EventLine& event)
{
  const std::string_view channels = takeLast(fields);
  if (fields.empty() || !parseTracks(channels, Digits::Set))
    return false;
  event.channels = channels;
  event.reel = fields;
  event.reelColumn =
      length(std::string_view(fields.data(), static_cast<std::size_t>(channels.data() - fields.data()))) - 1;
  return true;
}

/// Splits "reel channels [transition] [duration]". A field may be missing, and a reel may contain words that look like
/// a field. So the reading with the most fields that leaves a reel and channels is taken.
bool takeFields(std::string_view fields, EventLine& event)
{
  std::string_view shorter = fields;
  const std::string_view last = takeLast(shorter);
  const bool hasDuration = allDigits(last);
  for (int duration = hasDuration ? 1 : 0; duration >= 0; --duration) {
    const std::string_view here = duration == 1 ? shorter : fields;
    std::string_view before = here;
    std::string code = takeTransition(before);
    const bool hasCode = !code.empty() && takeChannels(before, event);
    if (!hasCode && !takeChannels(here, event))
      continue;
    event.transitionCode = hasCode ? std::move(code) : "C";
    event.transition = *transitionOf(event.transitionCode);
    if (duration == 1)
      event.duration = last;
    return true;
  }
  return false;
}

/// Why takeFields() failed for these fields.
std::string fieldsFault(std::string_view fields)
{
  std::string_view shorter = fields;
  if (allDigits(takeLast(shorter)))
    fields = shorter;
  takeTransition(fields);
  const std::string_view channels = takeLast(fields);
  if (channels.empty())
    return "no reel and no channels";
  if (parseTracks(channels, Digits::Set))
    return "no reel";
  if (looksLikeTimecode(channels))
    return "more than four timecodes (" + inQuotes(channels) + " stands before the source in)";
  return "unknown channels " + inQuotes(channels);
}

/// Why the line does not end with four words that look like timecodes.
std::string timecodesFault(std::string_view line)
{
  const std::size_t count = countTimecodes(line);
  if (count < 4)
    return "fewer than four timecodes (" + std::to_string(count) + ")";
  std::string_view rest = line;
  const std::string_view last = takeLast(rest);
  if (!looksLikeTimecode(last))
    return "text after the record out (" + inQuotes(last) + ")";
  return "other text between the timecodes";
}

} // namespace

std::size_t countTimecodes(std::string_view line)
{
  std::size_t count = 0;
  for (std::string_view word = takeFirst(line); !word.empty(); word = takeFirst(line))
    count += looksLikeTimecode(word) ? 1 : 0;
  return count;
}

bool isEventNumber(std::string_view text)
{
  return numberDigits(text) > 0;
}

bool isTransitionCode(std::string_view text)
{
  return transitionOf(text).has_value();
}

bool beginsLikeEvent(std::string_view line)
{
  const std::size_t digits = numberDigits(takeFirst(line));
  return digits >= 3 || (digits > 0 && countTimecodes(line) > 0);
}

std::string parseEvent(std::string_view line, EventLine& event)
{
  event = EventLine();
  std::string_view fields = trim(line);
  event.number = takeFirst(fields);
  const std::string_view afterNumber = fields;
  for (std::size_t i = event.timecodes.size(); i-- > 0;)
    event.timecodes[i] = takeLast(fields);
  // Some lists have frame numbers in place of the source timecodes.
  const bool numbered = isFrameNumber(event.timecodes[0]) && isFrameNumber(event.timecodes[1]);
  const std::size_t first = numbered ? 2 : 0;
  if (!std::all_of(event.timecodes.begin() + first, event.timecodes.end(), looksLikeTimecode))
    return timecodesFault(afterNumber);
  for (std::size_t i = first; i < event.timecodes.size(); ++i) {
    const std::string fault = timecodeFault(event.timecodes[i]);
    if (!fault.empty())
      return std::string(timecodeNames[i]) + " " + inQuotes(event.timecodes[i]) + " is not a timecode (" + fault + ")";
  }
  if (!takeFields(fields, event))
    return fieldsFault(fields);
  // What was taken for the source in may be the duration of such a transition, and a timecode is missing.
  if (numbered && (event.transition == Transition::Into || event.transition == Transition::Key) &&
      !allDigits(takeLast(fields)))
    return timecodesFault(afterNumber);
  const std::size_t characters = length(event.reel);
  if (characters > reelLength)
    return "reel " + inQuotes(event.reel) + " has " + std::to_string(characters) + " characters (at most " +
           std::to_string(reelLength) + ")";
  return {};
}

} // namespace reeldb::lists
