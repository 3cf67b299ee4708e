// SPDX-License-Identifier: Apache-2.0
#include "LabelMaps.h"
#include "commands/commands.h"
#include "app/device.h"
#include "app/host_text.h"
#include "app/label_map.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string id, device;
  bool json = false;
};

ExitCode run(const Options& options, const Globals& globals)
{
  const reelhost::DeviceSettings device = requireDevice(requireFacility(), options.device);
  Session session(globals, reelhost::Access::Read);
  const LightweightString<char> id = session.requireReel(options.id).reelId();
  const std::string map = text(get_required_label_map_name(id, IdStamp(device.id)));
  answerLabelMap({{"reel", text(id)}, {"device", device.number}, {"label_map", map}}, map, options.json);
  return done;
}

} // namespace

void addLabelMapFor(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app =
      line.add({.name = "label-map-for",
                .description = "Show the label map for a reel on a device",
                .examples = {"reeldb label-map-for A001 --device 0"},
                .details = "The reel's own map, if it names one, whether it fits or not; else the device's.\n"
                           "A warning tells when the facility has no such map, or one that cannot be read."},
               [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "REEL", options->id, "The reel")->required()->type_name("");
  takeText(app, "--device", options->device, "The device; reeldb devices lists them")->required()->type_name("NUMBER");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
