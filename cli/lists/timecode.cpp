// SPDX-License-Identifier: Apache-2.0
#include "lists/timecode.h"

#include <algorithm>

#include "lists/text.h"

namespace reeldb::lists {
namespace {

bool isSeparator(char c)
{
  return c == ':' || c == ';' || c == '.' || c == ',';
}

} // namespace

std::string timecodeFault(std::string_view text)
{
  const bool shaped = (text.size() == 11 || text.size() == 12) && isSeparator(text[2]) && isSeparator(text[5]) &&
                      isSeparator(text[8]) && std::count_if(text.begin(), text.end(), isSeparator) == 3 &&
                      std::count_if(text.begin(), text.end(), isDigit) == static_cast<std::ptrdiff_t>(text.size()) - 3;
  if (!shaped)
    return "not hh:mm:ss:ff";
  if (text[3] > '5')
    return "minutes above 59";
  if (text[6] > '5')
    return "seconds above 59";
  return {};
}

bool looksLikeTimecode(std::string_view text)
{
  const auto colons = std::count_if(text.begin(), text.end(), [](char c) { return c == ':' || c == ';'; });
  if (colons >= 2)
    return true;
  const auto separators = std::count_if(text.begin(), text.end(), isSeparator);
  const auto digits = std::count_if(text.begin(), text.end(), isDigit);
  return separators == 3 && digits > 0 && separators + digits == static_cast<std::ptrdiff_t>(text.size());
}

} // namespace reeldb::lists
