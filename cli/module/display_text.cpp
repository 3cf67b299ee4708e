// SPDX-License-Identifier: Apache-2.0
#include "module/display_text.h"

#include <cwchar>
#include <locale.h>
#include <utf8.h>

#include <fmt/format.h>

namespace reeldb::cli {

namespace {

constexpr std::size_t messageColumns = 80;

bool changesDirection(char32_t c)
{
  return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool endsLine(char32_t c)
{
  return c == 0x2028 || c == 0x2029;
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
    return c < 0x100 ? fmt::format("\\x{:02x}", static_cast<unsigned>(c))
                     : fmt::format("\\u{:04x}", static_cast<unsigned>(c));
  }
}

bool isControl(char32_t c)
{
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || changesDirection(c) || endsLine(c);
}

/// Widths are a matter of the character set alone, and the process stays in the "C" locale, on which the comparison of
/// identifiers rests. So the locale is switched for the moment of asking, and for this thread only.
class WidthLocale {
public:
  WidthLocale() : before_(locale() ? uselocale(locale()) : locale_t()) {}
  ~WidthLocale()
  {
    if (before_)
      uselocale(before_);
  }
  WidthLocale(const WidthLocale&) = delete;
  WidthLocale& operator=(const WidthLocale&) = delete;

private:
  static locale_t locale()
  {
    static const locale_t made = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
    return made;
  }
  locale_t before_;
};

std::size_t columnsOf(char32_t c)
{
  if (c < 0x7F)
    return 1;
  const int width = wcwidth(static_cast<wchar_t>(c));
  return width < 0 ? 1 : static_cast<std::size_t>(width);
}

} // namespace

std::string displayText(std::string_view text)
{
  std::string result;
  result.reserve(text.size());
  for (auto at = text.begin(); at != text.end();) {
    const auto start = at;
    char32_t c = 0;
    try {
      c = utf8::next(at, text.end());
    } catch (const utf8::exception&) {
      result += escaped(static_cast<unsigned char>(*start));
      at = start + 1;
      continue;
    }
    if (isControl(c))
      result += escaped(c);
    else
      result.append(start, at);
  }
  return result;
}

std::string shortText(std::string_view text)
{
  return cutToWidth(displayText(text), messageColumns);
}

std::size_t displayWidth(std::string_view text)
{
  const WidthLocale locale;
  std::size_t columns = 0;
  for (auto at = text.begin(); at != text.end();)
    columns += columnsOf(utf8::next(at, text.end()));
  return columns;
}

std::string cutToWidth(std::string_view text, std::size_t columns)
{
  const WidthLocale locale;
  std::size_t used = 0;
  auto cut = text.begin(); // as much as leaves room for the ellipsis
  for (auto at = text.begin(); at != text.end();) {
    used += columnsOf(utf8::next(at, text.end()));
    if (used > columns)
      return std::string(text.begin(), cut) + "…";
    if (used < columns)
      cut = at;
  }
  return std::string(text);
}

} // namespace reeldb::cli
