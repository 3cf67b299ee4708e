// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>

#include <fmt/ranges.h>

#include <fmt/format.h>

#include "app/devices.h"
#include "app/json/json.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct ListOptions {
  bool json = false;
};

struct Options {
  std::string number;
  bool why = false;
  bool json = false;
};

void printDevices(const std::vector<app::Device>& devices)
{
  Table table({{.title = "NUMBER", .number = true},
               {"NAME"},
               {"PORT"},
               {"INPUT"},
               {.title = "AUDIO", .number = true},
               {"ACCEPTS"},
               {.title = "LABEL MAP", .optional = true},
               {.title = "LAST REEL", .optional = true}});
  for (const app::Device& device : devices)
    table.add({std::to_string(device.number), device.name, device.port, device.input,
               std::to_string(device.audioInputs), fmt::format("{}", fmt::join(device.tapes, ", ")), device.labelMap,
               device.lastReel});
  table.printOr("no devices (add them to facility.toml)\n");
}

ExitCode list(const ListOptions& options)
{
  const std::vector<app::Device> devices = app::listDevices();
  if (options.json)
    print(app::jsonText(devices));
  else
    printDevices(devices);
  return done;
}

ExitCode show(const Options& options, const Globals&)
{
  const app::Device device = app::showDevice(options.number);
  if (options.json)
    print(app::jsonText(device));
  else
    printDevices({device});
  return done;
}

ExitCode reels(const Options& options, const Globals& globals)
{
  const app::Device device = app::showDevice(options.number);
  app::Session session(globals.project, app::Access::Read);
  std::vector<app::Verdict> verdicts = app::judgeReels(session, options.number);
  if (!options.why)
    verdicts.erase(
        std::remove_if(verdicts.begin(), verdicts.end(), [](const app::Verdict& verdict) { return !verdict.accepted; }),
        verdicts.end());
  if (options.json) {
    print(app::jsonText(verdicts));
    return done;
  }
  std::vector<Column> columns = {{"REEL"}, {"TYPE"}};
  if (options.why)
    columns.insert(columns.end(), {{"ACCEPTED"}, {"WHY"}});
  Table table(std::move(columns));
  for (const app::Verdict& verdict : verdicts) {
    std::vector<std::string> row = {verdict.reel.id, orDash(verdict.reel.type)};
    if (options.why)
      row.insert(row.end(), {std::string(yesOrNo(verdict.accepted)), verdict.why});
    table.add(std::move(row));
  }
  table.printOr(fmt::format("{}: accepts none of the project's reels\n", base::displayText(device.name)));
  return done;
}

ExitCode live(const Options& options, const Globals& globals)
{
  app::showDevice(options.number); // a wrong device number is reported before a missing project
  app::Session session(globals.project, app::Access::Write);
  const app::LiveReel live = app::liveReel(session, options.number);
  if (live.created)
    changesAreStored();
  if (options.json)
    print(app::jsonText(live));
  else
    print(fmt::format("{}{}\n", base::displayText(live.reel.id), live.created ? "" : " (already existed)"));
  return done;
}

} // namespace

void addDevice(CommandLine& line)
{
  const Command group =
      line.addGroup("device", "Show the devices of the facility, and which reels they accept", "reeldb device list");

  const auto listOptions = std::make_shared<ListOptions>();
  Command listing = line.add(group,
                             {.name = "list",
                              .description = "List the devices of the facility",
                              .examples = {"reeldb device list", "reeldb device list --json"}},
                             [listOptions](const Globals&) { return list(*listOptions); });
  listing.json(listOptions->json);

  const auto add = [&](CommandInfo info, ExitCode (*run)(const Options&, const Globals&)) {
    const auto options = std::make_shared<Options>();
    const bool explains = info.name == "reels";
    Command command =
        line.add(group, std::move(info), [options, run](const Globals& globals) { return run(*options, globals); });
    command.text("NUMBER", options->number, "The device; reeldb device list lists them").required().shownAs("");
    if (explains)
      command.flag("--why", options->why, "Show every reel, and why it is accepted or not");
    command.json(options->json);
  };
  add({.name = "show", .description = "Show one device", .examples = {"reeldb device show 0"}}, show);
  add({.name = "reels",
       .description = "List the reels a device accepts",
       .examples = {"reeldb device reels 0", "reeldb device reels 0 --why"},
       .details = "A device accepts reels of the types it lists, and every reel whose type is not in the catalogue."},
      reels);
  add({.name = "live",
       .description = "Find a device's live-feed reel, or make it",
       .examples = {"reeldb device live 1"},
       .details = "A device is a live source if \"Live\" is one of the types it accepts."},
      live);
}

} // namespace reeldb::cli
