// SPDX-License-Identifier: Apache-2.0
#include "app/report.h"
#include "commands/commands.h"

#include <algorithm>

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/list_files.h"
#include "base/display_text.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> list, file;
  bool force = false;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  if (options.force && !options.file)
    throw app::Error(app::ErrorKind::Invalid, "report: --force needs -o FILE");
  app::Session session(globals.project, app::Access::Read);
  const app::ReelReport report = app::readReport(session, options.list);
  const std::string text = options.json ? app::jsonText(report) : app::reportHtml(report);
  if (!options.file) {
    printBytes(text);
    return done;
  }
  app::writeOutputFile(*options.file, text, options.force);
  const auto ready = std::count_if(report.reels.begin(), report.reels.end(),
                                   [](const app::ReportedReel& reel) { return reel.need.troubles.empty(); });
  print(
      fmt::format("{}: {}, {} ready\n", base::displayText(*options.file), counted(report.reels.size(), "reel"), ready));
  return done;
}

} // namespace

void addReport(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "report",
       .description = "Write a page to print: the reels that a list or the project needs, and their shelves",
       .examples = {"reeldb report evening.edl -o evening.html", "reeldb report -o reels.html --force",
                    "reeldb report evening.edl --json"},
       .details =
           "LIST is a list that was imported: its number, file name or title. Without LIST, the page has all reels\n"
           "of the project, used or not. The page is one file of HTML, without a script; any browser shows and prints\n"
           "it. Reels that are not ready come first: those that are missing, with the reels that their names may "
           "mean,\n"
           "and those that are not at hand. All reels are grouped by their shelf, with a box to tick. Then the page\n"
           "lists where each reel is used: the lists, and their clips."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("LIST", options->list, "The list; without it, the project").shownAs("");
  command.text("-o,--output", options->file, "The file to write; without it, standard output").shownAs("FILE");
  command.flag("--force", options->force, "Replace the file if it exists");
  command.json(options->json);
}

} // namespace reeldb::cli
