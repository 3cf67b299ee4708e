// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/names.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

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
       .description = "Tell which reel a name from a list stands for, and why",
       .examples = {"reeldb which a001", "reeldb which A002 --json"},
       .details =
           "All reels that the name may mean, for the strongest of these reasons first: it is the identifier; it\n"
           "differs from it in the case of letters; it is what a list with names of 6, 8, 32 or 129 characters\n"
           "leaves of the identifier; a list gave it as another name of the reel (its source table, a note, a\n"
           "column); the reel was called that, or what a list leaves of that, before it was renamed. Where the\n"
           "strongest reason holds for several reels the name is ambiguous, and the exit code 0 all the same.\n"
           "Nothing is found: exit code 1."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("TEXT", options->name, "The name").required().shownAs("");
  command.json(options->json);
}

} // namespace reeldb::cli
