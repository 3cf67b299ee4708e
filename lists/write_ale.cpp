// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <functional>
#include <string_view>
#include <tuple>
#include <utility>

#include "base/ascii.h"
#include "lists/ale.h"
#include "lists/names.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "lists/tracks.h"
#include "lists/writable.h"

namespace reeldb::lists {
namespace {

/// The limits of logs by their published rules. Real logs exceed both.
constexpr std::size_t longestClipName = 32;
constexpr std::size_t mostColumns = 64;

bool isTracksCell(const Clip& clip)
{
  const auto tracks = parseLogTracks(clip.tracks);
  return tracks && tracks->video == clip.videoChannels && tracks->audio == clip.audioChannels;
}

std::string tracksOf(const Clip& clip)
{
  return logTracks(clip.videoChannels, clip.audioChannels);
}

/// Whether the source file is one of the reel's names. The reader takes the column "Source File" as such a name.
bool namesTheReel(const Clip& clip)
{
  return base::sameName(clip.sourceFile, clip.reel) ||
         std::any_of(clip.aliases.begin(), clip.aliases.end(),
                     [&](const std::string& alias) { return base::sameName(alias, clip.sourceFile); });
}

/// The rate that every clip has; empty if they differ or one has none.
std::string commonRate(const std::vector<Clip>& clips)
{
  const std::string rate = clips.empty() ? std::string() : clips.front().frameRate;
  const bool common = std::all_of(clips.begin(), clips.end(), [&](const Clip& clip) { return clip.frameRate == rate; });
  return common ? rate : std::string();
}

/// Where the separator of drop frame stands.
constexpr std::size_t lastSeparator = 8;

/// Whether the timecode is drop frame but has a colon, as in cut lists that say so by a statement.
bool lacksSemicolon(const Clip& clip, const std::string& timecode)
{
  return clip.dropFrame && timecode.size() > lastSeparator && timecode[lastSeparator] == ':' && !isDropFrame(timecode);
}

/// The timecode as a log has it.
std::string inLog(const Clip& clip, std::string timecode)
{
  if (lacksSemicolon(clip, timecode))
    timecode[lastSeparator] = ';';
  return timecode;
}

/// The tape of the row, or what stands in its place if the clip has no source; empty if the row had no tape.
std::string tapeOf(const Clip& clip)
{
  if (clip.special.empty())
    return clip.reel;
  if (clip.event.reelText.empty())
    return {};
  return specialReason(clip.reel).empty() ? "AX" : clip.reel;
}

/// Whether the sound is as long as the picture, on timecodes of its own.
bool hasOwnTimes(const Clip& sound, const Clip& picture)
{
  std::string end;
  return endOfSound(sound.sourceIn, picture, end).empty() && end == sound.sourceOut;
}

/// Whether the clip is the sound of the one before it, as the sound roll of its row says.
bool isSoundOf(const Clip& sound, const Clip& picture)
{
  const std::string& name = picture.ownName.empty() ? picture.reel : picture.ownName;
  return !sound.soundOf.empty() && picture.soundOf.empty() && picture.special.empty() &&
         base::sameName(sound.soundOf, name) && !base::sameName(sound.reel, picture.reel) &&
         sound.tracks == logTracks(0, std::max(picture.audioChannels, 1)) && sound.aliases.empty() &&
         sound.sourceFile.empty() && sound.frameRate == picture.frameRate && sound.dropFrame == picture.dropFrame &&
         std::tie(sound.clipName, sound.recordIn, sound.recordOut) ==
             std::tie(picture.clipName, picture.recordIn, picture.recordOut) &&
         (std::tie(sound.sourceIn, sound.sourceOut) == std::tie(picture.sourceIn, picture.sourceOut) ||
          hasOwnTimes(sound, picture));
}

/// A clip that is written as a row, with the roll of its sound.
struct Row : Clip {
  std::string soundRoll;
  std::string soundIn; ///< empty if the sound has the timecodes of the picture
};

void addSound(Row& row, const Clip& sound)
{
  row.soundRoll = sound.reel;
  if (sound.sourceIn != row.sourceIn)
    row.soundIn = sound.sourceIn;
}

std::vector<Row> rowsOf(const std::vector<Clip>& clips)
{
  std::vector<Row> rows;
  for (const Clip& clip : clips)
    if (!rows.empty() && rows.back().soundRoll.empty() && isSoundOf(clip, rows.back()))
      addSound(rows.back(), clip);
    else
      rows.push_back({clip, {}, {}});
  return rows;
}

/// The columns of the timecodes that inLog() changes.
std::string colonsOf(const Row& row)
{
  std::string columns;
  for (const auto& [title, timecode] :
       {std::pair("Start", &row.sourceIn), std::pair("End", &row.sourceOut), std::pair("Cut Record In", &row.recordIn),
        std::pair("Cut Record Out", &row.recordOut), std::pair("Sound TC", &row.soundIn)})
    if (lacksSemicolon(row, *timecode))
      columns += (columns.empty() ? "" : ", ") + std::string(title);
  return columns;
}

struct OutColumn {
  std::string title;
  std::function<std::string(const Row&)> cell;
  bool required = false;
};

std::vector<OutColumn> columnsFor(const std::vector<Row>& clips, const std::string& headingRate)
{
  std::vector<OutColumn> columns = {
      {"Name", [](const Row& clip) { return clip.clipName; }, true},
      {"Tracks", [](const Row& clip) { return isTracksCell(clip) ? clip.tracks : tracksOf(clip); }, true},
      {"Start", [](const Row& clip) { return inLog(clip, clip.sourceIn); }, true},
      {"End", [](const Row& clip) { return inLog(clip, clip.sourceOut); }, true},
      {"Tape", tapeOf, true},
      {"Source File", [](const Row& clip) { return namesTheReel(clip) ? clip.sourceFile : ""; }},
      {"Source File Path", [](const Row& clip) { return namesTheReel(clip) ? "" : clip.sourceFile; }},
      {"Camroll", [](const Row& row) { return row.cameraRoll; }},
      {"Soundroll", [](const Row& row) { return row.soundRoll; }},
      {"Sound TC", [](const Row& row) { return inLog(row, row.soundIn); }},
      {"Tracks As Written", [](const Row& clip) { return isTracksCell(clip) ? "" : clip.tracks; }},
      {"Cut Record In", [](const Row& clip) { return inLog(clip, clip.recordIn); }},
      {"Cut Record Out", [](const Row& clip) { return inLog(clip, clip.recordOut); }},
      {"Colons As Written", colonsOf},
  };
  // An empty cell says that the rate of the heading is not the clip's.
  if (std::any_of(clips.begin(), clips.end(), [&](const Row& clip) { return clip.frameRate != headingRate; }))
    columns.push_back({"FPS", [](const Row& clip) { return clip.frameRate; }, true});
  std::size_t aliases = 0;
  for (const Row& clip : clips)
    aliases = std::max(aliases, clip.aliases.size());
  for (std::size_t i = 0; i < aliases; ++i)
    columns.push_back({"Reel Also Called " + std::to_string(i + 1),
                       [i](const Row& clip) { return i < clip.aliases.size() ? clip.aliases[i] : std::string(); }});
  std::erase_if(columns, [&](const OutColumn& column) {
    return !column.required &&
           std::none_of(clips.begin(), clips.end(), [&](const Row& clip) { return !column.cell(clip).empty(); });
  });
  return columns;
}

void addRow(std::string& text, const std::vector<OutColumn>& columns,
            const std::function<std::string(const OutColumn&)>& cell)
{
  for (std::size_t i = 0; i < columns.size(); ++i)
    text.append(i == 0 ? "" : "\t").append(cell(columns[i]));
  text += "\n";
}

/// Warns about what events say and a log cannot.
void remarkOnEvents(Written& written, const std::vector<Clip>& clips)
{
  const auto remark = [&](const char* what, auto says) {
    if (const auto count =
            std::count_if(clips.begin(), clips.end(), [&](const Clip& clip) { return says(clip.event); });
        count > 0)
      written.remarks.push_back(std::string(what) + " not written: " + std::to_string(count) +
                                " (a log file cannot hold them)");
  };
  remark("event numbers", [](const Event& event) { return !event.number.empty(); });
  remark("transitions", [](const Event& event) { return !event.transition.empty() && event.transition != "C"; });
  remark("speeds", [](const Event& event) { return event.speed.has_value(); });
  remark("source ids", [](const Event& event) { return !event.sourceIds.empty(); });
}

void remarkOnLimits(Written& written, const std::vector<Clip>& clips, std::size_t columns)
{
  const auto isLong = [](const Clip& clip) { return length(clip.clipName) > longestClipName; };
  if (const auto count = std::count_if(clips.begin(), clips.end(), isLong); count > 0)
    written.remarks.push_back(std::string("clip names longer than ") + std::to_string(longestClipName) +
                              " characters: " + std::to_string(count) + " (other programs may cut them)");
  if (columns > mostColumns)
    written.remarks.push_back(std::to_string(columns) + " columns: more than " + std::to_string(mostColumns) +
                              " (other programs may not read all columns)");
}

} // namespace

Written writeAle(const std::string& rate, const std::vector<Clip>& clips, const std::string& headingRate)
{
  Written written;
  const std::vector<Clip> writable = writableClips(clips, written);
  const std::string common = commonRate(writable);
  const std::string heading = !headingRate.empty() ? headingRate : common.empty() ? rate : common;
  const std::vector<Row> rows = rowsOf(writable);
  const std::vector<OutColumn> columns = columnsFor(rows, heading);
  written.text = "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t";
  written.text.append(writtenVideoFormat).append("\nAUDIO_FORMAT\t").append(writtenAudioFormat);
  written.text.append("\nFPS\t").append(heading).append("\n\nColumn\n");
  addRow(written.text, columns, [](const OutColumn& column) { return column.title; });
  written.text += "\nData\n";
  for (const Row& row : rows)
    addRow(written.text, columns, [&](const OutColumn& column) { return column.cell(row); });
  remarkOnEvents(written, writable);
  remarkOnLimits(written, writable, columns.size());
  return written;
}

} // namespace reeldb::lists
