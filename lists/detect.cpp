// SPDX-License-Identifier: Apache-2.0
#include "lists/detect.h"

#include "base/ascii.h"
#include "lists/ale.h"
#include "lists/edl_line.h"
#include "lists/edl_note.h"
#include "lists/text.h"

namespace reeldb::lists {

std::string_view wordOf(Format format)
{
  switch (format) {
  case Format::Edl:
    return "edl";
  case Format::Ale:
    return "ale";
  }
  return "";
}

std::optional<Format> detectText(std::string_view text)
{
  bool first = true;
  bool emptyCut = false;
  Lines lines(text);
  for (std::string_view line; lines.next(line);) {
    const std::string_view trimmed = trim(line);
    if (trimmed.empty())
      continue;
    if (first && startsLog(line))
      return Format::Ale;
    if (base::startsWithName(trimmed, "FCM:") || (beginsLikeEvent(trimmed) && countTimecodes(trimmed) >= 2))
      return Format::Edl;
    if (first)
      emptyCut = base::startsWithName(trimmed, "TITLE:");
    else
      emptyCut = emptyCut && (isNote(trimmed) || beginsLikeEvent(trimmed));
    first = false;
  }
  if (emptyCut)
    return Format::Edl;
  return std::nullopt;
}

} // namespace reeldb::lists
