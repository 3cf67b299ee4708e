// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include <fmt/format.h>

#include "commands/commands.h"
#include "text/display_text.h"
#include "text/output.h"
#include "app/project_file.h"
#include "app/session.h"
#include "text/shell_word.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> folder;
};

ExitCode run(const Options& options, const Globals& globals)
{
  const std::string folder = options.folder.value_or(globals.facility.value_or("."));
  reelhost::NewFacility made(folder);
  const reelhost::Facility facility = reelhost::Facility::read(folder);
  const std::string project = facility.defaultProject();
  if (!project.empty())
    makeProject(facility, project, usualFrameRate);
  made.keep();
  changesAreStored();
  const std::string shown = displayText(folder);
  print(fmt::format("facility made in {}{}\n", shown,
                    project.empty() ? "" : fmt::format(", with the project {} ({} fps)", project, usualFrameRate)));
  print(fmt::format("next: {}reeldb import FILE... brings in cut lists and log files; {}/facility.toml describes the "
                    "devices,\n      {}/devicedata/reeltype.dat the reel types\n",
                    folder == "." ? "" : fmt::format("cd {} and ", shellWord(folder)), shown, shown));
  return done;
}

} // namespace

void addInit(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "init",
       .description = "Make a facility: configuration, reel types, label maps and a first project",
       .examples = {"reeldb init newsroom"},
       .details = "Makes the folder if it is not there, and overwrites nothing; when anything of it cannot be made,\n"
                  "nothing is. The folder is DIR, else the one given with -C, else the working folder.",
       .needsFacility = false},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "DIR", options->folder, "The folder")->type_name("");
}

} // namespace reeldb::cli
