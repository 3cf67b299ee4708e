// SPDX-License-Identifier: Apache-2.0
#include "lists/ale.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "lists/collector.h"
#include "lists/names.h"
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
  kColumns,
};

/// The titles as written; their case counts.
constexpr std::array<std::string_view, kColumns> kTitles = {
    "Name",   "Tape",   "Tracks",  "Start",   "End",       "Source File", "Source File Path",
    "TapeID", "Reel #", "Camroll", "Labroll", "Soundroll",
};

/// Columns that name the source of a row in other words.
constexpr std::array kAliases = {Tape, TapeId, ReelNumber, Camroll, Labroll, Soundroll, SourceFile};

/// What a source has when the log does not say: a picture.
constexpr std::string_view kDefaultTracks = "V";

using Cells = std::array<std::string_view, kColumns>;

std::string_view takeCell(std::string_view& row)
{
  const std::size_t tab = row.find('\t');
  const std::string_view cell = row.substr(0, tab);
  row = tab == std::string_view::npos ? std::string_view() : row.substr(tab + 1);
  return cell;
}

/// A line that names a section, and nothing else.
bool isSection(std::string_view line, std::string_view section)
{
  return sameName(trim(line), section);
}

class Reader {
public:
  List read(std::string_view text);

private:
  enum class Section { None, Heading, Column, Titles, Data };

  void line(int number, std::string_view line);
  void heading(std::string_view line);
  void setting(std::string_view key, std::string_view value);
  void titles(std::string_view line);
  void row(int number, std::string_view line);
  /// Why a cell is no timecode; empty when it is one, or is empty.
  static std::string timecodeCellFault(Column column, std::string_view cell);

  Collector collector_{Format::Ale};
  Section section_ = Section::None;
  std::string tape_; ///< of the heading, for rows without one
  /// Where the columns of interest stand, from left to right.
  std::vector<std::pair<std::size_t, Column>> positions_;
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
    takeCell(line); // the word Heading; settings may follow it
    return heading(line);
  case Section::Heading:
    if (isSection(line, "Column"))
      section_ = Section::Column;
    else
      heading(line);
    return;
  case Section::Column:
    titles(line);
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

/// Key, tab, value; a heading may hold one such pair in a line, or all of them.
void Reader::heading(std::string_view line)
{
  if (line.find('\t') == std::string_view::npos) { // some writers align the values with blanks
    const std::string_view key = takeFirst(line);
    return setting(key, line);
  }
  while (!trim(line).empty()) {
    const std::string_view key = takeCell(line);
    setting(trim(key), takeCell(line));
  }
}

void Reader::setting(std::string_view key, std::string_view value)
{
  if (sameName(key, "TAPE"))
    tape_ = clean(value);
  if (sameName(key, "FIELD_DELIM") && !sameName(trim(value), "TABS"))
    throw Error("log file with the field delimiter " + inQuotes(trim(value)) + " (only TABS is understood)");
}

void Reader::titles(std::string_view line)
{
  std::array<bool, kColumns> known = {};
  bool otherCase = false;
  for (std::size_t position = 0; !line.empty(); ++position) {
    const std::string_view title = trim(takeCell(line));
    otherCase = otherCase || sameName(title, kTitles[Name]);
    const auto found = std::find(kTitles.begin(), kTitles.end(), title);
    const auto column = static_cast<std::size_t>(found - kTitles.begin());
    if (column == kColumns || known[column]) // the first of two columns with one title counts
      continue;
    known[column] = true;
    positions_.emplace_back(position, static_cast<Column>(column));
  }
  if (!known[Name])
    throw Error(otherCase ? "log file without a column 'Name' (the case of column titles counts)"
                          : "log file without a column 'Name'");
}

std::string Reader::timecodeCellFault(Column column, std::string_view cell)
{
  if (cell.empty())
    return {};
  const std::string fault = timecodeFault(cell);
  return fault.empty() ? fault
                       : std::string(kTitles[column]) + " " + inQuotes(cell) + " is no timecode (" + fault + ")";
}

void Reader::row(int number, std::string_view line)
{
  Cells cells;
  std::string_view rest = line;
  std::size_t position = 0;
  for (const auto& [at, column] : positions_) {
    for (; position < at; ++position)
      takeCell(rest);
    cells[column] = trim(takeCell(rest));
    ++position;
  }
  for (Column column : {Start, End}) {
    std::string fault = timecodeCellFault(column, cells[column]);
    if (!fault.empty())
      return collector_.reject(number, line, std::move(fault));
  }

  Clip clip;
  clip.line = number;
  clip.clipName = clean(cells[Name]);
  clip.sourceFile = clean(cells[cells[SourceFile].empty() ? SourceFilePath : SourceFile]);
  clip.sourceIn = cells[Start];
  clip.sourceOut = cells[End];
  clip.tracks = cells[TracksColumn].empty() ? std::string(kDefaultTracks) : clean(cells[TracksColumn]);
  const Tracks tracks = parseTracks(clip.tracks, Digits::Number).value_or(Tracks());
  clip.videoChannels = tracks.video;
  clip.audioChannels = tracks.audio;
  for (Column column : kAliases)
    clip.aliases.push_back(clean(cells[column]));

  const std::string tape = cells[Tape].empty() ? tape_ : clean(cells[Tape]);
  clip.reel = !tape.empty() && !isAuxiliary(tape) ? tape : clip.sourceFile;
  if (clip.reel.empty() && isAuxiliary(tape))
    clip.reel = clip.clipName;
  if (isAuxiliary(tape) && (clip.reel.empty() || isAuxiliary(clip.reel)))
    return collector_.special(tape, "AX without a clip name or source file", number);
  if (clip.reel.empty())
    return collector_.special(clip.clipName, "no tape and no source file", number);
  collector_.clip(std::move(clip), line);
}

} // namespace

bool startsLog(std::string_view line)
{
  const std::string_view first = trim(takeCell(line));
  return sameName(first, "Heading") || sameName(first, "Column");
}

List readAle(std::string_view text)
{
  return Reader().read(text);
}

} // namespace reeldb::lists
