// SPDX-License-Identifier: Apache-2.0
#include "lists/detect.h"

#include "base/ascii.h"
#include "lists/ale.h"
#include "lists/edl_line.h"
#include "lists/edl_note.h"
#include "lists/otio.h"
#include "lists/own_json.h"
#include "lists/sheet.h"
#include "lists/text.h"
#include "lists/timeline.h"
#include "lists/xml_root.h"

namespace reeldb::lists {

std::string_view wordOf(Format format)
{
  switch (format) {
  case Format::Edl:
    return "edl";
  case Format::Ale:
    return "ale";
  case Format::Otio:
    return "otio";
  case Format::Xmeml:
    return "xmeml";
  case Format::Fcpxml:
    return "fcpxml";
  case Format::Json:
    return "json";
  case Format::Sheet:
    return "sheet";
  }
  return "";
}

std::optional<Format> detectText(std::string_view text, const TitleMap& titles)
{
  if (isOtio(trimWhite(text)))
    return Format::Otio;
  if (isOwnJson(trimWhite(text)))
    return Format::Json;
  if (const std::string_view root = rootName(trimWhite(text)); root == "xmeml" || root == "fcpxml")
    return root == "xmeml" ? Format::Xmeml : Format::Fcpxml;
  bool first = true;
  bool emptyCut = false; // nothing but notes, and numbers of events below a title
  bool titled = false;
  Lines lines(text);
  for (std::string_view line; lines.next(line);) {
    const std::string_view trimmed = trim(line);
    if (trimmed.empty())
      continue;
    if (first && startsLog(line))
      return Format::Ale;
    if (first && isSheet(text, titles))
      return Format::Sheet;
    if (base::startsWithName(trimmed, "FCM:") || (beginsLikeEvent(trimmed) && countTimecodes(trimmed) >= 2))
      return Format::Edl;
    if (first)
      titled = base::startsWithName(trimmed, "TITLE:");
    const bool isNoteLine = isNote(trimmed) || isMarker(trimmed);
    emptyCut = (first || emptyCut) && ((first && titled) || isNoteLine || (titled && beginsLikeEvent(trimmed)));
    first = false;
  }
  if (emptyCut)
    return Format::Edl;
  return std::nullopt;
}

} // namespace reeldb::lists
