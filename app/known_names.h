// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_KNOWN_NAMES_H
#define REELDB_CLI_KNOWN_NAMES_H

#include "ReelDbManager.h"
#include "text/output.h"
#include "app/reel_names.h"

namespace reeldb::cli {

/// All names by which the open project knows its reels: identifiers, old names, and what its shots say.
ReelNames knownNames(const ReelDbManager& manager);

/// Objects with reel, reasons and record.
Json toJson(const std::vector<Candidate>& candidates);

/// "cut form, other name in a list"
std::string reasonsText(const Candidate& candidate);

} // namespace reeldb::cli

#endif
