// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "app/device.h"
#include "text/output.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool json = false;
};

ExitCode run(const Options& options)
{
  const auto& devices = requireFacility().devices();
  if (options.json) {
    Json json = Json::array();
    for (const reelhost::DeviceSettings& device : devices)
      json.push_back(toJson(device));
    printJson(json);
  } else if (devices.empty()) {
    print("no devices (facility.toml lists them)\n");
  } else {
    printDevices(devices);
  }
  return done;
}

} // namespace

void addDeviceList(CommandLine& line, CLI::App* group, const std::string& name)
{
  const std::string words = group ? "reeldb device " + name : "reeldb " + name;
  const auto options = std::make_shared<Options>();
  CommandInfo info = {
      .name = name, .description = "List the devices of the facility", .examples = {words, words + " --json"}};
  const Run body = [options](const Globals&) { return run(*options); };
  CLI::App& app = group ? line.add(*group, std::move(info), body) : line.add(std::move(info), body);
  takeJson(app, options->json);
}

void addDevices(CommandLine& line)
{
  addDeviceList(line, nullptr, "devices");
}

} // namespace reeldb::cli
