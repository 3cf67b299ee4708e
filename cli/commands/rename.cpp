// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "module/counted.h"
#include "module/display_text.h"
#include "module/failure.h"
#include "module/field_limit.h"
#include "module/host_text.h"
#include "module/session.h"
#include "module/shot.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string oldId, newId;
  bool dryRun = false;
  bool json = false;
};

/// The identifier as a new reel of that name would get it. The library takes any, so what makes no sense is refused
/// here.
std::string checkedNewId(ReelDbManager& manager, const ReelDbRec& reel, const std::string& asked)
{
  const std::string id = text(manager.trimLeadingTrailingSpaces(hostText(asked)));
  if (id.empty())
    throw Failure(refused, fmt::format("\"{}\": no name for a reel (it is blank)", shortText(asked)));
  if (id.size() > longestField)
    throw Failure(refused, fmt::format("{}: no name for a reel (it has {} bytes, {} are the most)", shortText(id),
                                       id.size(), longestField));
  if (manager.representsInternallyGeneratedMaterial(hostText(id)))
    throw Failure(refused, fmt::format("{}: no name for a reel (a star denotes generated material)", shortText(id)));
  ReelDbRec other = manager.getReelInfo(hostText(id));
  if (other.valid() && other.compare(reel) != 0)
    throw Failure(refused, fmt::format("{}: exists already", shortText(text(other.reelId()))));
  return id;
}

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, options.dryRun ? reelhost::Access::Read : reelhost::Access::Write);
  ReelDbManager& manager = session.manager();
  ReelDbRec reel = session.requireReel(options.oldId);
  const std::string before = text(reel.reelId());
  const std::string after = checkedNewId(manager, reel, options.newId);
  const CookieVec shots = before == after ? CookieVec() : shotsOf(before);
  if (before != after)
    manager.changeReelId(hostText(before), hostText(after));
  const bool stored = !options.dryRun && session.commit();
  if (options.json) {
    Json json = {{"from", before}, {"to", after}, {"dry_run", options.dryRun}, {"stored", stored}};
    json["shots"] = toJson(materialOf(shots));
    printJson(json);
    return done;
  }
  if (before == after) {
    print(fmt::format("{}: is called that already\n", displayText(before)));
    return done;
  }
  if (!shots.empty())
    printShots(materialOf(shots));
  print(fmt::format("{} is now {}, in {} too\n", displayText(before), displayText(after),
                    counted(shots.count(), "shot")));
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
       .details = "Outer blanks of the new name do not count. A name that another reel has, letter case aside, is\n"
                  "refused; another spelling of the reel's own name is not."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "OLD", options->oldId, "The reel")->required()->type_name("");
  takeText(app, "NEW", options->newId, "Its new identifier")->required()->type_name("");
  takeFlag(app, "--dry-run", options->dryRun, "Report what would happen and change nothing");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
