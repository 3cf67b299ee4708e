// SPDX-License-Identifier: Apache-2.0
#include "app/split.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reels.h"
#include "base/display_text.h"
#include "commands/commands.h"
#include "commands/import_report.h"
#include "commands/tables.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::string reel, newReel;
  std::vector<std::string> lists, names, shots;
  bool dryRun = false, json = false;
};

void report(const app::Split& split)
{
  print(toText(split.moves, split.dryRun ? Mood::Conditional : Mood::Fact));
  print(fmt::format("{} {} a reel of its own\n", displayText(split.into), split.dryRun ? "would be" : "is"));
  print(split.dryRun ? "dry run: the project stays as it was\n" : "reeldb undo takes all of it back\n");
}

ExitCode run(const Options& options, const Globals& globals)
{
  if (!options.lists.empty() + !options.names.empty() + !options.shots.empty() != 1)
    throw app::Error(app::ErrorKind::Invalid,
                     "split: use one of --list, --name and --shot (they say what goes to NEW)");
  const app::SplitBy by{options.lists, options.names, shotNumbers("split", options.shots)};
  app::Session session(globals.project, options.dryRun ? app::Access::Read : app::Access::Write);
  const app::Split split = app::splitReel(session, options.reel, options.newReel, by, options.dryRun);
  if (split.stored)
    changesAreStored();
  if (options.json)
    print(app::jsonText(split));
  else
    report(split);
  return done;
}

} // namespace

void addSplit(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "split",
       .description = "Make a part of a reel a reel of its own",
       .examples = {"reeldb split --dry-run A001 A001B --shot 2", "reeldb split A001 A001_DAY2 --list evening.edl"},
       .details = fmt::format(
           "The part is all that a list takes from the reel (--list), all that lists call by a name (--name), or\n"
           "single shots by their numbers (--shot; reeldb shots ID shows the numbers). That is kept: the same list,\n"
           "and a new version of it, mean NEW by the names of the reel; every list means NEW by the name; the shots\n"
           "stay what they are. If other lists use a shot, too, it becomes two. NEW gets the fields of any new reel;\n"
           "reeldb copy copies those of REEL. reeldb undo takes all of it back.\n{}",
           app::reelNameRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("REEL", options->reel, "The reel").required().shownAs("");
  command.text("NEW", options->newReel, "The identifier of the new reel").required().shownAs("");
  command.texts("--list", options->lists, "A list of the project; may be given several times")
      .shownAs("LIST")
      .oneEachTime();
  command.texts("--name", options->names, "A name of the reel; may be given several times")
      .shownAs("NAME")
      .oneEachTime();
  command.texts("--shot", options->shots, "A shot of the reel; may be given several times")
      .shownAs("SHOT")
      .oneEachTime();
  command.flag("--dry-run", options->dryRun, "Report what would happen, and change nothing");
  command.json(options->json);
}

} // namespace reeldb::cli
