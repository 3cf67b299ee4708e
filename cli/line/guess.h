// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_GUESS_H
#define REELDB_CLI_GUESS_H

#include <string>
#include <string_view>
#include <vector>

namespace reeldb::cli {

/// The word that was probably meant by a mistyped one: the word with the fewest insertions, deletions, replacements and
/// swaps of neighbouring characters, ignoring letter case, and at most one for every three typed characters. The first
/// if several are equally near; empty if no word is near enough.
std::string guess(std::string_view typed, const std::vector<std::string>& words);

} // namespace reeldb::cli

#endif
