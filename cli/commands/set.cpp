// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>

#include <fmt/format.h>

#include "app/conflict.h"
#include "app/json/json.h"
#include "app/reel_fields.h"
#include "app/selection.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "commands/where.h"
#include "line/assignment.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> id;
  std::vector<std::string> words, expected, where;
  bool json = false;
};

void printChanges(const app::ChangedReel& changed)
{
  const auto shown = [](const std::string& value) { return base::displayText(orDash(value)); };
  for (const app::FieldChange& change : changed.changes)
    print(fmt::format("{}: {}: {} ({})\n", base::displayText(changed.id), change.field, shown(change.after),
                      change.changed() ? "was " + shown(change.before) : "unchanged"));
}

/// The reels and the assignments of a command line.
struct Request {
  app::Selection reels;
  std::vector<std::string> assignments;
};

/// The first word is a reel, even if it has an equals sign, unless --where gives the reels. The words up to the first
/// one with an equals sign are further reels.
Request requestOf(const Options& options)
{
  Request request{{{}, options.where}, {}};
  std::vector<std::string> words = options.words;
  if (options.id)
    words.insert(words.begin(), *options.id);
  const bool firstIsReel = !words.empty() && options.where.empty();
  const auto end = std::find_if(words.begin() + (firstIsReel ? 1 : 0), words.end(),
                                [](const std::string& word) { return word.find('=') != std::string::npos; });
  request.reels.reels.assign(words.begin(), end);
  request.assignments.assign(end, words.end());
  if (request.reels.empty())
    throw app::Error(app::ErrorKind::Invalid, "set: ID is required, or --where (see reeldb set --help)");
  if (request.assignments.empty() && request.reels.reels.size() > 1)
    parseAssignments({words.back()}); // throws
  if (request.assignments.empty())
    throw app::Error(app::ErrorKind::Invalid, "set: FIELD=VALUE is required (see reeldb set --help)");
  return request;
}

std::vector<app::ChangedReel> changed(const Options& options, const Globals& globals, const Request& request)
{
  const std::vector<app::Assignment> assignments = parseAssignments(request.assignments);
  const std::vector<app::Assignment> expected = parseAssignments(options.expected);
  app::Session session(globals.project, app::Access::Write);
  try {
    if (request.reels.isOneName())
      return {app::changeReel(session, request.reels.reels.front(), assignments, expected)};
    return app::changeReels(session, app::requireSelected(session, request.reels), assignments, expected);
  } catch (const app::Conflict& conflict) {
    if (options.json)
      print(app::jsonText(conflict.conflict()));
    throw;
  }
}

ExitCode run(const Options& options, const Globals& globals)
{
  const Request request = requestOf(options);
  const std::vector<app::ChangedReel> reels = changed(options, globals, request);
  for (const app::ChangedReel& reel : reels) {
    if (reel.stored)
      changesAreStored();
    complainOf(reel.remarks);
  }
  if (options.json) {
    print(request.reels.isOneName() ? app::jsonText(reels.front()) : app::jsonText(reels));
    return done;
  }
  for (const app::ChangedReel& reel : reels)
    printChanges(reel);
  return done;
}

} // namespace

void addSet(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "set",
       .description = "Change the fields of reels",
       .examples = {"reeldb set A001 \"type=Tape 4ch\" available=no", "reeldb set A001 0=12A bin=\"Shelf 4\"",
                    "reeldb set A001 \"User field 2=rain\" user-field.2=night",
                    "reeldb set A001 last-device=", "reeldb set A001 bin=\"Shelf 5\" --if bin=\"Shelf 4\"",
                    "reeldb set \"A*\" available=no --where shelf!=\"Shelf 4\""},
       .details =
           "Fields:\n"
           "  type           a reel type; reeldb type list lists them\n"
           "  available      yes or no: whether the reel is at hand\n"
           "  inhibit        yes or no: whether recording on it is inhibited\n"
           "  label-map      a label map, or \"Device default\"\n"
           "  bin            the shelf that the reel is kept on\n"
           "  last-device    the name of a device; reeldb device list lists them\n"
           "  user-field.N   user field N, counted from 0; also N alone, or the field's name as reeldb field list\n"
           "                 shows it, in any letter case\n"
           "An empty value removes the value. A new type or device can add channels to the reel, but never removes\n"
           "any. Nothing is stored unless all fields and values are valid.\n"
           "With --if, nothing is stored and the exit code is 1 if the field has another value now. The message\n"
           "shows that value and the commit that stored it; with --json, so does standard output.\n"
           "\n"
           "Several reels are changed together or not at all, and one undo takes all of it back. Then --json reports\n"
           "an array.\n" +
           std::string(whereRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("ID", options->id, "The reel; more of them may follow. Without any, those of --where").shownAs("");
  command.texts("FIELD=VALUE", options->words, "What to change").shownAs("");
  addWhere(command, options->where);
  command.texts("--if", options->expected, "The value that a field must have now; several may be given")
      .shownAs("FIELD=VALUE")
      .oneEachTime();
  command.json(options->json);
}

} // namespace reeldb::cli
