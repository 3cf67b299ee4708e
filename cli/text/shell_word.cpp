// SPDX-License-Identifier: Apache-2.0
#include "text/shell_word.h"

#include <algorithm>

#include "base/display_text.h"

namespace reeldb::cli {

namespace {

/// Whether the character has no special meaning for a shell. Bytes of characters beyond ASCII have none.
bool isHarmless(char c)
{
  constexpr std::string_view others = "%+,-./:=@_";
  const bool isLetterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  return isLetterOrDigit || others.find(c) != std::string_view::npos || static_cast<unsigned char>(c) >= 0x80;
}

std::string replaced(std::string_view text, char what, std::string_view with)
{
  std::string result;
  for (const char c : text)
    c == what ? result.append(with) : result.append(1, c);
  return result;
}

} // namespace

std::string shellWord(std::string_view text)
{
  if (base::displayText(text) != text)
    return "$'" + replaced(base::displayText(replaced(text, '\\', "\\\\")), '\'', "\\'") + "'";
  if (!text.empty() && std::all_of(text.begin(), text.end(), isHarmless))
    return std::string(text);
  return "'" + replaced(text, '\'', "'\\''") + "'";
}

} // namespace reeldb::cli
