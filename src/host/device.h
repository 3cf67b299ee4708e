// SPDX-License-Identifier: Apache-2.0
/// @file
/// The configurations of external devices, and the label map files they use. Main thread only.
/// Where a comment says what an argument is "called with", the library passes nothing else, and a host may ignore the
/// argument.
#ifndef REELDB_HOST_DEVICE_H
#define REELDB_HOST_DEVICE_H

#include <cstdint>

#include "containers.h"
#include "cookie.h"
#include "lwstring.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

class NotifyMsg;

/// The configuration of one device, by value: a change stays in the copy until it is stored. A copy stays usable when
/// the device is gone.
class ExtDeviceConfig {
public:
  ExtDeviceConfig(); ///< belongs to no device: without inputs, port, tapes and name
  ExtDeviceConfig(const ExtDeviceConfig&);
  ExtDeviceConfig& operator=(const ExtDeviceConfig&);
  ~ExtDeviceConfig();
  StringList getTapeList() const;                     ///< the reel types the device accepts, "Live" for a live feed
  LightweightString<wchar_t> getTextName() const;     ///< the display name; empty for an unknown device
  int getPortType() const;                            ///< codes::port9Pin and its neighbours
  int getInputType() const;                           ///< codes::noVideoInput, or any other number
  int getNumConnectedAudioInputs() const;             ///< not negative; a new reel gets one channel per input
  LightweightString<wchar_t> getLabelMapping() const; ///< the configured label map; may be empty
  void setLastReel(LightweightString<char>);          ///< sets the identifier of the reel last used on the device

  struct Impl;                         ///< the host defines it
  Impl* impl() const { return impl_; } ///< for the host, which makes and stores configurations

private:
  Impl* impl_;
};

/// The devices of the installation. A device has a number, which is its index, and a permanent identity.
class ExtDeviceConfigurationManager {
public:
  ExtDeviceConfig getConfig(int device) const; ///< an unknown number gives a device without inputs, port or tapes
  ExtDeviceConfig getConfig(IdStamp) const;    ///< likewise for an unknown identity
  /// The number of the device with exactly this display name; -1 for an unknown or empty name.
  int findConfigForName(const LightweightString<wchar_t>&) const;
  /// Stores the last reel of the copy. All other values of the device stay as they are, even if the copy is older. The
  /// device is found by its identity, not by its name; an unknown device is ignored. Called with false.
  void storeDevice(const ExtDeviceConfig&, bool);
  static IdStamp DeviceChangedMsgParser(const NotifyMsg&); ///< the device that the message names; invalid: no device
};

/// The manager of the process; never destroyed.
ExtDeviceConfigurationManager& theConfigurationManager();

/// Re-initialises the device layer. Called when another project is entered. A host without connections to devices does
/// nothing.
void resetDevices();

/// A label map: the source of each of fourteen timecode labels. The library allocates it on its stack, so no member may
/// be added.
class LabelMappingSet {
public:
  /// One label.
  struct Entry {
    std::uint8_t inUse;   ///< 0: the entry is ignored
    std::uint32_t source; ///< where the label is read: codes::fromVitc and its neighbours
    std::uint32_t format; ///< what the label counts: codes::counts30Fps and its neighbours
  };
  static const int numEntries = 14;
  LabelMappingSet(); ///< all entries zero
  /// Resets the entries and loads the map of this name: a file name without folder and extension. Returns false if
  /// there is no such map or it cannot be loaded; the entries then stay reset. Does not throw in that case.
  bool load(const LightweightString<wchar_t>& name);
  Entry entries[numEntries]; ///< in the order of the labels
};

#pragma GCC visibility pop

#endif
