// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_ASSIGNMENT_H
#define REELDB_CLI_ASSIGNMENT_H

#include <string>
#include <string_view>
#include <vector>

#include "app/reel_fields.h"

namespace reeldb::cli {

/// Splits an argument of the form field=value. The value may contain more equals signs and may be empty. Throws
/// app::Error (Invalid) for any other argument; the message shows @p form, such as "FIELD=VALUE".
app::Assignment parseAssignment(const std::string& argument, std::string_view form);

std::vector<app::Assignment> parseAssignments(const std::vector<std::string>& arguments,
                                              std::string_view form = "FIELD=VALUE");

} // namespace reeldb::cli

#endif
