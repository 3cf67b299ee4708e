// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reels.h"
#include "app/rolls.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> by;
  bool json = false;
};

void printTable(const std::vector<app::Reel>& reels)
{
  std::vector<Column> columns = {{"REEL"}, {"TYPE"}, {"AVAILABLE"}, {"INHIBIT"}};
  columns.push_back({.title = "SHOTS", .number = true});
  columns.push_back({.title = "VIDEO", .number = true});
  columns.push_back({.title = "AUDIO", .number = true});
  for (const char* title : {"LAST DEVICE", "LABEL MAP", "BIN"})
    columns.push_back({.title = title, .optional = true});
  for (const std::string& name : app::userFieldNames())
    columns.push_back({.title = name, .optional = true});
  Table table(std::move(columns));
  for (const app::Reel& reel : reels) {
    std::vector<std::string> row = {reel.id,
                                    orDash(reel.type),
                                    std::string(yesOrNo(reel.available)),
                                    std::string(yesOrNo(reel.inhibit)),
                                    std::to_string(reel.shots),
                                    std::to_string(reel.videoChannels),
                                    std::to_string(reel.audioChannels),
                                    reel.lastDevice,
                                    reel.labelMapping,
                                    reel.bin};
    row.insert(row.end(), reel.userFields.begin(), reel.userFields.end());
    table.add(std::move(row));
  }
  table.print();
  print(counted(reels.size(), "reel") + "\n");
}

void printTable(const std::vector<app::Roll>& rolls)
{
  Table table({{"ROLL"}, {.title = "REELS", .number = true}, {.title = "SHOTS", .number = true}});
  for (const app::Roll& roll : rolls)
    table.add({orDash(roll.name), std::to_string(roll.reels.size()), std::to_string(roll.shots)});
  table.print();
  const bool hasOthers = !rolls.empty() && rolls.back().name.empty();
  print(counted(rolls.size() - (hasOthers ? 1 : 0), "roll") + "\n");
}

ExitCode byRoll(const Options& options, app::Session& session)
{
  const std::vector<app::Roll> rolls = app::reelsByRoll(session);
  if (options.json)
    print(app::jsonText(rolls));
  else
    printTable(rolls);
  return done;
}

ExitCode run(const Options& options, const Globals& globals)
{
  requireGroup(options.by);
  app::Session session(globals.project, app::Access::Read);
  if (options.by)
    return byRoll(options, session);
  const std::vector<app::Reel> reels = app::listReels(session);
  if (options.json)
    print(app::jsonText(reels));
  else if (reels.empty())
    print("no reels yet (reeldb import FILE makes them, or reeldb create ID)\n");
  else
    printTable(reels);
  return done;
}

} // namespace

void addList(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "list",
       .description = "List the reels of the project",
       .examples = {"reeldb list", "reeldb list --by roll", "reeldb list --json"},
       .details =
           "VIDEO and AUDIO are the numbers of channels that the reel has, whatever its type says. SHOTS counts\n"
           "the shots with the reel's identifier, ignoring letter case.\n"
           "\n"
           "--by roll counts the reels of each camera roll instead: those whose identifier begins with the camera "
           "roll\n"
           "of a log, or is that of a camera clip (A012C003 is of A012). Reels of no roll are on the last line."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("--by", options->by, "Group the reels: roll").shownAs("GROUP");
  command.json(options->json);
}

} // namespace reeldb::cli
