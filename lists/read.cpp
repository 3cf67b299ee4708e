// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <string>

#include "base/display_text.h"
#include "lists/ale.h"
#include "lists/detect.h"
#include "lists/edl.h"
#include "lists/encoding.h"
#include "lists/fcpxml.h"
#include "lists/list.h"
#include "lists/otio.h"
#include "lists/own_json.h"
#include "lists/sheet.h"
#include "lists/text.h"
#include "lists/xmeml.h"
#include "lists/xml_root.h"

namespace reeldb::lists {

namespace {

/// What the file is instead, as far as its start and a few words say.
std::string whatElse(std::string_view bytes, std::string_view text)
{
  const auto has = [text](std::string_view word) { return text.find(word) != std::string_view::npos; };
  if (bytes.starts_with("\xD0\xCF\x11\xE0"))
    return "it is a compound file, as AAF files are";
  if (bytes.starts_with("PK\x03\x04"))
    return "it is a zip archive; import the content.otio of an .otioz file, and a spreadsheet as CSV";
  if (bytes.starts_with("%PDF"))
    return "it is a PDF document";
  if (has(std::string_view("\0", 1)))
    return "it holds binary data";
  text = trim(text);
  if (const std::string_view root = rootName(text); !root.empty())
    return root == "hashlist" || root == "mhl" ? std::string("it is XML: a media hash list (MHL)")
                                               : "it is XML without a list: " + inQuotes(root);
  if (text.starts_with('{') || text.starts_with('['))
    return "it is JSON without reels, shots or lists";
  const std::string_view first = text.substr(0, text.find_first_of("\r\n"));
  for (const char separator : {',', ';', '\t'})
    if (std::count(first.begin(), first.end(), separator) >= 2)
      return "it looks like a table without a column for the reel; --map TITLE=reel names one";
  return "it has no event line and no Heading or Column";
}

/// Warns of the first line that a character of 0x80 to 0x9F is in: where other encodings have letters and quotation
/// marks, Latin-1 has control characters.
void warnOfEncoding(std::string_view text, List& list)
{
  if (text.find('\xC2') == std::string_view::npos)
    return;
  Lines lines(text);
  for (std::string_view line; lines.next(line);)
    for (std::size_t at = line.find('\xC2'); at != std::string_view::npos; at = line.find('\xC2', at + 1)) {
      const auto second = static_cast<unsigned char>(at + 1 < line.size() ? line[at + 1] : 0);
      if (second < 0x80 || second > 0x9F)
        continue;
      const auto after = std::upper_bound(list.warnings.begin(), list.warnings.end(), lines.number(),
                                          [](int number, const Warning& warning) { return number < warning.line; });
      list.warnings.insert(after,
                           {lines.number(), shortened(trim(line), shownBytes),
                            "holds " + base::displayText(line.substr(at, 2)) +
                                ", a control character (the file may be Windows-1252 or MacRoman; save it as UTF-8)"});
      return;
    }
}

List readAs(Format format, std::string_view text, const ReadOptions& options)
{
  switch (format) {
  case Format::Edl:
    return readEdl(text, options);
  case Format::Ale:
    return readAle(text);
  case Format::Otio:
    return readOtio(text);
  case Format::Xmeml:
    return readXmeml(text);
  case Format::Fcpxml:
    return readFcpxml(text);
  case Format::Json:
    return readOwnJson(text);
  case Format::Sheet:
    return readSheet(text, options.titles);
  }
  return {};
}

} // namespace

std::optional<Format> detect(std::string_view bytes)
{
  std::string converted;
  return detectText(decode(bytes, converted));
}

List read(std::string_view bytes, const ReadOptions& options)
{
  std::string converted;
  const std::string_view text = decode(bytes, converted);
  if (trim(text).empty())
    throw Error("holds no text");
  if (const std::optional<Format> format = detectText(text, options.titles)) {
    List list = readAs(*format, text, options);
    warnOfEncoding(text, list);
    return list;
  }
  if (isUnmarkedUtf16(bytes))
    throw Error("UTF-16 without a byte order mark (save it as UTF-8)");
  throw Error("not a cut list, a log file or a timeline (" + whatElse(bytes, text) + ")");
}

std::vector<Clip> eventsOf(const List& list)
{
  std::vector<Clip> events;
  events.reserve(list.clips.size() + list.specialClips.size());
  std::merge(list.clips.begin(), list.clips.end(), list.specialClips.begin(), list.specialClips.end(),
             std::back_inserter(events), [](const Clip& one, const Clip& other) { return one.line < other.line; });
  return events;
}

} // namespace reeldb::lists
