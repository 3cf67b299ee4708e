// SPDX-License-Identifier: Apache-2.0
//
// A facility.toml of any bytes: either all values are in range, distinct and safe to show, and can be written and read
// again; or an error names the place of the fault.
#include <cstdint>
#include <set>

#include "host/codes.h"
#include "reelhost/facility.h"
#include "support/bytes.h"
#include "support/check.h"
#include "support/config_error.h"
#include "support/temp_folder.h"
#include "support/toml_text.h"

namespace {

using namespace reeldb_fuzz;
using reelhost::DeviceSettings;
using reelhost::Facility;

constexpr int userFields = 10; ///< the number of user fields whose display names are compared

std::string userFieldKey(int n)
{
  return "reel_userfield" + std::to_string(n);
}

const char* wordOf(int code, std::initializer_list<std::pair<int, const char*>> words)
{
  for (const auto& [known, word] : words)
    if (known == code)
      return word;
  throw Broken("code " + std::to_string(code) + " has no word");
}

const char* portOf(const DeviceSettings& device)
{
  return wordOf(device.portType, {{0, "9-pin"}, {1, "1394"}, {2, "device-named"}, {3, "none"}});
}

const char* inputOf(const DeviceSettings& device)
{
  return wordOf(
      device.inputType,
      {{0, "composite"}, {1, "s-video"}, {2, "component"}, {3, "sdi"}, {4, "hdmi"}, {5, "1394"}, {9, "none"}});
}

void requireDevices(const std::vector<DeviceSettings>& devices)
{
  std::set<int> numbers;
  std::set<unsigned> ids;
  std::set<std::string> names;
  for (const DeviceSettings& device : devices) {
    require(device.number >= 0 && device.number <= 9999, "device number", device.number);
    require(device.id != 0, "device without identity");
    require(device.audioInputs >= 0 && device.audioInputs <= 1024, "audio inputs", device.audioInputs);
    require(numbers.insert(device.number).second, "two devices of number", device.number);
    require(ids.insert(device.id).second, "two devices of identity", device.id);
    require(names.insert(device.name).second, "two devices of name", device.name);
    requirePrintable(device.name, "device name");
    requirePrintable(device.labelMap, "label map of a device");
    require(device.name.find_first_not_of(' ') != std::string::npos, "device without a name");
    for (const std::string& tape : device.tapes) {
      requirePrintable(tape, "reel type of a device");
      require(tape.find_first_not_of(' ') != std::string::npos, "reel type without a name");
    }
    requireEqual(device.lastReel, std::string(), "last reel where there is no state");
  }
}

void requireFrameRates(const Facility& facility)
{
  std::set<std::string> names;
  for (const auto& [name, code] : facility.frameRates()) {
    requirePrintable(name, "frame rate");
    require(names.insert(name).second, "two frame rates of name", name);
    require(code >= 0 && code <= 255, "frame rate code", code);
    require(facility.frameRateCode(name) == code, "frame rate", name, "has another code");
    require(facility.frameRateCode(std::to_string(code)).has_value(), "code", code, "is not known");
  }
}

void requireSound(const Facility& facility)
{
  requirePrintable(facility.defaultProject(), "default project");
  if (!facility.defaultProject().empty())
    Facility::requireProjectName(facility.defaultProject());
  requirePrintable(facility.configString("default_reel_type").value_or(""), "default reel type");
  requirePrintable(facility.resourceText(codes::wordForReel), "word for a reel");
  require(!facility.stateChanged(), "reading a facility changes its state");
  requireFrameRates(facility);
  requireDevices(facility.devices());
}

std::string written(const DeviceSettings& device)
{
  std::string tapes;
  for (const std::string& tape : device.tapes)
    tapes += tomlText(tape) + ",";
  return "[[device]]\nnumber=" + std::to_string(device.number) + "\nid=" + std::to_string(device.id) +
         "\nname=" + tomlText(device.name) + "\nport=" + tomlText(portOf(device)) +
         "\ninput=" + tomlText(inputOf(device)) + "\naudio_inputs=" + std::to_string(device.audioInputs) + "\ntapes=[" +
         tapes + "]\nlabel_map=" + tomlText(device.labelMap) + "\n";
}

/// A file with everything that the facility can return, except for keys of [system] that are not looked up.
std::string written(const Facility& facility)
{
  std::string text = "[facility]\n";
  if (!facility.defaultProject().empty())
    text += "default_project=" + tomlText(facility.defaultProject()) + "\n";
  if (const auto type = facility.configString("default_reel_type"))
    text += "default_reel_type=" + tomlText(*type) + "\n";
  text += "[texts]\nreel=" + tomlText(facility.resourceText(codes::wordForReel)) + "\n[frame_rates]\n";
  for (const auto& [name, code] : facility.frameRates())
    text += tomlText(name) + "=" + std::to_string(code) + "\n";
  text += "[system]\n";
  for (int n = 0; n < userFields; ++n)
    text += userFieldKey(n) + "=" + tomlText(facility.systemValue(userFieldKey(n))) + "\n";
  for (const DeviceSettings& device : facility.devices())
    text += written(device);
  return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static const reeldb_tests::TempFolder folder;
  const std::string bytes = allOf(data, size);
  const std::string path = folder.write("facility.toml", bytes);
  Facility facility;
  try {
    facility = Facility::read(folder.path());
  } catch (const reelhost::Error& error) {
    requireHelpful(error, path, bytes);
    return 0;
  }
  requireSound(facility);
  const std::string text = written(facility);
  folder.write("facility.toml", text);
  requireEqual(written(Facility::read(folder.path())), text, "written and read again");
  return 0;
}
