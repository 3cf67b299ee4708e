// SPDX-License-Identifier: Apache-2.0
//
// The devices as the facility describes them. For the sources of this room.
#ifndef REELDB_APP_DEVICE_SETTINGS_H
#define REELDB_APP_DEVICE_SETTINGS_H

#include <string>

#include "reelhost/facility.h"

namespace reeldb::app {

/// The device of that number, in decimal digits. Throws Error: Invalid for another text, NotFound, and as
/// requireFacility does.
const reelhost::DeviceSettings& requireDevice(const std::string& number);

/// "this facility has: 0 Deck A, 1 Deck B", for messages.
std::string devicesThereAre(const reelhost::Facility& facility);

} // namespace reeldb::app

#endif
