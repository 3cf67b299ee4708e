// SPDX-License-Identifier: Apache-2.0
/// @file
/// The configurations of external devices, and the label map files they use. Main thread only.
#ifndef REELDB_HOST_DEVICE_H
#define REELDB_HOST_DEVICE_H

#include <cstdint>

#include "containers.h"
#include "cookie.h"
#include "lwstring.h"

class NotifyMsg;

/// The configuration of one device, by value: a change stays in the copy until it is stored. It outlives the device.
class ExtDeviceConfig {
public:
  ExtDeviceConfig(); ///< of no device: without inputs, port, tapes and name
  ExtDeviceConfig(const ExtDeviceConfig&);
  ExtDeviceConfig& operator=(const ExtDeviceConfig&);
  ~ExtDeviceConfig();
  StringList getTapeList() const;                     ///< the reel types the device accepts, "Live" for a live feed
  LightweightString<wchar_t> getTextName() const;     ///< the device's display name; empty when unknown
  int getPortType() const;                            ///< codes::port9Pin and its neighbours
  int getInputType() const;                           ///< codes::noVideoInput, or any other number
  int getNumConnectedAudioInputs() const;             ///< not negative; each gives a new reel a channel
  LightweightString<wchar_t> getLabelMapping() const; ///< the configured label map; may be empty
  void setLastReel(LightweightString<char>);          ///< the identifier of the reel the device is to remember

private:
  struct Impl;
  Impl* impl_;
};

/// The devices of the installation. A device has a number, by which it is listed, and an identity that stays.
class ExtDeviceConfigurationManager {
public:
  ExtDeviceConfig getConfig(int device) const; ///< an unknown number gives a device without inputs, port or tapes
  ExtDeviceConfig getConfig(IdStamp) const;    ///< likewise
  /// The number of the device with this display name, letter for letter; -1 when unknown or empty.
  int findConfigForName(const LightweightString<wchar_t>&) const;
  /// Takes the copy over: the device is found by its own identity, not by its name; an unknown one is ignored. Called
  /// with false.
  void storeDevice(const ExtDeviceConfig&, bool);
  static IdStamp DeviceChangedMsgParser(const NotifyMsg&); ///< the device that a message speaks of; invalid: none
};

/// The one there is, until the process ends.
ExtDeviceConfigurationManager& theConfigurationManager();

/// Re-initialises the device layer; called when another project is entered.
void resetDevices();

/// A label map: from which source each of fourteen timecode labels is read. The library makes it on its stack: no
/// member may be added.
class LabelMappingSet {
public:
  /// One label.
  struct Entry {
    std::uint8_t inUse;   ///< 0: the entry does not count
    std::uint32_t source; ///< where the label is read: codes::fromVitc and its neighbours
    std::uint32_t format; ///< what the label counts: codes::counts30Fps and its neighbours
  };
  static const int numEntries = 14;
  LabelMappingSet(); ///< all entries zero
  /// Resets the entries and loads the map of this name, which is that of a file without folder and ending. False when
  /// there is no such map or it cannot be loaded; the entries then stay reset. Throws nothing for that.
  bool load(const LightweightString<wchar_t>& name);
  Entry entries[numEntries]; ///< in the order of the labels
};

#endif
