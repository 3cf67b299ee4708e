// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/diff.h"
#include "app/json/json.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::vector<std::string> files;
  bool gone = false;
  bool json = false;
};

std::string newReelText(const app::NewReel& reel)
{
  std::string result = "  " + displayText(reel.id);
  for (std::size_t i = 0; i < reel.candidates.size(); ++i)
    result += fmt::format("{}{}: {}", i == 0 ? " (perhaps " : "; or ", displayText(reel.candidates[i].reel),
                          reasonsText(reel.candidates[i]));
  return result + (reel.candidates.empty() ? "\n" : ")\n");
}

void printShotsOf(const std::string& heading, const std::vector<app::Shot>& shots)
{
  constexpr std::size_t indent = 2;
  if (shots.empty())
    return;
  print(fmt::format("{} {}:\n", counted(shots.size(), "shot"), heading));
  Table table({{"REEL"},
               {"CLIP"},
               {"TRACKS"},
               {"SOURCE IN"},
               {"SOURCE OUT"},
               {.title = "RECORD IN", .optional = true},
               {.title = "RECORD OUT", .optional = true}});
  for (const app::Shot& shot : shots)
    table.add(
        {shot.reel, orDash(shot.clipName), shot.tracks, shot.sourceIn, shot.sourceOut, shot.recordIn, shot.recordOut});
  table.print(indent);
}

void printDiff(const app::ListDiff& diff)
{
  if (!diff.newReels.empty())
    print(fmt::format("{} new:\n", counted(diff.newReels.size(), "reel")));
  for (const app::NewReel& reel : diff.newReels)
    print(newReelText(reel));
  if (!diff.goneReels.empty())
    print(fmt::format("{} gone:\n", counted(diff.goneReels.size(), "reel")));
  for (const std::string& reel : diff.goneReels)
    print(fmt::format("  {}\n", displayText(reel)));
  if (!diff.spellings.empty())
    print("same reel, other spelling:\n");
  for (const lists::Spelling& spelling : diff.spellings)
    print(fmt::format("  {} is {}\n", displayText(spelling.other), displayText(spelling.reel)));
  printShotsOf("added", diff.added);
  printShotsOf("no longer there", diff.missing);
  if (diff.empty())
    print("no differences\n");
  for (const auto& [file, line] : diff.rejected)
    complain(fmt::format("{}: line {} rejected: {} ({})", file, line.line, line.reason, line.text));
}

ExitCode run(const Options& options, const Globals& globals)
{
  app::ListFiles files = app::readListFiles(options.files);
  if (!files.failures.empty())
    throw files.failures.front();
  app::Session session(globals.project, app::Access::Read);
  const app::ListDiff diff = app::compareLists(session, files.read, options.gone);
  if (options.json)
    print(app::jsonText(diff));
  else
    printDiff(diff);
  return diff.rejected.empty() ? done : incomplete;
}

} // namespace

void addDiff(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "diff",
       .description = "Compare new versions of cut lists and log files with the project",
       .examples = {"reeldb diff evening.edl", "reeldb diff --gone evening.edl", "reeldb diff --json rushes.ale"},
       .details =
           "Reports the reels that an import would make (with existing reels that they may be, see reeldb which),\n"
           "reels in another spelling, the shots that it would add, and shots of the lists' reels that are in the\n"
           "project but no longer in the lists. Several files are compared as one list. A cut list is compared\n"
           "only with shots from cut lists, and a log file only with shots from log files. With --gone the files\n"
           "are taken as complete: a reel that none of them names is reported as gone, with its shots. Nothing is\n"
           "changed. The exit code is 0, with and without differences, or 4 if lines were rejected."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("FILE", options->files, "The lists").required().shownAs("");
  command.flag("--gone", options->gone, "Also report reels that none of the files names");
  command.json(options->json);
}

} // namespace reeldb::cli
