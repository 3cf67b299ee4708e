// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "app/host_text.h"
#include "app/session.h"
#include "app/shot.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Read);
  const std::string id = text(session.requireReel(options.id).reelId());
  const auto shots = materialOf(shotsOf(id));
  if (options.json) {
    printJson(toJson(shots));
    return done;
  }
  if (!shots.empty())
    printShots(shots);
  print(fmt::format("{} from reel {}\n", counted(shots.size(), "shot"), displayText(id)));
  return done;
}

} // namespace

void addShots(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add({.name = "shots",
                            .description = "List the shots recorded from a reel",
                            .examples = {"reeldb shots A001", "reeldb shots --json A001"}},
                           [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "ID", options->id, "The reel")->required()->type_name("");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
