// SPDX-License-Identifier: Apache-2.0
#include "app/types.h"

#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "ReelTypeManager.h"
#include "app/facility.h"
#include "app/host_text.h"

namespace reeldb::app {

ReelTypes listTypes()
{
  ReelTypes result;
  const auto file = requireFacility().deviceDataDirectory() / "reeltype.dat";
  std::error_code none;
  if (!std::filesystem::exists(file, none))
    result.remarks.push_back(fmt::format("{}: not found, so there are no reel types", file.native()));
  // Only listed names are looked up, because the library adds a name that is looked up to the list.
  ReelTypeManager& types = *theReelTypeManager();
  for (AssocListIter it(types); const AssocListRep::Entry* entry = *it; ++it)
    result.types.push_back(
        {text(entry->key), types.numVideoChans(entry->key), types.numAudioChans(entry->key), text(entry->value)});
  return result;
}

} // namespace reeldb::app
