// SPDX-License-Identifier: Apache-2.0
//
// The reel type file of a facility, looked at before the library reads it. The library does so while it is loaded, and
// ends the process when a field does not fit its buffers.
#ifndef REELHOST_FACILITY_TYPE_FILE_CHECK_H
#define REELHOST_FACILITY_TYPE_FILE_CHECK_H

#include <filesystem>
#include <string>
#include <vector>

namespace reelhost {

/// Reads @p file as the library does and returns remarks, "PATH:LINE: FACT": numbers of channels that the library takes
/// for others than were meant. Without a file there are none. Throws Error: Unreadable for a field that would end the
/// process, for anything but a regular file and for one that is too large to be a list of types, Io.
std::vector<std::string> checkTypeFile(const std::filesystem::path& file);

} // namespace reelhost

#endif
