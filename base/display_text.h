// SPDX-License-Identifier: Apache-2.0
//
// Text that is safe to show on a terminal. Names, identifiers and paths come from lists and other people, and may
// contain escape sequences, which must not reach a terminal.
#ifndef REELDB_BASE_DISPLAY_TEXT_H
#define REELDB_BASE_DISPLAY_TEXT_H

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include <utf8.h>

namespace reeldb::base {

namespace detail {

constexpr bool isControl(char32_t c)
{
  return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

constexpr bool changesDirection(char32_t c)
{
  return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

constexpr bool endsLine(char32_t c)
{
  return c == 0x2028 || c == 0x2029;
}

/// The next character. Empty for a byte that is not UTF-8, which is skipped.
inline std::optional<char32_t> nextCharacter(std::string_view::iterator& at, std::string_view::iterator end)
{
  const auto start = at;
  try {
    return utf8::next(at, end);
  } catch (const utf8::exception&) {
    at = start + 1;
    return std::nullopt;
  }
}

inline std::string escape(const char* format, unsigned number)
{
  char text[16];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

inline std::string escape(char32_t c)
{
  switch (c) {
  case '\n':
    return "\\n";
  case '\r':
    return "\\r";
  case '\t':
    return "\\t";
  default:
    return escape(c < 0x80 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(c));
  }
}

} // namespace detail

/// Whether displayText escapes the character: a control character, a mark that changes the direction of writing, or a
/// character that ends a line.
constexpr bool isShownEscaped(char32_t c)
{
  return detail::isControl(c) || detail::changesDirection(c) || detail::endsLine(c);
}

/// The text as valid UTF-8 without characters that isShownEscaped. These become `\n`, `\x1b`, `\u009b` and `\u202e`;
/// bytes that are not UTF-8 become `\xff`. Everything else stays, backslashes too, so a second call changes nothing.
inline std::string displayText(std::string_view text)
{
  std::string result;
  result.reserve(text.size());
  for (auto at = text.begin(); at != text.end();) {
    const auto start = at;
    const std::optional<char32_t> c = detail::nextCharacter(at, text.end());
    if (!c)
      result += detail::escape("\\x%02x", static_cast<unsigned char>(*start));
    else if (isShownEscaped(*c))
      result += detail::escape(*c);
    else
      result.append(start, at);
  }
  return result;
}

/// Whether the text holds a control character (U+0000 to U+001F, U+007F to U+009F). The text need not be UTF-8.
inline bool holdsControlCharacter(std::string_view text)
{
  for (auto at = text.begin(); at != text.end();)
    if (const std::optional<char32_t> c = detail::nextCharacter(at, text.end()); c && detail::isControl(*c))
      return true;
  return false;
}

/// Why the text must not be stored as it is: "it is not UTF-8" or "it holds a control character". Empty when it may.
/// Marks of direction belong to some languages and are no flaw.
inline std::string_view textFlaw(std::string_view text)
{
  if (!utf8::is_valid(text.begin(), text.end()))
    return "it is not UTF-8";
  return holdsControlCharacter(text) ? "it holds a control character" : std::string_view();
}

} // namespace reeldb::base

#endif
