// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_NAMES_TEXT_H
#define REELDB_CLI_NAMES_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

#include "app/names.h"

namespace reeldb::cli {

/// The heading, and behind it the names, separated by commas and wrapped. Further lines are indented by @p indent.
std::string wrapped(const std::string& heading, const std::vector<std::string>& names, std::size_t columns,
                    std::size_t indent);

/// The names that lead to a reel of another name, or may: one line each, and one for all names of which only clip names
/// say that they may be cut.
std::string namesText(const std::vector<app::NamedReel>& names, std::size_t columns);

} // namespace reeldb::cli

#endif
