// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/selection.h"
#include "app/shots.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "commands/where.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> ids, where;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  const app::Selection selection{options.ids, options.where};
  if (selection.empty())
    throw app::Error(app::ErrorKind::Invalid, "shots: ID is required, or --where (see reeldb shots --help)");
  app::Session session(globals.project, app::Access::Read);
  std::vector<app::ReelShots> found;
  if (selection.isOneName())
    found.push_back(app::shotsOfReel(session, selection.reels.front()));
  else
    for (const std::string& reel : app::requireSelected(session, selection))
      found.push_back(app::shotsOfReel(session, reel));
  if (options.json) {
    std::vector<app::NumberedShot> shots;
    for (app::ReelShots& reel : found)
      std::move(reel.shots.begin(), reel.shots.end(), std::back_inserter(shots));
    print(app::jsonText(shots));
    return done;
  }
  for (const app::ReelShots& reel : found) {
    if (!reel.shots.empty())
      printShots(reel.shots);
    print(fmt::format("{} from reel {}\n", counted(reel.shots.size(), "shot"), base::displayText(reel.reel)));
  }
  return done;
}

} // namespace

void addShots(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add({.name = "shots",
                              .description = "List the shots recorded from reels",
                              .examples = {"reeldb shots A001", "reeldb shots --json A001", "reeldb shots \"A00*\""},
                              .details = whereRule},
                             [options](const Globals& globals) { return run(*options, globals); });
  command.texts("ID", options->ids, "The reels; without any, those of --where").shownAs("");
  addWhere(command, options->where);
  command.json(options->json);
}

} // namespace reeldb::cli
