// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_STORE_ASCII_H
#define REELDB_STORE_ASCII_H

#include <string>
#include <string_view>

namespace reelhost {

/// @p text with the letters A to Z in lower case and every other byte as it is, whatever the locale.
inline std::string asciiLower(std::string_view text)
{
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c + ('a' - 'A'));
  return lower;
}

} // namespace reelhost

#endif
