// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "lists/frame_rate.h"
#include "lists/names.h"
#include "lists/speed.h"
#include "lists/timecode.h"
#include "lists/writable.h"

namespace reeldb::lists {
namespace {

/// The rate at which the timecodes of the clip count, if those without a rate count at @p usual.
FrameRate rateOfClip(const Clip& clip, FrameRate usual)
{
  if (const auto rate = rateOf(clip.frameRate))
    return *rate;
  constexpr FrameRate dropFrame = {30, true};
  return clip.dropFrame && !hasDropFrame(usual) ? dropFrame : usual;
}

/// The frame of the label, or the number that the text is; empty for another text.
std::optional<std::int64_t> frameOfText(const std::string& text, FrameRate rate, bool dropFrame)
{
  std::int64_t frame = 0;
  if (isFrameNumber(text)) {
    std::from_chars(text.data(), text.data() + text.size(), frame);
    return frame;
  }
  if (!frameOf(text, {rate, (dropFrame || isDropFrame(text)) && hasDropFrame(rate)}, frame).empty())
    return std::nullopt;
  return frame;
}

/// A range of frames.
struct Range {
  std::int64_t in = 0, out = 0;
  std::int64_t length() const { return out - in; }
};

std::optional<Range> rangeOf(const std::string& in, const std::string& out, FrameRate rate, bool dropFrame)
{
  const auto first = frameOfText(in, rate, dropFrame), last = frameOfText(out, rate, dropFrame);
  if (!first || !last || *last < *first)
    return std::nullopt;
  return Range{*first, *last};
}

struct Item {
  const Clip* clip = nullptr;
  Range record; ///< in frames of the timeline
};

struct Lane {
  std::int64_t end = 0;
  std::vector<Item> items; ///< that do not overlap, in their order
};

class OtioWriter {
public:
  OtioWriter(const std::string& title, const std::vector<Clip>& clips, FrameRate rate) : title_(title), rate_(rate)
  {
    for (const Clip& clip : clips)
      if (clip.special != gapReason && clip.special != nestedReason)
        clips_.push_back(&clip);
    for (const Clip* clip : clips_)
      numbers_.emplace(clip, static_cast<int>(numbers_.size()) + 1);
  }

  std::string collection()
  {
    begin("SerializableCollection.1", title_);
    out_.Key("children");
    out_.StartArray();
    for (const Clip* clip : clips_)
      writeClip(*clip, std::nullopt);
    return finishArray();
  }

  /// A timeline of the clips with a place in the record, alone if all have one.
  std::string timeline()
  {
    std::vector<const Clip*> loose;
    place(loose);
    if (lanes_[0].empty() && lanes_[1].empty())
      return collection();
    if (loose.empty()) {
      writeTimeline();
      return finish();
    }
    begin("SerializableCollection.1", title_);
    out_.Key("children");
    out_.StartArray();
    writeTimeline();
    for (const Clip* clip : loose)
      writeClip(*clip, std::nullopt);
    return finishArray();
  }

  /// What a file of this kind does not hold.
  std::vector<std::string> remarks() const
  {
    std::vector<std::string> remarks;
    const auto remark = [&](const std::string& what, std::int64_t count, const std::string& cause) {
      if (count > 0)
        remarks.push_back(what + ": " + std::to_string(count) + " (" + cause + ")");
    };
    const auto count = [&](auto says) {
      return std::count_if(clips_.begin(), clips_.end(), [&](const Clip* clip) { return says(*clip); });
    };
    const std::string cannot = "a timeline of OTIO has no place for them";
    remark("event numbers not written", count([](const Clip& clip) { return !clip.event.number.empty(); }), cannot);
    remark("source ids not written",
           count([](const Clip& clip) { return !clip.event.sourceIds.empty() || !clip.sourceId.empty(); }), cannot);
    remark("transitions not written", lostTransitions_, "nothing stands before them on their track");
    remark("timecodes written as texts alone", textsAlone_, "they do not exist at the rate of their clip");
    return remarks;
  }

private:
  void key(std::string_view name, std::string_view value)
  {
    out_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    out_.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
  }
  void key(std::string_view name, std::int64_t value)
  {
    out_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    out_.Int64(value);
  }
  /// Begins an object of a schema.
  void begin(std::string_view schema, std::string_view name)
  {
    out_.StartObject();
    key("OTIO_SCHEMA", schema);
    key("name", name);
  }
  void emptyObject(const char* name)
  {
    out_.Key(name);
    out_.StartObject();
    out_.EndObject();
  }
  std::string finishArray()
  {
    out_.EndArray();
    out_.EndObject();
    return finish();
  }
  std::string finish() { return std::string(buffer_.GetString(), buffer_.GetSize()) + "\n"; }

  void writeTime(std::int64_t frames, FrameRate rate)
  {
    constexpr double slowing = 1.001;
    out_.StartObject();
    key("OTIO_SCHEMA", "RationalTime.1");
    out_.Key("rate");
    out_.Double(rate.slowed ? rate.frames / slowing : rate.frames);
    out_.Key("value");
    out_.Double(static_cast<double>(frames));
    out_.EndObject();
  }

  void writeRange(std::int64_t start, FrameRate rate, std::int64_t length, FrameRate lengthRate)
  {
    out_.Key("source_range");
    out_.StartObject();
    key("OTIO_SCHEMA", "TimeRange.1");
    out_.Key("start_time");
    writeTime(start, rate);
    out_.Key("duration");
    writeTime(length, lengthRate);
    out_.EndObject();
  }

  /// Puts the clips with a place in the record on tracks on which they do not overlap, picture and sound.
  void place(std::vector<const Clip*>& loose)
  {
    const auto timed = std::find_if(clips_.begin(), clips_.end(), [](const Clip* clip) {
      return !clip->recordIn.empty() && (!clip->frameRate.empty() || clip->dropFrame);
    });
    if (timed != clips_.end())
      rate_ = rateOfClip(**timed, rate_);
    std::vector<Item> items;
    for (const Clip* clip : clips_)
      if (const auto record = rangeOf(clip->recordIn, clip->recordOut, rate_, clip->dropFrame)) {
        items.push_back({clip, *record});
        dropFrame_ = dropFrame_ || (clip->dropFrame && hasDropFrame(rate_));
      } else {
        loose.push_back(clip);
      }
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.record.in < b.record.in; });
    start_ = items.empty() ? 0 : items.front().record.in;
    for (const Item& item : items) {
      const int sounds = item.clip->audioChannels;
      if (item.clip->videoChannels > 0 || sounds == 0)
        placeOn(lanes_[0], item, 1);
      placeOn(lanes_[1], item, sounds);
    }
  }

  void placeOn(std::vector<Lane>& lanes, const Item& item, int count)
  {
    for (std::size_t at = 0; count > 0; ++at) {
      if (at == lanes.size())
        lanes.push_back({start_, {}});
      if (lanes[at].end > item.record.in)
        continue;
      lanes[at].items.push_back(item);
      lanes[at].end = item.record.out;
      --count;
    }
  }

  void writeTimeline()
  {
    begin("Timeline.1", title_);
    writeTimelineMetadata();
    out_.Key("global_start_time");
    writeTime(start_, rate_);
    out_.Key("tracks");
    begin("Stack.1", "tracks");
    out_.Key("children");
    out_.StartArray();
    for (const auto& [lanes, kind, letter] :
         {std::tuple(&lanes_[0], "Video", "V"), std::tuple(&lanes_[1], "Audio", "A")})
      for (std::size_t i = 0; i < lanes->size(); ++i)
        writeTrack((*lanes)[i], kind, letter + std::to_string(i + 1));
    out_.EndArray();
    out_.EndObject();
    out_.EndObject();
  }

  void writeTimelineMetadata()
  {
    out_.Key("metadata");
    out_.StartObject();
    if (dropFrame_)
      writeDropFrame();
    out_.EndObject();
  }

  void writeDropFrame()
  {
    out_.Key("fcp_xml");
    out_.StartObject();
    out_.Key("timecode");
    out_.StartObject();
    key("displayformat", "DF");
    out_.EndObject();
    out_.EndObject();
  }

  void writeTrack(const Lane& lane, const char* kind, const std::string& name)
  {
    begin("Track.1", name);
    key("kind", kind);
    out_.Key("children");
    out_.StartArray();
    std::int64_t end = start_;
    for (const Item& item : lane.items) {
      if (item.record.in > end)
        writeGap(item.record.in - end);
      writeTransition(*item.clip, item.record.in > start_ || &item != &lane.items.front());
      writeClip(*item.clip, item.record);
      end = item.record.out;
    }
    out_.EndArray();
    out_.EndObject();
  }

  void writeGap(std::int64_t length)
  {
    begin("Gap.1", "");
    writeRange(0, rate_, length, rate_);
    out_.EndObject();
  }

  /// A transition lies wholly behind its cut, as the events of a cut list say.
  void writeTransition(const Clip& clip, bool hasBefore)
  {
    const std::string& code = clip.event.transition;
    std::int64_t frames = 0;
    const std::string& digits = clip.event.duration;
    std::from_chars(digits.data(), digits.data() + digits.size(), frames);
    if (code.empty() || code == "C" || frames == 0)
      return;
    if (!hasBefore) {
      ++lostTransitions_;
      return;
    }
    begin("Transition.1", code);
    key("transition_type", code == "D" ? "SMPTE_Dissolve" : "Custom_Transition");
    out_.Key("in_offset");
    writeTime(0, rate_);
    out_.Key("out_offset");
    writeTime(frames, rate_);
    out_.EndObject();
  }

  void writeClip(const Clip& clip, const std::optional<Range>& record)
  {
    const FrameRate rate = rateOfClip(clip, rate_);
    begin("Clip.1", clip.special.empty() ? clip.clipName : clip.reel);
    const auto source = rangeOf(clip.sourceIn, clip.sourceOut, rate, clip.dropFrame);
    if (!source && !clip.sourceIn.empty())
      ++textsAlone_;
    if (source && (!record || (source->length() == record->length() && rate == rate_)))
      writeRange(source->in, rate, source->length(), rate);
    else if (record) // as long as in the record, where its speed puts it
      writeRange(source ? source->in : 0, rate, record->length(), rate_);
    writeSpeed(clip, rate);
    writeMedium(clip);
    writeNames(clip);
    out_.EndObject();
  }

  void writeSpeed(const Clip& clip, FrameRate rate)
  {
    const auto speed = clip.event.speed ? exactSpeed(clip.event.speed->framesPerSecond) : std::nullopt;
    if (!speed)
      return;
    out_.Key("effects");
    out_.StartArray();
    begin(speed->numerator == 0 ? "FreezeFrame.1" : "LinearTimeWarp.1", "");
    key("effect_name", speed->numerator == 0 ? "FreezeFrame" : "LinearTimeWarp");
    out_.Key("time_scalar");
    out_.Double(static_cast<double>(speed->numerator) / static_cast<double>(speed->denominator) / rate.frames);
    out_.EndObject();
    out_.EndArray();
  }

  void writeMedium(const Clip& clip)
  {
    out_.Key("media_reference");
    if (!clip.special.empty()) {
      begin("GeneratorReference.1", "");
      key("generator_kind", clip.special == "colour bars" ? "SMPTEBars" : clip.special);
      emptyObject("parameters");
    } else if (!clip.sourceFile.empty()) {
      begin("ExternalReference.1", "");
      key("target_url", clip.sourceFile);
    } else {
      begin("MissingReference.1", "");
    }
    out_.Key("metadata");
    out_.StartObject();
    if (clip.dropFrame)
      writeDropFrame();
    out_.EndObject();
    out_.EndObject();
  }

  /// The reel where other programs look for it, and what only this program reads.
  void writeNames(const Clip& clip)
  {
    out_.Key("metadata");
    out_.StartObject();
    if (clip.special.empty()) {
      out_.Key("cmx_3600");
      out_.StartObject();
      key("reel", clip.reel);
      out_.EndObject();
      out_.Key("reeldb");
      out_.StartObject();
      key("reel", clip.reel);
      out_.Key("aliases");
      out_.StartArray();
      for (const std::string& alias : clip.aliases)
        out_.String(alias.data(), static_cast<rapidjson::SizeType>(alias.size()));
      out_.EndArray();
      key("number", numbers_.at(&clip));
      key("tracks", clip.tracks);
      key("video_channels", clip.videoChannels);
      key("audio_channels", clip.audioChannels);
      key("source_in", clip.sourceIn);
      key("source_out", clip.sourceOut);
      key("record_in", clip.recordIn);
      key("record_out", clip.recordOut);
      key("frame_rate", clip.frameRate);
      key("camera_roll", clip.cameraRoll);
      key("sound_of", clip.soundOf);
      out_.Key("drop_frame");
      out_.Bool(clip.dropFrame);
      out_.EndObject();
    }
    out_.EndObject();
  }

  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> out_{buffer_};
  std::string title_;
  FrameRate rate_; ///< of the timeline, and of clips that give none
  bool dropFrame_ = false;
  std::vector<const Clip*> clips_;
  std::unordered_map<const Clip*, int> numbers_; ///< from 1
  std::vector<Lane> lanes_[2];                   ///< picture, sound
  std::int64_t start_ = 0;
  std::int64_t lostTransitions_ = 0, textsAlone_ = 0;
};

} // namespace

Written writeOtio(const std::string& title, const std::vector<Clip>& clips, const std::string& rate, bool isCut)
{
  Written written;
  const std::vector<Clip> writable = writableClips(clips, written);
  OtioWriter writer(writableText(title), writable, rateOf(rate).value_or(FrameRate()));
  written.text = isCut ? writer.timeline() : writer.collection();
  const std::vector<std::string> remarks = writer.remarks();
  written.remarks.insert(written.remarks.end(), remarks.begin(), remarks.end());
  return written;
}

} // namespace reeldb::lists
