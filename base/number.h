// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BASE_NUMBER_H
#define REELDB_BASE_NUMBER_H

#include <charconv>
#include <optional>
#include <string_view>

namespace reeldb::base {

/// The number in a text of decimal digits. Empty for any other text, and for a number that an int cannot hold.
inline std::optional<int> parseNumber(std::string_view text)
{
  int value = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end || value < 0)
    return std::nullopt;
  return value;
}

} // namespace reeldb::base

#endif
