// SPDX-License-Identifier: Apache-2.0
#include "app/deletion.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/reel_state.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "reelhost/history.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

std::string nameOf(const Cookie& log)
{
  return log.asString(false).c_str();
}

CookieVec select(ReelDbManager& manager, const std::vector<std::string>& ids)
{
  CookieVec selection;
  for (const std::string& id : ids) {
    const ReelDbRec reel = requireReel(manager, id);
    bool there = false;
    for (const Cookie& other : selection)
      there = there || other.compare(reel) == 0;
    if (!there)
      selection.add(reel);
  }
  return selection;
}

struct Planned {
  DeletionPlan plan;
  CookieVec selection; ///< the reels in the form that the library needs to delete them
};

Planned look(Session& session, const std::vector<std::string>& reels, const std::vector<std::string>& keep)
{
  ReelDbManager& manager = session.manager();
  Planned planned;
  DeletionPlan& plan = planned.plan;
  plan.reels = reels;
  plan.keep = keep;
  // Marks are case-sensitive, so the spelling of the records is used.
  for (const std::string& id : keep)
    manager.reelInUse(requireReel(manager, id).reelId(), true);
  planned.selection = select(manager, reels);
  // The library reports each log as about to be deleted, so it is asked only when the logs will be deleted.
  for (const Cookie& log : planned.selection) {
    const LightweightString<char> id = ReelDbRec(log).reelId();
    const CookieVec shots = reelhost::shotsOf(text(id));
    const bool kept = manager.reelInUse(id);
    plan.items.push_back({text(id), kept, shotsFrom(shots)});
    if (kept)
      continue;
    plan.logs.push_back(nameOf(log));
    for (const Cookie& shot : shots)
      plan.logs.push_back(nameOf(shot));
  }
  return planned;
}

void deleteAndStore(Session& session, const Planned& planned)
{
  if (planned.plan.empty())
    return;
  ReelDbManager& manager = session.manager();
  reelhost::deleteLogs(manager.buildSetOfReelsAndAssociatedShots(planned.selection));
  manager.informReelDbChanged("");
  session.commit();
}

} // namespace

std::size_t DeletionPlan::reelCount() const
{
  return static_cast<std::size_t>(
      std::count_if(items.begin(), items.end(), [](const Item& item) { return !item.kept; }));
}

DeletionPlan planDeletion(Session& session, const std::vector<std::string>& reels, const std::vector<std::string>& keep)
{
  return guarded([&] { return look(session, reels, keep).plan; });
}

void carryOut(Session& session, const DeletionPlan& plan)
{
  guarded([&] {
    const Planned planned = look(session, plan.reels, plan.keep);
    if (planned.plan.logs != plan.logs)
      throw Error(ErrorKind::Refused,
                  "delete: nothing deleted (the project was changed before the deletion was confirmed)");
    deleteAndStore(session, planned);
  });
}

DeletionPlan deleteReels(Session& session, const std::vector<std::string>& reels, const std::vector<std::string>& keep)
{
  return guarded([&] {
    Planned planned = look(session, reels, keep);
    deleteAndStore(session, planned);
    return std::move(planned.plan);
  });
}

Undeleted undelete(Session& session)
{
  return guarded([&] {
    const ReelState before(session);
    if (reelhost::undelete() == 0)
      throw Error(ErrorKind::Refused, "undelete: there is no deletion to bring back");
    session.manager().informReelDbChanged("");
    const ReelState after(session);
    const std::int64_t deletion = reelhost::lastDeletion(*reelhost::projectStore().history());
    after.requireSoundAfter(before, deletion, "undelete", "nothing brought back");
    Undeleted result;
    for (const auto& [log, id] : after.reels())
      if (before.reels().count(log) == 0)
        result.reels.push_back(id);
    for (const auto& shot : after.shots())
      result.shots += before.shots().count(shot) == 0 ? 1 : 0;
    session.commit();
    return result;
  });
}

} // namespace reeldb::app
