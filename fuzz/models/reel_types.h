// SPDX-License-Identifier: Apache-2.0
//
// A second implementation of the reel type file, from its description in docs/formats/reeltype.md.
#ifndef REELDB_FUZZ_MODELS_REEL_TYPES_H
#define REELDB_FUZZ_MODELS_REEL_TYPES_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace reeldb_fuzz {

/// The longest name or parameter string after its leading white space, and the longest warning, in bytes. Anything
/// longer ends the process, by design: cutting it could make one type of two.
inline constexpr std::size_t longestTypeText = 2047;

struct TypeFile {
  std::vector<std::pair<std::string, std::string>> types; ///< name and parameters, in the order of the catalogue
  std::vector<std::string> warnings;                      ///< as printed
  bool endsProcess = false;                               ///< whether a text is longer than that; the rest is not read
};

TypeFile typeFileOf(const std::string& bytes);

/// The text without white space, tabs and line ends at both ends.
std::string chopped(const std::string& text);

/// The value that one token gives the parameter of this name.
std::optional<int> valueInToken(const std::string& token, const std::string& name);

/// The value that a parameter string gives the parameter of this name.
std::optional<int> valueInParams(const std::string& params, const std::string& name);

/// The number at the start of a text, after white space and a sign, as strtol reads it and an int holds it.
int leadingNumber(const std::string& text);

} // namespace reeldb_fuzz

#endif
