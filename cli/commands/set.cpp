// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "line/assignment.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "text/output.h"
#include "app/reel_field.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  std::vector<std::string> assignments;
  bool json = false;
};

struct Change {
  std::string field, before, after;
  bool changed;
};

struct Wanted {
  ReelField field;
  std::string value;
};

/// Everything is looked at before anything is written.
std::vector<Wanted> readAssignments(const std::vector<std::string>& texts, ReelDbManager& manager)
{
  std::vector<Wanted> result;
  for (const std::string& given : texts) {
    Assignment assignment = parseAssignment(given);
    ReelField field = findReelField(assignment.field, manager);
    field.check(assignment.value);
    for (const Wanted& other : result)
      if (other.field.name == field.name)
        throw Failure(usage, fmt::format("{}: given twice", field.name));
    result.push_back({std::move(field), std::move(assignment.value)});
  }
  return result;
}

Json toJson(const std::string& id, const std::vector<Change>& changes)
{
  Json json;
  json["id"] = id;
  json["changed"] = Json::array();
  json["unchanged"] = Json::array();
  for (const Change& change : changes) {
    if (change.changed)
      json["changed"].push_back({{"field", change.field}, {"from", change.before}, {"to", change.after}});
    else
      json["unchanged"].push_back({{"field", change.field}, {"value", change.after}});
  }
  return json;
}

void printChanges(const std::string& id, const std::vector<Change>& changes)
{
  const auto shown = [](const std::string& value) { return value.empty() ? "-" : displayText(value); };
  for (const Change& change : changes)
    print(fmt::format("{}: {}: {} ({})\n", displayText(id), change.field, shown(change.after),
                      change.changed ? "was " + shown(change.before) : "already so"));
}

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Write);
  ReelDbRec reel = session.requireReel(options.id);
  const std::string id = text(reel.reelId());
  std::vector<Change> changes;
  for (const Wanted& wanted : readAssignments(options.assignments, session.manager())) {
    const std::string before = wanted.field.read(reel);
    wanted.field.write(reel, wanted.value);
    const std::string after = wanted.field.read(reel);
    changes.push_back({wanted.field.name, before, after, before != after});
  }
  session.commit();
  if (options.json)
    printJson(toJson(id, changes));
  else
    printChanges(id, changes);
  return done;
}

} // namespace

void addSet(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "set",
       .description = "Change what is known of a reel",
       .examples = {"reeldb set A001 \"type=Tape 4ch\" available=no", "reeldb set A001 0=12A bin=\"Shelf 4\"",
                    "reeldb set A001 \"User field 2=rain\" user-field.2=night", "reeldb set A001 last-device="},
       .details = "Fields:\n"
                  "  type           a reel type; reeldb types lists them\n"
                  "  available      yes or no: whether the reel is at hand\n"
                  "  inhibit        yes or no: whether recording on it is inhibited\n"
                  "  label-mapping  a label map, or \"Device default\"\n"
                  "  bin            a bin\n"
                  "  last-device    the name of a device; reeldb devices lists them\n"
                  "  user-field.N   user field N, counted from 0; also N alone, or the field's name as reeldb fields\n"
                  "                 shows it, letter case aside\n"
                  "An empty value takes the value away. Channels are added to suit a new type or device, never\n"
                  "removed. Nothing is written unless every field and value makes sense."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "ID", options->id, "The reel")->required()->type_name("");
  takeTexts(app, "FIELD=VALUE", options->assignments, "What to change")->required()->type_name("");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
