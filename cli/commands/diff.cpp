// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/diff.h"
#include "app/json/json.h"
#include "base/display_text.h"
#include "commands/import_report.h"
#include "commands/name_options.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::vector<std::string> files;
  std::optional<std::string> as;
  NameOptions names;
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

/// Prints a table of shots as they are now. The column of what they were is there if one was anything else.
void printStepsOf(const std::string& heading, const std::vector<app::ClipStep>& steps)
{
  constexpr std::size_t indent = 2;
  if (steps.empty())
    return;
  print(fmt::format("{} {}:\n", counted(steps.size(), "shot"), heading));
  Table table({{"REEL"},
               {"CLIP"},
               {"TRACKS"},
               {"SOURCE IN"},
               {"SOURCE OUT"},
               {.title = "RECORD IN", .optional = true},
               {.title = "RECORD OUT", .optional = true},
               {.title = "WAS", .optional = true}});
  const auto was = [](const app::Shot& shot, const app::Shot& now) {
    std::string text;
    const auto add = [&](const char* what, const std::string& before, const std::string& after) {
      if (before != after)
        text.append(text.empty() ? "" : ", ").append(what).append(" ").append(orDash(before));
    };
    add("source in", shot.sourceIn, now.sourceIn);
    add("source out", shot.sourceOut, now.sourceOut);
    add("record in", shot.recordIn, now.recordIn);
    add("record out", shot.recordOut, now.recordOut);
    add("transition", shot.event.transition, now.event.transition);
    add("duration", shot.event.duration, now.event.duration);
    const auto speedOf = [](const app::Shot& of) { return of.event.speed ? of.event.speed->framesPerSecond : ""; };
    add("speed", speedOf(shot), speedOf(now));
    return text;
  };
  for (const auto& [before, after] : steps)
    table.add({after.reel, orDash(after.clipName), after.tracks, after.sourceIn, after.sourceOut, after.recordIn,
               after.recordOut, was(before, after)});
  table.print(indent);
}

void printShotsOf(const std::string& heading, const std::vector<app::Shot>& shots)
{
  std::vector<app::ClipStep> steps;
  steps.reserve(shots.size());
  for (const app::Shot& shot : shots)
    steps.push_back({shot, shot});
  printStepsOf(heading, steps);
}

void printDiff(const app::ListDiff& diff)
{
  print(toText(diff.moves, Mood::Conditional));
  print(namesText(diff.names, textColumns(stdout)));
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
  printStepsOf("trimmed", diff.trimmed);
  printStepsOf("elsewhere in the cut", diff.changed);
  if (diff.empty())
    print("no differences\n");
  else if (!diff.whole)
    for (std::size_t i = 0; i < diff.files.size(); ++i)
      if (!diff.versions[i])
        print(fmt::format("{}: compared with all shots of its reels (the project keeps no earlier version of it; --as "
                          "LIST names one)\n",
                          displayText(diff.files[i])));
  for (const auto& [file, line] : diff.rejected)
    complain(fmt::format("{}: line {} rejected: {} ({})", file, line.line, line.reason, line.text));
}

ExitCode run(const Options& options, const Globals& globals)
{
  const lists::NameRules rules = options.names.rules();
  app::ListFiles files = app::readListFiles(options.files, options.names.reading());
  if (!files.failures.empty())
    throw files.failures.front().error;
  app::Session session(globals.project, app::Access::Read);
  const app::ListDiff diff = app::compareLists(session, files.read, options.gone, options.as, rules);
  if (options.json)
    print(app::jsonText(diff));
  else
    printDiff(diff);
  if (!diff.rejected.empty())
    return incomplete;
  return diff.empty() ? done : refused;
}

} // namespace

void addDiff(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "diff",
       .description = "Compare new versions of cut lists and log files with those that the project keeps",
       .examples = {"reeldb diff evening.edl", "reeldb diff --gone evening.edl",
                    "reeldb diff --match exact evening.edl", "reeldb diff --json rushes.ale"},
       .details =
           "Compares each list with its earlier version: the list of the project that has the same bytes, or else\n"
           "the same file name, or else the same title; with --as, LIST. Reports the shots that were added, are no\n"
           "longer there, were trimmed (another source in or out), or are elsewhere in the cut, and the reels that\n"
           "an import would make. If a new reel may be an existing one under another name, it reports that one, too\n"
           "(see reeldb which).\n"
           "\n"
           "A list without an earlier version is compared with the shots of its reels: a cut list with shots from\n"
           "cut lists, a log file with shots from log files. Several such files are compared as one list. With\n"
           "--gone all files are compared in this way, as if they were all lists of the project: a reel that none\n"
           "of them names is reported as gone, with its shots. Nothing is changed. The exit code is 0 without\n"
           "differences, 1 with differences, and 4 if lines were rejected.\n"
           "\n"
           "--match exact takes a name for a reel only if it is the same name or an old name of the reel. --names "
           "clip\n"
           "takes a clip name that begins with a cut name for the whole name, even if it has no ending of a file."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("FILE", options->files, "The lists").required().shownAs("");
  command.text("--as", options->as, "Compare with this list of the project").shownAs("LIST");
  addNameOptions(command, options->names);
  command.flag("--gone", options->gone, "Also report reels that none of the files names");
  command.json(options->json);
}

} // namespace reeldb::cli
