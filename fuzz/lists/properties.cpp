// SPDX-License-Identifier: Apache-2.0
#include "lists/properties.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <vector>

#include <utf8.h>

#include "base/ascii.h"
#include "base/display_text.h"
#include "lists/encoding.h"
#include "lists/frame_rate.h"
#include "lists/speed.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/write.h"
#include "support/check.h"

namespace reeldb_fuzz {

using namespace reeldb::lists;
using reeldb::base::fold;

namespace {

/// The lines of decoded text. CR, LF and CR LF end a line, and an empty rest after the last line end is not a line.
std::vector<std::string> piecesOf(const std::string& text)
{
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
  }
  return lines;
}

bool isControl(char32_t point)
{
  return point < 0x20 || point == 0x7F;
}

/// Throws unless the text is UTF-8 that has neither control characters nor outer blanks.
///
/// Names in a list may have control characters of Latin-1, which are letters and quotation marks in other encodings.
/// The code that shows a name escapes them.
void requireClean(const std::string& text, const char* what)
{
  require(utf8::is_valid(text), what, "is no UTF-8", text);
  const std::u32string points = utf8::utf8to32(text);
  require(std::none_of(points.begin(), points.end(), isControl), what, "holds a control character", text);
  require(text.empty() || (text.front() != ' ' && text.back() != ' '), what, "has outer blanks", text);
}

/// The same for a text that is stored unchanged.
void requireName(const std::string& text, const char* what)
{
  requireClean(text, what);
  require(text.size() <= nameBytes, what, "is too long", text);
}

/// The same for a text that is to be shown. Each of the 1,000 bytes of a line may need four bytes when it is escaped.
void requireShown(const std::string& text, const char* what)
{
  requireClean(text, what);
  const std::u32string points = utf8::utf8to32(text);
  require(std::none_of(points.begin(), points.end(), reeldb::base::isShownEscaped), what, "is not escaped", text);
  require(text.size() <= 4003, what, "is too long", text);
}

void requireReason(const std::string& text, const char* what)
{
  requireShown(text, what);
  require(!text.empty(), what, "is empty");
}

void requireTimecode(const std::string& text, const char* what)
{
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  require(text.empty() ||
              ((text.size() == 11 || text.size() == 12) &&
               std::count_if(text.begin(), text.end(), isDigit) == static_cast<std::ptrdiff_t>(text.size()) - 3),
          what, "is not a timecode", text);
}

/// Checks that each line is counted as exactly one kind.
class Taken {
public:
  explicit Taken(int lines) : lines_(lines) {}

  void take(int line, const char* what)
  {
    require(line >= 1 && line <= lines_, what, "of line", line, "which does not exist");
    require(taken_.insert(line).second, what, "of line", line, "which is something else as well");
  }

  int count() const { return static_cast<int>(taken_.size()); }

private:
  int lines_;
  std::set<int> taken_;
};

void requireProof(const Proof& proof, int lines)
{
  require(proof.line >= 1 && proof.line <= lines, "proof of line", proof.line, "which does not exist");
  requireShown(proof.text, "text of a proof");
  requireReason(proof.says, "what a proof says");
}

/// What the list says of its timecodes is what its clips say.
void requireTiming(const List& list)
{
  const Timing& timing = list.timing;
  std::set<std::string> rates, clipRates;
  for (const Proof& proof : timing.rates) {
    requireProof(proof, list.tally.lines);
    require(rates.insert(proof.says).second, "frame rate is there twice", proof.says);
  }
  bool dropFrame = false;
  for (const Clip& clip : list.clips) {
    dropFrame = dropFrame || clip.dropFrame;
    if (!clip.frameRate.empty())
      clipRates.insert(clip.frameRate);
  }
  require(std::includes(rates.begin(), rates.end(), clipRates.begin(), clipRates.end()), "rate of a clip has no proof");
  require(!dropFrame || timing.dropFrame, "drop frame of a clip has no proof");
  if (timing.dropFrame)
    requireProof(*timing.dropFrame, list.tally.lines);
  if (timing.mostFrames)
    requireProof(*timing.mostFrames, list.tally.lines);
  require(timing.frames >= 0 && timing.frames < 120, "frames", timing.frames);
}

void requireAliases(const Clip& clip)
{
  std::set<std::string> seen = {fold(clip.reel)};
  for (const std::string& alias : clip.aliases) {
    requireName(alias, "alias");
    require(!alias.empty(), "alias is empty");
    require(seen.insert(fold(alias)).second, "alias is the reel or is there twice", alias);
  }
}

void requireEvent(const Event& event)
{
  requireName(event.number, "event number");
  requireName(event.reelText, "reel text");
  requireName(event.duration, "duration");
  require(event.part >= 1, "part", event.part);
  require(event.reelField == 0 ||
              std::find(paddedReelFields.begin(), paddedReelFields.end(), event.reelField) != paddedReelFields.end(),
          "reel field", event.reelField);
  if (event.speed)
    require(exactSpeed(event.speed->framesPerSecond).has_value(), "speed", event.speed->framesPerSecond);
  for (const SourceId& id : event.sourceIds)
    requireName(id.id, "id of a source");
}

void requireClip(const Clip& clip)
{
  requireName(clip.reel, "reel");
  require(!clip.reel.empty(), "reel is empty");
  static const std::set<std::string> noReels = {"AX", "BL", "BLACK", "BARS", "GEN"};
  require(noReels.count(reeldb::base::upperCase(clip.reel)) == 0, "reel is none", clip.reel);
  require(clip.reel.find('*') == std::string::npos, "reel denotes generated material", clip.reel);
  requireName(clip.clipName, "clip name");
  requireName(clip.sourceFile, "source file");
  requireName(clip.tracks, "tracks");
  if (!isFrameNumber(clip.sourceIn) || !isFrameNumber(clip.sourceOut)) {
    requireTimecode(clip.sourceIn, "source in");
    requireTimecode(clip.sourceOut, "source out");
  }
  requireTimecode(clip.recordIn, "record in");
  requireTimecode(clip.recordOut, "record out");
  if (!clip.frameRate.empty()) {
    const std::optional<FrameRate> rate = rateOf(clip.frameRate);
    require(rate && rateName(*rate) == clip.frameRate, "frame rate is not the name of one", clip.frameRate);
  }
  requireAliases(clip);
  requireEvent(clip.event);
  // The reader accepts up to 256 letters and digits as tracks.
  require(clip.videoChannels >= 0 && clip.videoChannels <= 256, "video channels", clip.videoChannels);
  require(clip.audioChannels >= 0 && clip.audioChannels <= 256, "audio channels", clip.audioChannels);
}

std::string flat(const std::vector<std::string>& texts)
{
  std::string all;
  for (const std::string& text : texts)
    all += "\n  " + shown(text);
  return all;
}

/// An event as one text: all but its line, and its reel text with the field, which another list may write otherwise.
std::string eventOf(const Clip& c, bool withIds)
{
  // What stands in place of a reel is shown: it may be escaped. AX without a name is AX again, whatever it was.
  const bool hasReel = c.special.empty();
  std::ostringstream text;
  text << flat({hasReel ? c.reel : c.special, c.clipName, c.sourceFile, c.tracks, c.sourceIn, c.sourceOut, c.recordIn})
       << flat({c.recordOut, c.frameRate, c.dropFrame ? "drop" : "", c.event.number, c.event.transition})
       << flat({c.event.duration}) << ' ' << c.videoChannels << ' ' << c.audioChannels << ' ' << c.event.part
       << " aliases" << flat(c.aliases);
  if (c.event.speed)
    text << " speed" << flat({c.event.speed->framesPerSecond, c.event.speed->timecode});
  for (const SourceId& id : c.event.sourceIds)
    if (withIds)
      text << " id" << flat({id.kind, id.id});
  return text.str();
}

/// The whole list as one text. Equal lists have equal texts.
std::string textOf(const List& list)
{
  std::ostringstream text;
  text << (list.format == Format::Edl ? "EDL " : "ALE ") << shown(list.title);
  for (const Clip& c : list.clips)
    text << "\nclip " << c.line << ' ' << flat({c.reel, c.clipName, c.sourceFile, c.tracks, c.sourceIn, c.sourceOut})
         << flat({c.recordIn, c.recordOut}) << " aliases" << flat(c.aliases) << "\n " << c.videoChannels << ' '
         << c.audioChannels << ' ' << shown(c.frameRate) << (c.dropFrame ? " drop" : "");
  for (const Clip& c : eventsOf(list))
    text << "\nevent " << c.line << flat({c.event.reelText}) << ' ' << c.event.reelField << eventOf(c, true);
  for (const Proof& p : list.timing.rates)
    text << "\nrate " << p.line << flat({p.says, p.text});
  for (const std::optional<Proof>& p : {list.timing.dropFrame, list.timing.mostFrames})
    if (p)
      text << "\nproof " << p->line << flat({p->says, p->text});
  for (const Special& s : list.specials)
    text << "\nspecial " << flat({s.text, s.reason}) << ' ' << s.count << ' ' << shown(s.lines);
  for (const Rejected& r : list.rejected)
    text << "\nrejected " << r.line << flat({r.text, r.reason});
  for (const Warning& w : list.warnings)
    text << "\nwarning " << w.line << flat({w.text, w.reason});
  for (const Spelling& s : list.spellings)
    text << "\nspelling " << flat({s.reel, s.other});
  for (const Ambiguous& a : list.ambiguous)
    text << "\nambiguous " << flat({a.reel, a.reason}) << " names" << flat(a.names) << " ids" << flat(a.sourceIds);
  const Tally& t = list.tally;
  text << "\nlines " << t.lines << ", blank " << t.blank << ", headers " << t.headers << ", notes " << t.notes
       << ", statements " << t.statements;
  return text.str();
}

std::string utf16Of(const std::string& text)
{
  std::u16string units;
  utf8::utf8to16(text.begin(), text.end(), std::back_inserter(units));
  std::string bytes = "\xFE\xFF";
  for (const char16_t unit : units) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
  }
  return bytes;
}

void requireSameList(const std::string& form, const List& list, const char* what)
{
  const std::optional<List> other = readList(form);
  require(other.has_value(), what, "is no list any more");
  const std::string got = textOf(*other), wanted = textOf(list);
  require(got == wanted, what, "is read as\n", got.c_str(), "\nand should be\n", wanted.c_str());
}

} // namespace

std::optional<List> readList(const std::string& bytes)
{
  try {
    List list = read(bytes);
    require(detect(bytes) == list.format, "the format detected is not the one read");
    return list;
  } catch (const Error& error) {
    requireReason(error.what(), "reason why it is no list");
    return {};
  }
}

std::vector<std::string> linesOf(const std::string& bytes)
{
  const std::string text = decode(bytes);
  std::vector<std::string> all;
  Lines lines(text);
  for (std::string_view line; lines.next(line);)
    all.emplace_back(line);
  return all;
}

void requireSound(const List& list, const std::string& bytes)
{
  const std::vector<std::string> lines = piecesOf(decode(bytes));
  requireEqual(list.tally.lines, static_cast<int>(lines.size()), "number of lines");
  const auto isBlankLine = [](const std::string& line) {
    return line.find_first_not_of(std::string("\0\x1A\f\t ", 5)) == std::string::npos;
  };
  requireEqual(list.tally.blank, static_cast<int>(std::count_if(lines.begin(), lines.end(), isBlankLine)),
               "number of blank lines");
  requireShown(list.title, "title");

  Taken taken(list.tally.lines);
  std::map<std::string, std::string> spelling; // of each reel, by its folded name
  int last = 0;
  for (const Clip& clip : list.clips) {
    const bool isSound = list.format == Format::Ale && clip.event.part == 2 && clip.line == last;
    require(isSound == !clip.soundOf.empty(), "the sound of a row is not behind its picture");
    if (!isSound)
      taken.take(clip.line, "clip");
    require(clip.line > last || isSound, "clips are not in the order of their lines");
    last = clip.line;
    requireClip(clip);
    requireEqual(clip.reel, spelling.try_emplace(fold(clip.reel), clip.reel).first->second, "spelling of a reel");
  }
  std::vector<int> specialLines;
  for (const Clip& clip : list.specialClips) {
    require(!clip.special.empty(), "what is no reel has no reason");
    requireShown(clip.reel, "text that is not a reel");
    requireName(clip.clipName, "clip name");
    requireName(clip.sourceFile, "source file");
    requireEvent(clip.event);
    specialLines.push_back(clip.line);
  }
  std::vector<int> countedLines;
  for (const Special& special : list.specials) {
    countedLines.insert(countedLines.end(), special.lines.begin(), special.lines.end());
    requireShown(special.text, "text that is not a reel");
    requireReason(special.reason, "reason why it is not a reel");
    requireEqual(special.count, static_cast<int>(special.lines.size()), "number of lines of what is no reel");
    for (const int line : special.lines)
      taken.take(line, "what is no reel");
  }
  std::sort(countedLines.begin(), countedLines.end());
  require(countedLines == specialLines, "lines of what is no reel are not its clips");
  last = 0;
  for (const Rejected& rejected : list.rejected) {
    taken.take(rejected.line, "rejected");
    require(rejected.line > last, "rejected lines are not in order");
    last = rejected.line;
    requireReason(rejected.text, "text of a rejected line");
    requireReason(rejected.reason, "reason for a rejected line");
  }
  last = 1;
  for (const Warning& warning : list.warnings) {
    require(warning.line >= last && warning.line <= list.tally.lines, "warnings are not in the order of their lines");
    last = warning.line;
    requireReason(warning.text, "text of a line that is warned of");
    requireReason(warning.reason, "reason of a warning");
  }
  requireTiming(list);
  const Tally& tally = list.tally;
  requireEqual(taken.count() + tally.blank + tally.headers + tally.notes + tally.statements, tally.lines,
               "number of lines that went somewhere");

  for (const Spelling& other : list.spellings) {
    requireEqual(fold(other.other), fold(other.reel), "further spelling");
    require(other.other != other.reel, "further spelling is the first");
    requireEqual(other.reel, spelling[fold(other.reel)], "first spelling");
  }
  for (const Ambiguous& ambiguous : list.ambiguous) {
    requireEqual(ambiguous.reel, spelling[fold(ambiguous.reel)], "ambiguous reel");
    requireReason(ambiguous.reason, "reason of the ambiguity");
    require(ambiguous.names.size() != 1, "a single name is not ambiguous");
    const bool isForAll = ambiguous.names.empty() && ambiguous.sourceIds.empty();
    require(ambiguous.names.size() + ambiguous.sourceIds.size() >= 2 || isForAll, "nothing is ambiguous");
    for (const Clip& clip : list.clips)
      require(!isForAll || fold(clip.reel) == fold(ambiguous.reel), "a reel is not that of all clips");
    for (const std::string& name : ambiguous.names)
      requireName(name, "ambiguous name");
    for (const std::string& id : ambiguous.sourceIds)
      requireName(id, "id of a source");
  }
}

namespace {

void requireSoundEntries(const List& list, const std::string& bytes)
{
  requireEqual(list.tally.lines, static_cast<int>(piecesOf(decode(bytes)).size()), "number of lines");
  requireShown(list.title, "title");
  const auto requireOrder = [&](const auto& entries, const char* what) {
    int last = 1;
    for (const auto& entry : entries) {
      require(entry.line >= last && entry.line <= list.tally.lines, what, "not in the order of their lines");
      last = entry.line;
    }
  };
  requireOrder(list.clips, "clips");
  requireOrder(list.specialClips, "clips without a source");
  requireOrder(list.rejected, "rejected clips");
  requireOrder(list.warnings, "warnings");
  requireOrder(list.reels, "rows of reels");
  for (const Clip& clip : list.clips)
    requireClip(clip);
  int specials = 0;
  for (const Special& special : list.specials) {
    requireShown(special.text, "text that is not a reel");
    requireReason(special.reason, "reason why it is not a reel");
    specials += special.count;
  }
  requireEqual(specials, static_cast<int>(list.specialClips.size()), "number of clips without a source");
  for (const Rejected& rejected : list.rejected)
    requireReason(rejected.reason, "reason for a rejected clip");
  for (const Warning& warning : list.warnings)
    requireReason(warning.reason, "reason of a warning");
  requireTiming(list);
}

} // namespace

void requireSoundTimeline(const List& list, const std::string& bytes)
{
  requireSoundEntries(list, bytes);
  for (const Clip& clip : list.clips)
    require(clip.videoChannels + clip.audioChannels > 0, "clip is on no track");
}

void requireSoundTable(const List& list, const std::string& bytes)
{
  requireSoundEntries(list, bytes);
  std::set<std::string> reels;
  for (const ReelRow& row : list.reels) {
    requireName(row.reel, "reel of a row");
    require(!row.reel.empty(), "row without a reel");
    require(reels.insert(fold(row.reel)).second, "reel has two rows", row.reel);
    requireShown(row.text, "text of a row");
    for (const ReelValue& value : row.values) {
      require(value.field < list.fields.size(), "value of no field", value.field);
      require(utf8::is_valid(value.text), "value is no UTF-8", value.text);
    }
    for (const std::string& alias : row.aliases)
      requireName(alias, "alias of a row");
  }
  for (const std::string& title : list.unread)
    requireShown(title, "title that is not read");
}

void requireSameInOtherForms(const List& list, const std::string& bytes)
{
  const std::string text = decode(bytes);
  require(utf8::is_valid(text), "decoded text is no UTF-8");
  requireSameList(utf16Of(text), list, "the list in UTF-16");
  std::string other = "\xEF\xBB\xBF";
  for (const std::string& line : piecesOf(text))
    other += line + "\r\n";
  requireSameList(other, list, "the list with CR LF and a byte order mark");
}

void requireEventsComeBack(const List& list)
{
  const std::vector<Clip> events = eventsOf(list);
  requireEqual(events.size(), list.clips.size() + list.specialClips.size(), "number of events");
  const bool isLog = list.format == Format::Ale;
  for (const std::size_t field : {std::size_t{8}, std::size_t{32}}) {
    const Written written = isLog ? writeAle("25", events) : writeEdl(list.title, events, field);
    requireEqual(written.leftOut.size(), std::size_t{0}, "events that were left out");
    const auto isRemarked = [&](const char* fact) {
      return std::any_of(written.remarks.begin(), written.remarks.end(),
                         [&](const std::string& remark) { return remark.find(fact) != std::string::npos; });
    };
    if (isRemarked("an import will not read it back"))
      return;
    const std::optional<List> read = readList(written.text);
    require(read && read->format == list.format, "what was written is no list of that format");
    requireEqual(read->rejected.size(), std::size_t{0}, "rejected lines of what was written");
    const std::vector<Clip> again = eventsOf(*read);
    requireEqual(again.size(), events.size(), "events of what was written");
    const bool sameIds = !isRemarked("different source ids");
    for (std::size_t i = 0; i < events.size(); ++i)
      requireEqual(eventOf(again[i], sameIds), eventOf(events[i], sameIds), "event, written and read again");
  }
}

void requireTimelineComesBack(const List& list)
{
  constexpr std::size_t field = 32;
  const std::vector<Clip> events = eventsOf(list);
  const Written written = writeEdl(list.title, events, field);
  requireEqual(written.leftOut.size(), std::size_t{0}, "clips that were left out");
  if (!written.remarks.empty() || events.empty())
    return;
  const std::optional<List> read = readList(written.text);
  require(read && read->format == Format::Edl, "what was written is not a cut list");
  requireEqual(read->rejected.size(), std::size_t{0}, "rejected lines of what was written");
  requireEqual(read->specialClips.size(), list.specialClips.size(), "clips without a source, written and read again");
  requireEqual(read->clips.size(), list.clips.size(), "clips, written and read again");
  for (std::size_t i = 0; i < list.clips.size(); ++i) {
    requireEqual(fold(read->clips[i].reel), fold(list.clips[i].reel), "reel, written and read again");
    requireEqual(read->clips[i].clipName, list.clips[i].clipName, "clip name, written and read again");
    requireEqual(read->clips[i].sourceIn, list.clips[i].sourceIn, "source in, written and read again");
    requireEqual(read->clips[i].sourceOut, list.clips[i].sourceOut, "source out, written and read again");
  }
}

void requireSameClips(const List& again, const List& list, bool whole)
{
  requireEqual(again.rejected.size(), std::size_t{0}, "rejected lines of what was written");
  requireEqual(again.specials.size(), std::size_t{0}, "lines of what was written that are no reel");
  requireEqual(again.clips.size(), list.clips.size(), "clips of what was written");
  for (std::size_t i = 0; i < list.clips.size(); ++i) {
    const Clip &got = again.clips[i], &wanted = list.clips[i];
    requireEqual(got.reel, wanted.reel, "reel, written and read again");
    requireEqual(got.clipName, wanted.clipName, "clip name, written and read again");
    requireEqual(got.tracks, wanted.tracks, "tracks, written and read again");
    requireEqual(got.sourceIn, wanted.sourceIn, "source in, written and read again");
    requireEqual(got.sourceOut, wanted.sourceOut, "source out, written and read again");
    requireEqual(got.recordIn, wanted.recordIn, "record in, written and read again");
    requireEqual(got.recordOut, wanted.recordOut, "record out, written and read again");
    if (!whole)
      continue;
    requireEqual(got.sourceFile, wanted.sourceFile, "source file, written and read again");
    requireEqual(got.videoChannels, wanted.videoChannels, "video channels, written and read again");
    requireEqual(got.audioChannels, wanted.audioChannels, "audio channels, written and read again");
  }
}

} // namespace reeldb_fuzz
