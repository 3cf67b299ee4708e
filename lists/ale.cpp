// SPDX-License-Identifier: Apache-2.0
#include "lists/ale.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "base/ascii.h"
#include "lists/collector.h"
#include "lists/frame_rate.h"
#include "lists/name_forms.h"
#include "lists/names.h"
#include "lists/own_name.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/tracks.h"

namespace reeldb::lists {
namespace {

enum Column : std::size_t {
  Name,
  Tape,
  TracksColumn,
  Start,
  End,
  SourceFile,
  SourceFilePath,
  TapeId,
  ReelNumber,
  Camroll,
  Labroll,
  Soundroll,
  SoundTc,
  Fps,
  TracksAsWritten, ///< this, those below and AlsoCalled are only in logs of this program: docs/formats/export.md
  CutRecordIn,
  CutRecordOut,
  ColonsAsWritten,
  ColumnCount,
  AlsoCalled, ///< "Reel Also Called 1", 2, ...: the only column that a log may have several times
};

/// The titles of the columns, which are case-sensitive.
constexpr std::array<std::string_view, ColumnCount> columnTitles = {
    "Name",
    "Tape",
    "Tracks",
    "Start",
    "End",
    "Source File",
    "Source File Path",
    "TapeID",
    "Reel #",
    "Camroll",
    "Labroll",
    "Soundroll",
    "Sound TC",
    "FPS",
    "Tracks As Written",
    "Cut Record In",
    "Cut Record Out",
    "Colons As Written",
};

constexpr std::string_view alsoCalledTitle = "Reel Also Called ";

constexpr std::array timeColumns = {Start, End};
constexpr std::array timecodeColumns = {Start, End, CutRecordIn, CutRecordOut};

/// A rate in the heading above this is ignored.
constexpr int mostFramesASecond = 999;

/// The frames per second of the timecode of a video format's tapes, whatever the rate of the project.
constexpr std::array<std::pair<std::string_view, int>, 2> formatFrames = {{{"NTSC", 30}, {"PAL", 25}}};

/// Columns with another name of the row's source.
constexpr std::array aliasColumns = {Tape, TapeId, ReelNumber, Labroll, SourceFile};

/// A title of a column or heading is shown up to this number of bytes.
constexpr std::size_t longestTitle = 100;

/// The tracks of a source when the log has none: a picture.
constexpr std::string_view defaultTracks = "V";

/// The cells of a row that the reader uses, without outer blanks. A cell that the row does not have is empty.
struct Cells {
  std::array<std::string_view, ColumnCount> texts;
  std::vector<std::string_view> alsoCalled;
  std::size_t count = 0; ///< the number of all cells of the row

  std::string_view operator[](Column column) const { return texts[column]; }
};

/// "no 'Start', no 'End'", with @p what before each title.
std::string lacking(const std::vector<Column>& columns, const std::string& what = "")
{
  std::string result;
  for (Column column : columns)
    result += (result.empty() ? "no " : ", no ") + what + "'" + std::string(columnTitles[column]) + "'";
  return result;
}

std::string withoutThem(const std::vector<Column>& columns)
{
  return columns.size() == 1 ? "without it" : "without them";
}

/// The frames that a rate such as "25", "23.976" or "24000/1001" counts in a second; 0 if the text is not a rate.
int framesASecond(std::string_view rate)
{
  if (const std::optional<FrameRate> known = rateOf(rate))
    return known->frames;
  int whole = 0;
  const auto [end, error] = std::from_chars(rate.data(), rate.data() + rate.size(), whole);
  std::string_view rest(end, static_cast<std::size_t>(rate.data() + rate.size() - end));
  if (error != std::errc() || whole < 0 || whole > mostFramesASecond || (!rest.empty() && rest.front() != '.'))
    return 0;
  return whole + (rest.find_first_of("123456789") == std::string_view::npos ? 0 : 1);
}

std::string_view takeCell(std::string_view& row)
{
  const std::size_t tab = row.find('\t');
  const std::string_view cell = row.substr(0, tab);
  row = tab == std::string_view::npos ? std::string_view() : row.substr(tab + 1);
  return cell;
}

/// The timecode as the list had it. Logs write drop frame with a semicolon; if the cell names the timecode's column,
/// the list had a colon.
std::string asWritten(const Cells& cells, Column column)
{
  std::string timecode(cells[column]);
  const std::size_t separator = timecode.rfind(';');
  if (separator != std::string::npos && cells[ColonsAsWritten].find(columnTitles[column]) != std::string_view::npos)
    timecode[separator] = ':';
  return timecode;
}

/// The name of a row's source. A log has no reel field, so no name of it is cut.
OwnName ownNameOf(const std::string& tape, const Clip& clip)
{
  if (!isAuxiliary(tape) && !tape.empty())
    return {tape};
  if (clip.sourceFile.empty() && !clip.cameraRoll.empty())
    return {clip.cameraRoll, NameEvidence::CameraRoll};
  return ownNameWithoutTape(clip.sourceFile, clip.sourceFile.empty() ? clip.clipName : std::string());
}

/// Gives the sound its own timecodes, from this one on. Returns why it cannot, or an empty text. An empty timecode
/// changes nothing.
std::string startSound(Clip& sound, const std::string& start)
{
  if (start.empty() || start == sound.sourceIn)
    return {};
  std::string end;
  std::string why = endOfSound(start, sound, end);
  if (why.empty()) {
    sound.sourceIn = start;
    sound.sourceOut = end;
  }
  return why;
}

/// Whether the line is the name of the section, without any other text.
bool isSection(std::string_view line, std::string_view section)
{
  return base::sameName(trim(line), section);
}

class Reader {
public:
  List read(std::string_view text);

private:
  enum class Section { None, Heading, Column, Titles, Data };

  void line(int number, std::string_view line);
  void heading(int number, std::string_view line);
  void setting(int number, std::string_view line, std::string_view key, std::string_view value);
  void noteUnread(std::string_view key, std::string_view value);
  void rate(int number, std::string_view line, std::string_view value);
  void titles(int number, std::string_view line);
  void noteUnread(std::string_view row);
  void row(int number, std::string_view line);
  Cells cellsOf(std::string_view line) const;
  bool hasColumn(Column column) const { return places_[column].has_value(); }
  /// Why a row with these cells cannot be read; empty if it can.
  std::string fault(const Cells& cells) const;
  void warnOfTimes(int number, std::string_view line, const Cells& cells);
  /// Why a row with missing cells at its end cannot be read; empty if the missing cells are not needed.
  std::string cutFault(const Cells& cells) const;

  Collector collector_{Format::Ale};
  Section section_ = Section::None;
  std::string tape_; ///< the tape of the heading, for rows without a tape
  int frames_ = 0;   ///< the heading's frames per second; 0 if it does not say
  Proof rate_;       ///< the heading's rate; line 0 if it does not say
  /// The columns that the reader uses: their positions from left to right, and the position of each.
  std::vector<std::pair<std::size_t, Column>> positions_;
  std::array<std::optional<std::size_t>, ColumnCount> places_;
  std::size_t titleCount_ = 0;
  /// The columns that the reader does not use, from left to right, and whether a row has a text there.
  struct UnreadColumn {
    std::size_t position = 0;
    std::string title;
    bool hasText = false;
  };
  std::vector<UnreadColumn> unread_;
  bool unknownRate_ = false; ///< whether a cell of the column of rates holds another text
};

List Reader::read(std::string_view text)
{
  Lines lines(text);
  for (std::string_view each; lines.next(each);)
    line(lines.number(), each);
  if (section_ != Section::Data)
    throw Error(section_ == Section::Titles ? "log file without a Data section"
                                            : "log file without a Column section and its titles");
  collector_.list().tally.lines = lines.number();
  for (UnreadColumn& column : unread_)
    if (column.hasText)
      collector_.list().unread.push_back(std::move(column.title));
  if (unknownRate_)
    collector_.list().unread.emplace_back(columnTitles[Fps]);
  return collector_.finish();
}

void Reader::line(int number, std::string_view line)
{
  Tally& tally = collector_.list().tally;
  if (trim(line).empty()) {
    ++tally.blank;
    return;
  }
  if (section_ == Section::Data)
    return row(number, line);
  ++tally.headers;
  switch (section_) {
  case Section::None:
    if (isSection(line, "Column")) {
      section_ = Section::Column;
      return;
    }
    section_ = Section::Heading;
    takeCell(line); // the word "Heading"; settings may follow it
    return heading(number, line);
  case Section::Heading:
    if (isSection(line, "Column"))
      section_ = Section::Column;
    else
      heading(number, line);
    return;
  case Section::Column:
    titles(number, line);
    section_ = Section::Titles;
    return;
  case Section::Titles:
    if (isSection(line, "Data"))
      section_ = Section::Data;
    return;
  case Section::Data:
    return;
  }
}

/// Key, tab, value. A line may hold one such pair, or all pairs of the heading.
void Reader::heading(int number, std::string_view line)
{
  const std::string_view whole = line;
  if (line.find('\t') == std::string_view::npos) { // some writers align the values with blanks
    const std::string_view key = takeFirst(line);
    return setting(number, whole, key, line);
  }
  while (!trim(line).empty()) {
    const std::string_view key = takeCell(line);
    setting(number, whole, trim(key), takeCell(line));
  }
}

void Reader::setting(int number, std::string_view line, std::string_view key, std::string_view value)
{
  if (base::sameName(key, "TAPE"))
    tape_ = clean(value);
  if (base::sameName(key, "FPS")) {
    frames_ = std::max(frames_, framesASecond(trim(value)));
    rate(number, line, trim(value));
  }
  for (const auto& [format, frames] : formatFrames) {
    if (base::sameName(key, "VIDEO_FORMAT") && base::sameName(trim(value), format))
      frames_ = std::max(frames_, frames);
  }
  noteUnread(key, trim(value));
  if (base::sameName(key, "FIELD_DELIM") && !base::sameName(trim(value), "TABS"))
    throw Error("log file with the field delimiter " + inQuotes(trim(value)) + " (only TABS is understood)");
}

void Reader::noteUnread(std::string_view key, std::string_view value)
{
  constexpr std::array<std::string_view, 3> read = {"TAPE", "FPS", "FIELD_DELIM"};
  const auto isKey = [key](std::string_view known) { return base::sameName(key, known); };
  const bool isWrittenSo = (isKey("VIDEO_FORMAT") && base::sameName(value, writtenVideoFormat)) ||
                           (isKey("AUDIO_FORMAT") && base::sameName(value, writtenAudioFormat));
  const bool isUnknownRate = isKey("FPS") && !rateOf(value);
  if (!value.empty() && !isWrittenSo && (isUnknownRate || std::none_of(read.begin(), read.end(), isKey)))
    collector_.list().unread.push_back(shortened(key, longestTitle) + " " + shortened(value, longestTitle));
}

void Reader::rate(int number, std::string_view line, std::string_view value)
{
  if (const std::optional<FrameRate> known = rateOf(value)) {
    rate_ = {rateName(*known), number, std::string(line)};
    collector_.list().headingRate = rate_.says;
  } else if (!value.empty()) {
    collector_.warn(number, line, "unknown frame rate " + inQuotes(value) + " (the rows are kept without it)");
  }
}

void Reader::titles(int number, std::string_view line)
{
  bool otherCase = false;
  std::string_view rest = trimRight(line);
  for (std::size_t position = 0; !rest.empty(); ++position) {
    const std::string_view title = trim(takeCell(rest));
    titleCount_ = position + 1;
    otherCase = otherCase || base::sameName(title, columnTitles[Name]);
    const auto found = std::find(columnTitles.begin(), columnTitles.end(), title);
    const auto column = static_cast<std::size_t>(found - columnTitles.begin());
    if (title.starts_with(alsoCalledTitle)) {
      positions_.emplace_back(position, AlsoCalled);
    } else if (column == ColumnCount || places_[column]) { // the first of two columns with one title counts
      unread_.push_back({position, shortened(title, longestTitle)});
    }
    if (column == ColumnCount || places_[column])
      continue;
    places_[column] = position;
    positions_.emplace_back(position, static_cast<Column>(column));
  }
  if (!hasColumn(Name))
    throw Error(otherCase ? "log file without a column 'Name' (the case of column titles counts)"
                          : "log file without a column 'Name'");
  std::vector<Column> untimed;
  std::copy_if(timeColumns.begin(), timeColumns.end(), std::back_inserter(untimed),
               [&](Column c) { return !hasColumn(c); });
  if (!untimed.empty())
    collector_.warn(number, line, lacking(untimed, "column ") + " (the rows are kept " + withoutThem(untimed) + ")");
  if (!hasColumn(TracksColumn))
    collector_.warn(number, line,
                    lacking({TracksColumn}, "column ") + " (the rows are kept as " + std::string(defaultTracks) + ")");
}

Cells Reader::cellsOf(std::string_view line) const
{
  Cells cells;
  cells.count = static_cast<std::size_t>(std::count(line.begin(), line.end(), '\t')) + 1;
  std::size_t position = 0;
  for (const auto& [at, column] : positions_) {
    for (; position < at; ++position)
      takeCell(line);
    const std::string_view cell = trim(takeCell(line));
    if (column == AlsoCalled)
      cells.alsoCalled.push_back(cell);
    else
      cells.texts[column] = cell;
    ++position;
  }
  return cells;
}

void Reader::noteUnread(std::string_view row)
{
  std::size_t position = 0;
  for (UnreadColumn& column : unread_) {
    for (; position < column.position; ++position)
      takeCell(row);
    column.hasText = !trim(takeCell(row)).empty() || column.hasText;
    ++position;
  }
}

std::string Reader::cutFault(const Cells& cells) const
{
  const auto isCut = [&](Column column) { return hasColumn(column) && *places_[column] >= cells.count; };
  std::vector<Column> missing;
  for (Column column : {Name, Start, End}) {
    if (isCut(column))
      missing.push_back(column);
  }
  if (tape_.empty() && cells[SourceFile].empty() && cells[SourceFilePath].empty()) {
    for (Column column : {Tape, SourceFile, SourceFilePath}) {
      if (hasColumn(column)) { // a log with a column of tapes names its sources by their tape
        if (isCut(column))
          missing.push_back(column);
        break;
      }
    }
  }
  if (missing.empty())
    return {};
  return "row has " + std::to_string(cells.count) + " of " + std::to_string(titleCount_) + " cells (" +
         lacking(missing) + ")";
}

std::string Reader::fault(const Cells& cells) const
{
  if (std::string fault = cutFault(cells); !fault.empty())
    return fault;
  const bool numbered = isFrameNumber(cells[Start]) && isFrameNumber(cells[End]);
  for (Column column : timecodeColumns) {
    if (cells[column].empty() || (numbered && (column == Start || column == End)))
      continue;
    if (const std::string fault = timecodeFault(cells[column]); !fault.empty())
      return std::string(columnTitles[column]) + " " + inQuotes(cells[column]) + " is not a timecode (" + fault + ")";
  }
  if (!cells[TracksColumn].empty() && !parseLogTracks(cells[TracksColumn]))
    return "unknown tracks " + inQuotes(cells[TracksColumn]);
  return {};
}

void Reader::row(int number, std::string_view line)
{
  const Cells cells = cellsOf(line);
  if (std::string fault = this->fault(cells); !fault.empty())
    return collector_.reject(number, line, std::move(fault));

  noteUnread(line);
  Clip clip;
  clip.line = number;
  clip.clipName = clean(cells[Name]);
  clip.sourceFile = clean(cells[cells[SourceFile].empty() ? SourceFilePath : SourceFile]);
  clip.sourceIn = asWritten(cells, Start);
  clip.sourceOut = asWritten(cells, End);
  clip.tracks = cells[TracksColumn].empty() ? std::string(defaultTracks) : clean(cells[TracksColumn]);
  const Tracks tracks = parseLogTracks(clip.tracks).value_or(Tracks());
  clip.videoChannels = tracks.video;
  clip.audioChannels = tracks.audio;
  if (const std::string_view written = cells[TracksAsWritten];
      !written.empty() && written.size() <= nameBytes && firstControl(written).empty())
    clip.tracks = clean(written);
  clip.recordIn = asWritten(cells, CutRecordIn);
  clip.recordOut = asWritten(cells, CutRecordOut);
  clip.dropFrame =
      std::any_of(timecodeColumns.begin(), timecodeColumns.end(), [&](Column c) { return isDropFrame(cells[c]); });
  // A column of rates is about the tapes, the heading about the project: also of tapes of a format that counts more.
  if (!hasColumn(Fps)) {
    clip.frameRate = rate_.line != 0 && framesASecond(rate_.says) == frames_ ? rate_.says : std::string();
  } else if (const std::optional<FrameRate> own = rateOf(cells[Fps])) {
    clip.frameRate = rateName(*own);
  } else if (!cells[Fps].empty()) {
    collector_.warn(number, line, "unknown frame rate " + inQuotes(cells[Fps]) + " (the row is kept without it)");
    unknownRate_ = true;
  }
  for (const std::string_view name : cells.alsoCalled)
    clip.aliases.push_back(clean(name));
  for (Column column : aliasColumns)
    clip.aliases.push_back(clean(cells[column]));

  const std::string tape = cells[Tape].empty() ? tape_ : clean(cells[Tape]);
  clip.event.reelText = tape;
  clip.cameraRoll = clean(cells[Camroll]);
  const OwnName name = ownNameOf(tape, clip);
  clip.evidence = name.evidence;
  clip.reel = name.name;
  if (!isClipOf(clip.cameraRoll, clip.reel)) {
    clip.aliases.push_back(clip.cameraRoll);
    clip.cameraRoll.clear();
  }
  std::optional<Clip> sound = soundOf(clip, clean(cells[Soundroll]));
  if (sound)
    if (const std::string why = startSound(*sound, asWritten(cells, SoundTc)); !why.empty())
      collector_.warn(number, line,
                      "Sound TC " + inQuotes(cells[SoundTc]) + ": " + why +
                          " (the sound has the timecodes of the row)");
  const bool hasNoSource = tape.empty() && clip.sourceFile.empty() && name.evidence != NameEvidence::CameraRoll;
  if (sound && hasNoSource) { // the sound is all that the row has
    sound->event.part = 1;
    sound->soundOf.clear();
    collector_.warn(number, line, "no tape, no source file and no camera roll (only its sound roll is kept)");
    clip = *std::exchange(sound, std::nullopt);
  } else if (hasNoSource) {
    clip.reel = clip.clipName;
    return collector_.special(std::move(clip), noSourceReason);
  }
  if (clip.reel.empty()) {
    clip.reel = isAuxiliary(tape) ? tape : clip.sourceFile;
    return collector_.special(std::move(clip), "AX without a clip name or source file");
  }
  if (std::string fault = sound ? Collector::fault(*sound) : std::string(); !fault.empty())
    return collector_.reject(number, line, std::move(fault));
  const std::string rate = clip.frameRate;
  if (!rate.empty() && rate == rate_.says)
    collector_.rate(rate, rate_.line, rate_.text);
  if (!collector_.clip(std::move(clip), line))
    return;
  if (sound) {
    sound->soundOf = collector_.spelling(sound->soundOf);
    collector_.clip(*std::move(sound), line);
  }
  warnOfTimes(number, line, cells);
}

void Reader::warnOfTimes(int number, std::string_view line, const Cells& cells)
{
  const std::optional<FrameRate> own = rateOf(cells[Fps]);
  const bool rowHasMore = own && own->frames > frames_;
  const int frames = rowHasMore ? own->frames : frames_;
  std::vector<Column> empty;
  for (Column column : timeColumns) {
    if (hasColumn(column) && cells[column].empty())
      empty.push_back(column);
    else if (frames > 0 && !cells[column].empty() && !isFrameNumber(cells[column]) && framesOf(cells[column]) >= frames)
      collector_.warn(number, line,
                      std::string(columnTitles[column]) + " " + std::string(cells[column]) + " counts more than the " +
                          std::to_string(frames) + " frames per second of the " + (rowHasMore ? "row" : "heading") +
                          " (kept as it is)");
  }
  if (!empty.empty())
    collector_.warn(number, line, lacking(empty) + " (kept " + withoutThem(empty) + ")");
}

} // namespace

bool startsLog(std::string_view line)
{
  const std::string_view first = trim(takeCell(line));
  return base::sameName(first, "Heading") || base::sameName(first, "Column");
}

bool isClipOf(std::string_view roll, std::string_view name)
{
  return nameForm(name).starts_with(nameForm(roll));
}

std::optional<Clip> soundOf(const Clip& picture, const std::string& roll)
{
  if (roll.empty() || isAuxiliary(roll) || !specialReason(roll).empty() || base::sameName(roll, picture.reel))
    return {};
  Clip sound;
  sound.line = picture.line;
  sound.reel = roll;
  sound.evidence = NameEvidence::SoundRoll;
  sound.soundOf = picture.reel;
  sound.event.reelText = roll;
  sound.event.part = 2;
  sound.clipName = picture.clipName;
  sound.sourceIn = picture.sourceIn;
  sound.sourceOut = picture.sourceOut;
  sound.recordIn = picture.recordIn;
  sound.recordOut = picture.recordOut;
  sound.frameRate = picture.frameRate;
  sound.dropFrame = picture.dropFrame;
  sound.tracks = logTracks(0, std::max(picture.audioChannels, 1));
  sound.audioChannels = std::max(picture.audioChannels, 1);
  return sound;
}

std::string endOfSound(const std::string& start, const Clip& clip, std::string& end)
{
  const std::optional<FrameRate> rate = rateOf(clip.frameRate);
  if (!rate)
    return "the log says no frame rate";
  const Counting counting = {*rate, clip.dropFrame};
  std::int64_t in = 0, out = 0, ownIn = 0;
  for (const auto& [label, frame] :
       {std::pair(&start, &ownIn), std::pair(&clip.sourceIn, &in), std::pair(&clip.sourceOut, &out)})
    if (std::string why = frameOf(*label, counting, *frame); !why.empty())
      return why;
  std::string why = labelOf(ownIn + out - in, counting, end);
  if (!isDropFrame(start))
    std::replace(end.begin(), end.end(), ';', ':');
  return why;
}

List readAle(std::string_view text)
{
  return Reader().read(text);
}

} // namespace reeldb::lists
