// SPDX-License-Identifier: Apache-2.0
#include "app/reel_name.h"

#include <fmt/format.h>

#include "ReelDbManager.h"
#include "lists/names.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/field_limit.h"
#include "app/host_text.h"
#include "text/output.h"
#include "app/plain_text.h"

namespace reeldb::cli {

std::string checkedReelName(const std::string& asked)
{
  ReelDbManager& manager = *ReelDbManager::theReelDbManager();
  const std::string fact = fmt::format("\"{}\": no name for a reel", shortText(asked));
  requirePlainText(asked, fact);
  std::string id = text(manager.trimLeadingTrailingSpaces(hostText(asked)));
  if (id.empty())
    throw Failure(refused, fact + " (it is blank)");
  if (asked.size() > longestField)
    throw Failure(refused, fmt::format("{} (it has {} bytes, {} are the most)", fact, asked.size(), longestField));
  if (manager.representsInternallyGeneratedMaterial(hostText(id)))
    throw Failure(refused, fact + " (a star denotes generated material)");
  return id;
}

void warnOfSpecialName(const std::string& id)
{
  const std::string_view meaning = lists::isAuxiliary(id) ? "a source without a tape" : lists::placeholderReason(id);
  if (!meaning.empty())
    complain(fmt::format("{}: taken all the same, but no import will mean this reel by it (in cut lists it means: {})",
                         shortText(id), meaning));
}

} // namespace reeldb::cli
