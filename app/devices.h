// SPDX-License-Identifier: Apache-2.0
//
// The devices of the facility, and which reels they accept.
#ifndef REELDB_APP_DEVICES_H
#define REELDB_APP_DEVICES_H

#include <string>
#include <vector>

#include "app/reels.h"
#include "app/session.h"

namespace reeldb::app {

/// A device as the facility describes it. Port and input are words of facility.toml.
struct Device {
  int number = -1;
  std::string name;
  std::string port;
  std::string input;
  int audioInputs = 0;
  std::vector<std::string> tapes; ///< reel types that it accepts
  std::string labelMap;           ///< empty if no map is configured
  std::string lastReel;           ///< empty if there was no reel yet
};

/// In the order of facility.toml.
std::vector<Device> listDevices();

/// The device of that number, in decimal digits. Throws Error: Invalid for another text, NotFound.
Device showDevice(const std::string& number);

/// Whether a device accepts a reel, and which of the library's tests decided it.
struct Verdict {
  Reel reel;
  bool accepted = false;
  std::string why;
};

/// Every reel of the project in its order. Throws Error as showDevice does.
std::vector<Verdict> judgeReels(Session& session, const std::string& device);

struct LiveReel {
  Reel reel;
  bool created = false; ///< false: it already existed
};

/// The reel of the device's live feed, created and stored if it does not exist. Throws Error as showDevice does, and
/// Refused if the device is not a live source or its name is not valid for a reel. REQUIRES: a session for writing.
LiveReel liveReel(Session& session, const std::string& device);

} // namespace reeldb::app

#endif
