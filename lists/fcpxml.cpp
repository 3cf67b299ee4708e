// SPDX-License-Identifier: Apache-2.0
#include "lists/fcpxml.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/number.h"
#include "lists/names.h"
#include "lists/text.h"
#include "lists/timeline.h"
#include "lists/xml_file.h"

namespace reeldb::lists {
namespace {

constexpr const char* reelKey = "com.apple.proapps.studio.reel";

/// A text with several reels has at most this number of them: one of the picture, the others of the sound.
constexpr std::size_t mostReels = 64;

/// "1001/24000s"
std::optional<Seconds> timeOf(std::string_view text)
{
  if (text.ends_with('s'))
    text.remove_suffix(1);
  return parseFraction(text);
}

std::optional<Seconds> timeOf(pugi::xml_node element, const char* name)
{
  return timeOf(std::string_view(element.attribute(name).value()));
}

std::string_view attribute(pugi::xml_node element, const char* name)
{
  return trimWhite(element.attribute(name).value());
}

/// The reel that the element itself says; empty if it says none.
std::string_view ownReel(pugi::xml_node element)
{
  for (const pugi::xml_node metadata : element.children("metadata"))
    for (const pugi::xml_node entry : metadata.children("md"))
      if (attribute(entry, "key") == reelKey && !attribute(entry, "value").empty())
        return attribute(entry, "value");
  return {};
}

/// Where the reader is: what the elements around say.
struct Place {
  std::string composition;
  std::string clip;                 ///< the name of the clip around, whose parts need not have one
  std::string reel;                 ///< of the nearest element around that says one
  std::optional<Counting> counting; ///< of the nearest element around that says one
  std::optional<Counting> record;   ///< of the sequence
  std::optional<Seconds> shift;     ///< from times of the element around to the record; empty if it is not there
  bool isDisabled = false;
};

class Reader {
public:
  explicit Reader(std::string_view text) : text_(text), file_(text, "FCPXML") {}

  List read()
  {
    for (const pugi::xml_node resource : file_.root().child("resources").children()) {
      const std::string id(attribute(resource, "id"));
      if (!id.empty())
        resources_.try_emplace(id, resource);
    }
    Place top;
    for (const pugi::xml_node child : file_.root().children())
      if (std::string_view(child.name()) != "resources")
        element(child, top);
    // The clips of compound and multicam clips, once for all their uses.
    for (const pugi::xml_node media : file_.root().child("resources").children("media"))
      for (const pugi::xml_node child : media.children())
        element(child, Place());
    return timeline_.finish(text_);
  }

private:
  void children(pugi::xml_node of, const Place& place)
  {
    for (const pugi::xml_node child : of.children())
      element(child, place);
  }

  void element(pugi::xml_node node, const Place& place)
  {
    const std::string_view name = node.name();
    if (name == "asset-clip")
      return assetClip(node, place);
    if (name == "video" || name == "audio")
      return component(node, place);
    if (name == "clip" || name == "sync-clip")
      return container(node, place);
    if (name == "ref-clip" || name == "mc-clip")
      return reference(node, place);
    if (name == "title" || name == "gap")
      return nothing(node, place, name == "gap" ? gapReason : generatedReason);
    if (name == "sequence" || name == "multicam")
      return sequence(node, place);
    if (name == "project" || name == "event") {
      if (name == "project")
        timeline_.title(attribute(node, "name"));
      return children(node, place);
    }
    if (name == "audition") {
      // The first is the one that is seen; the others are alternatives.
      bool first = true;
      for (const pugi::xml_node choice : node.children())
        if (choice.type() == pugi::node_element && std::exchange(first, false))
          element(choice, atOffset(node, place));
      return;
    }
    if (name == "spine" || name == "library" || name == "mc-angle") {
      Place within = place;
      if (name == "spine" && node.attribute("offset"))
        within = atOffset(node, place);
      children(node, within);
    }
  }

  /// The place of what an element holds, if its own times begin at 0: a secondary storyline, an audition.
  static Place atOffset(pugi::xml_node node, const Place& place)
  {
    Place within = place;
    if (std::string_view(node.name()) == "spine") {
      const std::optional<Seconds> offset = timeOf(node, "offset");
      within.shift = place.shift && offset ? sum(*place.shift, *offset) : std::nullopt;
    }
    return within;
  }

  pugi::xml_node resource(std::string_view id) const
  {
    const auto found = resources_.find(std::string(id));
    return found == resources_.end() ? pugi::xml_node() : found->second;
  }

  /// How timecodes of an element count: at the rate of its format, drop frame if it says so.
  std::optional<Counting> countingOf(pugi::xml_node element, const char* format,
                                     const std::optional<Counting>& around) const
  {
    const pugi::xml_node named = resource(attribute(element, format));
    const std::optional<Seconds> duration = timeOf(named, "frameDuration");
    const std::optional<FrameRate> rate = duration ? rateOfFrames(*duration) : std::nullopt;
    if (!rate && !around)
      return std::nullopt;
    const FrameRate known = rate ? *rate : around->rate;
    const std::string_view mode = attribute(element, "tcFormat");
    const bool dropFrame = mode.empty() ? around && around->dropFrame : mode == "DF";
    return Counting{known, dropFrame && hasDropFrame(known)};
  }

  void sequence(pugi::xml_node node, const Place& place)
  {
    Place within;
    within.composition = std::to_string(node.offset_debug());
    within.reel = ownReel(node).empty() ? place.reel : std::string(ownReel(node));
    within.counting = within.record = countingOf(node, "format", place.counting);
    if (std::string_view(node.parent().name()) == "project")
      within.shift = Seconds(); // offsets in the spine include tcStart
    within.isDisabled = place.isDisabled;
    children(node, within);
  }

  TimelineClip clipFrom(pugi::xml_node node, const Place& place) const
  {
    TimelineClip clip;
    clip.line = file_.lineOf(node);
    clip.what = node.name();
    clip.name = attribute(node, "name");
    clip.place = place.composition;
    clip.record.counting = place.record;
    const std::optional<Seconds> offset = timeOf(node, "offset"), length = timeOf(node, "duration");
    if (place.shift && offset && length)
      clip.record.in = sum(*place.shift, *offset);
    if (clip.record.in)
      clip.record.out = sum(*clip.record.in, *length);
    if (!clip.record.out)
      clip.record.in.reset();
    return clip;
  }

  /// The place of what is connected to an element: its offsets count in the times of the element.
  static Place connectedTo(pugi::xml_node node, const Place& place, const std::optional<Seconds>& start)
  {
    Place within = place;
    within.shift.reset();
    const std::optional<Seconds> offset = timeOf(node, "offset");
    if (place.shift && offset && start)
      if (const std::optional<Seconds> begin = sum(*place.shift, *offset))
        within.shift = difference(*begin, *start);
    if (const std::string_view reel = ownReel(node); !reel.empty())
      within.reel = reel;
    within.isDisabled = place.isDisabled || attribute(node, "enabled") == "0";
    return within;
  }

  void nothing(pugi::xml_node node, const Place& place, std::string_view reason)
  {
    TimelineClip clip = clipFrom(node, place);
    if (reason == gapReason)
      clip.name.clear();
    clip.picture = true;
    timeline_.special(std::move(clip), reason);
    Place within = connectedTo(node, place, timeOf(node, "start").value_or(Seconds()));
    within.reel = place.reel;
    children(node, within);
  }

  void reference(pugi::xml_node node, const Place& place)
  {
    TimelineClip clip = clipFrom(node, place);
    clip.picture = true;
    timeline_.special(std::move(clip), std::string_view(node.name()) == "mc-clip" ? multicamReason : nestedReason);
    children(node, connectedTo(node, place, timeOf(node, "start").value_or(Seconds())));
  }

  /// A clip or sync-clip holds media and connected clips alike.
  void container(pugi::xml_node node, const Place& place)
  {
    Place within = connectedTo(node, place, timeOf(node, "start").value_or(Seconds()));
    within.counting = countingOf(node, "format", place.counting);
    within.composition.append("/").append(std::to_string(node.offset_debug()));
    within.clip = attribute(node, "name");
    children(node, within);
  }

  void assetClip(pugi::xml_node node, const Place& place)
  {
    const pugi::xml_node asset = resource(attribute(node, "ref"));
    const std::optional<Seconds> assetStart = timeOf(asset, "start");
    const std::optional<Seconds> start = node.attribute("start") ? timeOf(node, "start") : assetStart;
    const Place within = connectedTo(node, place, start);
    source(node, place, within, asset, start, attribute(node, "srcEnable"));
    children(node, within);
  }

  /// The picture or the sound of a clip, or a generator.
  void component(pugi::xml_node node, const Place& place)
  {
    const pugi::xml_node asset = resource(attribute(node, "ref"));
    const std::optional<Seconds> start =
        node.attribute("start") ? timeOf(node, "start") : timeOf(asset, "start").value_or(Seconds());
    if (std::string_view(asset.name()) == "effect") {
      TimelineClip clip = clipFrom(node, place);
      clip.picture = true;
      timeline_.special(std::move(clip), generatedReason);
      return children(node, connectedTo(node, place, start));
    }
    const Place within = connectedTo(node, place, start);
    source(node, place, within, asset, start, std::string_view(node.name()));
    children(node, within);
  }

  static int channelsOf(pugi::xml_node asset)
  {
    if (attribute(asset, "hasAudio") != "1")
      return 0;
    constexpr int most = 256;
    return std::clamp(base::parseNumber(attribute(asset, "audioChannels")).value_or(1), 1, most);
  }

  /// Takes the source of an element. @p part: "video" and "audio" for a part of the asset.
  void source(pugi::xml_node node, const Place& place, const Place& within, pugi::xml_node asset,
              const std::optional<Seconds>& start, std::string_view part)
  {
    TimelineClip clip = clipFrom(node, place);
    if (clip.name.empty())
      clip.name = place.clip;
    const std::string_view medium = attribute(asset.child("media-rep"), "src");
    clip.file = pathOfUrl(medium.empty() ? attribute(asset, "src") : medium);
    clip.aliases.emplace_back(attribute(asset, "name"));
    if (clip.file.empty())
      clip.file = attribute(asset, "name");
    if (const std::string_view uid = attribute(asset, "uid"); !uid.empty())
      clip.ids.push_back({std::string(assetKind), std::string(uid)});
    if (!asset)
      clip.doubts.push_back("its asset " + inQuotes(attribute(node, "ref")) + " is not in the file");
    setTracks(clip, asset, part);
    setTimes(clip, node, place, asset, start);
    if (within.isDisabled)
      clip.doubts.emplace_back("is disabled (kept: its source is in the list)");
    if (node.child("timeMap"))
      clip.doubts.emplace_back("plays at another speed: source in and out are as written");
    takeReels(std::move(clip), within.reel.empty() ? std::string(ownReel(asset)) : within.reel);
  }

  static void setTracks(TimelineClip& clip, pugi::xml_node asset, std::string_view part)
  {
    const int channels = part == "video" ? 0 : std::max(channelsOf(asset), part == "audio" ? 1 : 0);
    clip.picture = part != "audio" && attribute(asset, "hasVideo") != "0" &&
                   (attribute(asset, "hasVideo") == "1" || channels == 0);
    for (int channel = 1; channel <= channels; ++channel)
      clip.sound.insert(channel);
  }

  void setTimes(TimelineClip& clip, pugi::xml_node node, const Place& place, pugi::xml_node asset,
                const std::optional<Seconds>& start) const
  {
    const std::optional<Counting> ofAsset = countingOf(asset, "format", place.counting);
    clip.source.counting = countingOf(node, "format", ofAsset);
    if (clip.source.counting && attribute(node, "tcFormat").empty() && attribute(asset, "tcFormat").empty())
      clip.source.counting->dropFrame = ofAsset && ofAsset->dropFrame;
    const std::optional<Seconds> length = timeOf(node, "duration");
    const std::optional<Seconds> assetLength = timeOf(asset, "duration");
    const std::optional<Seconds> lasts = node.attribute("duration") ? length : assetLength;
    if (start && lasts)
      clip.source.out = sum(*start, *lasts);
    if (!clip.source.out) {
      clip.doubts.emplace_back("start or duration is not a time (kept without timecodes)");
      return;
    }
    clip.source.in = start;
    if (!clip.source.counting)
      clip.doubts.emplace_back("no known frame rate (kept without timecodes)");
    const std::optional<Seconds> first = timeOf(asset, "start");
    const std::optional<Seconds> last = first && assetLength ? sum(*first, *assetLength) : std::nullopt;
    const auto isBefore = [](Seconds a, Seconds b) {
      const std::optional<Seconds> less = difference(a, b);
      return less && less->numerator < 0;
    };
    // A file that ends within a frame has the whole frame.
    const std::optional<Seconds> end =
        last && clip.source.counting ? sum(*last, frameDuration(clip.source.counting->rate)) : last;
    if ((first && isBefore(*clip.source.in, *first)) || (end && isBefore(*end, *clip.source.out)))
      clip.doubts.emplace_back("lies outside its asset (the asset may not say its start)");
  }

  /// A text with several reels names those of the picture and the sound: each is a source of the clip.
  void takeReels(TimelineClip clip, const std::string& text)
  {
    std::vector<std::string> reels;
    for (std::string_view rest = text; !rest.empty() && reels.size() < mostReels;) {
      const std::size_t end = rest.find(';');
      if (const std::string_view reel = trimWhite(rest.substr(0, end)); !reel.empty())
        reels.emplace_back(reel);
      rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    if (reels.empty())
      return timeline_.clip(std::move(clip));
    for (std::string& reel : reels) {
      clip.reel = std::move(reel);
      timeline_.clip(clip);
    }
  }

  std::string_view text_;
  XmlFile file_;
  Timeline timeline_{Format::Fcpxml};
  std::unordered_map<std::string, pugi::xml_node> resources_; ///< by their ids
};

} // namespace

List readFcpxml(std::string_view text)
{
  return Reader(text).read();
}

} // namespace reeldb::lists
