// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>

#include <fmt/format.h>

#include "app/deletion.h"
#include "app/json/json.h"
#include "app/selection.h"
#include "base/display_text.h"
#include "base/pattern.h"
#include "commands/ask.h"
#include "commands/tables.h"
#include "commands/where.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::vector<std::string> ids, keep, where;
  bool yes = false;
  bool dryRun = false;
  bool json = false;
};

void show(const app::DeletionPlan::Item& item)
{
  constexpr std::size_t mostLines = 20; // the first of a thousand shots show which reel it is
  const std::string reel = displayText(item.reel);
  const std::string shots = counted(item.shots.size(), "shot");
  if (item.kept) {
    print(fmt::format("{}: kept, with its {} (--keep)\n", reel, shots));
    return;
  }
  print(fmt::format("{}: {}\n", reel, shots));
  const std::size_t lines = std::min(item.shots.size(), mostLines);
  if (lines > 0)
    printShots({item.shots.begin(), item.shots.begin() + static_cast<std::ptrdiff_t>(lines)}, 2);
  if (lines < item.shots.size())
    print(fmt::format("  and {} more (--json lists all)\n", item.shots.size() - lines));
}

void show(const app::DeletionPlan& plan)
{
  for (const app::DeletionPlan::Item& item : plan.items)
    show(item);
}

std::string sizeOf(const app::DeletionPlan& plan)
{
  return countedReelsAndShots(plan.reelCount(), plan.shotCount());
}

/// The reels to delete: those that were given by name, as they were given, or those that are selected.
std::vector<std::string> reelsOf(app::Session& session, const Options& options)
{
  if (options.where.empty() && std::none_of(options.ids.begin(), options.ids.end(), base::isPattern))
    return options.ids;
  return app::requireSelected(session, {options.ids, options.where});
}

/// Shows the plan and asks. Meanwhile the project is only read, so that no other process has to wait for the reply.
app::DeletionPlan confirmed(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  app::DeletionPlan plan = app::planDeletion(session, reelsOf(session, options), options.keep);
  if (!options.json)
    show(plan);
  if (!plan.empty() && !ask(fmt::format("delete {}?", sizeOf(plan))))
    throw app::Error(app::ErrorKind::Refused, "delete: not confirmed, nothing deleted");
  return plan;
}

/// Carries out the deletion in one of three ways: shows it only, asks before it, or deletes at once.
app::DeletionPlan deleted(const Options& options, const Globals& globals)
{
  if (options.dryRun) {
    app::Session session(globals.project, app::Access::Read);
    app::DeletionPlan plan = app::planDeletion(session, reelsOf(session, options), options.keep);
    plan.dryRun = true;
    return plan;
  }
  if (options.yes) {
    app::Session session(globals.project, app::Access::Write);
    return app::deleteReels(session, reelsOf(session, options), options.keep);
  }
  app::DeletionPlan plan = confirmed(options, globals);
  app::Session session(globals.project, app::Access::Write);
  app::carryOut(session, plan);
  return plan;
}

ExitCode run(const Options& options, const Globals& globals)
{
  if (options.ids.empty() && options.where.empty())
    throw app::Error(app::ErrorKind::Invalid, "delete: ID is required, or --where (see reeldb delete --help)");
  const app::DeletionPlan plan = deleted(options, globals);
  if (!options.dryRun && !plan.empty())
    changesAreStored();
  if (options.json) {
    print(app::jsonText(plan));
    return plan.empty() ? refused : done;
  }
  if (options.yes || options.dryRun) // else it was shown before it was confirmed
    show(plan);
  if (plan.empty())
    print(options.dryRun ? "dry run: nothing would be deleted\n" : "nothing deleted\n");
  else if (options.dryRun)
    print(fmt::format("dry run: {} would be deleted, the project stays as it was\n", sizeOf(plan)));
  else
    print(fmt::format("{} deleted (reeldb undelete brings them back)\n", sizeOf(plan)));
  return plan.empty() ? refused : done;
}

} // namespace

void addDelete(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "delete",
       .description = "Delete reels and the shots recorded from them",
       .examples = {"reeldb delete --dry-run A001 A002 --keep A002", "reeldb delete A001 --yes",
                    "reeldb delete --dry-run \"A*\" --where available=yes"},
       .details = "Shows the reels and shots to delete, and asks. A reel in --keep is not deleted, nor are its shots.\n"
                  "reeldb undelete brings deleted reels and shots back.\n\n" +
                  std::string(whereRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("ID", options->ids, "The reels; without any, those of --where").shownAs("");
  addWhere(command, options->where);
  command.texts("--keep", options->keep, "A reel to keep; may be given several times")
      .shownAs("ID")
      .oneEachTime(); // the words after its value are reels to delete
  command.flag("--yes,-y", options->yes, "Do not ask");
  command.flag("--dry-run", options->dryRun, "Show what would be deleted, and delete nothing");
  command.json(options->json);
}

} // namespace reeldb::cli
