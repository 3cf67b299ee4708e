// SPDX-License-Identifier: Apache-2.0
//
// Letter case of ASCII, independent of the locale: reel identifiers are compared this way. No other byte changes.
#ifndef REELDB_BASE_ASCII_H
#define REELDB_BASE_ASCII_H

#include <algorithm>
#include <string>
#include <string_view>

namespace reeldb::base {

constexpr char toLower(char c)
{
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char toUpper(char c)
{
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The text with its ASCII letters in lower case. Texts that are equal after folding are the same name.
inline std::string fold(std::string_view text)
{
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), toLower);
  return result;
}

/// The text with its ASCII letters in upper case.
inline std::string upperCase(std::string_view text)
{
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), toUpper);
  return result;
}

/// Whether two texts are the same name: equal except for the case of ASCII letters.
constexpr bool sameName(std::string_view a, std::string_view b)
{
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return toLower(x) == toLower(y); });
}

/// Whether @p text begins with @p start, ignoring the case of ASCII letters.
constexpr bool startsWithName(std::string_view text, std::string_view start)
{
  return sameName(text.substr(0, start.size()), start);
}

} // namespace reeldb::base

#endif
