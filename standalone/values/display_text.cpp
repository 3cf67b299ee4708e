// SPDX-License-Identifier: Apache-2.0
#include "reelhost/display_text.h"

#include <cstdio>
#include <optional>

#include <utf8.h>

namespace reelhost {

namespace {

bool isControl(char32_t c)
{
  return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

bool changesDirection(char32_t c)
{
  return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool endsLine(char32_t c)
{
  return c == 0x2028 || c == 0x2029;
}

/// The next character; nothing for a byte that is no UTF-8, which is passed over.
std::optional<char32_t> next(std::string_view::iterator& at, std::string_view::iterator end)
{
  const auto start = at;
  try {
    return utf8::next(at, end);
  } catch (const utf8::exception&) {
    at = start + 1;
    return std::nullopt;
  }
}

std::string escaped(const char* format, unsigned number)
{
  char text[16];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

std::string escaped(char32_t c)
{
  switch (c) {
  case '\n':
    return "\\n";
  case '\r':
    return "\\r";
  case '\t':
    return "\\t";
  default:
    return escaped(c < 0x80 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(c));
  }
}

} // namespace

bool isShownEscaped(char32_t c)
{
  return isControl(c) || changesDirection(c) || endsLine(c);
}

std::string displayText(std::string_view text)
{
  std::string result;
  result.reserve(text.size());
  for (auto at = text.begin(); at != text.end();) {
    const auto start = at;
    const std::optional<char32_t> c = next(at, text.end());
    if (!c)
      result += escaped("\\x%02x", static_cast<unsigned char>(*start));
    else if (isShownEscaped(*c))
      result += escaped(*c);
    else
      result.append(start, at);
  }
  return result;
}

std::string_view textFlaw(std::string_view text)
{
  if (!utf8::is_valid(text.begin(), text.end()))
    return "it is not UTF-8";
  return holdsControlCharacter(text) ? "it holds a control character" : std::string_view();
}

bool holdsControlCharacter(std::string_view text)
{
  for (auto at = text.begin(); at != text.end();)
    if (const std::optional<char32_t> c = next(at, text.end()); c && isControl(*c))
      return true;
  return false;
}

} // namespace reelhost
