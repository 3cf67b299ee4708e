// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reels.h"
#include "base/display_text.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::string from, to;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Write);
  const app::CopiedReel copied = app::copyReel(session, options.from, options.to);
  if (copied.stored)
    changesAreStored();
  if (options.json)
    print(app::jsonText(copied));
  else
    print(fmt::format("{}: {} {}\n", displayText(copied.to), copied.stored ? "now like" : "already like",
                      displayText(copied.from)));
  return done;
}

} // namespace

void addCopy(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "copy",
       .description = "Copy the fields of one reel to another",
       .examples = {"reeldb copy A001 A002"},
       .details = "Copies type, available, inhibit, label map and the user fields, but not bin and last device."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("FROM", options->from, "The reel to copy from").required().shownAs("");
  command.text("TO", options->to, "The reel to change").required().shownAs("");
  command.json(options->json);
}

} // namespace reeldb::cli
