// SPDX-License-Identifier: Apache-2.0
#include "app/number.h"

#include <charconv>

namespace reeldb::cli {

std::optional<int> parseNumber(std::string_view text)
{
  int value = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end || value < 0)
    return std::nullopt;
  return value;
}

} // namespace reeldb::cli
