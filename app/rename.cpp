// SPDX-License-Identifier: Apache-2.0
#include "app/rename.h"

#include <fmt/format.h>

#include "app/decisions.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

/// Throws Error if another reel has the name. The library itself would accept it.
void requireFree(ReelDbManager& manager, const ReelDbRec& reel, const std::string& id)
{
  ReelDbRec other = manager.getReelInfo(hostText(id));
  if (other.valid() && other.compare(reel) != 0)
    throw Error(ErrorKind::Refused, fmt::format("\"{}\": already exists", base::shortText(text(other.reelId()))));
}

/// The shots of the reel, with the new identifier.
std::vector<Shot> shotsUnder(const std::string& newId, const std::string& oldId)
{
  std::vector<Shot> shots = shotsFrom(reelhost::shotsOf(oldId));
  for (Shot& shot : shots)
    shot.reel = newId;
  return shots;
}

} // namespace

Renamed renameReel(Session& session, const std::string& from, const std::string& to, bool dryRun)
{
  return guarded([&] {
    Renamed result;
    result.dryRun = dryRun;
    result.to = checkedReelName(to);
    ReelDbManager& manager = session.manager();
    ReelDbRec reel = requireReel(manager, from);
    result.from = text(reel.reelId());
    requireFree(manager, reel, result.to);
    requireNotGiven(manager, result.to, result.from);
    if (result.from == result.to)
      return result;
    remarkOnSpecialName(result.to, result.remarks);
    result.shots = shotsUnder(result.to, result.from);
    if (dryRun)
      return result;
    manager.changeReelId(hostText(result.from), hostText(result.to));
    if (!base::sameName(result.from, result.to))
      keepOldName(reel, result.from);
    keepGivenName(reel);
    result.stored = session.commit();
    return result;
  });
}

} // namespace reeldb::app
