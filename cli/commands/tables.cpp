// SPDX-License-Identifier: Apache-2.0
#include "commands/tables.h"

#include <array>
#include <charconv>
#include <ctime>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "app/error.h"
#include "base/text_width.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

std::string_view phraseOf(app::Reason reason)
{
  switch (reason) {
  case app::Reason::Exact:
    return "exact";
  case app::Reason::Case:
    return "differs in case";
  case app::Reason::Given:
    return "given to it";
  case app::Reason::Cut:
    return "cut form";
  case app::Reason::Alias:
    return "other name in a list";
  case app::Reason::OldName:
    return "old name";
  case app::Reason::Form:
    return "another form of a name";
  }
  return "";
}

std::vector<Column> shotColumns()
{
  return {{"CLIP"},
          {"TRACKS"},
          {"SOURCE IN"},
          {"SOURCE OUT"},
          {.title = "RECORD IN", .optional = true},
          {.title = "RECORD OUT", .optional = true},
          {.title = "RATE", .optional = true},
          {.title = "SOURCE FILE", .optional = true},
          {.title = "SOUND OF", .optional = true}};
}

std::vector<std::string> cellsOf(const app::Shot& shot)
{
  return {orDash(shot.clipName), shot.tracks,    shot.sourceIn,   shot.sourceOut, shot.recordIn,
          shot.recordOut,        rateText(shot), shot.sourceFile, shot.soundOf};
}

} // namespace

std::string_view yesOrNo(bool value)
{
  return value ? "yes" : "no";
}

std::string orDash(const std::string& text)
{
  return text.empty() ? "-" : text;
}

std::string rateText(const lists::Clip& clip)
{
  if (!clip.dropFrame)
    return clip.frameRate;
  return clip.frameRate.empty() ? "drop frame" : clip.frameRate + " drop frame";
}

std::string localTime(const std::string& utc)
{
  std::tm parts = {};
  if (!::strptime(utc.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts))
    return {};
  const std::time_t time = ::timegm(&parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", ::localtime_r(&time, &parts));
  return text.data();
}

void printShots(const std::vector<app::Shot>& shots, std::size_t indent)
{
  Table table(shotColumns());
  for (const app::Shot& shot : shots)
    table.add(cellsOf(shot));
  table.print(indent);
}

void printShots(const std::vector<app::NumberedShot>& shots)
{
  std::vector<Column> columns = shotColumns();
  columns.insert(columns.begin(), {.title = "SHOT", .number = true});
  Table table(std::move(columns));
  for (const auto& [number, shot] : shots) {
    std::vector<std::string> cells = cellsOf(shot);
    cells.insert(cells.begin(), std::to_string(number));
    table.add(std::move(cells));
  }
  table.print();
}

std::vector<std::int64_t> shotNumbers(const std::string& command, const std::vector<std::string>& words)
{
  std::vector<std::int64_t> numbers;
  for (const std::string& word : words) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || number < 1)
      throw app::Error(app::ErrorKind::Invalid,
                       fmt::format("{}: \"{}\": not the number of a shot (reeldb shots ID shows them)", command,
                                   base::shortText(word)));
    numbers.push_back(number);
  }
  return numbers;
}

std::string reasonsText(const app::Candidate& candidate)
{
  std::string result;
  for (const app::Reason reason : candidate.reasons) {
    result += result.empty() ? "" : ", ";
    result += phraseOf(reason);
  }
  return candidate.isThere ? result : result + " (no record of the reel)";
}

void requireGroup(const std::optional<std::string>& by)
{
  if (by && *by != "roll")
    throw app::Error(app::ErrorKind::Invalid, fmt::format("--by {}: invalid (use roll)", base::shortText(*by)));
}

void complainOf(const std::vector<std::string>& messages)
{
  for (const std::string& message : messages)
    complain(message);
}

} // namespace reeldb::cli
