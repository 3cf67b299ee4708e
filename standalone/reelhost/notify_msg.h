// SPDX-License-Identifier: Apache-2.0
/// @file
/// The messages that this host sends about devices. The library only passes them to
/// ExtDeviceConfigurationManager::DeviceChangedMsgParser.
#ifndef REELHOST_NOTIFY_MSG_H
#define REELHOST_NOTIFY_MSG_H

/// Reports that the configuration of a device changed.
class NotifyMsg {
public:
  /// @p deviceId is a reelhost::DeviceSettings::id; 0: no particular device.
  explicit NotifyMsg(unsigned deviceId) : deviceId_(deviceId) {}
  unsigned deviceId() const { return deviceId_; }

private:
  unsigned deviceId_;
};

#endif
