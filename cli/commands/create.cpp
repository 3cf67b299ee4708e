// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "app/device.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/reel.h"
#include "app/reel_name.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id;
  std::optional<std::string> device;
  bool json = false;
};

constexpr int noDevice = -1;

std::string quoted(const std::string& id)
{
  return '"' + shortText(id) + '"';
}

/// Why the library made no reel of a name that is none too bad.
[[noreturn]] void explain(ReelDbManager& manager, const std::string& id)
{
  const LightweightString<char> asked = hostText(id);
  if (manager.doesReelExist(asked))
    throw Failure(refused, fmt::format("{}: exists already", quoted(text(manager.getReelInfo(asked).reelId()))));
  throw Failure(refused, fmt::format("{}: no reel made", quoted(id)));
}

ExitCode run(const Options& options, const Globals& globals)
{
  checkedReelName(options.id);
  const int device = options.device ? requireDevice(requireFacility(), *options.device).number : noDevice;
  Session session(globals, reelhost::Access::Write);
  ReelDbManager& manager = session.manager();
  ReelDbRec made = manager.createNewReel(hostText(options.id), device);
  if (!made.valid())
    explain(manager, options.id);
  // The library compares the identifier as it was given, but stores it without outer blanks, or stores the device's
  // name: what it stored may be there already, and the second of two such reels is never found again.
  const std::string stored = text(made.reelId());
  if (stored != options.id && manager.getCookieFromReelId(hostText(stored)).compare(made) != 0)
    throw Failure(refused, fmt::format("{}: exists already", quoted(stored)));
  warnOfSpecialName(stored);
  session.commit();
  if (options.json)
    printJson(toJson(readReel(made, reelhost::shotCounts())));
  else
    print(fmt::format("{}\n", displayText(stored)));
  return done;
}

} // namespace

void addCreate(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "create",
       .description = "Make a reel",
       .examples = {"reeldb create B007", "reeldb create \"Archive roll 3\" --device 1"},
       .details = fmt::format(
           "Prints the identifier as it was stored: without outer blanks, or, for a device of port type\n"
           "\"device-named\", the device's own name. An identifier that starts with a dash goes behind \"--\".\n{}",
           reelNameRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "ID", options->id, "The reel's identifier")->required()->type_name("");
  takeText(app, "--device", options->device, "The device whose audio inputs the reel gets as channels")
      ->type_name("NUMBER");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
