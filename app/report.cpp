// SPDX-License-Identifier: Apache-2.0
#include "app/report.h"

#include <algorithm>
#include <ctime>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "app/host_errors.h"
#include "app/projects.h"
#include "base/ascii.h"
#include "base/time_text.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

/// The lists that use each reel, by its folded identifier.
using Uses = std::unordered_map<std::string, std::vector<ReportedList>>;

void addUses(Uses& uses, const ListEvents& events)
{
  std::unordered_map<std::string, std::unordered_set<std::string>> met;
  for (const auto& [clip, reel] : events.events) {
    if (reel.empty())
      continue;
    const std::string key = base::fold(reel);
    std::vector<ReportedList>& lists = uses[key];
    if (lists.empty() || lists.back().list.number != events.list.number)
      lists.push_back({events.list, 0, {}});
    ++lists.back().events;
    if (!clip.clipName.empty() && met[key].insert(clip.clipName).second)
      lists.back().clips.push_back(clip.clipName);
  }
}

} // namespace

ReelReport readReport(Session& session, const std::optional<std::string>& list)
{
  return guarded([&] {
    ReelReport report;
    report.project = reelhost::projectInfo().name;
    report.rate = frameRateName(reelhost::projectInfo().frameRate);
    report.time = base::timeText(std::time(nullptr));
    Uses uses;
    std::vector<Need> needs;
    if (list) {
      const ListEvents events = eventsOf(session, *list);
      report.list = events.list;
      addUses(uses, events);
      needs = needsOfEvents(session, events.events);
    } else {
      if (reelhost::keepsLists())
        for (const ListEvents& events : eventsOfLists(session))
          addUses(uses, events);
      needs = needsOfProject(session);
    }
    for (Need& need : needs) {
      const auto found = uses.find(base::fold(need.id));
      report.reels.push_back({std::move(need), found == uses.end() ? std::vector<ReportedList>() : found->second});
    }
    std::sort(report.reels.begin(), report.reels.end(),
              [](const ReportedReel& a, const ReportedReel& b) { return comesFirst(a.need, b.need); });
    return report;
  });
}

} // namespace reeldb::app
