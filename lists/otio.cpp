// SPDX-License-Identifier: Apache-2.0
#include "lists/otio.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

#include "base/ascii.h"
#include "base/number.h"
#include "lists/json_tree.h"
#include "lists/names.h"
#include "lists/text.h"
#include "lists/timeline.h"

namespace reeldb::lists {
namespace {

/// The field of the reels of a cut list that OTIO was made of.
constexpr std::size_t usualReelField = 8;

/// A schema and its version: "Clip.2".
struct Schema {
  std::string_view name, version;
};

/// The schemas that are read, with their highest version.
constexpr std::array<Schema, 15> knownSchemas = {{{"Clip", "2"},
                                                  {"ExternalReference", "1"},
                                                  {"Filler", "1"},
                                                  {"Gap", "1"},
                                                  {"GeneratorReference", "1"},
                                                  {"ImageSequenceReference", "1"},
                                                  {"MissingReference", "1"},
                                                  {"RationalTime", "1"},
                                                  {"Sequence", "1"},
                                                  {"SerializableCollection", "1"},
                                                  {"Stack", "1"},
                                                  {"TimeRange", "1"},
                                                  {"Timeline", "1"},
                                                  {"Track", "1"},
                                                  {"Transition", "1"}}};

/// The members that the reader asks for, sorted.
constexpr std::array<std::string_view, 49> askedNames = {"AAF",
                                                         "ALE",
                                                         "OTIO_SCHEMA",
                                                         "Tape",
                                                         "TapeID",
                                                         "TapeName",
                                                         "UserComments",
                                                         "active_media_reference_key",
                                                         "aliases",
                                                         "audio_channels",
                                                         "available_range",
                                                         "camera_roll",
                                                         "children",
                                                         "cmx_3600",
                                                         "comments",
                                                         "displayformat",
                                                         "drop_frame",
                                                         "duration",
                                                         "effects",
                                                         "enabled",
                                                         "fcp_xml",
                                                         "frame_rate",
                                                         "generator_kind",
                                                         "global_start_time",
                                                         "kind",
                                                         "media_reference",
                                                         "media_references",
                                                         "metadata",
                                                         "name",
                                                         "name_prefix",
                                                         "name_suffix",
                                                         "number",
                                                         "rate",
                                                         "record_in",
                                                         "record_out",
                                                         "reel",
                                                         "reeldb",
                                                         "sound_of",
                                                         "source_in",
                                                         "source_out",
                                                         "source_range",
                                                         "start_time",
                                                         "target_url",
                                                         "target_url_base",
                                                         "time_scalar",
                                                         "timecode",
                                                         "tracks",
                                                         "value",
                                                         "video_channels"};

bool asksFor(std::string_view name, std::string_view parent)
{
  // The media of a clip have names of their own.
  return parent == "media_references" || std::binary_search(askedNames.begin(), askedNames.end(), name);
}

Schema schemaOf(const JsonValue& value)
{
  const std::string_view text = value["OTIO_SCHEMA"].asText();
  const std::size_t point = text.find('.');
  return {text.substr(0, point), point == std::string_view::npos ? std::string_view() : text.substr(point + 1)};
}

bool isKnown(Schema schema)
{
  return std::any_of(knownSchemas.begin(), knownSchemas.end(), [schema](Schema known) {
    return schema.name == known.name && schema.version.size() == 1 && schema.version >= "1" &&
           schema.version <= known.version;
  });
}

/// A time as it is written, and exactly.
struct Time {
  std::optional<Seconds> seconds;
  std::optional<FrameRate> rate; ///< if it is one of frameRates
  std::string rateText;
  bool isThere = false;
};

/// Rates are written with as many decimals as a floating point number has; these are as many as decide.
std::optional<FrameRate> rateOfNumber(std::string_view text)
{
  constexpr std::size_t decimals = 9;
  const std::size_t point = text.find('.');
  return rateOf(point == std::string_view::npos ? text : text.substr(0, point + 1 + decimals));
}

Time timeOf(const JsonValue& value)
{
  Time time;
  time.isThere = value.kind == JsonValue::Kind::Object;
  time.rateText = value["rate"].asText();
  time.rate = rateOfNumber(time.rateText);
  const std::optional<Seconds> frames = parseFraction(value["value"].asText());
  const std::optional<Seconds> rate = parseFraction(time.rateText);
  if (frames && time.rate)
    time.seconds = product(*frames, frameDuration(*time.rate));
  else if (frames && rate && rate->numerator > 0)
    time.seconds = quotient(*frames, *rate);
  return time;
}

bool isDropFrameFormat(const JsonValue& of)
{
  return of["metadata"]["fcp_xml"]["timecode"]["displayformat"].asText() == "DF";
}

/// The first text that is not empty.
std::string firstOf(std::initializer_list<std::string_view> texts)
{
  const auto* const found =
      std::find_if(texts.begin(), texts.end(), [](std::string_view text) { return !trimWhite(text).empty(); });
  return found == texts.end() ? std::string() : std::string(*found);
}

/// The source file that a note of a cut list names: "SOURCE FILE: A001.MOV".
std::string sourceFileOf(const JsonValue& comments)
{
  constexpr std::string_view key = "SOURCE FILE:";
  for (const auto& [unused, comment] : comments.members)
    if (const std::string_view text = trimWhite(comment.asText()); base::startsWithName(text, key))
      return std::string(trimWhite(text.substr(key.size())));
  return {};
}

const JsonValue& mediumOf(const JsonValue& clip)
{
  const JsonValue& media = clip["media_references"];
  if (media.isNull())
    return clip["media_reference"];
  const std::string_view key = clip["active_media_reference_key"].asText();
  return media[key.empty() ? "DEFAULT_MEDIA" : key];
}

std::string_view reasonOfGenerator(std::string_view kind)
{
  const std::string folded = base::fold(kind);
  if (folded.find("bars") != std::string::npos)
    return "colour bars";
  return folded.find("black") != std::string::npos ? "black" : generatedReason;
}

/// Where an item stands: in which composition, from which time on, on which track.
struct Place {
  std::string composition;
  std::optional<Seconds> start;     ///< in the record; empty if it has no place there
  std::optional<Counting> counting; ///< of the record
  bool picture = true;
  int sound = 0;       ///< the number of its sound track; 0: a picture
  bool isTrack = true; ///< whether it is on a track; a clip alone is not
};

/// The most channels of a clip.
constexpr int mostChannels = 65535;

class Reader {
public:
  List read(std::string_view text)
  {
    collect(parseJson(text, "OTIO", asksFor)); // the tree is released before the list is made
    return timeline_.finish(text);
  }

private:
  using Duration = std::optional<Seconds>;

  void collect(const JsonValue& root)
  {
    const std::string_view name = schemaOf(root).name;
    if (name == "SerializableCollection") {
      timeline_.title(root["name"].asText());
      for (const auto& [unused, child] : root["children"].members)
        if (!child.isNull())
          collect(child);
    } else if (name == "Timeline") {
      readTimeline(root);
    } else if (name == "Stack" || name == "Track" || name == "Sequence" || name == "Clip") {
      Place place;
      place.composition = nextComposition();
      place.isTrack = name != "Clip";
      if (place.isTrack) // a clip alone has no record
        place.start = Seconds();
      place.picture = !isSound(root);
      place.sound = place.picture ? 0 : 1;
      item(root, place, true);
    } else {
      throw Error("OTIO without a timeline (it is a " + inQuotes(root["OTIO_SCHEMA"].asText()) + ")");
    }
  }

  void readTimeline(const JsonValue& timeline)
  {
    timeline_.title(timeline["name"].asText());
    const Time start = timeOf(timeline["global_start_time"]);
    Place place;
    place.composition = nextComposition();
    place.start = start.isThere ? start.seconds : Seconds();
    if (start.rate)
      place.counting = countingAt(*start.rate, isDropFrameFormat(timeline));
    item(timeline["tracks"], place, true);
  }

  static Counting countingAt(FrameRate rate, bool dropFrame) { return {rate, dropFrame && hasDropFrame(rate)}; }

  static bool isSound(const JsonValue& track) { return track["kind"].asText() == "Audio"; }

  std::string nextComposition() { return std::to_string(++compositions_); }

  /// Reads an item and returns how long it is. @p isTop: whether a composition is a timeline itself, or a track of a
  /// stack.
  Duration item(const JsonValue& item, const Place& place, bool isTop)
  {
    if (item.isNull())
      return std::nullopt;
    const Schema schema = schemaOf(item);
    if (!isKnown(schema)) {
      timeline_.warn(item.line, inQuotes(item["OTIO_SCHEMA"].asText()),
                     "unknown schema " + inQuotes(item["OTIO_SCHEMA"].asText()) + " (skipped)");
      return lengthOf(item);
    }
    if (schema.name == "Clip")
      return clip(item, place);
    if (schema.name == "Gap" || schema.name == "Filler") {
      noteSpecial(item, place, gapReason);
      return lengthOf(item);
    }
    if (schema.name == "Stack")
      return stack(item, place, isTop);
    if (schema.name == "Track" || schema.name == "Sequence")
      return track(item, place, isTop);
    return Seconds(); // a transition has no time of its own
  }

  static Duration lengthOf(const JsonValue& item) { return timeOf(item["source_range"]["duration"]).seconds; }

  /// What this program wrote of the clip; empty if another one wrote it.
  static std::optional<WrittenClip> writtenOf(const JsonValue& own)
  {
    if (own["reel"].asText().empty())
      return std::nullopt;
    const auto text = [&](const char* name) { return clean(std::string(own[name].asText())); };
    const auto number = [&](const char* name) {
      return std::max(base::parseNumber(own[name].asText()).value_or(0), 0);
    };
    WrittenClip written;
    written.number = number("number");
    written.tracks = text("tracks");
    written.videoChannels = std::min(number("video_channels"), mostChannels);
    written.audioChannels = std::min(number("audio_channels"), mostChannels);
    written.sourceIn = text("source_in");
    written.sourceOut = text("source_out");
    written.recordIn = text("record_in");
    written.recordOut = text("record_out");
    const std::optional<FrameRate> rate = rateOf(own["frame_rate"].asText());
    written.frameRate = rate ? rateName(*rate) : std::string();
    written.cameraRoll = text("camera_roll");
    written.soundOf = text("sound_of");
    written.dropFrame = own["drop_frame"].text == "true";
    return written;
  }

  void noteSpecial(const JsonValue& item, const Place& place, std::string_view reason)
  {
    TimelineClip special;
    special.line = item.line;
    special.name = reason == gapReason ? std::string_view() : item["name"].asText();
    const Duration length = lengthOf(item);
    setRecord(special, place, length);
    special.picture = place.picture;
    if (place.sound > 0)
      special.sound.insert(place.sound);
    timeline_.special(std::move(special), reason);
  }

  static void setRecord(TimelineClip& clip, const Place& place, const Duration& length)
  {
    clip.record.counting = place.counting;
    if (place.start && length)
      if (const Duration end = sum(*place.start, *length); end) {
        clip.record.in = place.start;
        clip.record.out = end;
      }
  }

  /// The place of what is in the composition: nowhere in the record, if it is nested.
  Place placeIn(const JsonValue& composition, const Place& place, bool isTop)
  {
    Place within = place;
    if (!isTop) {
      noteSpecial(composition, place, nestedReason);
      within.composition = nextComposition();
      within.start.reset();
    } else if (const Time start = timeOf(composition["source_range"]["start_time"]); start.seconds && within.start) {
      within.start = difference(*within.start, *start.seconds); // what comes before is not seen
    }
    return within;
  }

  Duration stack(const JsonValue& stack, const Place& place, bool isTop)
  {
    Place within = placeIn(stack, place, isTop);
    const bool isSoundOnly = !place.picture;
    int sounds = 0;
    Duration longest = Seconds();
    for (const auto& [unused, child] : stack["children"].members) {
      within.picture = !isSoundOnly && !isSound(child);
      within.sound = within.picture ? 0 : ++sounds;
      const std::string_view name = schemaOf(child).name;
      const Duration length = item(child, within, name == "Track" || name == "Sequence");
      if (longest && length)
        longest = isLonger(*length, *longest) ? length : longest;
      else if (!child.isNull())
        longest.reset();
    }
    const Duration own = lengthOf(stack);
    return own ? own : longest;
  }

  static bool isLonger(Seconds a, Seconds b)
  {
    const Duration more = difference(a, b);
    return more && more->numerator > 0;
  }

  Duration track(const JsonValue& track, const Place& place, bool isTop)
  {
    Place within = placeIn(track, place, isTop);
    Duration whole = Seconds();
    for (const auto& [unused, child] : track["children"].members) {
      if (child.isNull())
        continue;
      const Duration length = item(child, within, false);
      within.start = within.start && length ? sum(*within.start, *length) : std::nullopt;
      whole = whole && length ? sum(*whole, *length) : std::nullopt;
    }
    const Duration own = lengthOf(track);
    return own ? own : whole;
  }

  Duration clip(const JsonValue& item, const Place& place)
  {
    const JsonValue& medium = mediumOf(item);
    const JsonValue& range = item["source_range"].isNull() ? medium["available_range"] : item["source_range"];
    const Duration length = timeOf(range["duration"]).seconds;
    TimelineClip clip;
    clip.line = item.line;
    clip.what = "clip";
    clip.name = item["name"].asText();
    clip.place = place.composition;
    clip.picture = place.picture;
    if (place.sound > 0)
      clip.sound.insert(place.sound);
    setRecord(clip, place, length);
    if (schemaOf(medium).name == "GeneratorReference") {
      setSource(clip, range, medium, place);
      if (clip.source.counting && !clip.record.counting)
        clip.record.counting = clip.source.counting;
      const std::string kind(medium["generator_kind"].asText());
      clip.name = firstOf({clip.name, medium["name"].asText(), kind});
      timeline_.special(std::move(clip), reasonOfGenerator(kind));
      return length;
    }
    clip.written = writtenOf(item["metadata"]["reeldb"]);
    if (clip.written && !place.isTrack) {
      clip.picture = clip.written->videoChannels > 0 || clip.written->audioChannels == 0;
      for (int track = 1; track <= clip.written->audioChannels; ++track)
        clip.sound.insert(track);
    }
    setSource(clip, range, medium, place);
    if (clip.source.counting && !clip.record.counting)
      clip.record.counting = clip.source.counting;
    setNames(clip, item, medium);
    setDoubts(clip, item, medium);
    timeline_.clip(std::move(clip));
    return length;
  }

  static void setSource(TimelineClip& clip, const JsonValue& range, const JsonValue& medium, const Place& place)
  {
    if (range.isNull()) {
      if (clip.written)
        return;
      clip.doubts.emplace_back("no source range (kept without timecodes)");
      return;
    }
    const Time start = timeOf(range["start_time"]), length = timeOf(range["duration"]);
    const Duration end = start.seconds && length.seconds ? sum(*start.seconds, *length.seconds) : std::nullopt;
    if (!end) {
      clip.doubts.emplace_back("its source range is not a range of numbers (kept without timecodes)");
      return;
    }
    clip.source.in = start.seconds;
    clip.source.out = end;
    const bool dropFrame = isDropFrameFormat(medium);
    const std::optional<FrameRate> own = timeOf(medium["available_range"]["start_time"]).rate;
    if (const std::optional<FrameRate> rate = start.rate ? start.rate : own) {
      clip.source.counting = countingAt(*rate, dropFrame);
    } else if (place.counting) {
      clip.source.counting = place.counting;
    }
    if (!start.rate)
      clip.doubts.push_back("unknown frame rate " + inQuotes(start.rateText) +
                            (clip.source.counting
                                 ? " (its timecodes are counted at " + rateName(clip.source.counting->rate) + ")"
                                 : " (kept without timecodes)"));
  }

  static void setNames(TimelineClip& clip, const JsonValue& item, const JsonValue& medium)
  {
    const JsonValue& own = item["metadata"];
    const JsonValue& of = medium["metadata"];
    clip.file = firstOf({pathOfUrl(medium["target_url"].asText())});
    if (clip.written) {
      clip.reel = own["reeldb"]["reel"].asText();
      for (const auto& [unused, alias] : own["reeldb"]["aliases"].members)
        clip.aliases.emplace_back(alias.asText());
      return;
    }
    const std::string_view listReel = own["cmx_3600"]["reel"].asText();
    const std::string_view fileReel = of["fcp_xml"]["timecode"]["reel"]["name"].asText();
    clip.reel = firstOf({listReel, fileReel, own["ALE"]["Tape"].asText(), of["ALE"]["Tape"].asText()});
    for (const std::string_view key : {"Tape", "TapeName", "TapeID"})
      for (const JsonValue* from : {&own, &of}) {
        const std::string_view text = (*from)["AAF"]["UserComments"][key].asText();
        clip.aliases.emplace_back(text);
        clip.reel = firstOf({clip.reel, text});
      }
    for (const std::string_view other :
         {fileReel, own["ALE"]["Tape"].asText(), of["ALE"]["Tape"].asText(), medium["name"].asText()})
      clip.aliases.emplace_back(other);
    if (!trimWhite(listReel).empty()) {
      const std::size_t characters = length(trimWhite(listReel));
      clip.reelField = paddedField(std::max(characters, usualReelField));
    }
    const std::string sequence = std::string(medium["target_url_base"].asText())
                                     .append(medium["name_prefix"].asText())
                                     .append(medium["name_suffix"].asText());
    clip.file =
        firstOf({clip.file, pathOfUrl(sequence), sourceFileOf(own["cmx_3600"]["comments"]), medium["name"].asText()});
  }

  static void setDoubts(TimelineClip& clip, const JsonValue& item, const JsonValue& medium)
  {
    if (!medium.isNull() && !isKnown(schemaOf(medium)))
      clip.doubts.push_back("unknown schema " + inQuotes(medium["OTIO_SCHEMA"].asText()) +
                            " of its medium (read as far as possible)");
    if (item["enabled"].text == "false")
      clip.doubts.emplace_back("is disabled (kept: its source is in the list)");
    for (const auto& [unused, effect] : item["effects"].members) {
      const std::string_view name = schemaOf(effect).name;
      if (name != "LinearTimeWarp" && name != "FreezeFrame" && name != "TimeEffect")
        continue;
      const std::string_view speed = effect["time_scalar"].asText();
      clip.doubts.push_back("plays at another speed" + (speed.empty() ? "" : " (" + std::string(speed) + ")") +
                            ": source in and out are as written");
    }
  }

  Timeline timeline_{Format::Otio};
  int compositions_ = 0;
};

} // namespace

bool isOtio(std::string_view text)
{
  return text.starts_with('{') && text.find("\"OTIO_SCHEMA\"") != std::string_view::npos;
}

List readOtio(std::string_view text)
{
  return Reader().read(text);
}

} // namespace reeldb::lists
