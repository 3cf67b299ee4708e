// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include "app/json/json.h"
#include "app/reel_fields.h"
#include "commands/tables.h"
#include "line/assignment.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct ListOptions {
  bool json = false;
};

struct NameOptions {
  std::vector<std::string> assignments;
  bool json = false;
};

void report(const std::vector<app::UserField>& fields, bool json)
{
  if (json) {
    print(app::jsonText(fields));
    return;
  }
  Table table({{.title = "KEY", .number = true}, {"NAME"}, {"DEFAULT"}});
  for (const app::UserField& field : fields)
    table.add({std::to_string(field.number), orDash(field.stored), field.defaultName});
  table.print();
}

ExitCode list(const ListOptions& options)
{
  report(app::listUserFields(), options.json);
  return done;
}

ExitCode name(const NameOptions& options)
{
  const app::NamedUserFields named = app::nameUserFields(parseAssignments(options.assignments, "NUMBER=NAME"));
  if (named.stored)
    changesAreStored();
  else if (!options.json)
    print("nothing changed\n");
  report(named.fields, options.json);
  return done;
}

} // namespace

void addField(CommandLine& line)
{
  const Command group = line.addGroup("field", "List or name the user fields of reels", "reeldb field list");

  const auto listOptions = std::make_shared<ListOptions>();
  Command listing = line.add(group,
                             {.name = "list",
                              .description = "List the user fields of reels",
                              .examples = {"reeldb field list", "reeldb field list --json"},
                              .details = "The fields are numbered from 0; their default names count from 1."},
                             [listOptions](const Globals&) { return list(*listOptions); });
  listing.json(listOptions->json);

  const auto nameOptions = std::make_shared<NameOptions>();
  Command naming = line.add(
      group,
      {.name = "name",
       .description = "Name user fields of reels",
       .examples = {"reeldb field name 0=Scene 1=Take", "reeldb field name 1="},
       .details = "An empty name removes a name. The names belong to the facility, so all its projects have them. A\n"
                  "name must differ from the other fields' names in more than letter case. It must not be a number or\n"
                  "the name of a field of reeldb set."},
      [nameOptions](const Globals&) { return name(*nameOptions); });
  naming.texts("NUMBER=NAME", nameOptions->assignments, "Names to store").required().shownAs("");
  naming.json(nameOptions->json);
}

} // namespace reeldb::cli
