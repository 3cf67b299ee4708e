// SPDX-License-Identifier: Apache-2.0
//
// What a sequence of operations is about: the texts it draws on, the devices there are, the keys it writes.
#ifndef REELDB_FUZZ_MANAGER_VOCABULARY_H
#define REELDB_FUZZ_MANAGER_VOCABULARY_H

#include <string>
#include <utility>
#include <vector>

#include "reelhost/facility.h"
#include "support/bytes.h"

namespace reeldb_fuzz {

/// A text that means something somewhere, or up to 63 bytes of any kind. Longer ones meet no other code until they no
/// longer fit a buffer; what is cut there, and where, has tests of its own.
std::string anyText(Bytes& bytes);

/// A name of a device, or one that no device has. UTF-8: what becomes of a name that is none is not the manager's
/// doing.
std::string anyDeviceName(Bytes& bytes);

/// Parameters of a type, with few channels: a reel gets its channels one by one, so a type with two thousand million of
/// them would only take its time.
std::string anyParams(Bytes& bytes);

/// A key of a log's configuration block. The host keeps every key it has ever met, so there are not many.
std::string anyKey(Bytes& bytes);

/// Number of a user field. Any number is one.
int anyUserField(Bytes& bytes);

/// Index of a device, or one that none has.
int anyDevice(Bytes& bytes);

/// What an operation adds to the notification hold count. Never so much that it overflows.
int anyHold(Bytes& bytes);

std::vector<reelhost::DeviceSettings> allDevices();

/// The catalogue to begin with: name and parameters.
std::vector<std::pair<std::string, std::string>> firstTypes();

} // namespace reeldb_fuzz

#endif
