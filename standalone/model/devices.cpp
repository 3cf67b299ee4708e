// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>
#include <type_traits>

#include "host/device.h"
#include "host/text.h"
#include "journal/host_call.h"
#include "model/settings.h"
#include "reelhost/notify_msg.h"

using reelhost::describeAll;
using reelhost::DeviceSettings;
using reelhost::hostCall;
using reelhost::noArguments;

/// The device that a configuration was copied from. An unknown device keeps the default settings (identity 0).
struct ExtDeviceConfig::Impl {
  DeviceSettings settings;
};

namespace {

ExtDeviceConfig configOf(const DeviceSettings& device)
{
  ExtDeviceConfig config;
  config.impl()->settings = device;
  return config;
}

LightweightString<wchar_t> wide(const std::string& text)
{
  return fromUTF8(text.c_str());
}

std::string nameOf(const ExtDeviceConfig& config)
{
  return reelhost::describe(config.impl()->settings.name);
}

template <class Wanted>
ExtDeviceConfig configWhere(const Wanted& wanted)
{
  const auto& devices = reelhost::model::facilityOrNone().devices();
  const auto found = std::find_if(devices.begin(), devices.end(), wanted);
  return found == devices.end() ? ExtDeviceConfig() : configOf(*found);
}

} // namespace

namespace reelhost {

std::string describe(const ExtDeviceConfig& device)
{
  return nameOf(device);
}

std::string describe(const IdStamp& stamp)
{
  return "IdStamp " + std::to_string(stamp.value());
}

} // namespace reelhost

ExtDeviceConfig::ExtDeviceConfig() : impl_(new Impl) {}

ExtDeviceConfig::ExtDeviceConfig(const ExtDeviceConfig& other) : impl_(new Impl(*other.impl_)) {}

ExtDeviceConfig& ExtDeviceConfig::operator=(const ExtDeviceConfig& other)
{
  *impl_ = *other.impl_;
  return *this;
}

ExtDeviceConfig::~ExtDeviceConfig()
{
  delete impl_;
}

StringList ExtDeviceConfig::getTapeList() const
{
  return hostCall(
      "ExtDeviceConfig::getTapeList", [&] { return nameOf(*this); },
      [&] {
        StringList tapes;
        for (const std::string& tape : impl_->settings.tapes)
          tapes.add(tape.c_str());
        return tapes;
      });
}

LightweightString<wchar_t> ExtDeviceConfig::getTextName() const
{
  return hostCall(
      "ExtDeviceConfig::getTextName", [&] { return nameOf(*this); }, [&] { return wide(impl_->settings.name); });
}

int ExtDeviceConfig::getPortType() const
{
  return hostCall(
      "ExtDeviceConfig::getPortType", [&] { return nameOf(*this); }, [&] { return impl_->settings.portType; });
}

int ExtDeviceConfig::getInputType() const
{
  return hostCall(
      "ExtDeviceConfig::getInputType", [&] { return nameOf(*this); }, [&] { return impl_->settings.inputType; });
}

int ExtDeviceConfig::getNumConnectedAudioInputs() const
{
  return hostCall(
      "ExtDeviceConfig::getNumConnectedAudioInputs", [&] { return nameOf(*this); },
      [&] { return impl_->settings.audioInputs; });
}

LightweightString<wchar_t> ExtDeviceConfig::getLabelMapping() const
{
  return hostCall(
      "ExtDeviceConfig::getLabelMapping", [&] { return nameOf(*this); },
      [&] { return wide(impl_->settings.labelMap); });
}

void ExtDeviceConfig::setLastReel(LightweightString<char> reel)
{
  hostCall(
      "ExtDeviceConfig::setLastReel", [&] { return nameOf(*this) + ", " + describeAll(reel); },
      [&] { impl_->settings.lastReel = reel.c_str(); });
}

ExtDeviceConfig ExtDeviceConfigurationManager::getConfig(int device) const
{
  return hostCall(
      "ExtDeviceConfigurationManager::getConfig", [&] { return describeAll(device); },
      [&] { return configWhere([&](const DeviceSettings& d) { return device >= 0 && d.number == device; }); });
}

ExtDeviceConfig ExtDeviceConfigurationManager::getConfig(IdStamp stamp) const
{
  return hostCall(
      "ExtDeviceConfigurationManager::getConfig", [&] { return describeAll(stamp); },
      [&] { return configWhere([&](const DeviceSettings& d) { return stamp.valid() && d.id == stamp.value(); }); });
}

int ExtDeviceConfigurationManager::findConfigForName(const LightweightString<wchar_t>& name) const
{
  constexpr int unknown = -1;
  return hostCall(
      "ExtDeviceConfigurationManager::findConfigForName", [&] { return describeAll(name); },
      [&] {
        const std::string wanted = toUTF8(name).c_str();
        if (wanted.empty())
          return unknown;
        for (const DeviceSettings& device : reelhost::model::facilityOrNone().devices())
          if (device.name == wanted)
            return device.number;
        return unknown;
      });
}

// Only the last reel can differ from the facility's own description.
void ExtDeviceConfigurationManager::storeDevice(const ExtDeviceConfig& config, bool flag)
{
  hostCall(
      "ExtDeviceConfigurationManager::storeDevice", [&] { return nameOf(config) + ", " + reelhost::describe(flag); },
      [&] {
        const DeviceSettings& stored = config.impl()->settings;
        reelhost::Facility& facility = reelhost::model::facilityOrNone();
        for (DeviceSettings& device : facility.devices()) {
          if (stored.id == 0 || device.id != stored.id)
            continue;
          device.lastReel = stored.lastReel; // takes effect at once, and is stored by the next commit
          facility.setLastReel(stored.id, stored.lastReel);
        }
      });
}

IdStamp ExtDeviceConfigurationManager::DeviceChangedMsgParser(const NotifyMsg& message)
{
  return hostCall(
      "ExtDeviceConfigurationManager::DeviceChangedMsgParser", [&] { return describeAll(message.deviceId()); },
      [&] { return IdStamp(message.deviceId()); });
}

ExtDeviceConfigurationManager& theConfigurationManager()
{
  static ExtDeviceConfigurationManager manager;
  hostCall("theConfigurationManager", noArguments, [] {});
  return manager;
}

// The devices of this host are only descriptions: there is no connection to reset.
void resetDevices()
{
  hostCall("resetDevices", noArguments, [] {});
}
