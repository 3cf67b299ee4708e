// SPDX-License-Identifier: Apache-2.0
#include "app/unused_shots.h"

#include "ReelDbManager.h"
#include "app/host_text.h"
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
  std::set<std::int64_t> used;
  for (const reelhost::KeptList& list : reelhost::keptLists())
    for (const reelhost::ListEvent& event : reelhost::eventsOfList(list.number))
      used.insert(event.shot);
  const auto isRemovable = [&](std::int64_t log) {
    return used.count(log) == 0 && (log > lastBefore || made.count(log) != 0);
  };

  CookieVec logs;
  std::set<std::string> reels; // folded
  for (const Cookie& log : reelhost::allShots())
    if (const std::int64_t number = reelhost::logNumber(log); shots.count(number) != 0 && isRemovable(number)) {
      logs.add(log);
      result.shots.push_back(shotFrom(reelhost::materialOf(log)));
      reels.insert(base::fold(result.shots.back().reel));
    }
  if (logs.empty())
    return result;
  reelhost::deleteLogs(logs);
  CookieVec reelLogs;
  for (const Cookie& log : session.manager().reelList) {
    const std::string id = text(ReelDbRec(log).reelId());
    if (reels.count(base::fold(id)) == 0 || !isRemovable(reelhost::logNumber(log)) || !reelhost::shotsOf(id).empty())
      continue;
    reelLogs.add(log);
    result.reels.push_back(id);
  }
  reelhost::deleteLogs(reelLogs);
  session.manager().informReelDbChanged("");
  return result;
}

} // namespace reeldb::app
