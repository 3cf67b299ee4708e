// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/projects.h"
#include "base/display_text.h"
#include "base/shell_word.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> folder;
  std::string rate = app::usualFrameRate;
};

ExitCode run(const Options& options, const Globals& globals)
{
  const std::string folder = options.folder.value_or(globals.facility.value_or("."));
  const app::NewFacilityReport made = app::makeFacility(folder, options.rate);
  changesAreStored();
  const std::string shown = base::displayText(folder);
  print(
      fmt::format("facility made in {}{}\n", shown,
                  made.project.empty() ? "" : fmt::format(", with the project {} ({} fps)", made.project, made.rate)));
  print(fmt::format("next: {}reeldb import FILE... to import cut lists and log files\n      {}/facility.toml lists the "
                    "devices, {}/devicedata/reeltype.dat the reel types\n",
                    folder == "." ? "" : fmt::format("cd {}, then ", base::shellWord(folder)), shown, shown));
  return done;
}

} // namespace

void addInit(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "init",
       .description = "Make a facility: configuration, reel types, label maps and a first project",
       .examples = {"reeldb init newsroom", "reeldb init feature --rate 23.976"},
       .details = "Makes the folder if it does not exist, and overwrites nothing. If a part of the facility cannot be\n"
                  "made, nothing is made. The folder is DIR, else the one given with -C, else the working folder.\n"
                  "A project has one frame rate; import warns of lists that have another one.",
       .needsFacility = false},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("DIR", options->folder, "The folder of the facility").shownAs("");
  command
      .text("--rate", options->rate, fmt::format("The frame rate of the project; {} by default", app::usualFrameRate))
      .shownAs("CODE|NAME");
}

} // namespace reeldb::cli
