// SPDX-License-Identifier: Apache-2.0
#include "app/old_names.h"

#include <algorithm>

#include "app/host_text.h"

namespace reeldb::cli {

namespace {

/// A key for each name: a value is read back whole only as far as a single name goes.
LightweightString<char> keyOf(std::size_t number)
{
  return hostText("reel_old_name" + std::to_string(number));
}

std::vector<std::string> keptNames(ReelDbRec& reel)
{
  std::vector<std::string> names;
  for (LightweightString<char> name; reel.getStringValFromEdit(keyOf(names.size()), name);)
    names.push_back(text(name));
  return names;
}

} // namespace

std::vector<std::string> oldNamesOf(ReelDbRec reel)
{
  std::vector<std::string> names = keptNames(reel);
  names.erase(std::remove(names.begin(), names.end(), text(reel.reelId())), names.end()); // one that came back
  return names;
}

void keepOldName(ReelDbRec reel, const std::string& name)
{
  const std::vector<std::string> names = keptNames(reel);
  const auto isSame = [&](const std::string& other) { return folded(other) == folded(name); };
  if (std::none_of(names.begin(), names.end(), isSame))
    reel.setStringValInEdit(keyOf(names.size()), hostText(name));
}

} // namespace reeldb::cli
