// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "text/counted.h"
#include "app/host_text.h"
#include "app/reel.h"
#include "app/session.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool json = false;
};

void printTable(const std::vector<Reel>& reels, ReelDbManager& manager)
{
  std::vector<Column> columns = {{"REEL"}, {"TYPE"}, {"AVAILABLE"}, {"INHIBIT"}};
  columns.push_back({.title = "SHOTS", .number = true});
  columns.push_back({.title = "VIDEO", .number = true});
  columns.push_back({.title = "AUDIO", .number = true});
  for (const char* title : {"LAST DEVICE", "LABEL MAP", "BIN"})
    columns.push_back({.title = title, .optional = true});
  for (std::size_t i = 0; i < userFieldCount; ++i)
    columns.push_back({.title = text(manager.userFieldName(static_cast<int>(i))), .optional = true});
  Table table(std::move(columns));
  for (const Reel& reel : reels) {
    std::vector<std::string> row = {reel.id,
                                    reel.type.empty() ? "-" : reel.type,
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

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Read);
  const std::vector<Reel> reels = readReels(session.manager(), reelhost::shotCounts());
  if (options.json) {
    Json json = Json::array();
    for (const Reel& reel : reels)
      json.push_back(toJson(reel));
    printJson(json);
  } else if (reels.empty()) {
    print("no reels yet (reeldb import FILE makes them, or reeldb create ID)\n");
  } else {
    printTable(reels, session.manager());
  }
  return done;
}

} // namespace

void addList(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "list",
       .description = "List the reels of the project",
       .examples = {"reeldb list", "reeldb list --json"},
       .details = "Channels are those of the reel's own log. Shots are counted by identifier, letter case aside."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeJson(app, options->json);
}

} // namespace reeldb::cli
