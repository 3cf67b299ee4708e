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

// --- list ----------------------------------------------------------------------------------------

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
    table.printOr("no label maps (put them into the folder labelmaps of the facility)\n");
  return code;
}

// --- check ---------------------------------------------------------------------------------------

struct CheckOptions {
  std::string map;
  std::optional<std::string> device;
  bool json = false;
};

ExitCode check(const CheckOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  // If a map does not fit a device, the library itself prints the reason.
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

// --- for -----------------------------------------------------------------------------------------

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
      line.addGroup("label-map", "List or check label maps, or find the one to use", "reeldb label-map list");

  const auto listOptions = std::make_shared<ListOptions>();
  Command listing =
      line.add(group,
               {.name = "list",
                .description = "List the label maps of the facility",
                .examples = {"reeldb label-map list", "reeldb label-map list --json"},
                .details = "A map that cannot be read is listed with its fault; the exit code is then 3."},
               [listOptions](const Globals& globals) { return list(*listOptions, globals); });
  listing.json(listOptions->json);

  const auto checkOptions = std::make_shared<CheckOptions>();
  Command checking = line.add(
      group,
      {.name = "check",
       .description = "Check whether a label map can be read and fits the project and a device",
       .examples = {"reeldb label-map check pal9pin", "reeldb label-map check pal9pin --device 0"},
       .details =
           "The exit code is 1 if the map does not fit, and 3 if its file cannot be read; the message then names\n"
           "the line."},
      [checkOptions](const Globals& globals) { return check(*checkOptions, globals); });
  checking.text("MAP", checkOptions->map, "The label map").required().shownAs("");
  checking.text("--device", checkOptions->device, "The device that the map should fit").shownAs("NUMBER");
  checking.json(checkOptions->json);

  const auto forOptions = std::make_shared<ForOptions>();
  Command finding = line.add(
      group,
      {.name = "for",
       .description = "Show the label map for a reel on a device, or for the device alone",
       .examples = {"reeldb label-map for A001 --device 0", "reeldb label-map for --device 0"},
       .details =
           "With a reel: the reel's own map if it names one, whether the map fits or not; else the map for the\n"
           "device. Without a reel: the device's own map if it fits the device, else the default map for its port\n"
           "and the project's frame rate. A warning is printed if the facility has no such map or cannot read it."},
      [forOptions](const Globals& globals) { return needed(*forOptions, globals); });
  finding.text("REEL", forOptions->reel, "The reel").shownAs("");
  finding.text("--device", forOptions->device, "The device; reeldb device list lists them")
      .required()
      .shownAs("NUMBER");
  finding.json(forOptions->json);
}

} // namespace reeldb::cli
