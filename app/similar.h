// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_SIMILAR_H
#define REELDB_CLI_SIMILAR_H

#include <string>
#include <string_view>
#include <vector>

namespace reeldb::cli {

/// Those names that may have been meant by another: they have the same letters and digits in the same order, whatever
/// their case (also that of letters beyond ASCII) and whatever stands between them.
std::vector<std::string> similarNames(std::string_view meant, const std::vector<std::string>& names);

} // namespace reeldb::cli

#endif
