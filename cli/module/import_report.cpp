// SPDX-License-Identifier: Apache-2.0
#include "module/import_report.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "module/counted.h"
#include "module/display_text.h"

namespace reeldb::cli {

namespace {

std::string_view formatName(lists::Format format)
{
  switch (format) {
  case lists::Format::Edl:
    return "edl";
  case lists::Format::Ale:
    return "ale";
  }
  return "";
}

/// The names behind the heading, with commas, in as many lines as they need.
std::string wrapped(const std::string& heading, const std::vector<std::string>& names, std::size_t columns)
{
  std::string result = heading;
  std::size_t used = displayWidth(heading);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string name = displayText(names[i]) + (i + 1 < names.size() ? "," : "");
    const std::size_t width = displayWidth(name) + 1;
    if (i > 0 && used + width > columns) {
      result += "\n   ";
      used = 3;
    }
    result += " " + name;
    used += width;
  }
  return result + "\n";
}

std::string specialText(const lists::Special& special)
{
  return fmt::format("    {}: {} ({}, {} {})\n", displayText(special.text), displayText(special.reason),
                     counted(special.count, "event"), special.lines.size() == 1 ? "line" : "lines",
                     fmt::join(special.lines, ", "));
}

std::string ambiguousText(const lists::Ambiguous& ambiguous)
{
  std::string result = fmt::format("  ambiguous: {}: {}", displayText(ambiguous.reel), displayText(ambiguous.reason));
  if (!ambiguous.names.empty())
    result += displayText(fmt::format(" (names {})", fmt::join(ambiguous.names, ", ")));
  if (!ambiguous.sourceIds.empty())
    result += displayText(fmt::format(" (sources {})", fmt::join(ambiguous.sourceIds, ", ")));
  return result + "\n";
}

std::string rejectedText(const lists::Rejected& rejected)
{
  return fmt::format("    line {}: {}: {}\n", rejected.line, displayText(rejected.reason), displayText(rejected.text));
}

} // namespace

std::string toText(const Imported& imported, std::size_t columns)
{
  const lists::List& list = imported.list;
  std::string result =
      fmt::format("{} ({}): {}, {} added, {} already there\n", displayText(imported.file), formatName(list.format),
                  counted(list.clips.size(), "clip"), counted(imported.shotsAdded, "shot"), imported.shotsThere);
  if (!imported.created.empty())
    result +=
        wrapped(fmt::format("  {} created:", counted(imported.created.size(), "reel")), imported.created, columns);
  if (!imported.matched.empty())
    result += wrapped(fmt::format("  {} already there:", counted(imported.matched.size(), "reel")), imported.matched,
                      columns);
  if (!list.specials.empty())
    result += "  without a reel:\n";
  for (const lists::Special& special : list.specials)
    result += specialText(special);
  for (const lists::Spelling& spelling : list.spellings)
    result +=
        fmt::format("  same reel, other spelling: {} is {}\n", displayText(spelling.other), displayText(spelling.reel));
  for (const lists::Ambiguous& ambiguous : list.ambiguous)
    result += ambiguousText(ambiguous);
  if (!list.rejected.empty())
    result += fmt::format("  {} rejected:\n", counted(list.rejected.size(), "line"));
  for (const lists::Rejected& rejected : list.rejected)
    result += rejectedText(rejected);
  return result;
}

Json toJson(const Imported& imported)
{
  const lists::List& list = imported.list;
  Json json;
  json["file"] = imported.file;
  json["format"] = formatName(list.format);
  json["title"] = list.title;
  json["clips"] = list.clips.size();
  json["shots_added"] = imported.shotsAdded;
  json["shots_there"] = imported.shotsThere;
  json["created"] = imported.created;
  json["matched"] = imported.matched;
  json["special"] = Json::array();
  for (const lists::Special& special : list.specials)
    json["special"].push_back(
        {{"text", special.text}, {"reason", special.reason}, {"count", special.count}, {"lines", special.lines}});
  json["spellings"] = Json::array();
  for (const lists::Spelling& spelling : list.spellings)
    json["spellings"].push_back({{"reel", spelling.reel}, {"other", spelling.other}});
  json["ambiguous"] = Json::array();
  for (const lists::Ambiguous& ambiguous : list.ambiguous)
    json["ambiguous"].push_back({{"reel", ambiguous.reel},
                                 {"reason", ambiguous.reason},
                                 {"names", ambiguous.names},
                                 {"source_ids", ambiguous.sourceIds}});
  json["rejected"] = Json::array();
  for (const lists::Rejected& rejected : list.rejected)
    json["rejected"].push_back({{"line", rejected.line}, {"text", rejected.text}, {"reason", rejected.reason}});
  json["lines"] = {{"total", list.tally.lines},
                   {"blank", list.tally.blank},
                   {"headers", list.tally.headers},
                   {"notes", list.tally.notes},
                   {"statements", list.tally.statements}};
  return json;
}

} // namespace reeldb::cli
