// SPDX-License-Identifier: Apache-2.0
#include "lists/writable.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <utf8.h>

#include "lists/edl_line.h"
#include "lists/encoding.h"
#include "lists/names.h"
#include "lists/speed.h"
#include "lists/text.h"
#include "lists/timecode.h"

namespace reeldb::lists {
namespace {

std::string subjectOf(const Clip& clip)
{
  return "clip " + inQuotes(clip.clipName) + " of reel " + inQuotes(clip.reel);
}

/// Why no list can hold the event; empty if a list can. A clip without an event has empty texts.
std::string eventFault(const Event& event)
{
  const auto fault = [](const std::string& text, const char* what) { return inQuotes(text) + " is not " + what; };
  if (!event.number.empty() && !isEventNumber(event.number))
    return fault(event.number, "an event number");
  if (!event.transition.empty() && !isTransitionCode(event.transition))
    return fault(event.transition, "a transition");
  if (!event.duration.empty() && !std::all_of(event.duration.begin(), event.duration.end(), isDigit))
    return fault(event.duration, "a duration");
  if (!event.speed)
    return {};
  const std::string& timecode = event.speed->timecode;
  if (!exactSpeed(event.speed->framesPerSecond))
    return fault(event.speed->framesPerSecond, "a speed");
  if (!timecode.empty() && !isFrameNumber(timecode) && !timecodeFault(timecode).empty())
    return fault(timecode, "a timecode");
  return {};
}

/// Why no list can hold the clip; empty if a list can.
std::string clipFault(const Clip& clip)
{
  if (clip.reel.empty() && clip.special.empty())
    return "it has no reel";
  const bool numbered = isFrameNumber(clip.sourceIn) && isFrameNumber(clip.sourceOut);
  for (const auto& [what, timecode] :
       {std::pair("source in", &clip.sourceIn), std::pair("source out", &clip.sourceOut),
        std::pair("record in", &clip.recordIn), std::pair("record out", &clip.recordOut)})
    if (!timecode->empty() && !(numbered && (timecode == &clip.sourceIn || timecode == &clip.sourceOut)))
      if (const std::string fault = timecodeFault(*timecode); !fault.empty())
        return std::string(what) + " " + inQuotes(*timecode) + " is not a timecode: " + fault;
  return eventFault(clip.event);
}

} // namespace

std::string writableText(const std::string& text)
{
  // decode() takes the mark of an encoding off the start, where a name may have that character.
  std::string result = utf8::is_valid(text) ? text : decode(text);
  for (char& c : result)
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
      c = ' ';
  return clean(result);
}

std::vector<Clip> writableClips(std::vector<Clip> clips, Written& written)
{
  std::unordered_set<std::string> told;
  const auto mend = [&](std::string& text) {
    std::string writable = writableText(text);
    if (writable != text && told.insert(text).second)
      written.remarks.push_back(inQuotes(text) + ": written as " + inQuotes(writable) +
                                " (a list cannot hold it as it is)");
    text = std::move(writable);
  };
  std::vector<Clip> result;
  for (Clip& clip : clips) {
    if (const std::string fault = clipFault(clip); !fault.empty()) {
      written.leftOut.push_back(subjectOf(clip) + ": left out (" + fault + ")");
      continue;
    }
    for (std::string* text : {&clip.reel, &clip.clipName, &clip.sourceFile, &clip.tracks})
      mend(*text);
    for (std::string& alias : clip.aliases)
      mend(alias);
    mend(clip.event.reelText);
    for (SourceId& id : clip.event.sourceIds)
      mend(id.id);
    const std::string_view reason = !clip.special.empty()    ? std::string_view()
                                    : isAuxiliary(clip.reel) ? std::string_view("a source without a tape")
                                                             : specialReason(clip.reel);
    if (!reason.empty() && told.insert(clip.reel).second)
      written.remarks.push_back("reel " + inQuotes(clip.reel) +
                                ": an import will not read it as a reel (its meaning in lists: " + std::string(reason) +
                                ")");
    result.push_back(std::move(clip));
  }
  written.clips = result.size();
  return result;
}

} // namespace reeldb::lists
