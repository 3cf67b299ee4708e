// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BASE_PATTERN_H
#define REELDB_BASE_PATTERN_H

#include <cstddef>
#include <string_view>

#include "base/ascii.h"

namespace reeldb::base {

constexpr bool isPattern(std::string_view text)
{
  return text.find('*') != std::string_view::npos;
}

/// Whether the whole text matches the pattern, in which each star stands for any number of bytes and every other byte
/// for itself, ignoring the case of ASCII letters. Takes at most time proportional to the product of the lengths.
constexpr bool matches(std::string_view text, std::string_view pattern)
{
  constexpr std::size_t none = std::string_view::npos;
  std::size_t at = 0, next = 0, star = none, resume = 0;
  while (at < text.size()) {
    if (next < pattern.size() && pattern[next] == '*') {
      star = next++;
      resume = at;
    } else if (next < pattern.size() && toLower(pattern[next]) == toLower(text[at])) {
      ++next;
      ++at;
    } else if (star != none) { // the last star takes one byte more
      next = star + 1;
      at = ++resume;
    } else {
      return false;
    }
  }
  while (next < pattern.size() && pattern[next] == '*')
    ++next;
  return next == pattern.size();
}

} // namespace reeldb::base

#endif
