// SPDX-License-Identifier: Apache-2.0
//
// The width of texts on a terminal. All arguments but that of shortText come from displayText: valid UTF-8 without
// control characters.
#ifndef REELDB_BASE_TEXT_WIDTH_H
#define REELDB_BASE_TEXT_WIDTH_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <wchar.h>

#include <utf8.h>

#include "base/character_locale.h"
#include "base/display_text.h"

namespace reeldb::base {

/// The number of columns of a character. REQUIRES: a CharacterLocale lives.
inline std::size_t columnsOf(char32_t c)
{
  if (c < 0x7F)
    return 1;
  const int width = wcwidth(static_cast<wchar_t>(c));
  return width < 0 ? 1 : static_cast<std::size_t>(width);
}

/// The number of columns of a text.
inline std::size_t displayWidth(std::string_view text)
{
  const CharacterLocale locale;
  std::size_t columns = 0;
  for (auto at = text.begin(); at != text.end();)
    columns += columnsOf(utf8::next(at, text.end()));
  return columns;
}

/// The longest prefix of the text that fits into @p columns (at least 1), with an ellipsis if the text is cut.
inline std::string cutToWidth(std::string_view text, std::size_t columns)
{
  const CharacterLocale locale;
  std::size_t used = 0;
  auto cut = text.begin(); // the end of the part that leaves room for the ellipsis
  for (auto at = text.begin(); at != text.end();) {
    used += columnsOf(utf8::next(at, text.end()));
    if (used > columns)
      return std::string(text.begin(), cut) + "…";
    if (used < columns)
      cut = at;
  }
  return std::string(text);
}

/// The text in lines of at most @p columns (at least 1): broken at blanks, which are left out there, or within a word
/// that is longer than a line. A character that is wider than a line has a line of its own. An empty text is one empty
/// line.
inline std::vector<std::string> wrapToWidth(std::string_view text, std::size_t columns)
{
  std::vector<std::string> lines;
  if (text.size() <= columns) { // no character has more columns than bytes
    lines.emplace_back(text);
    return lines;
  }
  const CharacterLocale locale;
  auto begin = text.begin(), blank = text.end(); // of the line, and its last blank; end: none
  std::size_t used = 0;
  for (auto at = text.begin(); at != text.end();) {
    const auto character = at;
    const bool isBlank = *at == ' ';
    used += columnsOf(utf8::next(at, text.end()));
    if (isBlank)
      blank = character;
    if (used <= columns || character == begin)
      continue;
    const bool atBlank = blank != text.end();
    lines.emplace_back(begin, atBlank ? blank : character);
    begin = atBlank ? blank + 1 : character;
    blank = text.end();
    used = 0;
    at = begin; // the rest is measured again: it begins a line
  }
  lines.emplace_back(begin, text.end());
  return lines;
}

/// The displayText of any text, cut to a length that suits a message.
inline std::string shortText(std::string_view text)
{
  constexpr std::size_t messageColumns = 80;
  return cutToWidth(displayText(text), messageColumns);
}

} // namespace reeldb::base

#endif
