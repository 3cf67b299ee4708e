// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BASE_SHELL_WORD_H
#define REELDB_BASE_SHELL_WORD_H

#include <algorithm>
#include <string>
#include <string_view>

#include "base/display_text.h"

namespace reeldb::base {

namespace detail {

/// Whether the character has no special meaning for a shell. Bytes of characters beyond ASCII have none.
inline bool isHarmlessInShell(char c)
{
  constexpr std::string_view others = "%+,-./:=@_";
  const bool isLetterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  return isLetterOrDigit || others.find(c) != std::string_view::npos || static_cast<unsigned char>(c) >= 0x80;
}

inline std::string replaced(std::string_view text, char what, std::string_view with)
{
  std::string result;
  for (const char c : text)
    c == what ? result.append(with) : result.append(1, c);
  return result;
}

inline std::string between(std::string_view start, std::string_view text)
{
  return std::string(start).append(text).append("'");
}

} // namespace detail

/// The text as one word of a shell command line, in quotes if necessary. A text with characters that displayText
/// escapes is written as $'...', which most shells understand.
inline std::string shellWord(std::string_view text)
{
  if (displayText(text) != text)
    return detail::between("$'", detail::replaced(displayText(detail::replaced(text, '\\', "\\\\")), '\'', "\\'"));
  if (!text.empty() && std::all_of(text.begin(), text.end(), detail::isHarmlessInShell))
    return std::string(text);
  return detail::between("'", detail::replaced(text, '\'', "'\\''"));
}

} // namespace reeldb::base

#endif
