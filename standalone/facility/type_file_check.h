// SPDX-License-Identifier: Apache-2.0
//
// Checks the reel type file of a facility before the library reads it. The library reads it while it is loaded, and
// ends the process if a field does not fit its buffers.
#ifndef REELHOST_FACILITY_TYPE_FILE_CHECK_H
#define REELHOST_FACILITY_TYPE_FILE_CHECK_H

#include <filesystem>
#include <string>
#include <vector>

namespace reelhost {

/// What a reel type file holds.
struct CheckedTypes {
  std::vector<std::string> remarks; ///< "PATH:LINE: FACT", on channel counts that the library reads as other numbers
  std::vector<std::string> names;   ///< of the types, in the order of the file
};

/// Reads @p file as the library does. Without a file there is nothing in the result. Throws Error: Unreadable for a
/// field that would end the process, for anything but a regular file and for a file that is too large to be a list of
/// types; Io.
CheckedTypes checkTypeFile(const std::filesystem::path& file);

} // namespace reelhost

#endif
