// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "lists/edl_note.h"
#include "lists/short_names.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/tracks.h"
#include "lists/writable.h"

namespace reeldb::lists {
namespace {

constexpr std::string_view noTimecode = "00:00:00:00";
constexpr std::size_t channelColumns = 5;
constexpr std::size_t timecodeColumns = 11;

/// Each reel once, in its first spelling.
std::vector<std::string> reelsOf(const std::vector<Clip>& clips)
{
  std::vector<std::string> reels;
  std::unordered_set<std::string> seen;
  for (const Clip& clip : clips)
    if (seen.insert(base::fold(clip.reel)).second)
      reels.push_back(clip.reel);
  return reels;
}

/// Whether the reader reads the clip's channels from its tracks when they stand in an event.
bool isChannelField(const Clip& clip, Digits digits)
{
  const auto tracks = parseTracks(clip.tracks, digits);
  return tracks && clip.tracks.find(' ') == std::string::npos && tracks->video == clip.videoChannels &&
         tracks->audio == clip.audioChannels;
}

/// Channels without numbers, which mean the same in every list.
std::string channelsOf(const Clip& clip)
{
  const auto letters = [](int count, char letter) { return std::string(static_cast<std::size_t>(count), letter); };
  if (clip.videoChannels == 0 && clip.audioChannels == 0)
    return "NONE";
  if (clip.videoChannels == 1 && clip.audioChannels == 1)
    return "B";
  const bool both = clip.videoChannels > 0 && clip.audioChannels > 0;
  return letters(clip.audioChannels, 'A') + (both ? "/" : "") + letters(clip.videoChannels, 'V');
}

std::string padded(std::string text, std::size_t width)
{
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

class Writer {
public:
  Writer(const std::vector<Clip>& clips, std::size_t reelField) : clips_(clips), field_(reelField)
  {
    const std::vector<std::string> reels = reelsOf(clips);
    const auto names = shortReelNames(reels, reelField);
    if (!names)
      throw Error(std::to_string(reels.size()) + " reels: a reel field of " + std::to_string(reelField) +
                  " has fewer names");
    for (std::size_t i = 0; i < reels.size(); ++i) {
      names_[base::fold(reels[i])] = (*names)[i];
      if ((*names)[i] != reels[i])
        map_ += "* REEL MAP: " + (*names)[i] + " = " + reels[i] + "\n";
    }
    if (std::any_of(clips.begin(), clips.end(), [](const Clip& clip) {
          return hasChannelNumber(clip.tracks) && isChannelField(clip, Digits::Number);
        }))
      digits_ = Digits::Number;
  }

  std::string run(const std::string& title)
  {
    text_ = "TITLE: " + title + "\n";
    dropFrame(!clips_.empty() && dropsFrames(clips_.front()));
    text_ += map_;
    oneRate_ = !clips_.empty() && std::all_of(clips_.begin(), clips_.end(), [&](const Clip& clip) {
      return clip.frameRate == clips_.front().frameRate;
    });
    if (oneRate_)
      note("FRAME RATE", clips_.front().frameRate);
    for (const Clip& clip : clips_)
      event(clip);
    return std::move(text_);
  }

private:
  static bool dropsFrames(const Clip& clip)
  {
    return clip.dropFrame || isDropFrame(clip.sourceIn) || isDropFrame(clip.sourceOut) || isDropFrame(clip.recordIn) ||
           isDropFrame(clip.recordOut);
  }

  void dropFrame(bool drop)
  {
    drop_ = drop;
    text_ += drop ? "FCM: DROP FRAME\n" : "FCM: NON-DROP FRAME\n";
  }

  void event(const Clip& clip)
  {
    constexpr std::size_t wideField = 32, digits = 3, wideDigits = 6;
    if (drop_ != dropsFrames(clip))
      dropFrame(!drop_);
    std::string number = std::to_string(++number_);
    const std::size_t width = field_ < wideField ? digits : wideDigits;
    number.insert(0, width - std::min(width, number.size()), '0');
    const bool literal = isChannelField(clip, digits_);
    text_ += number + "  " + padded(names_.at(base::fold(clip.reel)), std::min(field_, wideField)) + " " +
             padded(literal ? clip.tracks : channelsOf(clip), channelColumns) + " C        ";
    timecodes(clip);
    if (!literal && !clip.tracks.empty())
      note("TRACKS AS WRITTEN", clip.tracks);
    note("FROM CLIP NAME", clip.clipName);
    for (const std::string& alias : clip.aliases)
      note("REEL ALSO CALLED", alias);
    note("SOURCE FILE", clip.sourceFile);
    if (!oneRate_)
      note("FRAME RATE", clip.frameRate);
  }

  /// The timecodes of the event. A clip without record timecodes gets its source timecodes there, and vice versa. Frame
  /// numbers stay where they are.
  void timecodes(const Clip& clip)
  {
    const auto written = [](const std::string& timecode, const std::string& other) {
      const bool isSpare = !other.empty() && !isFrameNumber(other);
      return padded(!timecode.empty() ? timecode : isSpare ? other : std::string(noTimecode), timecodeColumns);
    };
    text_ += written(clip.sourceIn, clip.recordIn) + " " + written(clip.sourceOut, clip.recordOut) + " " +
             written(clip.recordIn, clip.sourceIn) + " " + written(clip.recordOut, clip.sourceOut) + "\n";
    std::string missing;
    for (const auto& [what, timecode] :
         {std::pair("SOURCE IN", &clip.sourceIn), std::pair("SOURCE OUT", &clip.sourceOut),
          std::pair("RECORD IN", &clip.recordIn), std::pair("RECORD OUT", &clip.recordOut)})
      if (timecode->empty())
        missing += (missing.empty() ? "" : ", ") + std::string(what);
    note("NO TIMECODE", missing);
  }

  void note(std::string_view key, const std::string& value)
  {
    if (!value.empty())
      text_.append("* ").append(key).append(": ").append(value).append("\n");
  }

  const std::vector<Clip>& clips_;
  std::size_t field_;
  std::unordered_map<std::string, std::string> names_; ///< by folded reel
  std::string map_;
  Digits digits_ = Digits::Set;
  std::string text_;
  bool drop_ = false;
  bool oneRate_ = false; ///< all clips say the same rate, or none does
  int number_ = 0;
};

/// Remarks on lists that exceed the limits of such a reel field, by the manuals of the devices.
void remarkOnLimits(Written& written, std::size_t reelField, std::size_t reels)
{
  constexpr std::size_t digits = 3, six = 6, eight = 8, fewest = 253, few = 999, more = 9999;
  const std::size_t events = reelField == six ? more : few;
  const std::string field = " of lists with a reel field of " + std::to_string(reelField);
  if (reelField <= eight && written.clips > events)
    written.remarks.push_back(std::to_string(written.clips) + " events: more than the " + std::to_string(events) +
                              field + " (other programs may not read all events)");
  if (reelField == digits && reels > fewest)
    written.remarks.push_back(std::to_string(reels) + " reels: more than the " + std::to_string(fewest) +
                              " of some lists with numbered reels (other programs may not read all reels)");
}

/// Remarks on texts that cannot be read back from a note.
void remarkOnNothing(Written& written, const std::vector<Clip>& clips)
{
  std::set<std::string> remarked;
  const auto look = [&](const std::string& text) {
    if (!text.empty() && saysNothing(text) && remarked.insert(text).second)
      written.remarks.push_back(inQuotes(text) +
                                ": an import will not read it back (in a cut list it means that there is no value)");
  };
  for (const Clip& clip : clips) {
    look(clip.clipName);
    look(clip.sourceFile);
    std::for_each(clip.aliases.begin(), clip.aliases.end(), look);
  }
}

} // namespace

Written writeEdl(const std::string& title, const std::vector<Clip>& clips, std::size_t reelField)
{
  Written written;
  const std::vector<Clip> writable = writableClips(clips, written);
  written.text = Writer(writable, reelField).run(writableText(title));
  remarkOnNothing(written, writable);
  remarkOnLimits(written, reelField, reelsOf(writable).size());
  return written;
}

} // namespace reeldb::lists
