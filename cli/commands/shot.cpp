// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "app/json/json.h"
#include "app/split.h"
#include "base/display_text.h"
#include "commands/commands.h"
#include "commands/import_report.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> shots;
  std::string to;
  bool dryRun = false, json = false;
};

app::Session sessionFor(const Options& options, const Globals& globals)
{
  return {globals.project, options.dryRun ? app::Access::Read : app::Access::Write};
}

ExitCode move(const Options& options, const Globals& globals)
{
  const std::vector<std::int64_t> numbers = shotNumbers("shot move", options.shots);
  app::Session session = sessionFor(options, globals);
  const app::ShotsMoved moved = app::moveShots(session, numbers, options.to, options.dryRun);
  if (moved.stored)
    changesAreStored();
  if (options.json) {
    print(app::jsonText(moved));
    return done;
  }
  print(toText(moved.moves, options.dryRun ? Mood::Conditional : Mood::Fact));
  if (moved.shots.empty())
    print(fmt::format("{}: has these shots already\n", base::displayText(moved.to)));
  else
    print(options.dryRun ? "dry run: the project stays as it was\n" : "reeldb undo takes that back\n");
  return done;
}

ExitCode remove(const Options& options, const Globals& globals)
{
  const std::vector<std::int64_t> numbers = shotNumbers("shot delete", options.shots);
  app::Session session = sessionFor(options, globals);
  const app::ShotsDeleted deleted = app::deleteShots(session, numbers, options.dryRun);
  if (deleted.stored)
    changesAreStored();
  if (options.json) {
    print(app::jsonText(deleted));
    return done;
  }
  printShots(deleted.shots);
  print(fmt::format("{} {}\n", counted(deleted.shots.size(), "shot"), options.dryRun ? "would be deleted" : "deleted"));
  print(options.dryRun ? "dry run: the project stays as it was\n" : "lists do not bring them back; reeldb undo does\n");
  return done;
}

} // namespace

void addShot(CommandLine& line)
{
  const Command group = line.addGroup("shot", "Move or delete single shots", "reeldb shot move 2 --to A002");
  const std::string numbers = "The shots, by the numbers that reeldb shots ID shows";

  const auto moveOptions = std::make_shared<Options>();
  Command moving = line.add(
      group,
      {.name = "move",
       .description = "Put shots into another reel",
       .examples = {"reeldb shot move --dry-run 2 --to A002", "reeldb shot move 2 4 --to A002"},
       .details = "Lists that have the shots keep them there, whatever they call the source. A shot that the other\n"
                  "reel has already is refused. reeldb undo takes the move back."},
      [moveOptions](const Globals& globals) { return move(*moveOptions, globals); });
  moving.texts("SHOT", moveOptions->shots, numbers).required().shownAs("");
  moving.text("--to", moveOptions->to, "The reel").required().shownAs("REEL");
  moving.flag("--dry-run", moveOptions->dryRun, "Report what would happen, and change nothing");
  moving.json(moveOptions->json);

  const auto deleteOptions = std::make_shared<Options>();
  Command deleting = line.add(
      group,
      {.name = "delete",
       .description = "Delete shots",
       .examples = {"reeldb shot delete --dry-run 2", "reeldb shot delete 2 4"},
       .details = "The events of lists that use the shots go with them, and no list brings them back. The reel stays,\n"
                  "even without a shot. reeldb undo takes the deletion back."},
      [deleteOptions](const Globals& globals) { return remove(*deleteOptions, globals); });
  deleting.texts("SHOT", deleteOptions->shots, numbers).required().shownAs("");
  deleting.flag("--dry-run", deleteOptions->dryRun, "Show what would be deleted, and delete nothing");
  deleting.json(deleteOptions->json);
}

} // namespace reeldb::cli
