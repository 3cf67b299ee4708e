// SPDX-License-Identifier: Apache-2.0
#include "commands/tables.h"

#include <array>
#include <ctime>

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

} // namespace

std::string_view yesOrNo(bool value)
{
  return value ? "yes" : "no";
}

std::string orDash(const std::string& text)
{
  return text.empty() ? "-" : text;
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
  Table table({{"CLIP"},
               {"TRACKS"},
               {"SOURCE IN"},
               {"SOURCE OUT"},
               {.title = "RECORD IN", .optional = true},
               {.title = "RECORD OUT", .optional = true},
               {.title = "SOURCE FILE", .optional = true},
               {.title = "SOUND OF", .optional = true}});
  for (const app::Shot& shot : shots)
    table.add({orDash(shot.clipName), shot.tracks, shot.sourceIn, shot.sourceOut, shot.recordIn, shot.recordOut,
               shot.sourceFile, shot.soundOf});
  table.print(indent);
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

void complainOf(const std::vector<std::string>& messages)
{
  for (const std::string& message : messages)
    complain(message);
}

} // namespace reeldb::cli
