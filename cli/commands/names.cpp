// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/names_check.h"
#include "commands/import_report.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct CheckOptions {
  bool apply = false, json = false;
};

ExitCode check(const CheckOptions& options, const Globals& globals)
{
  app::Session session(globals.project, options.apply ? app::Access::Write : app::Access::Read);
  const app::NamesCheck found = app::checkNames(session, options.apply);
  if (found.stored)
    changesAreStored();
  if (options.json) {
    print(app::jsonText(found));
    return done;
  }
  print(toText(found.moves, options.apply ? Mood::Fact : Mood::Conditional));
  print(namesText(found.names, textColumns(stdout)));
  if (found.shotsWithoutList > 0)
    print(fmt::format("{} without a kept list: import their lists again to judge the names by all that the lists say\n",
                      counted(found.shotsWithoutList, "shot")));
  if (found.moves.empty())
    print("every shot has the reel that the names say\n");
  else
    print(options.apply ? "reeldb undo takes this back\n" : "--apply moves them\n");
  return done;
}

} // namespace

void addNames(CommandLine& line)
{
  const Command group = line.addGroup("names", "Check the reels that shots have by their names", "reeldb names check");

  const auto options = std::make_shared<CheckOptions>();
  Command command = line.add(
      group,
      {.name = "check",
       .description = "List the shots whose reel would have another name today",
       .examples = {"reeldb names check", "reeldb names check --apply", "reeldb names check --json"},
       .details =
           "Lists what would move if the reels of all shots followed from all names of the project, and names that\n"
           "may mean several reels. Shots that were made before projects kept lists are the usual reason: no list\n"
           "says whether their names are cut, so such a name may be cut here if it has 6, 8, 16, 32 or 129\n"
           "characters. Importing their lists again is safer, because the lists say it. --apply moves the shots."},
      [options](const Globals& globals) { return check(*options, globals); });
  command.flag("--apply", options->apply, "Move the shots");
  command.json(options->json);
}

} // namespace reeldb::cli
