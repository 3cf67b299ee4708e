// SPDX-License-Identifier: Apache-2.0
//
// The arguments of a sequence of operations: texts, devices, keys.
#ifndef REELDB_FUZZ_MANAGER_VOCABULARY_H
#define REELDB_FUZZ_MANAGER_VOCABULARY_H

#include <string>
#include <utility>
#include <vector>

#include "reelhost/facility.h"
#include "support/bytes.h"

namespace reeldb_fuzz {

/// A text with a meaning somewhere, or up to 63 bytes of any kind. Longer texts reach other code only if they no longer
/// fit a buffer, and other tests check where they are cut.
std::string anyText(Bytes& bytes);

/// The name of a device, or a name that no device has. It is UTF-8, because the manager does not decide what happens to
/// other names.
std::string anyDeviceName(Bytes& bytes);

/// Parameters of a type, with few channels: a reel gets its channels one by one, so two thousand million of them would
/// only take time.
std::string anyParams(Bytes& bytes);

/// A key of a log's configuration block. The host keeps every key of the process for ever, so there are only a few.
std::string anyKey(Bytes& bytes);

/// The number of a user field. Any number is valid.
int anyUserField(Bytes& bytes);

/// The index of a device, or an index without a device.
int anyDevice(Bytes& bytes);

/// The number that an operation adds to the notification hold count; too small for an overflow.
int anyHold(Bytes& bytes);

std::vector<reelhost::DeviceSettings> allDevices();

/// The initial catalogue: names and parameters.
std::vector<std::pair<std::string, std::string>> firstTypes();

} // namespace reeldb_fuzz

#endif
