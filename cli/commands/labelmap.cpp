// SPDX-License-Identifier: Apache-2.0
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "LabelMaps.h"
#include "commands/commands.h"
#include "app/device.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/label_map.h"
#include "app/project_file.h"
#include "app/reel.h"
#include "app/session.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

// --- list ------------------------------------------------------------------------------------------------------------

struct ListOptions {
  bool json = false;
};

ExitCode list(const ListOptions& options, const Globals& globals)
{
  const reelhost::Facility& facility = requireFacility();
  Session session(globals, reelhost::Access::Read);
  Json json = Json::array();
  Table table({{"LABEL MAP"}, {"VITC"}, {"FITS PROJECT"}, {.title = "FAULT", .optional = true}});
  ExitCode code = done;
  for (const std::string& name : labelMapNames(facility)) {
    if (const auto fault = labelMapFault(facility, name)) {
      code = unreadable;
      json.push_back({{"name", name}, {"uses_vitc", nullptr}, {"fits_project", nullptr}, {"fault", fault->what()}});
      table.add({name, "-", "unreadable", fault->what()});
      continue;
    }
    const LightweightString<wchar_t> map = wideHostText(name);
    const bool vitc = map_file_uses_vitc(map);
    const bool fits = map_file_is_compatible_with_project(map);
    json.push_back({{"name", name}, {"uses_vitc", vitc}, {"fits_project", fits}});
    table.add({name, std::string(yesOrNo(vitc)), std::string(yesOrNo(fits))});
  }
  if (options.json)
    printJson(json);
  else
    table.printOr("no label maps (the folder labelmaps of the facility holds them)\n");
  return code;
}

// --- check -----------------------------------------------------------------------------------------------------------

struct CheckOptions {
  std::string map;
  std::optional<std::string> device;
  bool json = false;
};

/// What the map counts in, against what the project counts in: why the one does not fit the other.
std::string whyNotThisProject(const reelhost::Facility& facility, const std::string& map)
{
  std::set<std::string> formats;
  for (const reelhost::LabelMapEntry& entry : reelhost::readLabelMap(labelMapFile(facility, map)))
    if (entry.inUse)
      formats.insert(reelhost::labelFormatWord(entry.format));
  return fmt::format("the project runs at {} fps, the labels it reads are {}",
                     frameRateName(facility, reelhost::projectInfo().frameRate), fmt::join(formats, ", "));
}

ExitCode check(const CheckOptions& options, const Globals& globals)
{
  const reelhost::Facility& facility = requireFacility();
  const reelhost::DeviceSettings* device = options.device ? &requireDevice(facility, *options.device) : nullptr;
  if (const auto fault = labelMapFault(facility, options.map)) // names the line, where the library only says no
    throw *fault;
  Session session(globals, reelhost::Access::Read);
  const LightweightString<wchar_t> map = wideHostText(options.map);
  const bool fitsProject = map_file_is_compatible_with_project(map);
  // The library prints the one line that says why not.
  const bool fitsDevice = !device || map_file_is_compatible_with_device(map, IdStamp(device->id));
  const bool vitc = map_file_uses_vitc(map);
  const std::string why = fitsProject ? "" : whyNotThisProject(facility, options.map);
  if (options.json) {
    Json json = {{"name", options.map}, {"uses_vitc", vitc}, {"fits_project", fitsProject}};
    if (!fitsProject)
      json["why"] = why;
    if (device) {
      json["device"] = device->number;
      json["fits_device"] = fitsDevice;
    }
    printJson(json);
  } else {
    const std::string name = displayText(options.map);
    print(fmt::format("{}: {} the project's frame rate{}\n", name, fitsProject ? "fits" : "does not fit",
                      fitsProject ? "" : " (" + why + ")"));
    if (device)
      print(
          fmt::format("{}: {} the device {}\n", name, fitsDevice ? "fits" : "does not fit", displayText(device->name)));
    print(fmt::format("{}: {} VITC\n", name, vitc ? "reads" : "does not read"));
  }
  return fitsProject && fitsDevice ? done : refused;
}

} // namespace

void addLabelMap(CommandLine& line)
{
  CLI::App& group = line.addGroup("labelmap", "List or check label maps", "reeldb labelmap list");

  const auto listOptions = std::make_shared<ListOptions>();
  CLI::App& listApp = line.add(group,
                               {.name = "list",
                                .description = "List the label maps of the facility",
                                .examples = {"reeldb labelmap list", "reeldb labelmap list --json"},
                                .details = "One that cannot be read is told with its fault, and the exit code is 3."},
                               [listOptions](const Globals& globals) { return list(*listOptions, globals); });
  takeJson(listApp, listOptions->json);

  const auto checkOptions = std::make_shared<CheckOptions>();
  CLI::App& checkApp = line.add(
      group,
      {.name = "check",
       .description = "Check whether a label map can be read and suits project and device",
       .examples = {"reeldb labelmap check pal9pin", "reeldb labelmap check pal9pin --device 0"},
       .details = "The exit code is 1 when it does not fit, and 3 when the file cannot be read; then the message says\n"
                  "which line is wrong."},
      [checkOptions](const Globals& globals) { return check(*checkOptions, globals); });
  takeText(checkApp, "MAP", checkOptions->map, "The label map")->required()->type_name("");
  takeText(checkApp, "--device", checkOptions->device, "The device it is to suit")->type_name("NUMBER");
  takeJson(checkApp, checkOptions->json);
}

} // namespace reeldb::cli
