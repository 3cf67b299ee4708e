// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>
#include <iterator>

#include <fmt/ranges.h>

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/list_files.h"
#include "app/needs.h"
#include "app/rolls.h"
#include "base/display_text.h"
#include "commands/name_options.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> clips;
  std::optional<std::string> reel, file, by;
  NameOptions names;
  bool missing = false;
  bool json = false;
};

/// The existing reels that the names of a missing one may mean, but for those that namesText() shows.
std::string candidatesText(const app::Need& need)
{
  std::string text;
  for (const app::Candidate& candidate : need.candidates)
    if (candidate.reasons != std::vector{app::Reason::Form})
      text.append(text.empty() ? "" : "; or ")
          .append(fmt::format("{}: {}", base::displayText(candidate.reel), reasonsText(candidate)));
  return text.empty() ? text : fmt::format("  {} is perhaps {}\n", base::displayText(need.id), text);
}

/// "5 reels needed, 2 ready, 1 missing, 2 unavailable"
std::string countsText(const std::vector<app::Need>& needs)
{
  std::string text = fmt::format("{} needed, {} ready", counted(needs.size(), "reel"), app::readyCount(needs));
  for (const auto& [state, count] : app::countsOfStates(needs))
    if (state != "ready")
      text.append(fmt::format(", {} {}", count, state));
  return text;
}

void report(const Options& options, const std::vector<app::Need>& needs)
{
  std::vector<app::Need> shown;
  std::copy_if(needs.begin(), needs.end(), std::back_inserter(shown),
               [&](const app::Need& need) { return !options.missing || app::isMissing(need); });
  if (options.json) {
    print(app::jsonText(shown));
    return;
  }
  std::sort(shown.begin(), shown.end(), app::comesFirst);
  Table table({{"REEL"},
               {.title = "SHOTS", .number = true},
               {"STATE"},
               {"TYPE"},
               {.title = "BIN", .optional = true},
               {.title = "LAST DEVICE", .optional = true}});
  for (const app::Need& need : shown) {
    const app::Reel reel = need.reel.value_or(app::Reel());
    table.add({need.id, std::to_string(need.shots), need.state(), orDash(reel.type), reel.bin, reel.lastDevice});
  }
  table.printOr("");
  for (const app::Need& need : shown) {
    print(namesText(need.names, textColumns(stdout)));
    print(candidatesText(need));
  }
  print(countsText(needs) + "\n");
}

void reportRolls(const Options& options, const std::vector<app::NeededRoll>& rolls)
{
  if (options.json) {
    print(app::jsonText(rolls));
    return;
  }
  Table table({{"ROLL"},
               {.title = "REELS", .number = true},
               {.title = "READY", .number = true},
               {.title = "SHOTS", .number = true}});
  std::size_t reels = 0, ready = 0;
  for (const app::NeededRoll& roll : rolls) {
    table.add(
        {orDash(roll.name), std::to_string(roll.reels.size()), std::to_string(roll.ready), std::to_string(roll.shots)});
    reels += roll.reels.size();
    ready += roll.ready;
  }
  table.print();
  const bool hasOthers = !rolls.empty() && rolls.back().name.empty();
  print(fmt::format("{}; {} needed, {} ready\n", counted(rolls.size() - (hasOthers ? 1 : 0), "roll"),
                    counted(reels, "reel"), ready));
}

/// Reports the rest of the list: sources that are not reels, ambiguous sources, and lines with a remark or that could
/// not be read.
void complainOfTheRest(const app::ListFile& file)
{
  for (const lists::Special& special : file.list.specials)
    complain(fmt::format("{}: {}: not a reel ({}; {}, {} {})", file.path, special.text, special.reason,
                         counted(special.count, "clip"), special.lines.size() == 1 ? "line" : "lines",
                         fmt::join(special.lines, ", ")));
  for (const lists::Warning& line : file.list.warnings)
    complain(fmt::format("{}: line {}: {} ({})", file.path, line.line, line.reason, line.text));
  for (const lists::Rejected& line : file.list.rejected)
    complain(fmt::format("{}: line {} rejected: {} ({})", file.path, line.line, line.reason, line.text));
}

/// Throws app::Error unless the options name shots in exactly one way.
void checkOptions(const Options& options)
{
  const auto refuse = [](const char* what) { throw app::Error(app::ErrorKind::Invalid, what); };
  const int ways = !options.clips.empty() + options.reel.has_value() + options.file.has_value();
  if (ways == 0)
    refuse("reels-of: no shots given (use clip names, --reel ID or --file FILE)");
  if (ways > 1)
    refuse("reels-of: use only one of clip names, --reel ID and --file FILE");
  if (std::find(options.clips.begin(), options.clips.end(), "") != options.clips.end())
    refuse("reels-of: \"\": not a clip name");
  if (options.by && options.missing)
    refuse("reels-of: --by and --missing exclude each other");
  if (!options.file && (options.names.match || options.names.names))
    refuse("reels-of: --match and --names need --file FILE");
  requireGroup(options.by);
  if (options.reel && options.reel->empty())
    refuse("reels-of: \"\": not a reel");
}

ExitCode ofList(const Options& options, const Globals& globals)
{
  const lists::NameRules rules = options.names.rules();
  const app::ListFile file = app::readListFile(*options.file, options.names.reading());
  app::Session session(globals.project, app::Access::Read);
  const std::vector<app::Need> needs = app::needsOfList(session, file, rules);
  if (options.by && !needs.empty())
    reportRolls(options, app::needsByRoll(session, needs, file.list.clips));
  else if (!needs.empty())
    report(options, needs);
  complainOfTheRest(file);
  if (needs.empty())
    throw app::Error(app::ErrorKind::Refused, fmt::format("{}: none of its clips has a reel", file.path));
  if (!file.list.rejected.empty())
    return incomplete;
  return app::readyCount(needs) == needs.size() ? done : refused;
}

ExitCode run(const Options& options, const Globals& globals)
{
  checkOptions(options);
  if (options.file)
    return ofList(options, globals);
  app::Session session(globals.project, app::Access::Read);
  const std::vector<app::Need> needs =
      options.reel ? app::needsOfReel(session, *options.reel) : app::needsOfClips(session, options.clips);
  if (options.by)
    reportRolls(options, app::needsByRoll(session, needs));
  else
    report(options, needs);
  return done;
}

} // namespace

void addReelsOf(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "reels-of",
       .description = "List the reels that shots or a list need, and which of them are not ready",
       .examples = {"reeldb reels-of \"KITCHEN WIDE\"", "reeldb reels-of --reel A002",
                    "reeldb reels-of --file evening.edl --match exact", "reeldb reels-of --file evening.edl --by roll",
                    "reeldb reels-of --file evening.edl --json", "reeldb reels-of --file evening.edl --missing"},
       .details =
           "The state of a reel is ready, missing (the project does not have it), perhaps (its name may mean reels "
           "that\n"
           "the project has), unavailable, unknown type, or both of the last two. Reels are shown by state, then by\n"
           "bin, then by name; --json has them in the order of the shots. LAST DEVICE is the device that the reel\n"
           "was in most recently.\n"
           "\n"
           "The list need not be imported. Its sources that are not reels, and its lines that cannot be read, are\n"
           "reported on standard error. With --file the exit code is 0 if all reels are ready, 1 if one is not, and 4\n"
           "if a line of the list could not be read, whatever the reels are.\n"
           "\n"
           "--by roll counts the needed reels of each camera roll instead, as list --by roll does, and how many of "
           "them\n"
           "are ready. Reels of no roll are on the last line.\n"
           "\n"
           "--match exact takes a name for a reel only if it is the same name or an old name of the reel. --names "
           "clip\n"
           "takes a clip name that begins with a cut name for the whole name, even if it has no ending of a file."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("CLIP", options->clips, "Clip names of shots in the project").shownAs("");
  command.text("--reel", options->reel, "The shots recorded from this reel").shownAs("ID");
  command.text("--file", options->file, "The clips of this cut list, log file or timeline").shownAs("FILE");
  command.flag("--missing", options->missing, "Only the reels that the project does not have: missing or perhaps");
  command.text("--by", options->by, "Group the reels: roll").shownAs("GROUP");
  addNameOptions(command, options->names);
  command.json(options->json);
}

} // namespace reeldb::cli
