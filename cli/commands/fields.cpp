// SPDX-License-Identifier: Apache-2.0
#include <map>

#include <fmt/format.h>

#include "commands/commands.h"
#include "line/assignment.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/number.h"
#include "text/output.h"
#include "app/reel.h"
#include "app/reel_field.h"
#include "app/session.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> assignments;
  bool json = false;
};

struct Field {
  int number;
  std::string stored;  ///< empty: none
  std::string display; ///< what the library calls the field
};

std::vector<Field> readFields(const reelhost::Facility& facility)
{
  std::vector<Field> fields;
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i)
    fields.push_back({i, facility.systemValue("reel_userfield" + std::to_string(i)),
                      text(ReelDbManager::theReelDbManager()->userFieldName(i))});
  return fields;
}

/// The name the field has when none is stored. It counts from 1.
std::string defaultName(int number)
{
  return fmt::format("User field {}", number + 1);
}

void report(const Options& options, const std::vector<Field>& fields)
{
  Json json = Json::array();
  Table table({{.title = "KEY", .number = true}, {"NAME"}, {"DEFAULT"}});
  for (const Field& field : fields) {
    json.push_back({{"key", field.number},
                    {"name", field.display},
                    {"stored", field.stored},
                    {"default", defaultName(field.number)}});
    table.add({std::to_string(field.number), field.stored.empty() ? "-" : field.stored, defaultName(field.number)});
  }
  if (options.json)
    printJson(json);
  else
    table.print();
}

/// The numbers and names to store. Everything is looked at before anything is changed.
std::map<int, std::string> readAssignments(const std::vector<std::string>& texts)
{
  std::map<int, std::string> names;
  for (const std::string& given : texts) {
    const Assignment assignment = parseAssignment(given);
    const auto number = parseNumber(assignment.field);
    if (!number || *number >= static_cast<int>(userFieldCount))
      throw Failure(usage, fmt::format("{}: no such user field (they are numbered from 0 to {})",
                                       shortText(assignment.field), userFieldCount - 1));
    if (!names.emplace(*number, assignment.value).second)
      throw Failure(usage, fmt::format("{}: given twice", *number));
  }
  return names;
}

/// Throws Failure when a name cannot be given to its field because `set` would mean another by it.
void requireUnmistakable(const std::map<int, std::string>& names, const std::vector<Field>& fields)
{
  const auto nameOf = [&names](const Field& field) {
    const auto wanted = names.find(field.number);
    if (wanted == names.end())
      return field.display;
    return wanted->second.empty() ? defaultName(field.number) : wanted->second;
  };
  for (const auto& [number, name] : names) {
    const std::string wanted = nameOf(fields.at(static_cast<std::size_t>(number)));
    const std::string fact = fmt::format("\"{}\": no name for user field {}", shortText(wanted), number);
    if (wanted.find_first_not_of(' ') == std::string::npos)
      throw Failure(refused, fact + " (it is blank)");
    if (isReservedFieldName(wanted))
      throw Failure(refused, fact + " (reeldb set means another field by it)");
    for (const Field& other : fields)
      if (other.number != number && folded(nameOf(other)) == folded(wanted))
        throw Failure(refused, fmt::format("{} (user field {} is called that)", fact, other.number));
  }
}

ExitCode run(const Options& options)
{
  reelhost::Facility& facility = requireFacility();
  const std::map<int, std::string> names = readAssignments(options.assignments);
  requireUnmistakable(names, readFields(facility));
  for (const auto& [number, name] : names)
    if (facility.systemValue("reel_userfield" + std::to_string(number)) != name)
      ReelDbManager::theReelDbManager()->userFieldName(number, hostText(name));
  if (facility.stateChanged()) {
    facility.saveState();
    changesAreStored();
  } else if (!names.empty() && !options.json) {
    print("nothing changed\n");
  }
  report(options, readFields(facility));
  return done;
}

} // namespace

void addFields(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "fields",
       .description = "List or name the user fields of reels",
       .examples = {"reeldb fields", "reeldb fields 0=Scene 1=Take", "reeldb fields 1=", "reeldb fields --json"},
       .details = "The fields are numbered from 0; their default names count from 1. An empty name takes a name back.\n"
                  "The names are the facility's and serve all its projects. No two fields share one, letter case\n"
                  "aside, and none has that of a field of reeldb set, or a number."},
      [options](const Globals&) { return run(*options); });
  takeTexts(app, "NUMBER=NAME", options->assignments, "Names to store")->type_name("");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
