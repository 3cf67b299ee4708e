// SPDX-License-Identifier: Apache-2.0
#include "app/similar.h"

#include <cwctype>

#include <utf8.h>

#include "text/character_locale.h"

namespace reeldb::cli {

namespace {

/// Letters and digits alone, in lower case. Bytes that are no UTF-8 do not count.
std::u32string essence(std::string_view text)
{
  const CharacterLocale locale;
  std::u32string result;
  const std::string valid = utf8::replace_invalid(text);
  for (auto at = valid.begin(); at != valid.end();)
    if (const auto c = static_cast<wint_t>(utf8::next(at, valid.end())); std::iswalnum(c))
      result += static_cast<char32_t>(std::towlower(c));
  return result;
}

} // namespace

std::vector<std::string> similarNames(std::string_view meant, const std::vector<std::string>& names)
{
  std::vector<std::string> result;
  const std::u32string wanted = essence(meant);
  if (wanted.empty())
    return result;
  for (const std::string& name : names)
    if (essence(name) == wanted)
      result.push_back(name);
  return result;
}

} // namespace reeldb::cli
