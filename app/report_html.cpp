// SPDX-License-Identifier: Apache-2.0
//
// A report as a page of HTML. It loads nothing and runs nothing. Browsers repeat the heads of its tables on each
// printed page, and leave rows whole.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/report.h"
#include "base/ascii.h"
#include "base/display_text.h"

namespace reeldb::app {

namespace {

constexpr std::string_view style = R"(
:root { color-scheme: light dark; font: 10.5pt/1.4 system-ui, sans-serif; }
body { max-width: 60rem; margin: 2rem auto; padding: 0 1rem; }
h1 { font-size: 1.5em; margin: 0; overflow-wrap: anywhere; }
h2 { font-size: 1.15em; margin: 1.6em 0 .4em; }
p { margin: .2em 0; }
table { border-collapse: collapse; width: 100%; margin: .4em 0 1em; }
caption { text-align: left; font-weight: 600; padding: .3em 0; }
th, td { text-align: left; vertical-align: top; padding: .2em .6em .2em 0; border-bottom: 1px solid #8888; }
td { overflow-wrap: anywhere; }
.number { text-align: right; white-space: nowrap; }
.tick { width: 1.6em; font-size: 1.2em; line-height: 1; }
.name { font-weight: 600; }
.hidden { position: absolute; clip-path: inset(50%); }
@media print {
  @page { margin: 14mm; }
  body { max-width: none; margin: 0; padding: 0; }
  thead { display: table-header-group; }
  tr { break-inside: avoid; }
  h2, caption { break-after: avoid; }
}
)";

/// Text for an element. Its direction does not depend on the text around it, nor theirs on it.
std::string escaped(std::string_view text)
{
  std::string result;
  for (const char c : base::displayText(text))
    switch (c) {
    case '&':
      result += "&amp;";
      break;
    case '<':
      result += "&lt;";
      break;
    case '>':
      result += "&gt;";
      break;
    case '"':
      result += "&quot;";
      break;
    default:
      result += c;
    }
  return result;
}

std::string cell(std::string_view text, std::string_view kind = {})
{
  return fmt::format("<td{}><bdi>{}</bdi></td>", kind.empty() ? "" : fmt::format(" class=\"{}\"", kind), escaped(text));
}

std::string counted(std::size_t count, std::string_view what)
{
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string nameOf(const KeptList& list)
{
  return list.title.empty() ? list.file : fmt::format("{} ({})", list.title, list.file);
}

/// "2026-11-22T13:38:48Z" as it is written for people: "2026-11-22 13:38 UTC"
std::string shownTime(const std::string& time)
{
  return time.size() < 16 ? time : fmt::format("{} {} UTC", time.substr(0, 10), time.substr(11, 5));
}

std::string head(std::string_view title, std::string_view kind = {})
{
  return fmt::format("<th scope=\"col\"{}>{}</th>", kind.empty() ? "" : fmt::format(" class=\"{}\"", kind), title);
}

/// The names of the items, separated by commas.
template <class Items, class Name>
std::string joined(const Items& items, Name name)
{
  std::string text;
  for (const auto& item : items)
    text.append(text.empty() ? "" : ", ").append(name(item));
  return text;
}

using Place = std::vector<ReportedReel>::const_iterator;

/// "Unavailable, unknown type: 2 reels"
std::string headingOf(const std::string& state, std::size_t count)
{
  std::string heading = state;
  heading.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(heading.front())));
  return fmt::format("{}: {}", heading, counted(count, "reel"));
}

std::string shelfOf(const ReportedReel& reel)
{
  return reel.need.reel ? reel.need.reel->bin : std::string();
}

/// Tables of reels. A list's own report does not name the list in each row.
class Tables {
public:
  explicit Tables(const ReelReport& report) : report_(report) {}

  /// One section for each state, and in it one table for each shelf.
  std::string states() const
  {
    std::string html;
    for (Place first = report_.reels.begin(), end = first; first != report_.reels.end(); first = end) {
      const std::string state = first->need.state();
      end = std::find_if(first, report_.reels.end(),
                         [&](const ReportedReel& reel) { return reel.need.state() != state; });
      html += fmt::format("<section>\n<h2>{}</h2>\n", headingOf(state, static_cast<std::size_t>(end - first)));
      for (Place next = first; first != end; first = next) {
        next = std::find_if(first, end,
                            [&](const ReportedReel& reel) { return !base::sameName(shelfOf(reel), shelfOf(*first)); });
        html += table(first, next);
      }
      html += "</section>\n";
    }
    return html;
  }

private:
  /// The reels of one state and one shelf.
  std::string table(Place first, Place last) const
  {
    const bool isThere = first->need.reel.has_value();
    const bool hasDevices = isThere && std::any_of(first, last, [](const ReportedReel& reel) {
                              return !reel.need.reel->lastDevice.empty();
                            });
    const std::string caption = !isThere                  ? "No record in the project"
                                : shelfOf(*first).empty() ? "No shelf"
                                                          : "Shelf: " + shelfOf(*first);
    std::string html = fmt::format("<table>\n<caption><bdi>{}</bdi></caption>\n<thead><tr>", escaped(caption));
    html += R"(<th class="tick"><span class="hidden">Found</span></th>)" + head("Reel") +
            (isThere ? head("Type") : head("Perhaps")) + (hasDevices ? head("Last device") : "") +
            head("Shots", "number") + (report_.list ? "" : head("Lists")) + "</tr></thead>\n<tbody>\n";
    for (; first != last; ++first) {
      const Need& need = first->need;
      html += R"(<tr><td class="tick">&#9744;</td>)" + cell(need.id, "name");
      html += isThere ? cell(need.reel->type) : cell(joined(need.candidates, reelName));
      html += hasDevices ? cell(need.reel->lastDevice) : "";
      html += cell(std::to_string(need.shots), "number");
      html += (report_.list ? "" : cell(joined(first->uses, shortName))) + "</tr>\n";
    }
    return html + "</tbody>\n</table>\n";
  }

  static std::string reelName(const Candidate& candidate) { return candidate.reel; }
  static std::string shortName(const ReportedList& use)
  {
    return use.list.title.empty() ? use.list.file : use.list.title;
  }

  const ReelReport& report_;
};

std::string usesOf(const ReelReport& report)
{
  std::string rows;
  for (const ReportedReel& reel : report.reels)
    for (const ReportedList& use : reel.uses)
      rows += "<tr>" + cell(reel.need.id, "name") + cell(nameOf(use.list)) +
              cell(std::to_string(use.events), "number") + cell(fmt::format("{}", fmt::join(use.clips, ", "))) +
              "</tr>\n";
  if (rows.empty())
    return {};
  return "<section>\n<h2>Where they are used</h2>\n<table>\n<thead><tr>" + head("Reel") + head("List") +
         head("Events", "number") + head("Clips") + "</tr></thead>\n<tbody>\n" + rows +
         "</tbody>\n</table>\n</section>\n";
}

} // namespace

std::string reportHtml(const ReelReport& report)
{
  const std::string subject = report.list ? nameOf(*report.list) : "project " + report.project;
  const auto ready = std::count_if(report.reels.begin(), report.reels.end(),
                                   [](const ReportedReel& reel) { return reel.need.troubles.empty(); });
  return fmt::format("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                     "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                     "<title>Reels of {0}</title>\n<style>{1}</style>\n</head>\n<body>\n<main>\n"
                     "<h1>Reels of <bdi>{0}</bdi></h1>\n<p>{2}{3}, {4}</p>\n<p>{5}, {6} ready</p>\n",
                     escaped(subject), style, report.list ? "project " + escaped(report.project) + ", " : "",
                     escaped(report.rate.empty() ? "" : report.rate + " fps"), shownTime(report.time),
                     counted(report.reels.size(), "reel"), ready) +
         Tables(report).states() + usesOf(report) + "</main>\n</body>\n</html>\n";
}

} // namespace reeldb::app
