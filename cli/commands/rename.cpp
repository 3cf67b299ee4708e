// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reels.h"
#include "app/rename.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::string oldId, newId;
  bool dryRun = false;
  bool json = false;
};

void report(const app::Renamed& renamed)
{
  if (renamed.from == renamed.to) {
    print(fmt::format("{}: already has this name\n", displayText(renamed.from)));
    return;
  }
  if (!renamed.shots.empty())
    printShots(renamed.shots);
  print(fmt::format("{} {} {}{}\n", displayText(renamed.from), renamed.dryRun ? "would be" : "is now",
                    displayText(renamed.to),
                    renamed.shots.empty() ? "" : ", also in " + counted(renamed.shots.size(), "shot")));
  if (renamed.dryRun)
    print("dry run: the project stays as it was\n");
}

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, options.dryRun ? app::Access::Read : app::Access::Write);
  const app::Renamed renamed = app::renameReel(session, options.oldId, options.newId, options.dryRun);
  if (renamed.stored)
    changesAreStored();
  complainOf(renamed.remarks);
  if (options.json)
    print(app::jsonText(renamed));
  else
    report(renamed);
  return done;
}

} // namespace

void addRename(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "rename",
       .description = "Rename a reel, and every shot recorded from it",
       .examples = {"reeldb rename --dry-run A001 A001B", "reeldb rename A001 A001B", "reeldb rename A001B a001b"},
       .details = fmt::format(
           "Blanks at the ends of the new name are removed. A name that another reel has, ignoring letter case, is\n"
           "refused; the reel's own name in another spelling is accepted. reeldb which still finds the reel by its\n"
           "old name.\n{}",
           app::reelNameRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("OLD", options->oldId, "The reel").required().shownAs("");
  command.text("NEW", options->newId, "Its new identifier").required().shownAs("");
  command.flag("--dry-run", options->dryRun, "Report what would happen, and change nothing");
  command.json(options->json);
}

} // namespace reeldb::cli
