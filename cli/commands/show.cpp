// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reels.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  bool json = false;
};

void printReel(const app::ReelDetails& details)
{
  const auto line = [](std::string_view name, std::string_view value) {
    print(fmt::format("{:<15} {}\n", name, value.empty() ? "-" : base::displayText(value)));
  };
  const app::Reel& reel = details.reel;
  line("reel", reel.id);
  line("type", reel.type + (details.knownType || reel.type.empty() ? "" : "  (not in the reel type catalogue)"));
  line("live", yesOrNo(details.live));
  line("available", yesOrNo(reel.available));
  line("inhibit", yesOrNo(reel.inhibit));
  line("label map", reel.labelMapping);
  line("bin", reel.bin);
  line("last device", reel.lastDevice);
  line("video channels", std::to_string(reel.videoChannels));
  line("audio channels", std::to_string(reel.audioChannels));
  line("shots", std::to_string(reel.shots));
  const auto names = app::userFieldNames();
  for (std::size_t i = 0; i < app::userFieldCount; ++i)
    if (!reel.userFields[i].empty())
      line(base::displayText(names[i]), reel.userFields[i]);
}

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const app::ReelDetails details = app::showReel(session, options.id);
  if (options.json)
    print(app::jsonText(details));
  else
    printReel(details);
  return done;
}

} // namespace

void addShow(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add({.name = "show",
                              .description = "Show all fields of one reel",
                              .examples = {"reeldb show A001", "reeldb show --json a001"},
                              .details = "The letter case of the identifier does not matter."},
                             [options](const Globals& globals) { return run(*options, globals); });
  command.text("ID", options->id, "The reel").required().shownAs("");
  command.json(options->json);
}

} // namespace reeldb::cli
