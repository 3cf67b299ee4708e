// SPDX-License-Identifier: Apache-2.0
//
// The configurations of external devices, and the label map files they use. Main thread only.
#ifndef REELDB_HOST_DEVICE_H
#define REELDB_HOST_DEVICE_H

#include <cstdint>

#include "containers.h"
#include "cookie.h"
#include "lwstring.h"

class NotifyMsg;

/// The configuration of one device, by value: a change stays in the copy until it is stored.
class ExtDeviceConfig {
public:
  ExtDeviceConfig();
  ExtDeviceConfig(const ExtDeviceConfig&);
  ExtDeviceConfig& operator=(const ExtDeviceConfig&);
  ~ExtDeviceConfig();
  StringList getTapeList() const;                 ///< the reel types the device accepts
  LightweightString<wchar_t> getTextName() const; ///< the device's display name
  int getPortType() const;                        ///< 0 9-pin, 1 1394, 2 the device names the reel, others none
  int getInputType() const;                       ///< 9: no video input
  int getNumConnectedAudioInputs() const;
  LightweightString<wchar_t> getLabelMapping() const; ///< the configured label map; may be empty
  void setLastReel(LightweightString<char>);

private:
  struct Impl;
  Impl* impl_;
};

class ExtDeviceConfigurationManager {
public:
  ExtDeviceConfig getConfig(int device) const; ///< an unknown number gives a device without inputs, port or tapes
  ExtDeviceConfig getConfig(IdStamp) const;    ///< likewise
  int findConfigForName(const LightweightString<wchar_t>&) const; ///< -1 when unknown or empty
  void storeDevice(const ExtDeviceConfig&, bool);          ///< called with false; finds the device by its own identity
  static IdStamp DeviceChangedMsgParser(const NotifyMsg&); ///< the device that a message speaks of
};

ExtDeviceConfigurationManager& theConfigurationManager();

/// Re-initialises the device layer; called when another project is entered.
void resetDevices();

/// A label map: from which source each of fourteen timecode labels is read.
class LabelMappingSet {
public:
  struct Entry {
    std::uint8_t inUse;   ///< 0: the entry does not count
    std::uint32_t source; ///< 1, 2 VITC; 3, 4, 5 over a 9-pin port; 9 over a 1394 port
    std::uint32_t format;
  };
  static const int numEntries = 14;
  LabelMappingSet();
  bool load(const LightweightString<wchar_t>& name); ///< false when the file cannot be loaded; entries then are reset
  Entry entries[numEntries];
};

#endif
