// SPDX-License-Identifier: Apache-2.0
#include "app/device.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "text/display_text.h"
#include "line/failure.h"
#include "app/number.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

// The words of facility.toml.
std::string portType(int code)
{
  switch (code) {
  case 0:
    return "9-pin";
  case 1:
    return "1394";
  case 2:
    return "device-named";
  default:
    return "none";
  }
}

std::string inputType(int code)
{
  switch (code) {
  case 0:
    return "composite";
  case 1:
    return "s-video";
  case 2:
    return "component";
  case 3:
    return "sdi";
  case 4:
    return "hdmi";
  case 5:
    return "1394";
  default:
    return "none";
  }
}

} // namespace

const reelhost::DeviceSettings& requireDevice(const reelhost::Facility& facility, const std::string& number)
{
  const auto& devices = facility.devices();
  const auto wanted = parseNumber(number);
  if (!wanted)
    throw Failure(usage, fmt::format("\"{}\": no device number", shortText(number)));
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const reelhost::DeviceSettings& device) { return device.number == wanted; });
  if (found == devices.end())
    throw Failure(refused, fmt::format("{}: no such device ({})", *wanted, devicesThereAre(facility)));
  return *found;
}

std::string devicesThereAre(const reelhost::Facility& facility)
{
  std::vector<std::string> texts;
  for (const reelhost::DeviceSettings& device : facility.devices())
    texts.push_back(fmt::format("{} {}", device.number, device.name));
  return texts.empty() ? "this facility has none" : fmt::format("this facility has: {}", fmt::join(texts, ", "));
}

Json toJson(const reelhost::DeviceSettings& device)
{
  Json json;
  json["number"] = device.number;
  json["name"] = device.name;
  json["port"] = portType(device.portType);
  json["input"] = inputType(device.inputType);
  json["audio_inputs"] = device.audioInputs;
  json["tapes"] = device.tapes;
  json["label_map"] = device.labelMap;
  json["last_reel"] = device.lastReel;
  return json;
}

void printDevices(const std::vector<reelhost::DeviceSettings>& devices)
{
  Table table({{.title = "NUMBER", .number = true},
               {"NAME"},
               {"PORT"},
               {"INPUT"},
               {.title = "AUDIO", .number = true},
               {"ACCEPTS"},
               {.title = "LABEL MAP", .optional = true},
               {.title = "LAST REEL", .optional = true}});
  for (const reelhost::DeviceSettings& device : devices)
    table.add({std::to_string(device.number), device.name, portType(device.portType), inputType(device.inputType),
               std::to_string(device.audioInputs), fmt::format("{}", fmt::join(device.tapes, ", ")), device.labelMap,
               device.lastReel});
  table.print();
}

} // namespace reeldb::cli
