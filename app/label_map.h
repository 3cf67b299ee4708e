// SPDX-License-Identifier: Apache-2.0
//
// The label map files of the facility.
#ifndef REELDB_CLI_LABEL_MAP_H
#define REELDB_CLI_LABEL_MAP_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "line/failure.h"
#include "text/output.h"
#include "reelhost/facility.h"

namespace reeldb::cli {

/// The names of the label maps there are, sorted, whether they can be read or not.
std::vector<std::string> labelMapNames(const reelhost::Facility& facility);

/// Its file, whether it is there or not.
std::filesystem::path labelMapFile(const reelhost::Facility& facility, const std::string& name);

/// Why the map cannot be read: there is none of that name (refused), or its file is wrong (unreadable; the message
/// names file and line). Nothing when it can.
std::optional<Failure> labelMapFault(const reelhost::Facility& facility, const std::string& name);

/// Prints the map that suits, or the report of it; a map that cannot be read is told in the report and in a warning.
void answerLabelMap(Json report, const std::string& map, bool asJson);

} // namespace reeldb::cli

#endif
