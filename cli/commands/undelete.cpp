// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/deletion.h"
#include "app/history.h"
#include "app/json/json.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool list = false;
  bool json = false;
};

ExitCode list(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const std::vector<app::KeptDeletion> deletions = app::keptDeletions(session);
  if (options.json) {
    print(app::jsonText(deletions));
    return done;
  }
  Table table({{.title = "REVISION", .number = true},
               {.title = "TIME"},
               {.title = "USER", .optional = true},
               {.title = "MACHINE", .optional = true},
               {.title = "SHOTS", .number = true},
               {.title = "REELS"}});
  for (const app::KeptDeletion& deletion : deletions)
    table.add({std::to_string(deletion.commit.revision), orDash(localTime(deletion.commit.time)), deletion.commit.user,
               deletion.commit.machine, std::to_string(deletion.shots),
               orDash(fmt::format("{}", fmt::join(deletion.reels, ", ")))});
  table.printOr("no deletion to bring back\n");
  return done;
}

ExitCode run(const Options& options, const Globals& globals)
{
  if (options.list)
    return list(options, globals);
  app::Session session(globals.project, app::Access::Write);
  const app::Undeleted back = app::undelete(session);
  changesAreStored();
  if (options.json)
    print(app::jsonText(back));
  else
    print(headedNames(countedReelsAndShots(back.reels.size(), back.shots) + " brought back", back.reels));
  return done;
}

} // namespace

void addUndelete(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "undelete",
       .description = "Bring the last deletion back",
       .examples = {"reeldb undelete", "reeldb undelete --list"},
       .details =
           "Deleted reels and shots are kept until reeldb project compact removes them. The next undelete brings\n"
           "back the deletion before the last, and so on. What import --replace or list-file remove deleted comes back "
           "by\n"
           "reeldb undo, together with the list."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.flag("--list", options->list, "Only list the deletions that can be brought back, the newest first");
  command.json(options->json);
}

} // namespace reeldb::cli
