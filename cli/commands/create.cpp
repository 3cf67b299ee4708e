// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/devices.h"
#include "app/json/json.h"
#include "app/reels.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  std::optional<std::string> device;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  if (options.device)
    app::showDevice(*options.device); // a wrong device number is reported before a missing project
  app::Session session(globals.project, app::Access::Write);
  const app::CreatedReel created = app::createReel(session, options.id, options.device);
  changesAreStored();
  complainOf(created.remarks);
  if (options.json)
    print(app::jsonText(created));
  else
    print(fmt::format("{}\n", base::displayText(created.reel.id)));
  return done;
}

} // namespace

void addCreate(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "create",
       .description = "Make a reel",
       .examples = {"reeldb create B007", "reeldb create \"Archive roll 3\" --device 1"},
       .details = fmt::format(
           "Prints the stored identifier: without blanks at its ends, or, for a device of port type \"device-named\",\n"
           "the device's own name. Write \"--\" before an identifier that starts with a dash.\n{}",
           app::reelNameRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("ID", options->id, "The reel's identifier").required().shownAs("");
  command.text("--device", options->device, "The device; the reel gets its audio inputs as channels").shownAs("NUMBER");
  command.json(options->json);
}

} // namespace reeldb::cli
