// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/names.h"
#include "base/display_text.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::string name;
  bool json = false;
};

void report(const app::NameMeaning& meaning)
{
  Table table({{"REEL"}, {.title = "SHOTS", .number = true}, {"WHY"}});
  for (std::size_t i = 0; i < meaning.candidates.size(); ++i)
    table.add({meaning.candidates[i].reel, std::to_string(meaning.shots[i]), reasonsText(meaning.candidates[i])});
  table.print();
  const app::Candidate* const one = theOne(meaning.candidates);
  print(one ? fmt::format("{} is {}\n", displayText(meaning.name), displayText(one->reel))
            : fmt::format("{} is ambiguous: {}\n", displayText(meaning.name),
                          counted(meaning.candidates.size(), "reel")));
  if (const std::string text =
          !meaning.asList.perhaps.empty() ? std::string() : namesText({meaning.asList}, textColumns(stdout));
      !text.empty())
    print("in a list:\n" + text);
}

ExitCode run(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const app::NameMeaning meaning = app::whichReel(session, options.name);
  if (options.json)
    print(app::jsonText(meaning));
  else
    report(meaning);
  return done;
}

} // namespace

void addWhich(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "which",
       .description = "Find the reel that a name from a list means",
       .examples = {"reeldb which a001", "reeldb which A002 --json"},
       .details =
           "Shows all reels that the name may mean, and the reasons. From the strongest to the weakest, these are:\n"
           "the name is the reel's identifier; it differs from the identifier only in letter case; it was given to\n"
           "the reel (reeldb alias); it is the identifier as a list with names of 6, 8, 32 or 129 characters cuts\n"
           "it; a list gave it as another name of the reel (in its source table, a note or a column); it is an old\n"
           "name of the reel, or an old name as a list cuts it. If the strongest reason applies to several reels,\n"
           "the name is ambiguous. The exit code is 0 if a reel is found, even if the name is ambiguous, else 1."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("TEXT", options->name, "The name").required().shownAs("");
  command.json(options->json);
}

} // namespace reeldb::cli
