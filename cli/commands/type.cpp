// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include "app/json/json.h"
#include "app/types.h"
#include "commands/tables.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool json = false;
};

ExitCode list(const Options& options)
{
  const app::ReelTypes found = app::listTypes();
  complainOf(found.remarks);
  if (options.json) {
    print(app::jsonText(found.types));
    return done;
  }
  Table table({{"TYPE"}, {.title = "VIDEO", .number = true}, {.title = "AUDIO", .number = true}, {"PARAMETERS"}});
  for (const app::ReelType& type : found.types)
    // A line of the file may define the type of the empty name.
    table.add({type.name.empty() ? "\"\"" : type.name, std::to_string(type.videoChannels),
               std::to_string(type.audioChannels), type.parameters});
  table.printOr("no reel types (add them to devicedata/reeltype.dat of the facility)\n");
  return done;
}

} // namespace

void addType(CommandLine& line)
{
  const Command group = line.addGroup("type", "List the reel types of the facility", "reeldb type list");
  const auto options = std::make_shared<Options>();
  Command command = line.add(group,
                             {.name = "list",
                              .description = "List the reel types of the facility",
                              .examples = {"reeldb type list", "reeldb type list --json"},
                              .details = "The types have the order of the file devicedata/reeltype.dat."},
                             [options](const Globals&) { return list(*options); });
  command.json(options->json);
}

} // namespace reeldb::cli
