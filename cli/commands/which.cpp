// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "lists/names.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/known_names.h"
#include "app/reel.h"
#include "app/session.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string name;
  bool json = false;
};

/// What a list means by the name when that is no reel; empty when it may be one.
std::string_view meaningInLists(const std::string& name)
{
  return lists::isAuxiliary(name) ? "a source without a tape" : lists::specialReason(name);
}

void report(const Options& options, const std::vector<Candidate>& candidates)
{
  const Candidate* const one = theOne(candidates);
  if (options.json) {
    Json json = {{"name", options.name}, {"reel", one ? Json(one->reel) : Json(nullptr)}};
    json["candidates"] = toJson(candidates);
    printJson(json);
    return;
  }
  const ShotCounts shots = reelhost::shotCounts();
  Table table({{"REEL"}, {.title = "SHOTS", .number = true}, {"WHY"}});
  for (const Candidate& candidate : candidates) {
    const auto count = shots.find(folded(candidate.reel));
    table.add({candidate.reel, std::to_string(count == shots.end() ? 0 : count->second), reasonsText(candidate)});
  }
  table.print();
  print(one ? fmt::format("{} is {}\n", displayText(options.name), displayText(one->reel))
            : fmt::format("{} is ambiguous: {}\n", displayText(options.name), counted(candidates.size(), "reel")));
}

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Read);
  const std::vector<Candidate> candidates = knownNames(session.manager()).find(options.name);
  if (!candidates.empty()) {
    report(options, candidates);
    return done;
  }
  if (const std::string_view meaning = meaningInLists(options.name); !meaning.empty())
    throw Failure(refused, fmt::format("{}: no reel goes by that name (in lists it means: {})", shortText(options.name),
                                       meaning));
  session.requireReel(options.name); // there is none, and it may know of similar ones
  throw Failure(refused, fmt::format("{}: no reel goes by that name", shortText(options.name)));
}

} // namespace

void addWhich(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
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
  takeText(app, "TEXT", options->name, "The name")->required()->type_name("");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
