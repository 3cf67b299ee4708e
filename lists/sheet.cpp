// SPDX-License-Identifier: Apache-2.0
#include "lists/sheet.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/ascii.h"
#include "lists/ale.h"
#include "lists/clip_row.h"
#include "lists/collector.h"
#include "lists/reel_rows.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// What a column holds. All other columns are fields of reels, or nobody knows them.
enum class Column {
  Reel,
  Id, ///< the reel, if the table has fields of reels as well: other tables have ids, too
  Clip,
  Tracks,
  SourceIn,
  SourceOut,
  RecordIn,
  RecordOut,
  SourceFile,
  SoundRoll,
  CameraRoll,
  FrameRate,
  DropFrame,
  VideoChannels,
  AudioChannels,
  Aliases,
  Shots, ///< the number of shots of a reel, which follows from the shots
  Field,
  Nothing ///< a second column for the same, or one without a title
};

/// Titles without case, with blanks for underscores and hyphens.
constexpr std::array<std::pair<std::string_view, Column>, 48> knownTitles = {{
    {"reel", Column::Reel},
    {"tape", Column::Reel},
    {"tape name", Column::Reel},
    {"reel name", Column::Reel},
    {"tapename", Column::Reel},
    {"reelname", Column::Reel},
    {"tapeid", Column::Reel},
    {"tape id", Column::Reel},
    {"reel id", Column::Reel},
    {"roll", Column::Reel},
    {"id", Column::Id},
    {"clip", Column::Clip},
    {"name", Column::Clip},
    {"clip name", Column::Clip},
    {"tracks", Column::Tracks},
    {"in", Column::SourceIn},
    {"source in", Column::SourceIn},
    {"start", Column::SourceIn},
    {"out", Column::SourceOut},
    {"source out", Column::SourceOut},
    {"end", Column::SourceOut},
    {"record in", Column::RecordIn},
    {"record out", Column::RecordOut},
    {"source file", Column::SourceFile},
    {"sound roll", Column::SoundRoll},
    {"soundroll", Column::SoundRoll},
    {"camera roll", Column::CameraRoll},
    {"camroll", Column::CameraRoll},
    {"frame rate", Column::FrameRate},
    {"fps", Column::FrameRate},
    {"drop frame", Column::DropFrame},
    {"video channels", Column::VideoChannels},
    {"audio channels", Column::AudioChannels},
    {"aliases", Column::Aliases},
    {"alias", Column::Aliases},
    {"also called", Column::Aliases},
    {"other names", Column::Aliases},
    {"old names", Column::Aliases},
    {"shots", Column::Shots},
    {"type", Column::Field},
    {"format", Column::Field},
    {"bin", Column::Field},
    {"shelf", Column::Field},
    {"location", Column::Field},
    {"available", Column::Field},
    {"inhibit", Column::Field},
    {"label mapping", Column::Field},
    {"last device", Column::Field},
}};

/// Titles of fields that have another name elsewhere.
constexpr std::array<std::pair<std::string_view, const char*>, 5> fieldNames = {{{"format", "type"},
                                                                                 {"shelf", "bin"},
                                                                                 {"location", "bin"},
                                                                                 {"label mapping", "label-map"},
                                                                                 {"last device", "last-device"}}};

/// A row of titles is looked for in that number of rows, and in no more bytes than that.
constexpr std::size_t mostRowsAbove = 20;
constexpr std::size_t mostBytesAbove = std::size_t{1} << 16U;

constexpr std::array delimiters = {',', ';', '\t'};

/// A cell that removes a value.
constexpr std::string_view clearing = "-";

std::string normalized(std::string_view title)
{
  std::string text = base::fold(clean(title));
  for (char& c : text)
    if (c == '_' || c == '-')
      c = ' ';
  return text;
}

/// One record of the table.
struct Record {
  int line = 0; ///< where it begins, counted from 1
  std::vector<std::string> cells;
  int lines = 1;
  std::string_view text;
  bool isOpen = false; ///< whether a quote is not closed
};

/// Reads records according to RFC 4180, with any line ends.
class Records {
public:
  Records(std::string_view text, char delimiter) : text_(text), delimiter_(delimiter) {}

  bool next(Record& record)
  {
    if (at_ >= text_.size())
      return false;
    record.line = line_;
    record.isOpen = false;
    record.cells.clear();
    const std::size_t begin = at_;
    do
      record.cells.push_back(cell(record.isOpen));
    while (at_ < text_.size() && text_[at_++] == delimiter_);
    const std::size_t end = at_;
    if (end > begin && text_[end - 1] == '\r' && at_ < text_.size() && text_[at_] == '\n')
      ++at_;
    record.lines = line_ - record.line + 1;
    line_ += end > begin && (text_[end - 1] == '\r' || text_[end - 1] == '\n') ? 1 : 0;
    record.text = text_.substr(begin, end - begin);
    while (record.text.ends_with('\r') || record.text.ends_with('\n'))
      record.text.remove_suffix(1);
    return true;
  }

private:
  /// The text up to the delimiter or the end of the record.
  std::string cell(bool& isOpen)
  {
    std::string result;
    const std::size_t ends = nextOf(at_);
    std::size_t quote = at_;
    while (quote < ends && text_[quote] == ' ')
      ++quote;
    if (quote < ends && text_[quote] == '"') {
      at_ = quote + 1;
      while (true) {
        const std::size_t close = text_.find('"', at_);
        isOpen = close == std::string_view::npos;
        add(result, text_.substr(at_, close - at_));
        at_ = isOpen ? text_.size() : close + 1;
        if (at_ >= text_.size() || text_[at_] != '"')
          break;
        result += text_[at_++];
      }
    }
    const std::size_t end = nextOf(at_);
    result += text_.substr(at_, end - at_);
    at_ = end;
    return result;
  }

  /// Adds quoted text and counts its lines.
  void add(std::string& result, std::string_view text)
  {
    for (std::size_t at = lineEnd(text); at < text.size(); at = lineEnd(text, at + 1))
      line_ += text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 0 : 1;
    result += text;
  }

  std::size_t nextOf(std::size_t from) const
  {
    while (from < text_.size() && text_[from] != delimiter_ && text_[from] != '\n' && text_[from] != '\r')
      ++from;
    return from;
  }

  std::string_view text_;
  char delimiter_;
  std::size_t at_ = 0;
  int line_ = 1;
};

/// What stands above a column.
struct Title {
  Column column = Column::Field;
  std::string text;  ///< as written
  std::string field; ///< for a field, its name
  bool isKnown = false;
};

Title titleOf(std::string_view cell, const TitleMap& map)
{
  Title title;
  title.text = clean(cell);
  std::string name = normalized(cell);
  title.field = title.text;
  for (const auto& [from, to] : map)
    if (normalized(from) == name) {
      name = normalized(to);
      title.field = to;
      title.isKnown = true;
      break;
    }
  if (name.empty()) {
    title.column = Column::Nothing;
    return title;
  }
  for (const auto& [known, column] : knownTitles)
    if (known == name) {
      title.column = column;
      title.isKnown = true;
      title.field = name;
    }
  for (const auto& [known, field] : fieldNames)
    if (known == name)
      title.field = field;
  constexpr std::string_view userField = "user field ";
  if (name.size() == userField.size() + 1 && name.starts_with(userField) && isDigit(name.back())) {
    title.isKnown = true;
    title.field = std::string("user-field.") + name.back();
  }
  return title;
}

/// The row of titles, and how its table is written.
struct Header {
  char delimiter = ',';
  int row = -1; ///< counted from 0
  std::vector<Title> titles;
  std::size_t known = 0;
};

bool has(const std::vector<Title>& titles, Column column)
{
  return std::any_of(titles.begin(), titles.end(), [column](const Title& title) { return title.column == column; });
}

bool areOfClips(const std::vector<Title>& titles)
{
  return has(titles, Column::SourceIn) || has(titles, Column::SourceOut);
}

/// Whether the titles say what a row is about: a reel, or a clip with its source.
bool nameSources(const std::vector<Title>& titles)
{
  const bool hasFields = std::any_of(titles.begin(), titles.end(),
                                     [](const Title& title) { return title.column == Column::Field && title.isKnown; });
  return has(titles, Column::Reel) || (has(titles, Column::Id) && hasFields) ||
         (areOfClips(titles) && (has(titles, Column::SourceFile) || has(titles, Column::Clip)));
}

/// The titles that one of the first rows has, by the delimiter that gives the most known ones.
Header headerOf(std::string_view text, const TitleMap& map)
{
  Header best;
  for (const char delimiter : delimiters) {
    Records records(text.substr(0, mostBytesAbove), delimiter);
    Record record;
    bool isFirst = true;
    for (int row = 0; row < static_cast<int>(mostRowsAbove) && records.next(record); ++row) {
      const std::string_view line = trim(record.text);
      if (line.empty())
        continue;
      if (base::startsWithName(line, "TITLE:") || base::startsWithName(line, "FCM:"))
        return {}; // a cut list
      if (startsLog(line))
        return {}; // a damaged log
      Header header{delimiter, row, {}, 0};
      for (const std::string& cell : record.cells)
        header.titles.push_back(titleOf(cell, map));
      for (const Title& title : header.titles)
        header.known += title.isKnown ? 1 : 0;
      // A single title stands above everything else: below, it may be a word of a text.
      if (header.known > best.known && nameSources(header.titles) && (header.known > 1 || isFirst))
        best = std::move(header);
      isFirst = false;
    }
  }
  return best;
}

/// The text of a cell without the apostrophe that keeps a spreadsheet from running it.
std::string_view unguarded(std::string_view cell)
{
  const bool isGuarded =
      cell.size() > 1 && cell.front() == '\'' && std::string_view("=+-@\t\r'").find(cell[1]) != std::string_view::npos;
  return isGuarded ? cell.substr(1) : cell;
}

bool isYes(std::string_view text)
{
  const std::string word = base::fold(text);
  return word == "yes" || word == "true" || word == "1" || word == "df";
}

/// The lines of a cell with several names.
std::vector<std::string> namesIn(std::string_view cell)
{
  std::vector<std::string> names;
  Lines lines(cell);
  for (std::string_view line; lines.next(line);)
    if (std::string name = clean(line); !name.empty())
      names.push_back(std::move(name));
  return names;
}

class Reader {
public:
  Reader(Header header) : header_(std::move(header)), ofClips_(areOfClips(header_.titles)) { prepare(); }

  List read(std::string_view text)
  {
    Records records(text, header_.delimiter);
    Record record;
    Tally& tally = collector_.list().tally;
    for (int row = 0; records.next(record); ++row) {
      tally.statements += record.lines - 1;
      if (std::all_of(record.cells.begin(), record.cells.end(),
                      [](const std::string& cell) { return trim(cell).empty(); }))
        ++tally.blank;
      else if (row <= header_.row)
        ++tally.headers;
      else if (record.isOpen)
        collector_.reject(record.line, record.text.substr(0, shownBytes),
                          "a quote is not closed (all that follows is in this cell)");
      else
        take(record);
    }
    Lines lines(text);
    for (std::string_view line; lines.next(line);) {
    }
    tally.lines = lines.number();
    List list = collector_.finish();
    for (std::size_t i = 0; i < header_.titles.size(); ++i)
      if (header_.titles[i].column == Column::Nothing && hasText_[i])
        list.unread.push_back(shownTitle(i));
    return list;
  }

private:
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  std::string shownTitle(std::size_t place) const
  {
    const std::string& title = header_.titles[place].text;
    return title.empty() ? "column " + std::to_string(place + 1) : shortened(title, 100);
  }

  /// Decides what each column is here, and which one counts of several for the same.
  void prepare()
  {
    std::vector<Title>& titles = header_.titles;
    hasText_.resize(titles.size());
    fields_.resize(titles.size(), none);
    const bool hasReel = has(titles, Column::Reel);
    for (std::size_t i = 0; i < titles.size(); ++i) {
      Title& title = titles[i];
      if (title.column == Column::Id)
        title.column = hasReel ? Column::Nothing : Column::Reel;
      if (!ofClips_ && isOfClipsAlone(title.column))
        title.column = Column::Nothing;
      const auto isSame = [&](const Title& other) {
        return other.column == title.column &&
               (title.column != Column::Field || base::sameName(other.field, title.field));
      };
      const bool mayRepeat =
          title.column == Column::Nothing || title.column == Column::Aliases || title.column == Column::Shots;
      if (!mayRepeat && std::any_of(titles.begin(), titles.begin() + static_cast<std::ptrdiff_t>(i), isSame))
        title.column = Column::Nothing;
      if (title.column == Column::Field)
        fields_[i] = reels_.field(title.field);
    }
  }

  /// Whether only a clip has it, and no reel. Channels of reels follow from their types and are ignored.
  static bool isOfClipsAlone(Column column)
  {
    constexpr std::array columns = {Column::Clip,       Column::Tracks,     Column::RecordIn,
                                    Column::RecordOut,  Column::SourceFile, Column::SoundRoll,
                                    Column::CameraRoll, Column::FrameRate,  Column::DropFrame};
    return std::find(columns.begin(), columns.end(), column) != columns.end();
  }

  void take(const Record& record)
  {
    ClipRow clip;
    ReelRow reel;
    clip.line = reel.line = record.line;
    for (std::size_t i = 0; i < std::min(record.cells.size(), header_.titles.size()); ++i) {
      const std::string_view cell = trim(record.cells[i]);
      if (cell.empty())
        continue;
      hasText_[i] = true;
      takeCell(i, record.cells[i], cell, clip, reel);
    }
    for (std::size_t i = header_.titles.size(); i < record.cells.size(); ++i)
      if (!trim(record.cells[i]).empty())
        return collector_.reject(record.line, record.text,
                                 "row has " + std::to_string(record.cells.size()) + " cells, more than the " +
                                     std::to_string(header_.titles.size()) + " titles");
    const bool isClip = ofClips_ && !(clip.sourceIn.empty() && clip.sourceOut.empty() && clip.clipName.empty() &&
                                      clip.sourceFile.empty());
    reel.text = shortened(record.text, shownBytes);
    if (isClip) {
      clip.aliases = std::move(reel.aliases);
      reel.aliases.clear();
      reel.clearsAliases = false;
      reel.reel = takeRow(collector_, std::move(clip), record.text);
      if (reel.reel.empty() || reel.values.empty())
        return;
    } else {
      reel.reel = clip.reel;
      if (reel.reel.empty())
        return collector_.reject(record.line, record.text, "no reel");
    }
    const bool isTaken = reels_.add(std::move(reel));
    collector_.list().tally.statements += isTaken && !isClip ? 1 : 0;
  }

  void takeCell(std::size_t place, const std::string& raw, std::string_view cell, ClipRow& clip, ReelRow& reel)
  {
    const bool clears = cell == clearing;
    const std::string text = clears ? std::string() : std::string(unguarded(cell));
    switch (header_.titles[place].column) {
    case Column::Reel:
      clip.reel = clean(text);
      return;
    case Column::Clip:
      clip.clipName = text;
      return;
    case Column::Tracks:
      clip.tracks = text;
      return;
    case Column::SourceIn:
      clip.sourceIn = text;
      return;
    case Column::SourceOut:
      clip.sourceOut = text;
      return;
    case Column::RecordIn:
      clip.recordIn = text;
      return;
    case Column::RecordOut:
      clip.recordOut = text;
      return;
    case Column::SourceFile:
      clip.sourceFile = text;
      return;
    case Column::SoundRoll:
      clip.soundRoll = text;
      return;
    case Column::CameraRoll:
      clip.cameraRoll = text;
      return;
    case Column::FrameRate: // spreadsheets of many countries write a decimal comma
      clip.frameRate = text;
      std::replace(clip.frameRate.begin(), clip.frameRate.end(), ',', '.');
      return;
    case Column::DropFrame:
      clip.dropFrame = isYes(text);
      return;
    case Column::VideoChannels:
      clip.videoChannels = numberOf(text);
      return;
    case Column::AudioChannels:
      clip.audioChannels = numberOf(text);
      return;
    case Column::Aliases:
      reel.clearsAliases = reel.clearsAliases || clears;
      for (std::string& name : namesIn(text))
        reel.aliases.push_back(std::move(name));
      return;
    case Column::Field: // outer blanks may be part of a value that this program wrote
      reel.values.push_back({fields_[place], clears ? std::string() : std::string(unguarded(raw))});
      return;
    case Column::Id:
    case Column::Shots:
    case Column::Nothing:
      return;
    }
  }

  static std::optional<int> numberOf(std::string_view text)
  {
    constexpr std::size_t mostDigits = 5;
    int number = 0;
    for (const char c : text)
      number = isDigit(c) ? number * 10 + (c - '0') : number;
    const bool isNumber = !text.empty() && text.size() <= mostDigits && std::all_of(text.begin(), text.end(), isDigit);
    return isNumber ? std::optional(number) : std::nullopt;
  }

  Collector collector_{Format::Sheet};
  ReelRows reels_{collector_};
  Header header_;
  bool ofClips_;
  std::vector<bool> hasText_;       ///< of each column
  std::vector<std::size_t> fields_; ///< of each column: its place in List::fields
};

} // namespace

bool isSheet(std::string_view text, const TitleMap& titles)
{
  return headerOf(text, titles).row >= 0;
}

bool isSheetTitle(std::string_view title)
{
  return titleOf(title, {}).isKnown;
}

List readSheet(std::string_view text, const TitleMap& titles)
{
  Header header = headerOf(text, titles);
  if (header.row < 0)
    throw Error("table without a column for the reel");
  return Reader(std::move(header)).read(text);
}

} // namespace reeldb::lists
