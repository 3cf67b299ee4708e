// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_COMPLETION_VALUES_H
#define REELDB_CLI_COMPLETION_VALUES_H

#include <vector>

#include "line/completion.h"

namespace reeldb::cli {

/// The values of that kind in the facility and its project, whatever has been typed of them; none for files and
/// folders, which the shell knows. Throws Failure or reelhost::Error when they cannot be read.
std::vector<CompletionWord> completionValues(const Completion& completion);

} // namespace reeldb::cli

#endif
