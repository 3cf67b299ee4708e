// SPDX-License-Identifier: Apache-2.0
#include "app/alias.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reels.h"
#include "base/display_text.h"
#include "commands/commands.h"
#include "commands/import_report.h"
#include "commands/names_text.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::string reel;
  std::vector<std::string> names;
  bool remove = false, dryRun = false, json = false;
};

std::string originOf(const app::ReelName& name)
{
  switch (name.origin) {
  case app::NameOrigin::Renamed:
    return "its name before it was renamed";
  case app::NameOrigin::Given:
    return "given to it";
  case app::NameOrigin::OneList:
    return name.list != 0 ? fmt::format("given to it for list {}", name.list)
                          : "given to it for a list that was removed";
  case app::NameOrigin::Lists:
    break;
  }
  const std::string_view reason = reasonOf(name.match);
  return fmt::format("from lists{}{}{}", reason.empty() ? "" : ": ", reason,
                     name.sourceId.empty() ? "" : fmt::format(" (source id {})", name.sourceId));
}

void report(const Options& options, const app::ReelAliases& aliases)
{
  print(toText(aliases.moves, options.dryRun ? Mood::Conditional : Mood::Fact));
  Table table({{"NAME"}, {"WHERE IT COMES FROM"}});
  for (const app::ReelName& name : aliases.names)
    table.add({name.name, originOf(name)});
  if (!table.empty())
    table.print();
  print(fmt::format("{} has {} beside its identifier\n", displayText(aliases.reel),
                    counted(aliases.names.size(), "name")));
  if (options.dryRun && !options.names.empty())
    print("dry run: the project stays as it was\n");
}

ExitCode run(const Options& options, const Globals& globals)
{
  if (options.remove && options.names.empty())
    throw app::Error(app::ErrorKind::Invalid, "alias: --remove needs a name");
  const bool reads = options.dryRun || options.names.empty();
  app::Session session(globals.project, reads ? app::Access::Read : app::Access::Write);
  const app::ReelAliases aliases =
      options.names.empty() ? app::aliasesOf(session, options.reel)
                            : app::changeAliases(session, options.reel, options.names, options.remove, options.dryRun);
  if (aliases.stored)
    changesAreStored();
  if (options.json)
    print(app::jsonText(aliases));
  else
    report(options, aliases);
  return done;
}

} // namespace

void addAlias(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "alias",
       .description = "List the names that mean a reel in lists, and give it more",
       .examples = {"reeldb alias A001", "reeldb alias A001 TAPE_ONE", "reeldb alias A001 --remove TAPE_ONE"},
       .details = fmt::format(
           "A name that is given to a reel means that reel in every list, whatever else the name looks like, and\n"
           "the shots of that name go there. --remove takes a given name away, or an old name of a renamed reel;\n"
           "lists then mean by it what the names say, and its shots go there. Without a NAME it lists the names\n"
           "and where each comes from. reeldb undo takes a change back.\n{}",
           app::reelNameRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("REEL", options->reel, "The reel").required().shownAs("");
  command.texts("NAME", options->names, "Names to give it").shownAs("");
  command.flag("--remove", options->remove, "Take these names away from it");
  command.flag("--dry-run", options->dryRun, "Report what would happen, and change nothing");
  command.json(options->json);
}

} // namespace reeldb::cli
