// SPDX-License-Identifier: Apache-2.0
#include "app/devices.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/device_settings.h"
#include "app/facility.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "base/number.h"
#include "base/text_width.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

Device deviceFrom(const reelhost::DeviceSettings& settings)
{
  return {settings.number,
          settings.name,
          reelhost::portWord(settings.portType),
          reelhost::inputWord(settings.inputType),
          settings.audioInputs,
          settings.tapes,
          settings.labelMap,
          settings.lastReel};
}

bool accepts(const reelhost::DeviceSettings& device, const std::string& type)
{
  return std::find(device.tapes.begin(), device.tapes.end(), type) != device.tapes.end();
}

/// The test of the library that accepts or refuses the reel, in words.
std::string reason(const Reel& reel, bool accepted, const reelhost::DeviceSettings& device)
{
  if (!accepted)
    return fmt::format("the device does not accept type \"{}\"", reel.type);
  if (accepts(device, reel.type))
    return fmt::format("the device accepts type \"{}\"", reel.type);
  return reel.type.empty() ? "the reel has no type" : fmt::format("type \"{}\" is not in the catalogue", reel.type);
}

} // namespace

const reelhost::DeviceSettings& requireDevice(const std::string& number)
{
  const reelhost::Facility& facility = requireFacility();
  const auto& devices = facility.devices();
  const auto wanted = base::parseNumber(number);
  if (!wanted)
    throw Error(ErrorKind::Invalid, fmt::format("\"{}\": not a device number", base::shortText(number)));
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const reelhost::DeviceSettings& device) { return device.number == wanted; });
  if (found == devices.end())
    throw Error(ErrorKind::NotFound, fmt::format("{}: no such device ({})", *wanted, devicesThereAre(facility)));
  return *found;
}

std::string devicesThereAre(const reelhost::Facility& facility)
{
  std::vector<std::string> texts;
  for (const reelhost::DeviceSettings& device : facility.devices())
    texts.push_back(fmt::format("{} {}", device.number, device.name));
  return texts.empty() ? "this facility has no devices" : fmt::format("this facility has: {}", fmt::join(texts, ", "));
}

std::vector<Device> listDevices()
{
  std::vector<Device> devices;
  for (const reelhost::DeviceSettings& settings : requireFacility().devices())
    devices.push_back(deviceFrom(settings));
  return devices;
}

Device showDevice(const std::string& number)
{
  return deviceFrom(requireDevice(number));
}

std::vector<Verdict> judgeReels(Session& session, const std::string& device)
{
  return guarded([&] {
    const reelhost::DeviceSettings& settings = requireDevice(device);
    // The library appends them in the order of the list.
    std::vector<LightweightString<char>> accepted;
    session.manager().getReelsCompatibleWithDevice(accepted, settings.number);
    std::size_t next = 0;
    std::vector<Verdict> verdicts;
    for (const Cookie& log : session.manager().reelList) {
      Reel reel = readReel(ReelDbRec(log), {});
      const bool isNext = next < accepted.size() && text(accepted[next]) == reel.id;
      next += isNext;
      std::string why = reason(reel, isNext, settings);
      verdicts.push_back({std::move(reel), isNext, std::move(why)});
    }
    return verdicts;
  });
}

LiveReel liveReel(Session& session, const std::string& device)
{
  return guarded([&] {
    const reelhost::DeviceSettings settings = requireDevice(device);
    if (!accepts(settings, "Live"))
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: not a live source (\"Live\" is not one of the types it accepts)", settings.name));
    const ShotCounts shots = reelhost::shotCounts();
    ReelDbManager& manager = session.manager();
    const LightweightString<char> id = manager.getLiveDeviceMediaName(hostText(settings.name));
    LiveReel result;
    result.created = !manager.doesReelExist(id);
    manager.checkLiveDeviceMedia(settings.number);
    ReelDbRec record = manager.getReelInfo(id);
    if (!record.valid())
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: no live-feed reel made (\"{}\" is not a valid reel name)", settings.name, text(id)));
    result.reel = readReel(record, shots);
    session.commit();
    return result;
  });
}

} // namespace reeldb::app
