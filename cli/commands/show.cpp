// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "text/display_text.h"
#include "app/host_text.h"
#include "app/reel.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  bool json = false;
};

/// The answers of ReelDbManager::checkReelValid.
constexpr int validReel = 0;

void printReel(const Reel& reel, bool knownType, bool live, ReelDbManager& manager)
{
  const auto line = [](std::string_view name, std::string_view value) {
    print(fmt::format("{:<15} {}\n", name, value.empty() ? "-" : displayText(value)));
  };
  line("reel", reel.id);
  line("type", reel.type + (knownType || reel.type.empty() ? "" : "  (not in the reel type catalogue)"));
  line("live", yesOrNo(live));
  line("available", yesOrNo(reel.available));
  line("inhibit", yesOrNo(reel.inhibit));
  line("label mapping", reel.labelMapping);
  line("bin", reel.bin);
  line("last device", reel.lastDevice);
  line("video channels", std::to_string(reel.videoChannels));
  line("audio channels", std::to_string(reel.audioChannels));
  line("shots", std::to_string(reel.shots));
  for (std::size_t i = 0; i < userFieldCount; ++i)
    if (!reel.userFields[i].empty())
      line(displayText(text(manager.userFieldName(static_cast<int>(i)))), reel.userFields[i]);
}

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Read);
  ReelDbManager& manager = session.manager();
  const Reel reel = readReel(session.requireReel(options.id), reelhost::shotCounts());
  const bool knownType = manager.checkReelValid(hostText(options.id)) == validReel;
  const bool live = manager.representsLiveMaterial(hostText(options.id));
  if (options.json) {
    Json json = toJson(reel);
    json["known_type"] = knownType;
    json["live"] = live;
    printJson(json);
  } else {
    printReel(reel, knownType, live, manager);
  }
  return done;
}

} // namespace

void addShow(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add({.name = "show",
                            .description = "Show everything that is known of one reel",
                            .examples = {"reeldb show A001", "reeldb show --json a001"},
                            .details = "Reels are found without regard to letter case."},
                           [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "ID", options->id, "The reel")->required()->type_name("");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
