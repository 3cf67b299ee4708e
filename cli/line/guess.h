// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_GUESS_H
#define REELDB_CLI_GUESS_H

#include <string>
#include <string_view>
#include <vector>

namespace reeldb::cli {

/// The word that was meant by a mistyped one: the one that takes the fewest insertions, deletions, replacements and
/// swaps of neighbouring characters, letter case aside, at most one for every three characters typed. The first of
/// several; empty when no word is that near.
std::string guess(std::string_view typed, const std::vector<std::string>& words);

} // namespace reeldb::cli

#endif
