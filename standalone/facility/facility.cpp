// SPDX-License-Identifier: Apache-2.0
#include "reelhost/facility.h"

#include <algorithm>
#include <charconv>

#include "facility/state_file.h"
#include "host/codes.h"

namespace reelhost {

Facility::Facility()
    : texts_{{codes::wordForReel, "Reel"}}, frameRates_{{"25", codes::rate25},      {"29.97", codes::rate2997},
                                                        {"30", codes::rate30},      {"24", codes::rate24},
                                                        {"23.98", codes::rate2398}, {"50", codes::rate50},
                                                        {"59.94", codes::rate5994}, {"60", codes::rate60}}
{
}

std::filesystem::path Facility::deviceDataDirectory() const
{
  return directory_ / "devicedata" / "";
}

std::filesystem::path Facility::labelMapDirectory() const
{
  return directory_ / "labelmaps";
}

std::filesystem::path Facility::projectDirectory() const
{
  return directory_ / "projects";
}

std::optional<std::string> Facility::configString(const std::string& key) const
{
  const auto found = config_.find(key);
  return found == config_.end() ? std::nullopt : std::optional(found->second);
}

const std::string& Facility::resourceText(unsigned id) const
{
  static const std::string& none = *new std::string; // never destroyed: the library may call at any time
  const auto found = texts_.find(id);
  return found == texts_.end() ? none : found->second;
}

std::optional<int> Facility::frameRateCode(const std::string& nameOrCode) const
{
  for (const auto& [name, code] : frameRates_)
    if (name == nameOrCode)
      return code;
  int code = 0;
  const char* const end = nameOrCode.data() + nameOrCode.size();
  const auto [stop, error] = std::from_chars(nameOrCode.data(), end, code);
  if (error != std::errc() || stop != end)
    return {};
  const bool known =
      std::any_of(frameRates_.begin(), frameRates_.end(), [&](const auto& r) { return r.second == code; });
  return known ? std::optional(code) : std::nullopt;
}

std::string Facility::systemValue(const std::string& key) const
{
  if (const auto pending = pendingSystem_.find(key); pending != pendingSystem_.end())
    return pending->second;
  const auto found = system_.find(key);
  return found == system_.end() ? std::string() : found->second;
}

void Facility::setSystemValue(const std::string& key, const std::string& value)
{
  const auto stored = system_.find(key);
  if (value == (stored == system_.end() ? std::string() : stored->second))
    pendingSystem_.erase(key);
  else
    pendingSystem_[key] = value;
}

void Facility::setLastReel(unsigned deviceId, const std::string& reel)
{
  if (storedLastReel(deviceId) == reel)
    pendingLastReel_.erase(deviceId);
  else
    pendingLastReel_[deviceId] = reel;
}

bool Facility::stateChanged() const
{
  return !pendingSystem_.empty() || !pendingLastReel_.empty();
}

std::vector<std::string> Facility::pendingChanges() const
{
  std::vector<std::string> changes;
  for (const auto& [id, reel] : pendingLastReel_) {
    const auto device =
        std::find_if(devices_.begin(), devices_.end(), [id = id](const DeviceSettings& d) { return d.id == id; });
    const std::string name = device == devices_.end() ? std::to_string(id) : device->name;
    changes.push_back("device " + name + ": last reel " + (reel.empty() ? "none" : reel));
  }
  for (const auto& [key, value] : pendingSystem_)
    changes.push_back("setting " + key + ": " + (value.empty() ? "none" : value));
  return changes;
}

void Facility::saveState()
{
  if (!stateChanged())
    return;
  const State changes = {pendingSystem_, pendingLastReel_};
  take(directory_.empty() ? merged({system_, storedLastReel_}, changes, {})
                          : StateFile(directory_, configuredSystem_).merge(changes));
  pendingSystem_.clear();
  pendingLastReel_.clear();
}

void Facility::dropState()
{
  for (DeviceSettings& device : devices_)
    if (pendingLastReel_.count(device.id) != 0)
      device.lastReel = storedLastReel(device.id);
  pendingSystem_.clear();
  pendingLastReel_.clear();
}

std::string Facility::storedLastReel(unsigned deviceId) const
{
  const auto found = storedLastReel_.find(deviceId);
  return found == storedLastReel_.end() ? std::string() : found->second;
}

void Facility::take(const State& state)
{
  system_ = configuredSystem_;
  for (const auto& [key, value] : state.system)
    system_[key] = value;
  storedLastReel_ = state.lastReel;
  for (DeviceSettings& device : devices_)
    device.lastReel = storedLastReel(device.id);
}

} // namespace reelhost
