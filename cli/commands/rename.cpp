// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/old_names.h"
#include "app/reel_name.h"
#include "app/session.h"
#include "app/shot.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string oldId, newId;
  bool dryRun = false;
  bool json = false;
};

/// Throws Failure when another reel is called that. The library would take the name all the same.
void requireFree(ReelDbManager& manager, const ReelDbRec& reel, const std::string& id)
{
  ReelDbRec other = manager.getReelInfo(hostText(id));
  if (other.valid() && other.compare(reel) != 0)
    throw Failure(refused, fmt::format("\"{}\": exists already", shortText(text(other.reelId()))));
}

/// The shots that bear the reel's identifier, as they are under the new one.
std::vector<reelhost::Material> shotsUnder(const std::string& newId, const CookieVec& logs)
{
  std::vector<reelhost::Material> shots = materialOf(logs);
  for (reelhost::Material& shot : shots)
    shot.reel = newId;
  return shots;
}

ExitCode run(const Options& options, const Globals& globals)
{
  const std::string after = checkedReelName(options.newId);
  Session session(globals, options.dryRun ? reelhost::Access::Read : reelhost::Access::Write);
  ReelDbManager& manager = session.manager();
  ReelDbRec reel = session.requireReel(options.oldId);
  const std::string before = text(reel.reelId());
  requireFree(manager, reel, after);
  if (before != after)
    warnOfSpecialName(after);
  const auto shots = shotsUnder(after, before == after ? CookieVec() : shotsOf(before));
  if (before != after && !options.dryRun) {
    manager.changeReelId(hostText(before), hostText(after));
    if (folded(before) != folded(after))
      keepOldName(reel, before);
  }
  const bool stored = !options.dryRun && session.commit();
  if (options.json) {
    Json json = {{"from", before}, {"to", after}, {"dry_run", options.dryRun}, {"stored", stored}};
    json["shots"] = toJson(shots);
    printJson(json);
    return done;
  }
  if (before == after) {
    print(fmt::format("{}: is called that already\n", displayText(before)));
    return done;
  }
  if (!shots.empty())
    printShots(shots);
  print(fmt::format("{} {} {}, in {} too\n", displayText(before), options.dryRun ? "would be" : "is now",
                    displayText(after), counted(shots.size(), "shot")));
  if (options.dryRun)
    print("dry run: the project stays as it was\n");
  return done;
}

} // namespace

void addRename(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "rename",
       .description = "Rename a reel, and every shot recorded from it",
       .examples = {"reeldb rename --dry-run A001 A001B", "reeldb rename A001 A001B", "reeldb rename A001B a001b"},
       .details = fmt::format(
           "Outer blanks of the new name do not count. A name that another reel has, letter case aside, is\n"
           "refused; another spelling of the reel's own name is not. reeldb which still finds the reel by the\n"
           "old name.\n{}",
           reelNameRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "OLD", options->oldId, "The reel")->required()->type_name("");
  takeText(app, "NEW", options->newId, "Its new identifier")->required()->type_name("");
  takeFlag(app, "--dry-run", options->dryRun, "Report what would happen and change nothing");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
