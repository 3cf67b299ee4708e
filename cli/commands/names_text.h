// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_NAMES_TEXT_H
#define REELDB_CLI_NAMES_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/names.h"

namespace reeldb::cli {

/// A line for people: "heading: A001, A002", wrapped at the terminal, or the heading alone if there are no names.
std::string headedNames(const std::string& heading, const std::vector<std::string>& names);

/// The heading and then the names, separated by commas and wrapped. Further lines are indented by @p indent.
std::string wrapped(const std::string& heading, const std::vector<std::string>& names, std::size_t columns,
                    std::size_t indent);

/// Why a name means a reel with another name. Empty for the reel's own name.
std::string_view reasonOf(lists::Match match);

/// The names that mean a reel with another name, or perhaps do, one per line. One more line counts the names that may
/// be cut according to clip names alone.
std::string namesText(const std::vector<app::NamedReel>& names, std::size_t columns);

} // namespace reeldb::cli

#endif
