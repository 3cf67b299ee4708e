// SPDX-License-Identifier: Apache-2.0
#include "reelhost/display_text.h"

#include "base/display_text.h"

namespace reelhost {

bool isShownEscaped(char32_t c)
{
  return reeldb::base::isShownEscaped(c);
}

std::string displayText(std::string_view text)
{
  return reeldb::base::displayText(text);
}

std::string_view textFlaw(std::string_view text)
{
  return reeldb::base::textFlaw(text);
}

bool holdsControlCharacter(std::string_view text)
{
  return reeldb::base::holdsControlCharacter(text);
}

} // namespace reelhost
