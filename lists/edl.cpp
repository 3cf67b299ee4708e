// SPDX-License-Identifier: Apache-2.0
#include "lists/edl.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "base/display_text.h"
#include "lists/collector.h"
#include "lists/edl_event.h"
#include "lists/edl_line.h"
#include "lists/edl_note.h"
#include "lists/frame_rate.h"
#include "lists/name_forms.h"
#include "lists/names.h"
#include "lists/own_name.h"
#include "lists/source_table.h"
#include "lists/speed.h"
#include "lists/text.h"
#include "lists/tracks.h"

namespace reeldb::lists {
namespace {

/// Statements that are not kept.
constexpr std::array<std::string_view, 6> silentStatements = {
    "AUD", "SPLIT", "GPI", "DLEDL", "REM", "EFFECTS NAME IS",
};
constexpr std::size_t umidDigits = 64; ///< of a whole one
constexpr std::string_view speedWord = "M2";
constexpr std::string_view titleWord = "TITLE";
constexpr std::string_view frameCodeModeWord = "FCM";
constexpr std::string_view dropFrameWord = "DROP";
constexpr std::string_view nonDropFrameWord = "NON";
constexpr std::string_view sourceMark = ">>>";
constexpr std::string_view sourceWord = "SOURCE";
constexpr std::string_view replacedReelWords = "FINAL CUT PRO REEL";
constexpr std::string_view replacedBy = "REPLACED BY";

/// Whether the line starts with the statement as a whole word. If so, the word and a colon behind it are removed.
bool takeStatement(std::string_view& line, std::string_view statement)
{
  if (!base::startsWithName(line, statement))
    return false;
  std::string_view rest = line.substr(statement.size());
  if (!rest.empty() && !isBlank(rest.front()) && rest.front() != ':')
    return false;
  rest = trimLeft(rest);
  if (rest.starts_with(':'))
    rest = trimLeft(rest.substr(1));
  line = rest;
  return true;
}

/// What a reel text means, according to the list's own map, its source table and its replaced reels.
struct Known {
  bool isMapped = false;            ///< outside this list the reel text is not a name
  std::string mapped;               ///< the only reel of the map; empty without one
  std::string replaced;             ///< the only reel that the text replaces; empty without one
  std::vector<SourceRow> rows;      ///< of the source table
  std::string rowName;              ///< the longer name that all of them agree on; empty without one
  bool isSecondName = false;        ///< whether that is the second name of a row
  std::string rowSourceFile;        ///< the source file noted below all of them; empty without one
  std::vector<std::string> aliases; ///< the other names in its rows
  std::vector<std::string> ids;     ///< the source ids in its rows
  std::vector<std::string> fits;    ///< its possible meanings if it is ambiguous, else empty
  std::string_view reason;          ///< why it is ambiguous
  bool reported = false;            ///< whether the ambiguity was reported
  bool noted = false;               ///< whether noteIds() had the ids
};

/// Where the list begins or ends drop frame.
struct FrameCodeMode {
  int line = 0;
  std::string_view text;
  bool dropFrame = false;
};

/// A row of the source table: its line, and the counter that counted it.
struct TableRow {
  int line = 0;
  std::string_view text;
  int* counter = nullptr;
};

/// Empties the timecodes that the note NO TIMECODE names. The event holds others in their place, because the format
/// requires four.
void takeAway(std::string_view names, Clip& clip)
{
  for (const auto& [name, timecode] : {std::pair(std::string_view("SOURCE IN"), &clip.sourceIn),
                                       std::pair(std::string_view("SOURCE OUT"), &clip.sourceOut),
                                       std::pair(std::string_view("RECORD IN"), &clip.recordIn),
                                       std::pair(std::string_view("RECORD OUT"), &clip.recordOut)}) {
    if (names.find(name) != std::string_view::npos)
      timecode->clear();
  }
}

/// The name of the rate that a text means; empty if it is not a rate.
std::string knownRate(std::string_view text)
{
  const std::optional<FrameRate> rate = rateOf(text);
  return rate ? rateName(*rate) : std::string();
}

class Reader {
public:
  explicit Reader(const ReadOptions& options) : options_(options) {}
  List read(std::string_view text);

private:
  void line(int number, std::string_view line);
  void event(int number, std::string_view line);
  void takeNote(std::optional<Note> note);
  /// Whether the line is a statement. A faulty statement is rejected.
  bool statement(int number, std::string_view line);
  void speed(int number, std::string_view line, std::string_view statement);
  /// Uses the statement of a replaced reel. Returns why it cannot be used; empty if it can.
  std::string replacedReel(std::string_view statement);
  void closeEvent();
  void frameCodeMode(int number, std::string_view line, std::string_view mode);
  /// The mode of a line; null before the first one.
  const FrameCodeMode* modeOf(int line) const;

  void decide(const EventSource& source, Digits digits);
  /// The clip of an event line, without its reel and its other names.
  Clip clipOf(const EventSource& source, Digits digits) const;
  Known& lookUp(const std::string& reel);
  void lookUpRows(const std::string& reel, Known& known);
  /// Sets the reel that a name stands for. If there are several, sets them all as fits, with the reason.
  static void settle(Known& known, std::string& reel, const std::vector<std::string>& originals,
                     std::string_view reason);
  /// The names of the event's source, the best first, by what is known of its reel text.
  std::vector<OwnName> namesOf(const EventSource& source, const std::string& reel, const Known& known) const;
  /// The id of the source with that name; empty if the table does not give exactly one.
  static std::string sourceIdOf(const Known& known, const std::string& name);
  /// Removes the names that belong to a source with another id, as long as a name is left.
  void keepOwn(std::vector<OwnName>& names, const std::string& sourceId);
  void noteLongerFile(const EventSource& source, const std::string& reel);
  void reportAmbiguous(Known& known, const std::string& reel);
  void noteIds(const std::string& identifier, const std::vector<std::string>& ids);
  void reportSharedNames();
  /// Reports a list whose clips all have one reel text: some programs write one for want of a name.
  void reportOneText();

  ReadOptions options_;
  Collector collector_{Format::Edl};
  bool inEvents_ = false; ///< whether an event line was found, good or bad
  EdlEvent event_;        ///< the event that notes belong to
  bool inRow_ = false;    ///< whether notes belong to the last row of the source table
  NoteJoiner notes_;
  std::vector<FrameCodeMode> modes_; ///< in the order of their lines
  std::string frameRate_;            ///< that a note before the events gives all of them; empty without one
  std::vector<EventSource> sources_; ///< all complete events
  std::size_t reelField_ = 0;        ///< the width of the list's reel field
  int part_ = 1;                     ///< the part of its event that the line becomes that is decided on
  SourceTable table_;
  std::vector<TableRow> tableRows_;                                    ///< in the order of the table
  std::unordered_map<std::string, std::vector<std::string>> replaced_; ///< folded replacement: the reels it replaces

  std::unordered_map<std::string, std::vector<std::string>> map_;     ///< folded name: its meanings by REEL MAP
  std::unordered_map<std::string, Known> known_;                      ///< folded reel text: its meaning
  std::unordered_map<std::string, std::string> idOf_;                 ///< folded name: the id of its source
  std::unordered_map<std::string, std::size_t> idsOf_;                ///< folded identifier: the index in ids_
  std::vector<std::pair<std::string, std::vector<std::string>>> ids_; ///< identifiers and their source ids
  std::unordered_map<std::string, std::size_t> longerFilesOf_;        ///< folded reel text: the index in longerFiles_
  std::vector<Ambiguous> longerFiles_; ///< the source files whose names begin with reel texts that are not cut
};

List Reader::read(std::string_view text)
{
  Lines lines(text);
  for (std::string_view each; lines.next(each);)
    line(lines.number(), each);
  takeNote(notes_.flush());
  closeEvent();
  collector_.list().tally.lines = lines.number();

  std::unordered_set<std::string> reels;
  bool channelNumbers = false;
  std::size_t reelColumn = 0; // programs pad the reels of the list, but set AX and BL at the right
  for (const EventSource& source : sources_) {
    reels.insert(base::fold(clean(source.fields.reel)));
    channelNumbers = channelNumbers || hasChannelNumber(source.fields.channels);
    if (!isAuxiliary(source.fields.reel) && placeholderReason(source.fields.reel).empty())
      reelColumn = std::max(reelColumn, source.fields.reelColumn);
  }
  reelField_ = paddedField(reelColumn);
  for (UnusedRow& unused : table_.settle([&](const std::string& folded) { return reels.contains(folded); })) {
    const TableRow& row = tableRows_[unused.row];
    --*row.counter;
    collector_.reject(row.line, row.text, std::move(unused.reason));
  }
  const std::vector<Rejected>& rejected = collector_.list().rejected;
  for (const EventSource& source : sources_) {
    if (source.isFirst)
      part_ = 1;
    const std::size_t rejectedBefore = rejected.size();
    decide(source, channelNumbers ? Digits::Number : Digits::Set);
    part_ += rejected.size() == rejectedBefore ? 1 : 0;
  }
  reportSharedNames();
  reportOneText();
  for (Ambiguous& files : longerFiles_)
    if (files.names.size() > 1) {
      files.reel = collector_.spelling(files.reel);
      collector_.list().ambiguous.push_back(std::move(files));
    }
  return collector_.finish();
}

void Reader::line(int number, std::string_view line)
{
  Tally& tally = collector_.list().tally;
  if (isNote(line)) {
    ++tally.notes;
    if (reportsProblem(line))
      collector_.warn(number, line, "the program that wrote the list reports a problem with the event above");
    takeNote(notes_.line(line));
    return;
  }
  takeNote(notes_.flush());
  const std::string_view text = trim(line);
  if (text.empty()) {
    ++tally.blank;
  } else if (beginsLikeEvent(text)) {
    inEvents_ = inEvents_ || countTimecodes(text) > 0; // a title may begin with a number
    event(number, text);
  } else if (statement(number, text)) {
    return;
  } else if (countTimecodes(text) >= 4) {
    collector_.reject(number, text, "no event number");
  } else if (isMarker(text)) {
    ++tally.notes;
    ++tally.ignored;
  } else if (inEvents_) {
    collector_.reject(number, text, "not an event, a note or a known statement");
  } else {
    ++tally.headers;
  }
}

void Reader::event(int number, std::string_view line)
{
  EventLine fields;
  std::string fault = parseEvent(line, fields);
  if (!fault.empty()) {
    // The notes that follow belong to the rejected event, so they must not go to the event above.
    closeEvent();
    collector_.reject(number, line, std::move(fault));
    return;
  }
  if (!event_.takes(fields))
    closeEvent();
  inRow_ = false;
  event_.add(number, line, fields);
}

void Reader::takeNote(std::optional<Note> note)
{
  if (!note)
    return;
  if (note->kind == NoteKind::ReelMap) {
    map_[base::fold(note->reel)].push_back(std::move(note->value));
  } else if (note->kind == NoteKind::FrameRate && !inEvents_) {
    frameRate_ = knownRate(note->value);
  } else {
    const bool isOfRow = event_.empty() && inRow_ && note->kind == NoteKind::SourceFile;
    collector_.list().tally.ignored += (event_.empty() && !isOfRow) || note->kind == NoteKind::Other ? 1 : 0;
    if (isOfRow)
      table_.noteSourceFile(std::move(note->value));
    else if (!event_.empty())
      event_.note(std::move(*note));
  }
}

bool Reader::statement(int number, std::string_view line)
{
  Tally& tally = collector_.list().tally;
  int& counter = inEvents_ ? tally.statements : tally.headers;
  std::string_view rest = line;
  for (std::string_view silent : silentStatements) {
    if (takeStatement(rest, silent)) {
      ++tally.ignored;
      ++counter;
      return true;
    }
  }
  if (takeStatement(rest, speedWord)) {
    speed(number, line, rest);
    ++counter;
    return true;
  }
  if (takeStatement(rest, frameCodeModeWord)) {
    frameCodeMode(number, line, rest);
    ++counter;
    return true;
  }
  if (takeStatement(rest, titleWord)) {
    closeEvent();
    modes_.push_back({number, line, false}); // of the list before, if there was one
    if (collector_.list().title.empty())
      collector_.list().title = shortened(rest, shownBytes);
    ++counter;
    return true;
  }
  if (takeStatement(rest, replacedReelWords)) {
    if (std::string fault = replacedReel(rest); fault.empty())
      ++counter;
    else
      collector_.reject(number, line, std::move(fault));
    return true;
  }
  if (!rest.starts_with(sourceMark))
    return false;
  rest = trimLeft(rest.substr(sourceMark.size()));
  if (!takeStatement(rest, sourceWord))
    return false;
  closeEvent(); // notes below a row belong to the row
  inRow_ = false;
  if (std::string fault = table_.add(rest); !fault.empty()) {
    collector_.reject(number, line, std::move(fault));
    return true;
  }
  tableRows_.push_back({number, line, &counter});
  inRow_ = true;
  ++counter;
  return true;
}

void Reader::speed(int number, std::string_view line, std::string_view statement)
{
  SpeedLine speed;
  std::string fault = parseSpeedLine(statement, speed);
  if (fault.empty() && !event_.speed(speed))
    fault = "the event above has no line of reel " + inQuotes(speed.reel) + " without a speed";
  if (fault.empty())
    return;
  ++collector_.list().tally.ignored;
  collector_.warn(number, line, "speed not used: " + fault);
}

std::string Reader::replacedReel(std::string_view statement)
{
  const char* const fault = "replaced reel without one of its two names";
  const auto sameLetter = [](char a, char b) { return base::toLower(a) == base::toLower(b); };
  const auto found = std::search(statement.begin(), statement.end(), replacedBy.begin(), replacedBy.end(), sameLetter);
  if (found == statement.end())
    return fault;
  const auto at = static_cast<std::size_t>(found - statement.begin());
  const std::string reel = clean(statement.substr(0, at));
  std::string_view replacement = statement.substr(at);
  if (!takeStatement(replacement, replacedBy))
    return fault;
  const std::string by = clean(replacement);
  if (reel.empty() || by.empty())
    return fault;
  if (const std::string_view control = firstControl(statement); !control.empty())
    return "replaced reel with a control character (" + base::displayText(control) + ")";
  if (reel.size() > nameBytes)
    return "replaced reel " + inQuotes(reel) + " has " + std::to_string(reel.size()) + " bytes (at most " +
           std::to_string(nameBytes) + ")";
  replaced_[base::fold(by)].push_back(reel);
  return {};
}

void Reader::closeEvent()
{
  for (EventSource& source : event_.finish())
    sources_.push_back(std::move(source));
}

void Reader::frameCodeMode(int number, std::string_view line, std::string_view mode)
{
  if (base::startsWithName(mode, dropFrameWord))
    modes_.push_back({number, line, true});
  else if (base::startsWithName(mode, nonDropFrameWord))
    modes_.push_back({number, line, false});
}

const FrameCodeMode* Reader::modeOf(int line) const
{
  const auto next = std::upper_bound(modes_.begin(), modes_.end(), line,
                                     [](int wanted, const FrameCodeMode& mode) { return wanted < mode.line; });
  return next == modes_.begin() ? nullptr : &*std::prev(next);
}

Known& Reader::lookUp(const std::string& reel)
{
  const auto [entry, isNew] = known_.try_emplace(base::fold(reel));
  Known& known = entry->second;
  if (!isNew)
    return known;
  if (const auto mapped = map_.find(base::fold(reel)); mapped != map_.end()) {
    known.isMapped = true;
    settle(known, known.mapped, mapped->second, "the map of the list gives the name to several reels");
    SourceMatch match = table_.find(reel); // the map names the reel, and the table still gives its ids
    known.ids = std::move(match.ids);
    if (known.fits.empty())
      known.rows = std::move(match.rows);
    return known;
  }
  lookUpRows(reel, known);
  if (const auto replaced = replaced_.find(base::fold(reel)); known.rows.empty() && replaced != replaced_.end())
    settle(known, known.replaced, replaced->second, "the name replaces several reels of the list");
  return known;
}

void Reader::lookUpRows(const std::string& reel, Known& known)
{
  SourceMatch match = table_.find(reel);
  if (!match.found)
    return;
  known.rows = std::move(match.rows);
  known.ids = std::move(match.ids);
  known.fits = std::move(match.fits);
  known.reason = "the name is cut and fits several sources of the list";
  if (known.fits.empty())
    known.aliases = std::move(match.names);
  const SourceRow& first = known.rows.front();
  const auto all = [&](auto isEqual) { return std::all_of(known.rows.begin(), known.rows.end(), isEqual); };
  if (all([&](const SourceRow& row) { return base::sameName(row.longer, first.longer); })) {
    known.rowName = first.longer;
    known.isSecondName = first.isSecond;
  }
  if (all([&](const SourceRow& row) { return base::sameName(row.sourceFile, first.sourceFile); }))
    known.rowSourceFile = first.sourceFile;
}

void Reader::settle(Known& known, std::string& reel, const std::vector<std::string>& originals, std::string_view reason)
{
  std::unordered_set<std::string> seen;
  for (const std::string& original : originals) {
    if (seen.insert(base::fold(original)).second)
      known.fits.push_back(original);
  }
  known.reason = reason;
  if (known.fits.size() == 1) {
    reel = known.fits.front();
    known.fits.clear();
  }
}

std::vector<OwnName> Reader::namesOf(const EventSource& source, const std::string& reel, const Known& known) const
{
  if (known.isMapped && !known.mapped.empty())
    return {{known.mapped, NameEvidence::ReelMap}};
  if (known.isMapped)
    return {{reel, NameEvidence::ReelText}};
  NameTexts texts;
  texts.reel = reel;
  texts.field = reelField_;
  texts.sourceFile = source.sourceFile;
  texts.rowSourceFile = known.rowSourceFile;
  texts.rowName = known.rowName;
  texts.rowField = known.isSecondName ? rowNameField : reelField_;
  texts.replacedReel = known.replaced;
  texts.reelNote = source.reelNote;
  texts.clipName = source.clipName;
  texts.anyClipName = options_.clipNames;
  return ownNames(texts);
}

std::string Reader::sourceIdOf(const Known& known, const std::string& name)
{
  const auto only = [&](auto isFit) {
    std::string id;
    for (const SourceRow& row : known.rows) {
      if (!isFit(row))
        continue;
      if (row.id.empty() || (!id.empty() && !base::sameName(id, row.id)))
        return std::string();
      id = row.id;
    }
    return id;
  };
  std::string id = only([](const SourceRow&) { return true; });
  if (!id.empty())
    return id;
  return only([&](const SourceRow& row) {
    return isSameName(name, row.longer) || isSameName(name, row.sourceFile) ||
           (row.isSecond && isShortForm(row.longer, fillsField(row.longer, rowNameField), name));
  });
}

void Reader::keepOwn(std::vector<OwnName>& names, const std::string& sourceId)
{
  if (sourceId.empty())
    return;
  const auto isFree = [&](const OwnName& name) {
    const auto owner = idOf_.find(base::fold(name.name));
    return owner == idOf_.end() || base::sameName(owner->second, sourceId);
  };
  const auto free = std::find_if(names.begin(), names.end(), isFree);
  if (free == names.end() || free == names.begin()) {
    idOf_.try_emplace(base::fold(names.front().name), sourceId);
    return;
  }
  const std::string taken = names.front().name;
  names.erase(names.begin(), free);
  if (idOf_.try_emplace(base::fold(names.front().name), sourceId).second)
    collector_.list().ambiguous.push_back({taken,
                                           "several sources of the list have the name",
                                           {taken, names.front().name},
                                           {idOf_.at(base::fold(taken)), sourceId}});
}

void Reader::noteLongerFile(const EventSource& source, const std::string& reel)
{
  const std::string_view file = fileName(source.sourceFile);
  if (fillsField(reel, reelField_) || isShortForm(reel, false, file) || !isCutForm(reel, file))
    return;
  const auto [entry, isNew] = longerFilesOf_.try_emplace(base::fold(reel), longerFiles_.size());
  if (isNew)
    longerFiles_.push_back({reel, "several source files have names that begin with it", {}, {}});
  std::vector<std::string>& files = longerFiles_[entry->second].names;
  if (std::none_of(files.begin(), files.end(), [&](const std::string& each) { return isSameName(each, file); }))
    files.emplace_back(file);
}

void Reader::decide(const EventSource& source, Digits digits)
{
  const std::string reel = clean(source.fields.reel);
  Clip clip = clipOf(source, digits);
  clip.reel = reel;
  if (const std::string_view reason = placeholderReason(reel); !reason.empty())
    return collector_.special(std::move(clip), reason);
  Known& known = lookUp(reel);
  for (const std::string& id : known.ids)
    clip.event.sourceIds.push_back({std::string(isUmid(id) ? umidKind : tableKind), id});
  std::vector<OwnName> names = namesOf(source, reel, known);
  const bool auxiliary = isAuxiliary(names.front().name);
  if (auxiliary) {
    names = {ownNameWithoutTape(source.sourceFile, source.clipName)};
    if (names.front().name.empty())
      return collector_.special(std::move(clip), "AX without a clip name or source file");
  }
  clip.sourceId = auxiliary ? std::string() : sourceIdOf(known, names.front().name);
  keepOwn(names, clip.sourceId);
  if (!isUmid(clip.sourceId) || clip.sourceId.size() < umidDigits)
    clip.sourceId.clear(); // it counts only within this list
  clip.reel = names.front().name;
  clip.evidence = names.front().evidence;
  clip.mayBeCut = names.front().mayBeCut;
  clip.ownName = names.front().file;
  noteLongerFile(source, reel);

  clip.aliases = known.aliases;
  clip.aliases.insert(clip.aliases.end(), source.alsoCalled.begin(), source.alsoCalled.end());
  const std::string unmapped = known.isMapped ? std::string() : reel;
  for (const std::string* name :
       {&unmapped, &source.reelNote, &source.otherReel, &source.sourceFile, &std::as_const(known).rowSourceFile})
    clip.aliases.push_back(*name);
  if (const FrameCodeMode* const mode = modeOf(source.line); mode && mode->dropFrame)
    collector_.dropFrame(mode->line, mode->text);

  const std::string identifier = clip.reel;
  const bool isReelText = clip.evidence == NameEvidence::ReelText;
  const bool hasId = !clip.sourceId.empty();
  if (!collector_.clip(std::move(clip), source.text) || auxiliary)
    return;
  if (isReelText)
    reportAmbiguous(known, reel);
  if (known.fits.empty() && !hasId && !std::exchange(known.noted, true))
    noteIds(identifier, known.ids);
}

Clip Reader::clipOf(const EventSource& source, Digits digits) const
{
  Clip clip;
  clip.clipName = source.clipName;
  clip.sourceFile = source.sourceFile;
  clip.tracks = clean(source.fields.channels);
  const Tracks tracks = parseTracks(clip.tracks, digits).value_or(Tracks());
  clip.videoChannels = tracks.video;
  clip.audioChannels = tracks.audio;
  clip.sourceIn = source.fields.timecodes[0];
  clip.sourceOut = source.fields.timecodes[1];
  clip.recordIn = source.fields.timecodes[2];
  clip.recordOut = source.fields.timecodes[3];
  if (!source.tracks.empty() && source.tracks.size() <= nameBytes && firstControl(source.tracks).empty())
    clip.tracks = source.tracks;
  takeAway(source.noTimecode, clip);
  clip.line = source.line;
  clip.frameRate = source.frameRate.empty() ? frameRate_ : knownRate(source.frameRate);
  const FrameCodeMode* const mode = modeOf(source.line);
  clip.dropFrame = mode && mode->dropFrame;
  clip.event.number = source.fields.number;
  clip.event.part = part_;
  clip.event.reelText = clean(source.fields.reel);
  clip.event.reelField = reelField_;
  clip.event.transition = source.fields.transitionCode;
  clip.event.duration = source.fields.duration;
  clip.event.speed = source.speed;
  return clip;
}

void Reader::reportAmbiguous(Known& known, const std::string& reel)
{
  if (known.fits.empty() || known.reported)
    return;
  known.reported = true;
  collector_.list().ambiguous.push_back({collector_.spelling(reel), std::string(known.reason), known.fits, known.ids});
}

void Reader::noteIds(const std::string& identifier, const std::vector<std::string>& ids)
{
  if (ids.empty())
    return;
  const auto [entry, isNew] = idsOf_.try_emplace(base::fold(identifier), ids_.size());
  if (isNew)
    ids_.emplace_back(identifier, std::vector<std::string>());
  std::vector<std::string>& all = ids_[entry->second].second;
  all.insert(all.end(), ids.begin(), ids.end());
}

void Reader::reportSharedNames()
{
  for (auto& [identifier, ids] : ids_) {
    std::unordered_set<std::string> seen;
    std::vector<std::string> distinct;
    for (std::string& id : ids) {
      if (seen.insert(base::fold(id)).second)
        distinct.push_back(std::move(id));
    }
    if (distinct.size() > 1)
      collector_.list().ambiguous.push_back(
          {collector_.spelling(identifier), "several sources of the list share the name", {}, std::move(distinct)});
  }
}

void Reader::reportOneText()
{
  constexpr std::size_t fewest = 3; // fewer clips are often of one reel
  const std::vector<Clip>& clips = collector_.list().clips;
  if (clips.size() < fewest || isAuxiliary(clips.front().event.reelText))
    return;
  const auto hasText = [&](const Clip& clip) {
    return base::sameName(clip.event.reelText, clips.front().event.reelText) && clip.reel == clips.front().reel;
  };
  if (std::all_of(clips.begin(), clips.end(), hasText))
    collector_.list().ambiguous.push_back(
        {clips.front().reel, "all clips of the list have this reel; it may stand for several sources", {}, {}});
}

} // namespace

List readEdl(std::string_view text, const ReadOptions& options)
{
  return Reader(options).read(text);
}

} // namespace reeldb::lists
