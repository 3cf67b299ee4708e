// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/history.h"
#include "base/number.h"
#include "commands/taken_back.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> revision;
  bool any = false;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  std::optional<std::int64_t> revision;
  if (options.revision) {
    revision = base::parseNumber(*options.revision);
    if (!revision)
      throw app::Error(app::ErrorKind::Invalid,
                       fmt::format("\"{}\": not a revision (reeldb history lists them)", *options.revision));
  }
  app::Session session(globals.project, app::Access::Write);
  return report(app::undo(session, revision, options.any), options.json);
}

} // namespace

void addUndo(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "undo",
       .description = "Take back what a command stored",
       .examples = {"reeldb undo", "reeldb undo --any --json"},
       .details = "Without a revision, takes back the newest command of the same user on the same machine that is not\n"
                  "taken back yet. The next undo takes back the command before it. Later changes stay. If one of them\n"
                  "is in the way, undo names it and takes nothing back. What a command changed in the facility is not\n"
                  "taken back."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("REVISION", options->revision, "The command with this number in reeldb history").shownAs("");
  command.flag("--any", options->any, "Also commands of other users and on other machines");
  command.json(options->json);
}

} // namespace reeldb::cli
