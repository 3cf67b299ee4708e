// SPDX-License-Identifier: Apache-2.0
#include "text/display_text.h"

#include <cwchar>

#include <utf8.h>

#include "text/character_locale.h"

namespace reeldb::cli {

namespace {

constexpr std::size_t messageColumns = 80;

std::size_t columnsOf(char32_t c)
{
  if (c < 0x7F)
    return 1;
  const int width = wcwidth(static_cast<wchar_t>(c));
  return width < 0 ? 1 : static_cast<std::size_t>(width);
}

} // namespace

std::string shortText(std::string_view text)
{
  return cutToWidth(displayText(text), messageColumns);
}

std::size_t displayWidth(std::string_view text)
{
  const CharacterLocale locale;
  std::size_t columns = 0;
  for (auto at = text.begin(); at != text.end();)
    columns += columnsOf(utf8::next(at, text.end()));
  return columns;
}

std::string cutToWidth(std::string_view text, std::size_t columns)
{
  const CharacterLocale locale;
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
