// SPDX-License-Identifier: Apache-2.0
//
// The shots of the open project.
#ifndef REELDB_CLI_SHOT_H
#define REELDB_CLI_SHOT_H

#include <string>
#include <vector>

#include "host/cookie.h"
#include "text/output.h"
#include "reelhost/host.h"

namespace reeldb::cli {

/// Every shot recorded from the reel, letter case aside, in the order of the database. The library has the same search
/// in its deletion, where it speaks of deleting.
CookieVec shotsOf(const std::string& reelId);

/// The other names of its reel that the shot carries.
std::vector<std::string> aliasesOf(const reelhost::Material& shot);

Json toJson(const reelhost::Material& shot);
Json toJson(const std::vector<reelhost::Material>& shots);

/// Prints a table with a line for each, behind so many blanks.
void printShots(const std::vector<reelhost::Material>& shots, std::size_t indent = 0);

/// The clips behind the logs.
std::vector<reelhost::Material> materialOf(const CookieVec& logs);

} // namespace reeldb::cli

#endif
