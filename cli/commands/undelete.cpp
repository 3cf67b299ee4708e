// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/ranges.h>

#include <fmt/format.h>

#include "app/deletion.h"
#include "app/json/json.h"
#include "base/display_text.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Write);
  const app::Undeleted back = app::undelete(session);
  changesAreStored();
  if (options.json)
    print(app::jsonText(back));
  else
    print(fmt::format("{} and {} brought back{}\n", counted(back.reels.size(), "reel"), counted(back.shots, "shot"),
                      back.reels.empty() ? "" : base::displayText(fmt::format(": {}", fmt::join(back.reels, ", ")))));
  return done;
}

} // namespace

void addUndelete(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "undelete",
       .description = "Bring the last deletion back",
       .examples = {"reeldb undelete"},
       .details =
           "Deleted reels and shots are kept until reeldb project compact removes them. The next undelete brings\n"
           "back the deletion before the last, and so on."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.json(options->json);
}

} // namespace reeldb::cli
