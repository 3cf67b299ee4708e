// SPDX-License-Identifier: Apache-2.0
#include "app/kept_lists.h"

#include <set>
#include <unordered_map>

#include <fmt/format.h>

#include "app/decisions.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/list_choice.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "app/unused_shots.h"
#include "base/ascii.h"

namespace reeldb::app {

namespace {

KeptList entryFrom(const reelhost::KeptList& list)
{
  return {list.number, list.file, list.title, list.format, list.eventCount};
}

/// The reels of all shots by the numbers of their logs.
std::unordered_map<std::int64_t, std::string> reelsOfShots()
{
  std::unordered_map<std::int64_t, std::string> reels;
  for (const Cookie& log : reelhost::allShots())
    reels.emplace(reelhost::logNumber(log), reelhost::materialOf(log).reel);
  return reels;
}

ListEvents eventsOfList(const reelhost::KeptList& list, const std::unordered_map<std::int64_t, std::string>& reels)
{
  ListEvents result{entryFrom(list), {}};
  for (const reelhost::ListEvent& event : reelhost::eventsOfList(list.number)) {
    const auto reel = reels.find(event.shot);
    result.events.push_back({clipFrom(event), reel == reels.end() ? std::string() : reel->second});
  }
  return result;
}

} // namespace

std::vector<KeptList> keptLists(Session&)
{
  return guarded([] {
    requireKeepsLists();
    std::vector<KeptList> lists;
    for (const reelhost::KeptList& list : reelhost::keptLists())
      lists.push_back(entryFrom(list));
    return lists;
  });
}

KeptList requireList(Session&, const std::string& name)
{
  return guarded([&] { return entryFrom(listNamed(name)); });
}

ListEvents eventsOf(Session&, const std::string& name)
{
  return guarded([&] { return eventsOfList(listNamed(name), reelsOfShots()); });
}

std::string originalOf(Session&, const std::string& name)
{
  return guarded([&] { return reelhost::bytesOfList(listNamed(name).digest); });
}

std::vector<ListEvents> eventsOfLists(Session&)
{
  return guarded([&] {
    requireKeepsLists();
    const auto reels = reelsOfShots();
    std::vector<ListEvents> result;
    for (const reelhost::KeptList& list : reelhost::keptLists())
      result.push_back(eventsOfList(list, reels));
    return result;
  });
}

std::vector<ListEvents> listsUsing(Session& session, const std::string& reel)
{
  return guarded([&] {
    requireKeepsLists();
    const auto reels = reelsOfShots();
    std::vector<ListEvents> result;
    for (const reelhost::KeptList& list : reelhost::keptLists()) {
      ListEvents found{entryFrom(list), {}};
      for (const reelhost::ListEvent& event : reelhost::eventsOfList(list.number))
        if (const auto now = reels.find(event.shot); now != reels.end() && base::sameName(now->second, reel))
          found.events.push_back({clipFrom(event), now->second});
      if (!found.events.empty())
        result.push_back(std::move(found));
    }
    if (result.empty())
      requireReel(session.manager(), reel);
    return result;
  });
}

RemovedList removeList(Session& session, const std::string& name, bool dryRun)
{
  return guarded([&] {
    RemovedList result;
    const reelhost::KeptList list = listNamed(name);
    result.list = entryFrom(list);
    result.dryRun = dryRun;
    std::set<std::int64_t> shots;
    for (const reelhost::ListEvent& event : reelhost::eventsOfList(list.number))
      shots.insert(event.shot);
    keepForBytes(session.manager(), list);
    reelhost::removeList(list.number);
    UnusedShots unused = deleteUnused(session, shots);
    result.reels = std::move(unused.reels);
    result.shots = std::move(unused.shots);
    result.stored = !dryRun && session.commit();
    return result;
  });
}

} // namespace reeldb::app
