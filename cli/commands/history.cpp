// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/history.h"
#include "app/json/json.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> reel;
  bool json = false;
};

std::string changesOf(const app::CommitEntry& commit)
{
  std::vector<std::string> parts;
  for (const app::FieldStep& step : commit.fields)
    parts.push_back(fmt::format("{}: {} (was {})", step.field, orDash(step.after), orDash(step.before)));
  if (!parts.empty())
    return fmt::format("{}", fmt::join(parts, ", "));
  for (const auto& [count, what] :
       {std::pair(commit.created, "new"), {commit.changed, "changed"}, {commit.deleted, "deleted"}})
    if (count != 0)
      parts.push_back(fmt::format("{} {}", count, what));
  if (commit.lists != 0)
    parts.push_back(counted(commit.lists, "list"));
  if (commit.options)
    parts.push_back("options");
  return fmt::format("{}", fmt::join(parts, ", "));
}

std::string stateOf(const app::CommitEntry& commit)
{
  if (commit.takenBackBy != 0)
    return fmt::format("taken back by {}", commit.takenBackBy);
  return commit.takesBack == 0 ? "" : fmt::format("takes back {}", commit.takesBack);
}

ExitCode history(const Options& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const app::ProjectHistory found = app::readHistory(session, options.reel);
  if (options.json) {
    print(app::jsonText(found));
    return done;
  }
  Table table({{.title = "REVISION", .number = true},
               {.title = "TIME"},
               {.title = "USER", .optional = true},
               {.title = "MACHINE", .optional = true},
               {.title = "CHANGES"},
               {.title = "STATE", .optional = true},
               {.title = "COMMAND"}});
  for (const app::CommitEntry& commit : found.commits)
    table.add({std::to_string(commit.revision), orDash(localTime(commit.time)), commit.user, commit.machine,
               orDash(changesOf(commit)), stateOf(commit), orDash(commit.command)});
  table.printOr("no history\n");
  return done;
}

} // namespace

void addHistory(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "history",
       .description = "List who changed a project, or a reel, and how",
       .examples = {"reeldb history", "reeldb history A001", "reeldb history --json"},
       .details =
           "The newest commit comes first. With names = false under [history] in facility.toml, the history does\n"
           "not keep users, machines and folders. reeldb project compact --before removes a part of it."},
      [options](const Globals& globals) { return history(*options, globals); });
  command.text("ID", options->reel, "Only the commits that changed this reel; it may be deleted").shownAs("");
  command.json(options->json);
}

} // namespace reeldb::cli
