// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include <fmt/format.h>

#include "LabelMaps.h"
#include "ReelTypeManager.h"
#include "commands/commands.h"
#include "text/counted.h"
#include "app/device.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/label_map.h"
#include "app/reel.h"
#include "app/session.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string number;
  bool why = false;
  bool json = false;
};

ExitCode show(const Options& options)
{
  const reelhost::DeviceSettings& device = requireDevice(requireFacility(), options.number);
  if (options.json)
    printJson(toJson(device));
  else
    printDevices({device});
  return done;
}

// --- The reels a device accepts --------------------------------------------------------------------------------------

struct Verdict {
  Reel reel;
  bool accepted;
  std::string why;
};

/// Which of the library's tests accepts or refuses the reel.
std::string reason(const Reel& reel, bool accepted, const reelhost::DeviceSettings& device)
{
  if (!accepted)
    return fmt::format("the device does not accept type \"{}\"", reel.type);
  const bool listed = std::find(device.tapes.begin(), device.tapes.end(), reel.type) != device.tapes.end();
  if (listed)
    return fmt::format("the device accepts type \"{}\"", reel.type);
  return reel.type.empty() ? "the reel has no type" : fmt::format("type \"{}\" is not in the catalogue", reel.type);
}

std::vector<Verdict> judge(ReelDbManager& manager, const reelhost::DeviceSettings& device)
{
  // In list order, as the library appends them.
  std::vector<LightweightString<char>> accepted;
  manager.getReelsCompatibleWithDevice(accepted, device.number);
  std::size_t next = 0;
  std::vector<Verdict> verdicts;
  for (const Cookie& log : manager.reelList) {
    Reel reel = readReel(ReelDbRec(log), {});
    const bool isNext = next < accepted.size() && text(accepted[next]) == reel.id;
    next += isNext;
    std::string why = reason(reel, isNext, device);
    verdicts.push_back({std::move(reel), isNext, std::move(why)});
  }
  return verdicts;
}

ExitCode reels(const Options& options, const Globals& globals)
{
  const reelhost::DeviceSettings device = requireDevice(requireFacility(), options.number);
  Session session(globals, reelhost::Access::Read);
  Json json = Json::array();
  std::vector<Column> columns = {{"REEL"}, {"TYPE"}};
  if (options.why)
    columns.insert(columns.end(), {{"ACCEPTED"}, {"WHY"}});
  Table table(std::move(columns));
  for (const Verdict& verdict : judge(session.manager(), device)) {
    if (!verdict.accepted && !options.why)
      continue;
    Json entry = {{"id", verdict.reel.id}, {"type", verdict.reel.type}};
    std::vector<std::string> row = {verdict.reel.id, verdict.reel.type.empty() ? "-" : verdict.reel.type};
    if (options.why) {
      entry["accepted"] = verdict.accepted;
      entry["why"] = verdict.why;
      row.insert(row.end(), {std::string(yesOrNo(verdict.accepted)), verdict.why});
    }
    json.push_back(std::move(entry));
    table.add(std::move(row));
  }
  if (options.json)
    printJson(json);
  else
    table.printOr(fmt::format("{}: accepts none of the project's reels\n", displayText(device.name)));
  return done;
}

// --- Live feed and label map -----------------------------------------------------------------------------------------

ExitCode live(const Options& options, const Globals& globals)
{
  const reelhost::DeviceSettings device = requireDevice(requireFacility(), options.number);
  if (std::find(device.tapes.begin(), device.tapes.end(), "Live") == device.tapes.end())
    throw Failure(refused, fmt::format("{}: no live source (\"Live\" is not among the types it accepts)", device.name));
  Session session(globals, reelhost::Access::Write);
  ReelDbManager& manager = session.manager();
  const LightweightString<char> id = manager.getLiveDeviceMediaName(hostText(device.name));
  const bool there = manager.doesReelExist(id);
  manager.checkLiveDeviceMedia(device.number);
  ReelDbRec record = manager.getReelInfo(id);
  if (!record.valid())
    throw Failure(refused,
                  fmt::format("{}: no live-feed reel made (\"{}\" is no name for a reel)", device.name, text(id)));
  const Reel reel = readReel(record, reelhost::shotCounts());
  session.commit();
  if (options.json) {
    Json json = toJson(reel);
    json["created"] = !there;
    printJson(json);
  } else {
    print(fmt::format("{}{}\n", displayText(reel.id), there ? " (was there already)" : ""));
  }
  return done;
}

ExitCode labelMap(const Options& options, const Globals& globals)
{
  const reelhost::DeviceSettings device = requireDevice(requireFacility(), options.number);
  Session session(globals, reelhost::Access::Read);
  const std::string map = text(get_device_label_map_name(IdStamp(device.id)));
  answerLabelMap({{"device", device.number}, {"label_map", map}}, map, options.json);
  return done;
}

} // namespace

void addDevice(CommandLine& line)
{
  CLI::App& group = line.addGroup("device", "Ask about the devices of the facility", "reeldb device list");
  addDeviceList(line, &group, "list");

  const auto add = [&](CommandInfo info, ExitCode (*run)(const Options&, const Globals&)) -> CLI::App& {
    const auto options = std::make_shared<Options>();
    const bool explains = info.name == "reels";
    CLI::App& app =
        line.add(group, std::move(info), [options, run](const Globals& globals) { return run(*options, globals); });
    takeText(app, "NUMBER", options->number, "The device; reeldb devices lists them")->required()->type_name("");
    if (explains)
      takeFlag(app, "--why", options->why, "Show every reel, and which test accepted or refused it");
    takeJson(app, options->json);
    return app;
  };
  add({.name = "show", .description = "Show one device", .examples = {"reeldb device show 0"}},
      [](const Options& options, const Globals&) { return show(options); });
  add({.name = "reels",
       .description = "List the reels a device accepts",
       .examples = {"reeldb device reels 0", "reeldb device reels 0 --why"},
       .details = "A device accepts the types it lists, and every reel whose type is not in the catalogue."},
      reels);
  add({.name = "live",
       .description = "Make or find a device's live-feed reel",
       .examples = {"reeldb device live 1"},
       .details = "A device is a live source when \"Live\" is among the types it accepts."},
      live);
  add({.name = "label-map",
       .description = "Show the label map that suits a device and the project",
       .examples = {"reeldb device label-map 0"},
       .details = "The device's own map if it fits the device, else the usual one for its port and the frame rate.\n"
                  "A warning tells when the facility has no such map, or one that cannot be read."},
      labelMap);
}

} // namespace reeldb::cli
