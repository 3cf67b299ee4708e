// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_ASSIGNMENT_H
#define REELDB_CLI_ASSIGNMENT_H

#include <string>
#include <vector>

#include "app/reel_fields.h"

namespace reeldb::cli {

/// Splits an argument of the form field=value. The value may contain more equals signs and may be empty. Throws
/// app::Error (Invalid) for any other argument.
app::Assignment parseAssignment(const std::string& argument);

std::vector<app::Assignment> parseAssignments(const std::vector<std::string>& arguments);

} // namespace reeldb::cli

#endif
