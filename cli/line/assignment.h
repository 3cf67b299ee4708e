// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_ASSIGNMENT_H
#define REELDB_CLI_ASSIGNMENT_H

#include <string>

namespace reeldb::cli {

/// An argument of the form field=value; the value may hold further equals signs and may be empty.
struct Assignment {
  std::string field, value;
};

/// Throws Failure when it is none (usage), when the value cannot be shown and handed on (usage), or when it is longer
/// than a field can give back.
Assignment parseAssignment(const std::string& argument);

} // namespace reeldb::cli

#endif
