// SPDX-License-Identifier: Apache-2.0
#include "lists/xmeml.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/ascii.h"
#include "lists/names.h"
#include "lists/text.h"
#include "lists/timeline.h"
#include "lists/xml_file.h"

namespace reeldb::lists {
namespace {

/// The rate that holds for an element: its own, or that of the nearest element around it.
struct Rate {
  std::optional<FrameRate> known;  ///< if it is one of frameRates
  std::optional<Seconds> perFrame; ///< how long a frame lasts
  std::string text;                ///< as messages name it
};

Rate rateOfElement(pugi::xml_node rate)
{
  Rate result;
  result.text = childText(rate, "timebase");
  const std::optional<Seconds> frames = parseFraction(result.text);
  if (!frames || frames->numerator <= 0)
    return result;
  const bool isSlowed = base::sameName(childText(rate, "ntsc"), "TRUE");
  result.perFrame = quotient(isSlowed ? Seconds{1001, 1000} : Seconds{1, 1}, *frames);
  if (result.perFrame)
    result.known = rateOfFrames(*result.perFrame);
  if (isSlowed)
    result.text += " NTSC";
  return result;
}

std::optional<Seconds> timeOf(std::string_view frames, const Rate& rate)
{
  const std::optional<Seconds> number = parseFraction(frames);
  return number && rate.perFrame ? product(*number, *rate.perFrame) : std::nullopt;
}

/// A timecode element: where the counting begins, and how it counts.
struct Start {
  std::optional<Seconds> time;
  std::optional<Counting> counting;
};

class Reader {
public:
  explicit Reader(std::string_view text)
      : text_(text), file_(text, "xmeml", [this](pugi::xml_node node) { note(node); })
  {
  }

  List read()
  {
    for (const pugi::xml_node element : sequencesAndTracks_)
      if (std::string_view(element.name()) == "track")
        track(element);
      else if (element.child("media") && !sequenceAround(element.parent()))
        timeline_.title(childText(element, "name"));
    if (tracks_.empty())
      throw Error("xmeml without a sequence that has tracks");
    return timeline_.finish(text_);
  }

private:
  /// A file stands in full once, and is then named by its id. A rate holds for all that its parent holds.
  void note(pugi::xml_node node)
  {
    const std::string_view name = node.name();
    if (name == "file" && node.first_child())
      files_.try_emplace(node.attribute("id").value(), node);
    else if (name == "rate" && !childText(node, "timebase").empty())
      rates_.try_emplace(node.parent().hash_value(), node);
    else if (name == "sequence" || name == "track")
      sequencesAndTracks_.push_back(node);
  }

  /// It looks no element up among its siblings, because a track may have a hundred thousand of them.
  Rate rateAround(pugi::xml_node element) const
  {
    for (; element; element = element.parent())
      if (const auto rate = rates_.find(element.hash_value()); rate != rates_.end())
        return rateOfElement(rate->second);
    return {};
  }

  Start startOf(pugi::xml_node timecode) const
  {
    Start start;
    if (!timecode)
      return start;
    const Rate rate = rateAround(timecode);
    const std::string_view label = childText(timecode, "string");
    const bool dropFrame = childText(timecode, "displayformat") == "DF" || label.find(';') != std::string_view::npos;
    if (rate.known)
      start.counting = Counting{*rate.known, dropFrame && hasDropFrame(*rate.known)};
    start.time = timeOf(childText(timecode, "frame"), rate);
    std::int64_t frame = 0;
    if (!start.time && start.counting && frameOf(label, *start.counting, frame).empty())
      start.time = product(Seconds{frame, 1}, *rate.perFrame);
    return start;
  }

  static pugi::xml_node sequenceAround(pugi::xml_node node)
  {
    while (node && std::string_view(node.name()) != "sequence")
      node = node.parent();
    return node;
  }

  void track(pugi::xml_node track)
  {
    const pugi::xml_node kind = track.parent(), sequence = kind.parent().parent();
    const std::string_view kindName = kind.name();
    if ((kindName != "video" && kindName != "audio") || std::string_view(sequence.name()) != "sequence")
      return; // of a clip in a bin, or a fragment
    const int number = ++tracks_[kind.hash_value()];
    const Record record = recordOf(sequence);
    for (const pugi::xml_node item : track.children()) {
      const std::string_view name = item.name();
      if (name != "clipitem" && name != "generatoritem")
        continue;
      TimelineClip clip;
      clip.line = file_.lineOf(item);
      clip.what = name;
      clip.name = childText(item, "name");
      clip.picture = kindName == "video";
      if (!clip.picture)
        clip.sound.insert(number);
      clip.place = std::to_string(sequence.offset_debug());
      setRecord(clip, item, record);
      if (name == "generatoritem")
        timeline_.special(std::move(clip), generatedReason);
      else
        clipItem(std::move(clip), item);
    }
  }

  void clipItem(TimelineClip clip, pugi::xml_node item)
  {
    if (item.child("sequence"))
      return timeline_.special(std::move(clip), nestedReason);
    const pugi::xml_node file = fileOf(item);
    const std::string_view path = childText(file, "pathurl");
    const std::string_view reel = childText(file.child("timecode").child("reel"), "name");
    if (file && path.empty() && reel.empty() && isGenerated(file))
      return timeline_.special(std::move(clip), generatedReason);
    clip.reel = reel;
    clip.file = pathOfUrl(path);
    if (clip.file.empty())
      clip.file = childText(file, "name");
    clip.aliases.emplace_back(childText(file, "name"));
    setSource(clip, item, file);
    setDoubts(clip, item);
    timeline_.clip(std::move(clip));
  }

  /// Whether a file without a path is made by the editing system. Such a file says what made it, or has no name.
  static bool isGenerated(pugi::xml_node file)
  {
    return file.child("mediaSource") || childText(file, "name").find_first_not_of("/\\") == std::string_view::npos;
  }

  pugi::xml_node fileOf(pugi::xml_node item) const
  {
    const pugi::xml_node file = item.child("file");
    if (!file || file.first_child())
      return file;
    const auto known = files_.find(file.attribute("id").value());
    return known == files_.end() ? pugi::xml_node() : known->second;
  }

  void setSource(TimelineClip& clip, pugi::xml_node item, pugi::xml_node file) const
  {
    const Rate rate = rateAround(item);
    const Start start = startOf(file.child("timecode"));
    const std::optional<Seconds> in = timeOf(childText(item, "in"), rate), out = timeOf(childText(item, "out"), rate);
    if (start.counting)
      clip.source.counting = start.counting;
    else if (rate.known)
      clip.source.counting = Counting{*rate.known, false};
    if (!start.time)
      clip.doubts.emplace_back("its file has no start timecode (kept without timecodes)");
    else if (!in || !out)
      clip.doubts.emplace_back("in or out is not a number (kept without timecodes)");
    else if (!clip.source.counting)
      clip.doubts.push_back("unknown frame rate " + inQuotes(rate.text) + " (kept without timecodes)");
    else {
      clip.source.in = sum(*start.time, *in);
      clip.source.out = sum(*start.time, *out);
    }
  }

  /// A start or end of -1 is that of the transition before or behind the item.
  static std::string_view bound(pugi::xml_node item, const char* side, bool isStart)
  {
    const std::string_view own = childText(item, side);
    const pugi::xml_node next = isStart ? item.previous_sibling() : item.next_sibling();
    return own == "-1" && std::string_view(next.name()) == "transitionitem" ? childText(next, side) : own;
  }

  /// The record of a sequence.
  struct Record {
    Start begin;
    Rate rate;
    bool isNested = false; ///< then its items have no place in the record
  };

  Record recordOf(pugi::xml_node sequence) const
  {
    return {startOf(sequence.child("timecode")), rateAround(sequence), !!sequenceAround(sequence.parent())};
  }

  static void setRecord(TimelineClip& clip, pugi::xml_node item, const Record& record)
  {
    if (record.begin.counting)
      clip.record.counting = record.begin.counting;
    else if (record.rate.known)
      clip.record.counting = Counting{*record.rate.known, false};
    const std::optional<Seconds> start = timeOf(bound(item, "start", true), record.rate);
    const std::optional<Seconds> end = timeOf(bound(item, "end", false), record.rate);
    if (record.isNested || !start || !end || start->numerator < 0 || end->numerator < 0)
      return;
    const Seconds origin = record.begin.time.value_or(Seconds());
    clip.record.in = sum(origin, *start);
    clip.record.out = sum(origin, *end);
  }

  static void setDoubts(TimelineClip& clip, pugi::xml_node item)
  {
    if (base::sameName(childText(item, "enabled"), "FALSE"))
      clip.doubts.emplace_back("is disabled (kept: its source is in the list)");
    for (const pugi::xml_node filter : item.children("filter"))
      if (childText(filter.child("effect"), "effectid") == "timeremap")
        clip.doubts.emplace_back("plays at another speed: source in and out are as written");
  }

  std::string_view text_;
  std::unordered_map<std::string, pugi::xml_node> files_; ///< by their ids
  std::unordered_map<std::size_t, pugi::xml_node> rates_; ///< by the elements for whose contents they hold
  std::unordered_map<std::size_t, int> tracks_;           ///< the number of tracks of each kind of each sequence
  std::vector<pugi::xml_node> sequencesAndTracks_;        ///< in the order of the text
  Timeline timeline_{Format::Xmeml};
  XmlFile file_; ///< its constructor fills the others
};

} // namespace

List readXmeml(std::string_view text)
{
  return Reader(text).read();
}

} // namespace reeldb::lists
