// SPDX-License-Identifier: Apache-2.0
#include "commands/import_report.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/text_width.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"

namespace reeldb::cli {

using base::displayText;

namespace {

/// The name for a line that describes a source: "event" or "row".
std::string_view lineName(lists::Format format)
{
  switch (format) {
  case lists::Format::Edl:
    return "event";
  case lists::Format::Ale:
  case lists::Format::Sheet:
    return "row";
  case lists::Format::Otio:
  case lists::Format::Xmeml:
  case lists::Format::Fcpxml:
  case lists::Format::Json:
    return "item";
  }
  return "";
}

/// "created" or "would be created".
std::string did(Mood mood, std::string_view verb)
{
  return mood == Mood::Fact ? std::string(verb) : fmt::format("would be {}", verb);
}

std::string reelsText(const std::string& what, const std::vector<std::string>& reels, std::size_t columns)
{
  constexpr std::size_t indent = 4;
  if (reels.empty())
    return {};
  return wrapped(fmt::format("  {} {}:", counted(reels.size(), "reel"), what), reels, columns, indent);
}

std::string specialText(const lists::Special& special, std::string_view lineName, std::size_t columns)
{
  constexpr std::size_t indent = 6;
  std::vector<std::string> numbers;
  for (const int line : special.lines)
    numbers.push_back(fmt::format("{}", line));
  numbers.back() += ")";
  const std::string heading =
      fmt::format("    {}: {} ({}, {}", displayText(special.text), displayText(special.reason),
                  counted(special.count, lineName), special.lines.size() == 1 ? "line" : "lines");
  return wrapped(heading, numbers, columns, indent);
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

/// The lines of the list, each with its remark.
template <class Remark>
std::string remarksText(const std::string& what, const std::vector<Remark>& remarks)
{
  if (remarks.empty())
    return {};
  std::string result = fmt::format("  {} {}:\n", counted(remarks.size(), "line"), what);
  for (const Remark& remark : remarks)
    result += fmt::format("    line {}: {}: {}\n", remark.line, displayText(remark.reason), displayText(remark.text));
  return result;
}

/// The created reels, each once: those of the project's default type, and those of each other type.
std::string createdText(const app::ImportedList& imported, std::size_t columns, Mood mood)
{
  std::set<std::string> typed;
  for (const app::TypedReels& some : imported.types)
    typed.insert(some.reels.begin(), some.reels.end());
  std::vector<std::string> usual;
  std::copy_if(imported.created.begin(), imported.created.end(), std::back_inserter(usual),
               [&](const std::string& reel) { return !typed.contains(reel); });
  std::string result = reelsText(did(mood, "created"), usual, columns);
  for (const app::TypedReels& some : imported.types)
    result +=
        reelsText(fmt::format("of type {} {}", displayText(some.type), did(mood, "created")), some.reels, columns);
  return result;
}

/// The changes of fields, one line for each.
std::string changesText(const std::vector<app::RowChange>& changes, Mood mood)
{
  if (changes.empty())
    return {};
  const auto shown = [](const std::string& value) { return displayText(orDash(value)); };
  std::string result = fmt::format("  {} {}:\n", counted(changes.size(), "field"), did(mood, "changed"));
  for (const app::RowChange& change : changes)
    result += fmt::format("    {}: {}: {} (was {})\n", displayText(change.reel), change.field, shown(change.after),
                          shown(change.before));
  return result;
}

std::string keepingText(const app::ImportedList& imported)
{
  if (imported.keeping == app::Keeping::NewVersion) {
    const app::VersionDifference& difference = imported.difference;
    return fmt::format("  new version: {} added, {} gone, {} trimmed, {} elsewhere in the cut\n",
                       difference.added.size(), difference.gone.size(), difference.trimmed.size(),
                       difference.changed.size());
  }
  if (imported.replacesNothing && imported.keeping == app::Keeping::New)
    return fmt::format("  nothing replaced: no list of the project has this {} (the list is new)\n",
                       imported.list.title.empty() ? "file name" : "file name or title");
  if (imported.earlier)
    return fmt::format("  list {} stays beside it (--as {} puts this one in its place)\n", *imported.earlier,
                       *imported.earlier);
  return {};
}

} // namespace

std::string rejectedText(const app::ImportedList& imported, Mood mood)
{
  if (imported.list.rejected.empty())
    return {};
  return displayText(imported.file) + ":\n" + remarksText(did(mood, "rejected"), imported.list.rejected);
}

std::string totalsText(const app::ImportTotals& totals, Mood mood)
{
  std::vector<std::string> kinds;
  for (const auto& [count, what] : {std::pair(totals.listsNew, "new"), std::pair(totals.listsReplaced, "new version"),
                                    std::pair(totals.listsUnchanged, "unchanged")})
    if (count > 0)
      kinds.push_back(fmt::format("{} {}", count, what));
  std::string result = fmt::format("total: {}", counted(totals.lists, "list"));
  if (!kinds.empty())
    result += fmt::format(" ({})", fmt::join(kinds, ", "));
  result +=
      fmt::format(", {}, {} {}", counted(totals.clips, "clip"), counted(totals.shotsAdded, "shot"), did(mood, "added"));
  if (totals.reelsCreated > 0)
    result += fmt::format(", {} {}", counted(totals.reelsCreated, "reel"), did(mood, "created"));
  if (totals.reelsChanged > 0)
    result += fmt::format(", {} {}", counted(totals.reelsChanged, "reel"), did(mood, "changed"));
  for (const auto& [count, what, verb] :
       {std::tuple(totals.warnings, "warning", ""), std::tuple(totals.rejected, "line", " rejected"),
        std::tuple(totals.skipped, "file", " skipped")})
    if (count > 0)
      result += fmt::format(", {}{}", counted(count, what), verb);
  return result + "\n";
}

std::string removedText(const app::ImportReport& report, std::size_t columns, Mood mood)
{
  std::string text;
  if (!report.shotsRemoved.empty())
    text = fmt::format("{} {}: only earlier versions had {}\n", counted(report.shotsRemoved.size(), "shot"),
                       did(mood, "removed"), report.shotsRemoved.size() == 1 ? "it" : "them");
  return text + reelsText(did(mood, "removed"), report.reelsRemoved, columns);
}

std::string toText(const std::vector<app::ReelMove>& moves, Mood mood)
{
  std::string result;
  for (const app::ReelMove& move : moves)
    result += fmt::format("{} of {} {} to {}\n", counted(move.shots, "shot"), displayText(move.from),
                          did(mood, "moved"), displayText(move.to));
  return result;
}

std::string toText(const std::vector<app::TypeChange>& changes, Mood mood)
{
  std::string result;
  for (const app::TypeChange& change : changes)
    result += fmt::format("{} {}: type {} (was {})\n", displayText(change.reel), did(mood, "changed"),
                          displayText(change.to), displayText(change.from));
  return result;
}

std::string toText(const app::ImportedList& imported, std::size_t columns, Mood mood)
{
  const lists::List& list = imported.list;
  const bool isOfReels = list.format == lists::Format::Sheet || list.format == lists::Format::Json;
  const std::string heading =
      fmt::format("{} ({}): {}", displayText(imported.file), lists::wordOf(list.format),
                  imported.clips == 0 && isOfReels ? counted(imported.matched.size() + imported.created.size(), "reel")
                                                   : counted(imported.clips, "clip"));
  const std::string leftOut =
      imported.shotsLeftOut > 0 ? fmt::format(", {} left out (deleted before)", imported.shotsLeftOut) : std::string();
  if (imported.keeping == app::Keeping::Unchanged && !imported.changesProject())
    return heading + ", unchanged" + leftOut + "\n" + remarksText(did(mood, "rejected"), list.rejected);
  std::string result = heading;
  if (imported.clips > 0 || !isOfReels)
    result += fmt::format(", {} {}", counted(imported.shotsAdded, "shot"), did(mood, "added"));
  if (const std::size_t there = imported.shotsThere - imported.shotsRepeated; there > 0)
    result += fmt::format(", {} already there", there);
  if (imported.shotsRepeated > 0)
    result += fmt::format(", {} repeated in the list", imported.shotsRepeated);
  result += leftOut + "\n";
  result += keepingText(imported);
  result += createdText(imported, columns, mood);
  result += changesText(imported.changes, mood);
  if (!list.unread.empty() && isOfReels)
    result += wrapped("  columns not read:", list.unread, columns, 4);
  if (!imported.matched.empty())
    result += fmt::format("  {} already there\n", counted(imported.matched.size(), "reel"));
  if (!list.specials.empty())
    result += "  without a reel:\n";
  for (const lists::Special& special : list.specials)
    result += specialText(special, lineName(list.format), columns);
  for (const lists::Spelling& spelling : list.spellings)
    result +=
        fmt::format("  same reel, other spelling: {} is {}\n", displayText(spelling.other), displayText(spelling.reel));
  result += namesText(imported.names, columns);
  if (imported.reelsOfFiles > 0)
    result += fmt::format("  {} from file names\n", counted(imported.reelsOfFiles, "reel"));
  for (const lists::Ambiguous& ambiguous : list.ambiguous)
    result += ambiguousText(ambiguous);
  result += remarksText(did(mood, "kept") + " with a warning", list.warnings);
  result += remarksText(did(mood, "rejected"), list.rejected);
  return result;
}

} // namespace reeldb::cli
