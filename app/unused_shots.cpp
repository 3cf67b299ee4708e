// SPDX-License-Identifier: Apache-2.0
#include "app/unused_shots.h"

#include <map>
#include <tuple>
#include <utility>

#include "ReelDbManager.h"
#include "app/decisions.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "reelhost/history.h"

namespace reeldb::app {

std::set<std::int64_t> madeByImports()
{
  std::set<std::int64_t> made, others, withLists;
  reelhost::History* const history = reelhost::projectStore().history();
  if (!history)
    return made;
  // A revision that changed a list is an import if it also created logs: deletions change lists, too, and undo brings
  // logs back with their events.
  history->readRevisions([&](reelhost::Revision&& revision) {
    if (revision.lists != 0)
      withLists.insert(revision.number);
    return true;
  });
  history->readChangedLogs([&](std::int64_t revision, std::int64_t log, bool isNew) {
    if (withLists.count(revision) == 0)
      others.insert(log);
    else if (isNew)
      made.insert(log);
  });
  for (const std::int64_t log : others)
    made.erase(log);
  return made;
}

UnusedShots deleteUnused(Session& session, const std::set<std::int64_t>& shots, std::int64_t lastBefore)
{
  UnusedShots result;
  const std::set<std::int64_t> made = madeByImports();
  std::map<std::int64_t, Shot> used; // the shots with their earliest uses
  for (const reelhost::KeptList& list : reelhost::keptLists())
    for (const reelhost::ListEvent& event : reelhost::eventsOfList(list.number))
      if (const auto [known, isNew] = used.try_emplace(event.shot, clipFrom(event)); !isNew)
        takeEarlierRecord(known->second, clipFrom(event));
  const auto isOfImport = [&](std::int64_t log) { return log > lastBefore || made.count(log) != 0; };
  const auto isRemovable = [&](std::int64_t log) { return used.count(log) == 0 && isOfImport(log); };

  CookieVec logs;
  std::set<std::string> reels; // folded
  for (const Cookie& log : reelhost::allShots()) {
    const std::int64_t number = reelhost::logNumber(log);
    if (shots.count(number) == 0 || !isOfImport(number))
      continue;
    Shot shot = shotFrom(reelhost::materialOf(log));
    if (const auto use = used.find(number); use == used.end()) {
      logs.add(log);
      reels.insert(base::fold(shot.reel));
      result.shots.push_back(std::move(shot));
    } else if (std::tie(shot.recordIn, shot.recordOut) != std::tie(use->second.recordIn, use->second.recordOut)) {
      shot.recordIn = use->second.recordIn;
      shot.recordOut = use->second.recordOut;
      reelhost::changeMaterial(log, materialFrom(shot));
    }
  }
  if (logs.empty())
    return result;
  reelhost::deleteLogs(logs);
  CookieVec reelLogs;
  for (const Cookie& log : session.manager().reelList) {
    const std::string id = text(ReelDbRec(log).reelId());
    if (reels.count(base::fold(id)) == 0 || !isRemovable(reelhost::logNumber(log)) ||
        decisionsOf(ReelDbRec(log)) != Decisions{} || !reelhost::shotsOf(id).empty())
      continue;
    reelLogs.add(log);
    result.reels.push_back(id);
  }
  reelhost::deleteLogs(reelLogs);
  session.manager().informReelDbChanged("");
  return result;
}

} // namespace reeldb::app
