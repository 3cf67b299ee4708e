// SPDX-License-Identifier: Apache-2.0
#include "commands/names_text.h"

#include <fmt/format.h>

#include "base/ascii.h"
#include "base/text_width.h"
#include "text/counted.h"
#include "text/terminal.h"

namespace reeldb::cli {

using base::displayText;
using base::displayWidth;

std::string_view reasonOf(lists::Match match)
{
  switch (match) {
  case lists::Match::Decided:
    return "decided";
  case lists::Match::SourceId:
    return "the same source id";
  case lists::Match::SameName:
    return "the same name";
  case lists::Match::OtherEnding:
    return "with another ending";
  case lists::Match::NoEnding:
    return "without its ending";
  case lists::Match::Cut:
    return "cut";
  case lists::Match::Itself:
    break;
  }
  return "";
}

std::string wrapped(const std::string& heading, const std::vector<std::string>& names, std::size_t columns,
                    std::size_t indent)
{
  std::string result = heading;
  std::size_t used = displayWidth(heading);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string name = displayText(names[i]) + (i + 1 < names.size() ? "," : "");
    const std::size_t width = displayWidth(name) + 1;
    if (i > 0 && used + width > columns) {
      result.append("\n").append(indent - 1, ' ');
      used = indent - 1;
    }
    result.append(" ").append(name);
    used += width;
  }
  return result + "\n";
}

std::string headedNames(const std::string& heading, const std::vector<std::string>& names)
{
  constexpr std::size_t indent = 2;
  return names.empty() ? heading + "\n" : wrapped(heading + ":", names, textColumns(stdout), indent);
}

std::string namesText(const std::vector<app::NamedReel>& names, std::size_t columns)
{
  constexpr std::size_t indent = 4;
  std::string result;
  std::size_t onlyClipNames = 0;
  for (const app::NamedReel& named : names) {
    if (const std::string_view reason = reasonOf(named.match);
        !reason.empty() && !base::sameName(named.name, named.reel))
      result += fmt::format("  {} is {} ({})\n", displayText(named.name), displayText(named.reel), reason);
    if (!named.perhaps.empty())
      result += wrapped(fmt::format("  {} is perhaps", displayText(named.name)), named.perhaps, columns, indent);
    else
      onlyClipNames += named.clipNames.empty() ? 0 : 1;
  }
  if (onlyClipNames > 0)
    result += fmt::format("  {} may be cut (longer clip names begin with {})\n", counted(onlyClipNames, "name"),
                          onlyClipNames == 1 ? "it" : "them");
  return result;
}

} // namespace reeldb::cli
