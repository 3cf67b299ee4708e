// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/shots.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const app::ReelShots found = app::shotsOfReel(session, options.id);
  if (options.json) {
    print(app::jsonText(found.shots));
    return done;
  }
  if (!found.shots.empty())
    printShots(found.shots);
  print(fmt::format("{} from reel {}\n", counted(found.shots.size(), "shot"), base::displayText(found.reel)));
  return done;
}

} // namespace

void addShots(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add({.name = "shots",
                              .description = "List the shots recorded from a reel",
                              .examples = {"reeldb shots A001", "reeldb shots --json A001"}},
                             [options](const Globals& globals) { return run(*options, globals); });
  command.text("ID", options->id, "The reel").required().shownAs("");
  command.json(options->json);
}

} // namespace reeldb::cli
