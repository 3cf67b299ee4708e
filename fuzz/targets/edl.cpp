// SPDX-License-Identifier: Apache-2.0
//
// A cut list of any bytes: no line is lost, every text is clean, other line ends and encodings change nothing, and the
// clips can be written as a cut list from which the same clips are read.
#include <cstdint>
#include <cstdio>

#include "base/ascii.h"
#include "lists/properties.h"
#include "lists/text.h"
#include "support/bytes.h"
#include "support/check.h"

namespace {

using namespace reeldb_fuzz;
using namespace reeldb::lists;
using reeldb::base::sameName;

/// The last four words of an event are its timecodes.
void requireTimecodes(const List& list, const std::vector<std::string>& lines)
{
  for (const Clip& clip : list.clips) {
    std::string_view rest = lines.at(static_cast<std::size_t>(clip.line) - 1);
    for (const std::string* timecode : {&clip.recordOut, &clip.recordIn, &clip.sourceOut, &clip.sourceIn})
      requireEqual(*timecode, std::string(takeLast(rest)), "a timecode of line", clip.line);
  }
}

/// Each clip as an event of AX with its reel as the source file: a reel's text could look like the fields behind it,
/// but a note may contain any text.
std::string written(const List& list)
{
  std::string text = "TITLE: again\nFCM: NON-DROP FRAME\n";
  int number = 0;
  for (const Clip& clip : list.clips) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%06d", ++number);
    text += std::string(digits) + "  AX " + clip.tracks + " C " + clip.sourceIn + " " + clip.sourceOut + " " +
            clip.recordIn + " " + clip.recordOut + "\n";
    if (!clip.clipName.empty())
      text += "* FROM CLIP NAME: " + clip.clipName + "\n";
    text += "* SOURCE FILE: " + clip.reel + "\n";
  }
  return text;
}

/// Some texts are not valid as a source file, or are a path there, although they can name a reel.
bool canBeWritten(const List& list)
{
  for (const Clip& clip : list.clips)
    if (sameName(clip.reel, "(NULL)") || clip.reel.find_first_of("/\\") != std::string::npos)
      return false;
  return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const std::string bytes = allOf(data, size);
  const std::optional<List> list = readList(bytes);
  if (!list || list->format != Format::Edl) // a log file has a target of its own
    return 0;
  requireSound(*list, bytes);
  requireTimecodes(*list, linesOf(bytes));
  requireSameInOtherForms(*list, bytes);
  requireEventsComeBack(*list);
  if (!canBeWritten(*list))
    return 0;
  const std::optional<List> again = readList(written(*list));
  require(again && again->format == Format::Edl, "what was written is no cut list");
  requireSameClips(*again, *list, false);
  return 0;
}
