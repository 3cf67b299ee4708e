// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "lists/edl_note.h"
#include "lists/names.h"
#include "lists/own_name.h"
#include "lists/short_names.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/tracks.h"
#include "lists/writable.h"

namespace reeldb::lists {
namespace {

constexpr std::string_view noTimecode = "00:00:00:00";
constexpr std::string_view auxiliary = "AX";
constexpr std::string_view generated = "GEN";
constexpr std::string_view black = "BL";
constexpr std::size_t channelColumns = 5;
constexpr std::size_t timecodeColumns = 11;
constexpr std::size_t durationColumns = 3;

/// The name that an event without a reel has in the list; empty if it is a name like others.
std::string_view placeholderName(const Clip& clip)
{
  if (clip.special.empty())
    return {};
  if (!placeholderReason(clip.reel).empty())
    return clip.reel;
  if (clip.special == gapReason)
    return black;
  if (!specialReason(clip.reel).empty())
    return {};
  // AX with a name would be read as a reel.
  return ownNameWithoutTape(clip.sourceFile, clip.clipName).name.empty() ? auxiliary : generated;
}

/// Whether the clip is AX in its list, and is read as the same reel when it is AX again.
bool staysAuxiliary(const Clip& clip)
{
  if (!isAuxiliary(clip.event.reelText) || !clip.special.empty())
    return false;
  const auto written = [](const std::string& text) { return saysNothing(text) ? std::string() : text; };
  return ownNameWithoutTape(written(clip.sourceFile), written(clip.clipName)).name == clip.reel;
}

/// Whether the clip needs a name for its reel.
bool needsName(const Clip& clip)
{
  return placeholderName(clip).empty() && !staysAuxiliary(clip);
}

/// Each reel that needs a name once, in its first spelling.
std::vector<std::string> reelsOf(const std::vector<Clip>& clips)
{
  std::vector<std::string> reels;
  std::unordered_set<std::string> seen;
  for (const Clip& clip : clips)
    if (needsName(clip) && seen.insert(base::fold(clip.reel)).second)
      reels.push_back(clip.reel);
  return reels;
}

/// The text that stands for a reel in a list.
struct ReelText {
  std::string text;
  bool isOfList = false; ///< whether the list has it
};

/// The text that each reel has in its list, if that is one and of this reel alone; else the reel itself. So a list is
/// written back with the names that it came with.
std::vector<ReelText> reelTextsOf(const std::vector<std::string>& reels, const std::vector<Clip>& clips)
{
  std::unordered_map<std::string, std::string> texts; // by folded reel; empty: there are several
  for (const Clip& clip : clips) {
    if (!needsName(clip))
      continue;
    const std::string text = isAuxiliary(clip.event.reelText) ? std::string() : clip.event.reelText;
    const auto [known, isNew] = texts.try_emplace(base::fold(clip.reel), text);
    if (!isNew && !base::sameName(known->second, text))
      known->second.clear();
  }
  std::unordered_map<std::string, int> uses; // of folded names
  for (const std::string& reel : reels) {
    const std::string& text = texts.at(base::fold(reel));
    ++uses[base::fold(reel)];
    if (!base::sameName(text, reel))
      ++uses[base::fold(text)];
  }
  std::vector<ReelText> result;
  for (const std::string& reel : reels) {
    const std::string& text = texts.at(base::fold(reel));
    const bool isReel = base::sameName(text, reel);
    const bool isOwn = !text.empty() && !isReel && uses.at(base::fold(text)) == 1;
    result.push_back({isOwn ? text : reel, isOwn || isReel});
  }
  return result;
}

/// A name in a field of this width for each reel; empty if the field has fewer names than there are reels. A reel text
/// that came in a field of this width stays as it is: the systems that read such a list take it.
std::optional<std::vector<std::string>> namesFor(const std::vector<std::string>& reels, const std::vector<Clip>& clips,
                                                 std::size_t field)
{
  const std::vector<ReelText> ofList = reelTextsOf(reels, clips);
  std::vector<std::string> texts;
  texts.reserve(ofList.size());
  for (const ReelText& each : ofList)
    texts.push_back(each.text);
  std::optional<std::vector<std::string>> names = shortReelNames(texts, field);
  const auto isOfThisField = [&](const Clip& clip) { return clip.event.reelField == field; };
  if (!names || std::none_of(clips.begin(), clips.end(), isOfThisField))
    return names;
  // A text that is not a short name itself has a character that no short name has, so all names stay distinct.
  for (std::size_t i = 0; i < reels.size(); ++i)
    if (ofList[i].isOfList && length(texts[i]) <= field && texts[i].find(' ') == std::string::npos &&
        specialReason(texts[i]).empty() && !isAuxiliary(texts[i]))
      (*names)[i] = texts[i];
  return names;
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

/// The transition as lists have it: "C   ", "K B ", "W001".
std::string transitionField(const Event& event)
{
  constexpr std::size_t columns = 4;
  std::string code = event.transition.empty() ? "C" : event.transition;
  if (code == "KB" || code == "KO")
    code = {code[0], ' ', code[1]};
  return padded(std::move(code), columns);
}

/// The note that names the clip of a line, by the role of the line.
std::string_view clipNameKey(const Event& event)
{
  const std::string& code = event.transition;
  if (code == "K" || code == "KO")
    return "KEY CLIP NAME";
  return code.starts_with('D') || code.starts_with('W') ? "TO CLIP NAME" : "FROM CLIP NAME";
}

class Writer {
public:
  Writer(const std::vector<Clip>& clips, std::size_t reelField) : clips_(clips), field_(reelField)
  {
    const std::vector<std::string> reels = reelsOf(clips);
    const auto names = namesFor(reels, clips, reelField);
    if (!names)
      throw Error(std::to_string(reels.size()) + " reels: a reel field of " + std::to_string(reelField) +
                  " has fewer names");
    std::size_t column = reelColumns();
    for (std::size_t i = 0; i < reels.size(); ++i) {
      names_[base::fold(reels[i])] = (*names)[i];
      column = std::max(column, length((*names)[i]));
    }
    const std::unordered_set<std::string> misread = misreadReels(paddedField(column));
    for (std::size_t i = 0; i < reels.size(); ++i)
      if ((*names)[i] != reels[i] || misread.contains(base::fold(reels[i])))
        map_ += "* REEL MAP: " + (*names)[i] + " = " + reels[i] + "\n";
    if (std::any_of(clips.begin(), clips.end(), [](const Clip& clip) {
          return hasChannelNumber(clip.tracks) && isChannelField(clip, Digits::Number);
        }))
      digits_ = Digits::Number;
  }

  void run(const std::string& title, Written& written)
  {
    text_ = "TITLE: " + title + "\n";
    dropFrame(!clips_.empty() && dropsFrames(clips_.front()));
    text_ += map_;
    oneRate_ = !clips_.empty() && std::all_of(clips_.begin(), clips_.end(), [&](const Clip& clip) {
      return clip.frameRate == clips_.front().frameRate;
    });
    if (oneRate_)
      text_ += note("FRAME RATE", clips_.front().frameRate);
    for (std::size_t first = 0; first < clips_.size();) {
      std::size_t last = first + 1;
      while (last < clips_.size() && isSameEvent(clips_[last - 1].event, clips_[last].event))
        ++last;
      event(first, last);
      first = last;
    }
    sourceTable(written);
    written.text = std::move(text_);
  }

private:
  static bool isSameEvent(const Event& one, const Event& next)
  {
    return next.part > one.part && next.number == one.number;
  }

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

  /// The lines of an event, then the notes of each line. Notes of several lines say where they belong, and so do those
  /// of an event that the next one could be taken for a part of.
  void event(std::size_t first, std::size_t last)
  {
    const std::string number = numberOf(clips_[first]);
    for (std::size_t i = first; i < last; ++i)
      line(number, clips_[i], clips_[first]);
    std::vector<std::string> notes;
    for (std::size_t i = first; i < last; ++i)
      notes.push_back(notesOf(clips_[i]));
    const bool hasNotes =
        std::any_of(notes.begin(), notes.end(), [](const std::string& each) { return !each.empty(); });
    const bool couldGoOn = last < clips_.size() && clips_[last].event.number == number;
    for (std::size_t i = 0; i < notes.size(); ++i) {
      if (couldGoOn || (hasNotes && notes.size() > 1))
        text_ += note("EVENT LINE", std::to_string(i + 1) + " OF " + std::to_string(notes.size()));
      text_ += notes[i];
    }
  }

  /// The number of the list, or the next one if the clip is of no list.
  std::string numberOf(const Clip& clip)
  {
    constexpr std::size_t wideField = 32, digits = 3, wideDigits = 6;
    ++number_;
    if (!clip.event.number.empty())
      return clip.event.number;
    std::string number = std::to_string(number_);
    const std::size_t width = field_ < wideField ? digits : wideDigits;
    return number.insert(0, width - std::min(width, number.size()), '0');
  }

  std::string nameOf(const Clip& clip) const
  {
    if (const std::string_view name = placeholderName(clip); !name.empty())
      return std::string(name);
    return staysAuxiliary(clip) ? std::string(auxiliary) : names_.at(base::fold(clip.reel));
  }

  /// The least width of the column of reels.
  std::size_t reelColumns() const
  {
    constexpr std::size_t wideField = 32;
    return std::min(field_, wideField);
  }

  /// The folded reels that a reader would take for another: by the notes of an event, or because the name fills its
  /// field.
  std::unordered_set<std::string> misreadReels(std::size_t field) const
  {
    std::unordered_set<std::string> misread;
    for (const Clip& clip : clips_) {
      if (!needsName(clip))
        continue;
      const std::string& name = names_.at(base::fold(clip.reel));
      NameTexts texts;
      texts.reel = name;
      texts.field = field;
      texts.sourceFile = clip.sourceFile;
      texts.clipName = clip.clipName;
      const OwnName own = ownNames(texts).front();
      const bool isOwn = clip.ownName.empty() || base::sameName(clip.ownName, clip.reel);
      if (!base::sameName(own.name, clip.reel) || (own.mayBeCut && !(isOwn && clip.mayBeCut)))
        misread.insert(base::fold(clip.reel));
    }
    return misread;
  }

  void line(const std::string& number, const Clip& clip, const Clip& first)
  {
    if (drop_ != dropsFrames(clip))
      dropFrame(!drop_);
    text_ += number + "  " + padded(nameOf(clip), reelColumns()) + " " +
             padded(isLiteral(clip) ? clip.tracks : channelsOf(clip), channelColumns) + " " +
             transitionField(clip.event) + " " + padded(clip.event.duration, durationColumns) + " ";
    // A clip without record timecodes gets source timecodes there, and vice versa. The lines of an event begin at the
    // same record in. Frame numbers stay where they are.
    const auto written = [](const std::string& timecode, const std::string& other) {
      const bool isSpare = !other.empty() && !isFrameNumber(other);
      return padded(!timecode.empty() ? timecode : isSpare ? other : std::string(noTimecode), timecodeColumns);
    };
    text_ += written(clip.sourceIn, clip.recordIn) + " " + written(clip.sourceOut, clip.recordOut) + " " +
             written(clip.recordIn, first.recordIn.empty() ? first.sourceIn : first.recordIn) + " " +
             written(clip.recordOut, clip.sourceOut) + "\n";
  }

  bool isLiteral(const Clip& clip) const { return isChannelField(clip, digits_); }

  std::string notesOf(const Clip& clip) const
  {
    std::string notes;
    if (const std::optional<Speed>& speed = clip.event.speed) {
      constexpr std::size_t speedColumns = 7;
      notes += "M2   " + padded(nameOf(clip), reelColumns()) + " " + padded(speed->framesPerSecond, speedColumns) +
               "                " + speed->timecode + "\n";
    }
    std::string missing;
    for (const auto& [what, timecode] :
         {std::pair("SOURCE IN", &clip.sourceIn), std::pair("SOURCE OUT", &clip.sourceOut),
          std::pair("RECORD IN", &clip.recordIn), std::pair("RECORD OUT", &clip.recordOut)})
      if (timecode->empty())
        missing += (missing.empty() ? "" : ", ") + std::string(what);
    notes += note("NO TIMECODE", missing);
    if (!isLiteral(clip))
      notes += note("TRACKS AS WRITTEN", clip.tracks);
    notes += note(clipNameKey(clip.event), clip.clipName);
    for (const std::string& alias : clip.aliases)
      notes += note("REEL ALSO CALLED", alias);
    notes += note("SOURCE FILE", clip.sourceFile);
    if (!oneRate_)
      notes += note("FRAME RATE", clip.frameRate);
    return notes;
  }

  /// The note with its line end; empty without a value.
  static std::string note(std::string_view key, const std::string& value)
  {
    return value.empty() ? value : "* " + std::string(key) + ": " + value + "\n";
  }

  /// A row for each id of a name. The table gives an id to a name, not to an event.
  void sourceTable(Written& written)
  {
    std::vector<std::pair<std::string, std::vector<SourceId>>> rows;
    std::unordered_map<std::string, std::size_t> places;
    std::set<std::string> remarked;
    for (const Clip& clip : clips_) {
      if (!clip.special.empty())
        continue;
      const std::string name = nameOf(clip);
      const auto [place, isNew] = places.try_emplace(name, rows.size());
      if (isNew) {
        rows.emplace_back(name, clip.event.sourceIds);
        continue;
      }
      std::vector<SourceId>& ids = rows[place->second].second;
      if (ids != clip.event.sourceIds && remarked.insert(name).second)
        written.remarks.push_back("reel " + inQuotes(clip.reel) +
                                  ": its events have different source ids (a list gives all of them to each event)");
      for (const SourceId& id : clip.event.sourceIds)
        if (std::find(ids.begin(), ids.end(), id) == ids.end())
          ids.push_back(id);
    }
    for (const auto& [name, ids] : rows)
      for (const SourceId& id : ids)
        text_ += ">>> SOURCE " + padded(name, reelColumns()) + " " + padded(name, reelColumns()) + " " + id.id + "\n";
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
/// Warns about lists that exceed the limits of such a reel field, by the manuals of the devices.
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

/// Warns about texts that cannot be read back from a note.
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

/// Warns about rolls, which a cut list has no place for.
void remarkOnRolls(Written& written, const std::vector<Clip>& clips)
{
  const auto remark = [&](const char* what, auto has) {
    if (const auto count = std::count_if(clips.begin(), clips.end(), has); count > 0)
      written.remarks.push_back(std::string(what) + " not written: " + std::to_string(count) +
                                " (a cut list cannot hold them)");
  };
  remark("camera rolls", [](const Clip& clip) { return !clip.cameraRoll.empty(); });
  remark("pictures of sound rolls", [](const Clip& clip) { return !clip.soundOf.empty(); });
}

/// Removes the rows of logs that have no source: an event needs a reel.
std::vector<Clip> withReels(std::vector<Clip> clips, Written& written)
{
  std::erase_if(clips, [&](const Clip& clip) {
    if (clip.special != noSourceReason)
      return false;
    written.leftOut.push_back("row " + inQuotes(clip.clipName) + ": left out (" + clip.special + ")");
    return true;
  });
  return clips;
}

} // namespace

Written writeEdl(const std::string& title, const std::vector<Clip>& clips, std::size_t reelField)
{
  Written written;
  const std::vector<Clip> writable = writableClips(withReels(clips, written), written);
  Writer(writable, reelField).run(writableText(title), written);
  remarkOnNothing(written, writable);
  remarkOnRolls(written, writable);
  remarkOnLimits(written, reelField, reelsOf(writable).size());
  return written;
}

} // namespace reeldb::lists
