// SPDX-License-Identifier: Apache-2.0
#include "lists/collector.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/ascii.h"
#include "base/display_text.h"
#include "lists/frame_rate.h"
#include "lists/names.h"
#include "lists/text.h"
#include "lists/timecode.h"

namespace reeldb::lists {
namespace {

/// The two rates with drop frame.
constexpr FrameRate lowerDropFrame = {30, true}, higherDropFrame = {60, true};

/// Removes empty and repeated names, the reel's own name and names that never mean a reel.
std::vector<std::string> aliasesOf(std::vector<std::string> names, std::string_view reel)
{
  std::unordered_set<std::string> seen = {base::fold(reel)};
  std::vector<std::string> aliases;
  for (std::string& name : names) {
    const bool isName = !name.empty() && !isAuxiliary(name) && placeholderReason(name).empty();
    if (isName && seen.insert(base::fold(name)).second)
      aliases.push_back(std::move(name));
  }
  return aliases;
}

/// Why a name cannot be kept as it is; empty if it can.
std::string nameFault(std::string_view what, std::string_view name)
{
  if (name.size() > nameBytes)
    return std::string(what) + " " + inQuotes(name) + " has " + std::to_string(name.size()) + " bytes (at most " +
           std::to_string(nameBytes) + ")";
  if (const std::string_view control = firstControl(name); !control.empty())
    return std::string(what) + " " + inQuotes(name) + " holds a control character (" + base::displayText(control) + ")";
  return {};
}

/// The same for all names of a clip. The clip name and the source file come first, because the reel may be one of them.
std::string namesFault(const Clip& clip)
{
  std::string fault = nameFault("clip name", clip.clipName);
  if (fault.empty())
    fault = nameFault("source file", clip.sourceFile);
  if (fault.empty())
    fault = nameFault("reel", clip.reel);
  for (auto alias = clip.aliases.begin(); fault.empty() && alias != clip.aliases.end(); ++alias)
    fault = nameFault("other name of the reel", *alias);
  if (fault.empty())
    fault = nameFault("reel", clip.event.reelText);
  if (fault.empty())
    fault = nameFault("event number", clip.event.number);
  if (fault.empty())
    fault = nameFault("duration", clip.event.duration);
  return fault;
}

/// The timecodes of a clip with what they are called.
std::array<std::pair<const char*, const std::string*>, 4> timecodesOf(const Clip& clip)
{
  return {{{"source in", &clip.sourceIn},
           {"source out", &clip.sourceOut},
           {"record in", &clip.recordIn},
           {"record out", &clip.recordOut}}};
}

bool hasFrames(const std::string& timecode)
{
  return !timecode.empty() && !isFrameNumber(timecode);
}

/// Makes the clip drop frame if a separator of its timecodes says so.
void takeDropFrame(Clip& clip)
{
  const auto timecodes = timecodesOf(clip);
  clip.dropFrame = clip.dropFrame || std::any_of(timecodes.begin(), timecodes.end(),
                                                 [](const auto& each) { return isDropFrame(*each.second); });
}

/// Removes the rate of a clip whose own timecodes have more frames.
void removeRefutedRate(Clip& clip)
{
  const std::optional<FrameRate> known = rateOf(clip.frameRate);
  const auto timecodes = timecodesOf(clip);
  if (known && std::any_of(timecodes.begin(), timecodes.end(), [&](const auto& each) {
        return hasFrames(*each.second) && framesOf(*each.second) >= known->frames;
      }))
    clip.frameRate.clear();
}

/// Why the timecode does not exist in drop frame at that rate; empty if it does, or has more frames than the rate
/// counts.
std::string dropFrameFault(const std::string& timecode, FrameRate rate)
{
  if (framesOf(timecode) >= rate.frames)
    return {}; // another fault than that of drop frame
  std::int64_t frame = 0;
  return frameOf(timecode, {rate, true}, frame);
}

std::string orderFault(std::string_view side, std::string_view in, std::string_view out)
{
  if (in.empty() || out.empty() || !isAfter(in, out))
    return {};
  return std::string(side) + " in " + std::string(in) + " is after " + std::string(side) + " out " + std::string(out) +
         " (backwards, or past midnight)";
}

} // namespace

std::string Collector::fault(const Clip& clip)
{
  return clip.reel.empty() ? "no reel" : namesFault(clip);
}

bool Collector::clip(Clip clip, std::string_view text)
{
  if (std::string fault = this->fault(clip); !fault.empty()) {
    reject(clip.line, text, std::move(fault));
    return false;
  }
  const std::string_view reason = specialReason(clip.reel);
  if (!reason.empty()) {
    special(std::move(clip), reason);
    return false;
  }
  const std::string& first = spellings_.try_emplace(base::fold(clip.reel), clip.reel).first->second;
  if (first != clip.reel) {
    if (otherSpellings_.insert(clip.reel).second)
      list_.spellings.push_back({first, clip.reel});
    clip.reel = first;
  }
  clip.aliases = aliasesOf(std::move(clip.aliases), clip.reel);
  warnOfOrder(clip, text);
  noteTiming(clip, text);
  list_.clips.push_back(std::move(clip));
  return true;
}

void Collector::special(Clip clip, std::string_view reason)
{
  std::string key = base::fold(clip.reel);
  key += '\n';
  key += reason;
  const auto [entry, isNew] = specials_.try_emplace(std::move(key), list_.specials.size());
  if (isNew)
    list_.specials.push_back({shortened(clip.reel, shownBytes), std::string(reason), 0, {}});
  Special& known = list_.specials[entry->second];
  ++known.count;
  known.lines.push_back(clip.line);

  clip.reel = shortened(clip.reel, shownBytes);
  clip.special = reason;
  clip.aliases.clear();
  clip.event.sourceIds.clear();
  for (std::string* name :
       {&clip.clipName, &clip.sourceFile, &clip.event.reelText, &clip.event.number, &clip.event.duration})
    if (!nameFault("", *name).empty())
      name->clear();
  takeDropFrame(clip);
  removeRefutedRate(clip);
  list_.specialClips.push_back(std::move(clip));
}

void Collector::reject(int line, std::string_view text, std::string reason)
{
  list_.rejected.push_back({line, shortened(trim(text), shownBytes), std::move(reason)});
}

void Collector::warn(int line, std::string_view text, std::string reason)
{
  if (list_.warnings.empty() || list_.warnings.back().line != line || list_.warnings.back().reason != reason)
    list_.warnings.push_back({line, shortened(trim(text), shownBytes), std::move(reason)});
}

void Collector::warnOfOrder(const Clip& clip, std::string_view text)
{
  for (std::string fault :
       {orderFault("source", clip.sourceIn, clip.sourceOut), orderFault("record", clip.recordIn, clip.recordOut)}) {
    if (!fault.empty())
      warn(clip.line, text, std::move(fault));
  }
}

void Collector::rate(const std::string& rate, int line, std::string_view text)
{
  std::vector<Proof>& rates = list_.timing.rates;
  if (std::none_of(rates.begin(), rates.end(), [&](const Proof& proof) { return proof.says == rate; }))
    rates.push_back({rate, line, shortened(trim(text), shownBytes)});
}

void Collector::dropFrame(int line, std::string_view text)
{
  if (!list_.timing.dropFrame)
    list_.timing.dropFrame = Proof{"drop frame", line, shortened(trim(text), shownBytes)};
}

void Collector::noteTiming(Clip& clip, std::string_view text)
{
  takeDropFrame(clip);
  const auto timecodes = timecodesOf(clip);
  removeRefutedRate(clip);
  if (clip.dropFrame) {
    dropFrame(clip.line, text);
    noteDroppedLabels(clip, text);
  }
  if (!clip.frameRate.empty())
    return rate(clip.frameRate, clip.line, text);
  // A clip with a rate of its own says nothing of the list.
  for (const auto& [name, timecode] : timecodes) {
    if (!hasFrames(*timecode))
      continue;
    const int frames = framesOf(*timecode);
    const auto proof = [&, name = name, timecode = timecode] {
      return Proof{std::string(name) + " " + *timecode, clip.line, shortened(trim(text), shownBytes)};
    };
    if (!list_.timing.mostFrames || frames > list_.timing.frames) {
      list_.timing.frames = frames;
      list_.timing.mostFrames = proof();
    }
    if (!clip.dropFrame)
      continue;
    mostDropFrames_ = std::max(mostDropFrames_, frames);
    if (frames >= lowerDropFrame.frames && !higherDropFrame_)
      higherDropFrame_ = proof();
  }
}

void Collector::noteDroppedLabels(const Clip& clip, std::string_view text)
{
  // The higher rate leaves out all labels that the lower one does.
  for (const auto& [name, timecode] : timecodesOf(clip))
    if (hasFrames(*timecode) && !dropFrameFault(*timecode, higherDropFrame).empty())
      droppedLabels_.push_back({clip.line, shortened(trim(text), shownBytes), name, *timecode, clip.frameRate});
}

bool Collector::provesRate() const
{
  return higherDropFrame_ && mostDropFrames_ < higherDropFrame.frames;
}

void Collector::proveRate()
{
  if (!provesRate())
    return;
  for (std::vector<Clip>* clips : {&list_.clips, &list_.specialClips})
    for (Clip& clip : *clips)
      if (clip.dropFrame && clip.frameRate.empty())
        clip.frameRate = rateName(higherDropFrame);
  rate(rateName(higherDropFrame), higherDropFrame_->line, higherDropFrame_->text);
}

void Collector::warnOfDroppedLabels()
{
  for (DroppedLabel& label : droppedLabels_) {
    FrameRate rate = label.clipRate.empty() && provesRate() ? higherDropFrame : lowerDropFrame;
    if (const auto own = rateOf(label.clipRate); own && hasDropFrame(*own))
      rate = *own;
    if (const std::string fault = dropFrameFault(label.timecode, rate); !fault.empty())
      list_.warnings.push_back({label.line, std::move(label.text),
                                label.name + " " + label.timecode + " does not exist (" + fault + "; kept as it is)"});
  }
}

const std::string& Collector::spelling(const std::string& reel) const
{
  const auto known = spellings_.find(base::fold(reel));
  return known == spellings_.end() ? reel : known->second;
}

List Collector::finish()
{
  proveRate();
  warnOfDroppedLabels();
  const auto byLine = [](const auto& a, const auto& b) { return a.line < b.line; };
  std::stable_sort(list_.rejected.begin(), list_.rejected.end(), byLine);
  std::stable_sort(list_.warnings.begin(), list_.warnings.end(), byLine);
  return std::move(list_);
}

} // namespace reeldb::lists
