// SPDX-License-Identifier: Apache-2.0
//
// A log file of any bytes: no row is lost, every text is clean, other line ends and encodings change nothing, and the
// clips can be written as a log file from which the same clips are read.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "base/ascii.h"
#include "lists/properties.h"
#include "lists/text.h"
#include "support/bytes.h"
#include "support/check.h"

namespace {

using namespace reeldb_fuzz;
using namespace reeldb::lists;
using reeldb::base::sameName;

std::vector<std::string> cellsOf(const std::string& line)
{
  std::vector<std::string> cells(1);
  for (const char c : line)
    if (c == '\t')
      cells.emplace_back();
    else
      cells.back() += c;
  for (std::string& cell : cells)
    cell = std::string(trim(cell));
  return cells;
}

/// The row's cell in the first column with this title; empty if there is no such cell or column.
std::string cellBelow(const std::string& title, const std::vector<std::string>& titles, const std::string& row)
{
  const auto column = std::find(titles.begin(), titles.end(), title) - titles.begin();
  const std::vector<std::string> cells = cellsOf(row);
  return column < static_cast<std::ptrdiff_t>(std::min(titles.size(), cells.size()))
             ? cells[static_cast<std::size_t>(column)]
             : std::string();
}

/// The timecode without the mark of drop frame, which a log may give in another column.
std::string withColons(std::string timecode)
{
  std::replace(timecode.begin(), timecode.end(), ';', ':');
  return timecode;
}

/// The cells that the reader takes unchanged, but for that mark.
void requireCells(const List& list, const std::vector<std::string>& lines)
{
  const auto isBlankLine = [](const std::string& line) { return trim(line).empty(); };
  const auto section =
      std::find_if(lines.begin(), lines.end(), [](const std::string& line) { return sameName(trim(line), "Column"); });
  const auto titleLine = std::find_if_not(std::next(section), lines.end(), isBlankLine);
  const std::vector<std::string> titles = cellsOf(*titleLine);
  for (const Clip& clip : list.clips) {
    const std::string& row = lines.at(static_cast<std::size_t>(clip.line) - 1);
    requireEqual(clip.clipName, cellBelow("Name", titles, row), "the clip name of line", clip.line);
    requireEqual(withColons(clip.sourceIn), withColons(cellBelow("Start", titles, row)), "the source in of line",
                 clip.line);
    requireEqual(withColons(clip.sourceOut), withColons(cellBelow("End", titles, row)), "the source out of line",
                 clip.line);
    if (!clip.soundOf.empty()) {
      requireEqual(clip.reel, cellBelow("Soundroll", titles, row), "the sound roll of line", clip.line);
      continue;
    }
    const std::string tape = cellBelow("Tape", titles, row);
    require(tape.empty() || sameName(tape, "AX") || sameName(tape, clip.reel), "the reel of line", clip.line, "is",
            clip.reel, "and its tape", tape);
  }
}

std::string written(const List& list)
{
  std::string text = "Heading\nFIELD_DELIM\tTABS\n\nColumn\nName\tTape\tTracks\tStart\tEnd\tSource File\n\nData\n";
  for (const Clip& clip : list.clips)
    text += clip.clipName + "\t" + clip.reel + "\t" + clip.tracks + "\t" + clip.sourceIn + "\t" + clip.sourceOut +
            "\t" + clip.sourceFile + "\n";
  return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const std::string bytes = allOf(data, size);
  const std::optional<List> list = readList(bytes);
  if (!list || list->format != Format::Ale) // a cut list has a target of its own
    return 0;
  requireSound(*list, bytes);
  requireCells(*list, linesOf(bytes));
  requireEventsComeBack(*list);
  requireSameInOtherForms(*list, bytes);
  const std::optional<List> again = readList(written(*list));
  require(again && again->format == Format::Ale, "what was written is no log file");
  requireSameClips(*again, *list, true);
  return 0;
}
