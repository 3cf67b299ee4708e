// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/conflict.h"
#include "app/json/json.h"
#include "app/reel_fields.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "line/assignment.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  std::vector<std::string> assignments, expected;
  bool json = false;
};

void printChanges(const app::ChangedReel& changed)
{
  const auto shown = [](const std::string& value) { return base::displayText(orDash(value)); };
  for (const app::FieldChange& change : changed.changes)
    print(fmt::format("{}: {}: {} ({})\n", base::displayText(changed.id), change.field, shown(change.after),
                      change.changed() ? "was " + shown(change.before) : "unchanged"));
}

ExitCode run(const Options& options, const Globals& globals)
{
  const std::vector<app::Assignment> assignments = parseAssignments(options.assignments);
  const std::vector<app::Assignment> expected = parseAssignments(options.expected);
  app::Session session(globals.project, app::Access::Write);
  app::ChangedReel changed;
  try {
    changed = app::changeReel(session, options.id, assignments, expected);
  } catch (const app::Conflict& conflict) {
    if (options.json)
      print(app::jsonText(conflict.conflict()));
    throw;
  }
  if (changed.stored)
    changesAreStored();
  complainOf(changed.remarks);
  if (options.json)
    print(app::jsonText(changed));
  else
    printChanges(changed);
  return done;
}

} // namespace

void addSet(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "set",
       .description = "Change the fields of a reel",
       .examples = {"reeldb set A001 \"type=Tape 4ch\" available=no", "reeldb set A001 0=12A bin=\"Shelf 4\"",
                    "reeldb set A001 \"User field 2=rain\" user-field.2=night",
                    "reeldb set A001 last-device=", "reeldb set A001 bin=\"Shelf 5\" --if bin=\"Shelf 4\""},
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
           "shows that value and the commit that stored it; with --json, so does standard output."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("ID", options->id, "The reel").required().shownAs("");
  command.texts("FIELD=VALUE", options->assignments, "What to change").required().shownAs("");
  command.texts("--if", options->expected, "The value that a field must have now; several may be given")
      .shownAs("FIELD=VALUE")
      .oneEachTime();
  command.json(options->json);
}

} // namespace reeldb::cli
