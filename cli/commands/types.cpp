// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "ReelTypeManager.h"
#include "commands/commands.h"
#include "app/host_text.h"
#include "text/output.h"
#include "app/session.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool json = false;
};

struct Type {
  std::string name, parameters;
  int videoChannels, audioChannels;
};

/// Only names that are listed are asked for: asking for another would list it.
std::vector<Type> catalogue()
{
  ReelTypeManager& types = *theReelTypeManager();
  std::vector<Type> result;
  for (AssocListIter it(types); const AssocListRep::Entry* entry = *it; ++it)
    result.push_back(
        {text(entry->key), text(entry->value), types.numVideoChans(entry->key), types.numAudioChans(entry->key)});
  return result;
}

ExitCode run(const Options& options)
{
  const auto file = requireFacility().deviceDataDirectory() / "reeltype.dat";
  std::error_code none;
  if (!std::filesystem::exists(file, none))
    complain(fmt::format("{}: not there, so there are no reel types", file.native()));
  const std::vector<Type> types = catalogue();
  if (options.json) {
    Json json = Json::array();
    for (const Type& type : types)
      json.push_back({{"name", type.name},
                      {"video_channels", type.videoChannels},
                      {"audio_channels", type.audioChannels},
                      {"parameters", type.parameters}});
    printJson(json);
    return done;
  }
  Table table({{"TYPE"}, {.title = "VIDEO", .number = true}, {.title = "AUDIO", .number = true}, {"PARAMETERS"}});
  for (const Type& type : types)
    table.add({type.name, std::to_string(type.videoChannels), std::to_string(type.audioChannels), type.parameters});
  table.printOr("no reel types (devicedata/reeltype.dat of the facility lists them)\n");
  return done;
}

} // namespace

void addTypes(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add({.name = "types",
                            .description = "List the reel types of the facility",
                            .examples = {"reeldb types", "reeldb types --json"},
                            .details = "In the order of the file devicedata/reeltype.dat."},
                           [options](const Globals&) { return run(*options); });
  takeJson(app, options->json);
}

} // namespace reeldb::cli
