// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/label_maps.h"
#include "base/display_text.h"
#include "commands/tables.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

using base::displayText;

// --- list ------------------------------------------------------------------------------------------

struct ListOptions {
  bool json = false;
};

ExitCode list(const ListOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const std::vector<app::LabelMap> maps = app::listLabelMaps(session);
  Table table({{"LABEL MAP"}, {"VITC"}, {"FITS PROJECT"}, {.title = "FAULT", .optional = true}});
  ExitCode code = done;
  for (const app::LabelMap& map : maps) {
    if (map.fault.empty()) {
      table.add({map.name, std::string(yesOrNo(map.usesVitc)), std::string(yesOrNo(map.fitsProject))});
    } else {
      code = unreadable;
      table.add({map.name, "-", "unreadable", map.fault});
    }
  }
  if (options.json)
    print(app::jsonText(maps));
  else
    table.printOr("no label maps (the folder labelmaps of the facility holds them)\n");
  return code;
}

// --- check -----------------------------------------------------------------------------------------

struct CheckOptions {
  std::string map;
  std::optional<std::string> device;
  bool json = false;
};

ExitCode check(const CheckOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  // The library prints the one line that says why a map does not fit a device.
  const app::LabelMapCheck found = app::checkLabelMap(session, options.map, options.device);
  const auto fits = [](bool so) { return so ? "fits" : "does not fit"; };
  if (options.json) {
    print(app::jsonText(found));
  } else {
    const std::string name = displayText(found.map.name);
    print(fmt::format("{}: {} the project's frame rate{}\n", name, fits(found.map.fitsProject),
                      found.why.empty() ? "" : " (" + found.why + ")"));
    if (found.device)
      print(fmt::format("{}: {} the device {}\n", name, fits(found.fitsDevice), displayText(found.deviceName)));
    print(fmt::format("{}: {} VITC\n", name, found.map.usesVitc ? "reads" : "does not read"));
  }
  return found.fits() ? done : refused;
}

// --- for -------------------------------------------------------------------------------------------

struct ForOptions {
  std::optional<std::string> reel;
  std::string device;
  bool json = false;
};

ExitCode needed(const ForOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const app::NeededLabelMap needed = options.reel ? app::labelMapForReel(session, *options.reel, options.device)
                                                  : app::labelMapForDevice(session, options.device);
  if (options.json)
    print(app::jsonText(needed));
  else
    print(displayText(needed.map) + "\n");
  if (!needed.fault.empty())
    complain(needed.fault);
  return done;
}

} // namespace

void addLabelMap(CommandLine& line)
{
  const Command group =
      line.addGroup("label-map", "List or check label maps, or find the one that is needed", "reeldb label-map list");

  const auto listOptions = std::make_shared<ListOptions>();
  Command listing = line.add(group,
                             {.name = "list",
                              .description = "List the label maps of the facility",
                              .examples = {"reeldb label-map list", "reeldb label-map list --json"},
                              .details = "One that cannot be read is listed with its fault, and the exit code is 3."},
                             [listOptions](const Globals& globals) { return list(*listOptions, globals); });
  listing.json(listOptions->json);

  const auto checkOptions = std::make_shared<CheckOptions>();
  Command checking = line.add(
      group,
      {.name = "check",
       .description = "Check whether a label map can be read and suits project and device",
       .examples = {"reeldb label-map check pal9pin", "reeldb label-map check pal9pin --device 0"},
       .details = "The exit code is 1 when it does not fit, and 3 when the file cannot be read; then the message says\n"
                  "which line is wrong."},
      [checkOptions](const Globals& globals) { return check(*checkOptions, globals); });
  checking.text("MAP", checkOptions->map, "The label map").required().shownAs("");
  checking.text("--device", checkOptions->device, "The device it is to suit").shownAs("NUMBER");
  checking.json(checkOptions->json);

  const auto forOptions = std::make_shared<ForOptions>();
  Command finding = line.add(
      group,
      {.name = "for",
       .description = "Show the label map for a reel on a device, or for the device alone",
       .examples = {"reeldb label-map for A001 --device 0", "reeldb label-map for --device 0"},
       .details =
           "For a reel: its own map, if it names one, whether it fits or not; else the device's. For a device\n"
           "alone: its own map if it fits the device, else the usual one for its port and the frame rate of the\n"
           "project. A warning is printed when the facility has no such map, or one that cannot be read."},
      [forOptions](const Globals& globals) { return needed(*forOptions, globals); });
  finding.text("REEL", forOptions->reel, "The reel").shownAs("");
  finding.text("--device", forOptions->device, "The device; reeldb device list lists them")
      .required()
      .shownAs("NUMBER");
  finding.json(forOptions->json);
}

} // namespace reeldb::cli
