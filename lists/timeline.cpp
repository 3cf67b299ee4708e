// SPDX-License-Identifier: Apache-2.0
#include "lists/timeline.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <utf8.h>

#include "base/ascii.h"
#include "lists/name_forms.h"
#include "lists/names.h"
#include "lists/own_name.h"
#include "lists/text.h"
#include "lists/timecode.h"

namespace reeldb::lists {
namespace {

std::string textOf(const std::optional<Seconds>& time)
{
  return time ? std::to_string(time->numerator) + "/" + std::to_string(time->denominator) : std::string();
}

/// Everything of a clip but its tracks, its line and its doubts.
std::string keyOf(const TimelineClip& clip)
{
  std::string key;
  for (const std::string* text : {&clip.place, &clip.name, &clip.reel, &clip.file})
    key.append(*text).append(1, '\0');
  for (const std::optional<Seconds>* time : {&clip.source.in, &clip.source.out, &clip.record.in, &clip.record.out})
    key.append(textOf(*time)).append(1, '\0');
  if (clip.written)
    key.append(std::to_string(clip.written->number));
  return key;
}

std::string shownOf(const TimelineClip& clip)
{
  return clip.name.empty() ? clip.what : clip.what + " " + clip.name;
}

bool shareTrack(const TimelineClip& a, const TimelineClip& b)
{
  return (a.picture && b.picture) ||
         std::any_of(a.sound.begin(), a.sound.end(), [&](int track) { return b.sound.contains(track); });
}

/// "VA1A2"; "V" if it is on no track that is known.
std::string tracksOf(const TimelineClip& clip)
{
  std::string tracks = clip.picture || clip.sound.empty() ? "V" : "";
  for (const int track : clip.sound)
    tracks.append("A").append(std::to_string(track));
  return tracks;
}

bool isTimeText(const std::string& text)
{
  return text.empty() || isFrameNumber(text) || timecodeFault(text).empty();
}

/// Whether the text means the time. No text means no time; neither it nor a label that does not exist at this rate has
/// a place of its own, so they mean the start of the day.
bool means(const std::string& text, const std::optional<Seconds>& time, Counting counting)
{
  if (text.empty())
    return !time || time->numerator == 0;
  const std::optional<FrameAt> at = time ? frameAt(*time, counting.rate) : std::nullopt;
  if (!at || !at->isWhole || !isTimeText(text))
    return false;
  std::int64_t frame = 0;
  if (isFrameNumber(text))
    std::from_chars(text.data(), text.data() + text.size(), frame);
  else if (!frameOf(text, {counting.rate, (counting.dropFrame || isDropFrame(text)) && hasDropFrame(counting.rate)},
                    frame)
                .empty())
    frame = 0;
  return frame == at->frame;
}

Counting countingOf(const TimeRange& range, const WrittenClip& written)
{
  return {range.counting->rate, written.dropFrame || range.counting->dropFrame};
}

/// Whether the clip still stands in the record where it was written.
bool isInPlace(const TimeRange& record, const WrittenClip& written)
{
  if (!record.in)
    return isTimeText(written.recordIn) && isTimeText(written.recordOut);
  return record.counting && means(written.recordIn, record.in, countingOf(record, written)) &&
         means(written.recordOut, record.out, countingOf(record, written));
}

/// Whether the source has the times that were written. A source that plays at another speed is as long as its place in
/// the record.
bool isAsWritten(const TimelineClip& clip)
{
  const WrittenClip& written = *clip.written;
  if (!clip.source.in) // no time of this rate
    return isTimeText(written.sourceIn) && isTimeText(written.sourceOut);
  return clip.source.counting && means(written.sourceIn, clip.source.in, countingOf(clip.source, written)) &&
         isTimeText(written.sourceOut) &&
         ((clip.record.in && isInPlace(clip.record, written)) ||
          means(written.sourceOut, clip.source.out, countingOf(clip.source, written)));
}

bool isOnTheTracksWritten(const TimelineClip& clip)
{
  const WrittenClip& written = *clip.written;
  const bool hasPicture = written.videoChannels > 0 || written.audioChannels == 0;
  return hasPicture == clip.picture && static_cast<std::size_t>(written.audioChannels) == clip.sound.size();
}

/// The names of the source, the one that decides first. No file has a field for names, except in what came from a cut
/// list.
OwnName ownNameOf(const TimelineClip& clip)
{
  if (clip.written)
    return {clip.reel, NameEvidence::ReelMap};
  if (clip.reel.empty() || isAuxiliary(clip.reel))
    return ownNameWithoutTape(clip.file, clip.file.empty() ? clip.name : std::string());
  if (!specialReason(clip.reel).empty())
    return {clip.reel};
  NameTexts texts;
  texts.reel = clip.reel;
  texts.field = clip.reelField;
  texts.sourceFile = clip.file;
  texts.clipName = clip.name;
  return ownNames(texts).front();
}

/// The text with its percent escapes resolved. It stays as it is if that would not be a text, and so do the escapes of
/// what separates folders.
std::string unescaped(std::string_view text)
{
  constexpr int hexadecimal = 16;
  constexpr std::size_t escape = 3;
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    unsigned int byte = 0;
    const std::string_view digits = text.substr(at, escape);
    if (digits.size() == escape && digits.front() == '%') {
      const auto [end, error] = std::from_chars(digits.data() + 1, digits.data() + escape, byte, hexadecimal);
      if (error == std::errc() && end == digits.data() + escape && byte != '/' && byte != '\\') {
        result += static_cast<char>(byte);
        at += escape - 1;
        continue;
      }
    }
    result += text[at];
  }
  return utf8::is_valid(result) && firstControl(result).empty() ? result : std::string(text);
}

} // namespace

void Timeline::requireRoom()
{
  if (clips_.size() + specials_.size() + rejected_ >= mostTimelineClips)
    throw Error("more than " + std::to_string(mostTimelineClips) + " clips");
}

void Timeline::title(std::string_view title)
{
  if (collector_.list().title.empty())
    collector_.list().title = shortened(trimWhite(title), shownBytes);
}

void Timeline::clip(TimelineClip clip)
{
  requireRoom();
  for (std::string* text : {&clip.name, &clip.reel, &clip.file})
    *text = clean(trimWhite(*text));
  const auto [known, isNew] = linked_.try_emplace(keyOf(clip), clips_.size());
  if (!isNew && !shareTrack(clips_[known->second], clip)) {
    TimelineClip& linked = clips_[known->second];
    linked.picture = linked.picture || clip.picture;
    linked.sound.merge(clip.sound);
    return;
  }
  known->second = clips_.size();
  clips_.push_back(std::move(clip));
}

void Timeline::special(TimelineClip clip, std::string_view reason)
{
  requireRoom();
  specials_.emplace_back(std::move(clip), reason);
}

void Timeline::reject(const TimelineClip& clip, std::string reason)
{
  requireRoom();
  ++rejected_;
  collector_.reject(clip.line, shownOf(clip), std::move(reason));
}

void Timeline::setTimes(const TimeRange& range, const std::string& what, std::string& in, std::string& out,
                        std::vector<std::string>& doubts) const
{
  if (!range.counting)
    return;
  for (const auto& [side, time, label] : {std::tuple(" in", &range.in, &in), std::tuple(" out", &range.out, &out)}) {
    if (!*time)
      continue;
    const std::optional<FrameAt> frame = frameAt(**time, range.counting->rate);
    const std::string fault = frame ? labelOf(frame->frame, *range.counting, *label) : "more than 64 bits hold";
    if (fault.empty() && frame->isWhole)
      continue;
    std::string& doubt = doubts.emplace_back(what);
    doubt.append(side).append(" ").append(textOf(*time)).append("s ");
    if (fault.empty())
      doubt.append("lies within a frame (kept as ").append(*label).append(")");
    else
      doubt.append("has no timecode: ").append(fault).append(" (kept without it)");
  }
}

Clip Timeline::clipOf(TimelineClip& from)
{
  Clip clip;
  clip.line = from.line;
  clip.clipName = from.name;
  clip.sourceFile = from.file;
  if (from.written && isOnTheTracksWritten(from)) {
    clip.tracks = from.written->tracks;
    clip.videoChannels = from.written->videoChannels;
    clip.audioChannels = from.written->audioChannels;
  } else {
    clip.tracks = tracksOf(from);
    clip.videoChannels = clip.tracks.starts_with('V') ? 1 : 0;
    clip.audioChannels = static_cast<int>(from.sound.size());
  }
  setSource(from, clip);
  setRecord(from, clip);
  return clip;
}

void Timeline::setSource(TimelineClip& from, Clip& clip) const
{
  if (from.written && isAsWritten(from)) {
    clip.sourceIn = from.written->sourceIn;
    clip.sourceOut = from.written->sourceOut;
    clip.frameRate = from.written->frameRate;
    clip.dropFrame = from.written->dropFrame;
    return;
  }
  if (from.source.counting) {
    clip.frameRate = rateName(from.source.counting->rate);
    clip.dropFrame = from.source.counting->dropFrame;
  }
  setTimes(from.source, "source", clip.sourceIn, clip.sourceOut, from.doubts);
}

void Timeline::setRecord(TimelineClip& from, Clip& clip) const
{
  if (from.written && isInPlace(from.record, *from.written)) {
    clip.recordIn = from.written->recordIn;
    clip.recordOut = from.written->recordOut;
    return;
  }
  setTimes(from.record, "record", clip.recordIn, clip.recordOut, from.doubts);
}

void Timeline::report(TimelineClip from)
{
  Clip clip = clipOf(from);
  clip.event.reelText = from.reel;
  clip.event.reelField = from.reelField;
  const OwnName name = ownNameOf(from);
  clip.reel = name.name;
  clip.evidence = name.evidence;
  clip.mayBeCut = name.mayBeCut;
  clip.ownName = name.file;
  if (clip.reel.empty())
    return collector_.reject(from.line, shownOf(from), "no reel, no file and no name");
  for (std::string& alias : from.aliases)
    clip.aliases.push_back(clean(trimWhite(alias)));
  if (from.written) {
    clip.cameraRoll = from.written->cameraRoll;
    clip.soundOf = from.written->soundOf;
  } else {
    clip.aliases.push_back(from.reel);
    clip.aliases.emplace_back(fileName(from.file));
  }
  for (const SourceId& id : from.ids)
    if (!id.id.empty() && id.id.size() <= nameBytes && firstControl(id.id).empty())
      clip.event.sourceIds.push_back(id);
  const bool isOfFile = clip.event.reelText.empty() && !clip.event.sourceIds.empty();
  const std::string id = isOfFile ? clip.event.sourceIds.front().id : std::string();
  const std::string reel = clip.reel;
  if (!collector_.clip(std::move(clip), shownOf(from)))
    return;
  for (std::string& doubt : from.doubts)
    collector_.warn(from.line, shownOf(from), std::move(doubt));
  if (!isOfFile)
    return;
  auto& [spelling, ids] = filesOfNames_[base::fold(reel)];
  spelling = collector_.spelling(reel);
  if (std::find(ids.begin(), ids.end(), id) == ids.end())
    ids.push_back(id);
}

void Timeline::reportSameNames()
{
  for (const auto& [folded, name] : filesOfNames_)
    if (name.second.size() > 1)
      collector_.list().ambiguous.push_back(
          {name.first, "the reel is named by its file, and several files have this name", {}, name.second});
}

List Timeline::finish(std::string_view text)
{
  linked_ = {}; // a list of many clips needs the memory
  const auto byLine = [](const TimelineClip& a, const TimelineClip& b) { return a.line < b.line; };
  if (!std::is_sorted(clips_.begin(), clips_.end(), byLine)) // the sort moves each clip several times
    std::stable_sort(clips_.begin(), clips_.end(), byLine);
  std::stable_sort(specials_.begin(), specials_.end(),
                   [&](const auto& a, const auto& b) { return byLine(a.first, b.first); });
  for (TimelineClip& clip : clips_)
    report(std::move(clip));
  for (auto& [from, reason] : specials_) {
    Clip clip = clipOf(from);
    clip.reel = from.name.empty() ? std::string(reason) : clean(trimWhite(from.name));
    collector_.special(std::move(clip), reason);
  }
  reportSameNames();
  std::stable_sort(collector_.list().specialClips.begin(), collector_.list().specialClips.end(),
                   [](const Clip& a, const Clip& b) { return a.line < b.line; });
  Tally& tally = collector_.list().tally;
  Lines lines(text);
  for (std::string_view line; lines.next(line);)
    tally.blank += trim(line).empty() ? 1 : 0;
  tally.lines = lines.number();
  return collector_.finish();
}

std::string pathOfUrl(std::string_view url)
{
  url = trimWhite(url);
  const std::size_t scheme = url.find(':');
  constexpr std::size_t drive = 1; // of "D:\a.mov"
  if (scheme == std::string_view::npos || scheme <= drive ||
      !std::all_of(url.begin(), url.begin() + static_cast<std::ptrdiff_t>(scheme), isLetter))
    return std::string(url);
  const bool isFile = base::sameName(url.substr(0, scheme), "file");
  std::string_view path = url.substr(scheme + 1);
  if (path.starts_with("//")) {
    path.remove_prefix(2);
    path.remove_prefix(std::min(path.find('/'), path.size())); // the host
  }
  if (!isFile)
    path = path.substr(0, path.find_first_of("?#"));
  return unescaped(path);
}

std::string_view trimWhite(std::string_view text)
{
  constexpr std::string_view white = " \t\r\n";
  const std::size_t first = text.find_first_not_of(white);
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

} // namespace reeldb::lists
