// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include "app/history.h"
#include "commands/taken_back.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool any = false;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Write);
  return report(app::redo(session, options.any), options.json);
}

} // namespace

void addRedo(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add({.name = "redo",
                              .description = "Repeat what undo took back last",
                              .examples = {"reeldb redo"},
                              .details = "The next redo repeats what the undo before that took back."},
                             [options](const Globals& globals) { return run(*options, globals); });
  command.flag("--any", options->any, "Also what was taken back by other users or on other machines");
  command.json(options->json);
}

} // namespace reeldb::cli
