// SPDX-License-Identifier: Apache-2.0
#include "store/log_fields.h"

#include <algorithm>
#include <map>

namespace reelhost {

std::size_t leadingPlace(std::string_view key)
{
  const auto found =
      std::find_if(shotTexts.begin(), shotTexts.end(), [key](const ShotText& t) { return key == t.key; });
  return static_cast<std::size_t>(found - shotTexts.begin());
}

KeyValues arranged(const KeyValues& fields)
{
  std::map<std::pair<std::size_t, std::string>, std::string> sorted;
  for (const auto& [key, value] : fields)
    sorted[{leadingPlace(key), key}] = value;
  KeyValues out;
  out.reserve(sorted.size());
  for (auto& [place, value] : sorted)
    out.emplace_back(place.second, std::move(value));
  return out;
}

} // namespace reelhost
