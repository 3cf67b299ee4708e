// SPDX-License-Identifier: Apache-2.0
/// @file
/// The messages that this host sends about devices. The library only hands them to
/// ExtDeviceConfigurationManager::DeviceChangedMsgParser.
#ifndef REELHOST_NOTIFY_MSG_H
#define REELHOST_NOTIFY_MSG_H

/// Says that the configuration of a device changed.
class NotifyMsg {
public:
  /// Of the device with this reelhost::DeviceSettings::id; 0: no device in particular.
  explicit NotifyMsg(unsigned deviceId) : deviceId_(deviceId) {}
  unsigned deviceId() const { return deviceId_; }

private:
  unsigned deviceId_;
};

#endif
