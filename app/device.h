// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_DEVICE_H
#define REELDB_CLI_DEVICE_H

#include <string>
#include <vector>

#include "text/output.h"
#include "reelhost/facility.h"

namespace reeldb::cli {

/// The device whose number the text writes. Throws Failure, which lists the devices there are.
const reelhost::DeviceSettings& requireDevice(const reelhost::Facility& facility, const std::string& number);

/// "1 VTR 1, 2 Camera": the devices by number and name, for a message.
std::string devicesThereAre(const reelhost::Facility& facility);

Json toJson(const reelhost::DeviceSettings& device);
void printDevices(const std::vector<reelhost::DeviceSettings>& devices);

} // namespace reeldb::cli

#endif
