// SPDX-License-Identifier: Apache-2.0
#include "app/merge.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/json/json.h"
#include "base/display_text.h"
#include "commands/commands.h"
#include "commands/import_report.h"
#include "commands/tables.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::vector<std::string> reels; ///< the last one remains
  bool force = false, dryRun = false, json = false;
};

void report(const app::Merged& merged)
{
  print(toText(merged.moves, merged.dryRun ? Mood::Conditional : Mood::Fact));
  if (!merged.different.empty()) {
    Table table({{"FIELD"}, {"REEL"}, {"HAD"}, {fmt::format("{} HAS", merged.into)}});
    for (const app::LostField& lost : merged.different)
      table.add({lost.field, lost.reel, orDash(lost.value), orDash(lost.kept)});
    table.print();
  }
  print(displayText(fmt::format("{} {} {}", fmt::join(merged.from, ", "),
                                merged.dryRun ? "would be" : (merged.from.size() == 1 ? "is now" : "are now"),
                                merged.into)) +
        "\n");
  print(displayText(fmt::format("names that mean {} in lists: {}", merged.into, fmt::join(merged.names, ", "))) + "\n");
  print(merged.dryRun ? "dry run: the project stays as it was\n" : "reeldb undo takes all of it back\n");
}

ExitCode run(const Options& options, const Globals& globals)
{
  if (options.reels.size() < 2)
    throw app::Error(app::ErrorKind::Invalid, "merge: at least two reels are needed (the last one remains)");
  app::Session session(globals.project, options.dryRun ? app::Access::Read : app::Access::Write);
  const app::Merged merged = app::mergeReels(session, {options.reels.begin(), options.reels.end() - 1},
                                             options.reels.back(), options.force, options.dryRun);
  if (merged.stored)
    changesAreStored();
  if (options.json)
    print(app::jsonText(merged));
  else
    report(merged);
  return done;
}

} // namespace

void addMerge(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "merge",
       .description = "Join reels that are one tape",
       .examples = {"reeldb merge --dry-run A002 A001", "reeldb merge A002 A001"},
       .details =
           "The last reel remains. It gets the shots of the others, and their names: in every list that comes, these\n"
           "names mean the remaining reel. It keeps its fields, and the fields in which the others differ are shown.\n"
           "The records of the others are deleted. A reel that is in use cannot be deleted so. Reels to which lists\n"
           "give different source ids are joined only with --force. reeldb undo takes all of it back."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("REEL", options->reels, "The reels; the last one remains").required().shownAs("");
  command.flag("--force", options->force, "Join reels with different source ids, too");
  command.flag("--dry-run", options->dryRun, "Report what would happen, and change nothing");
  command.json(options->json);
}

} // namespace reeldb::cli
