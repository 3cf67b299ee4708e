// SPDX-License-Identifier: Apache-2.0
#include "app/reel_state.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"

namespace reeldb::app {

namespace {

std::string nameOf(const Cookie& log)
{
  return log.asString(false).c_str();
}

/// A name that leads to more than one log, and to one that it did not lead to before; null if there is none.
const std::pair<const std::string, std::set<std::string>>*
newlyAmbiguous(const std::map<std::string, std::set<std::string>>& after,
               const std::map<std::string, std::set<std::string>>& before)
{
  for (const auto& entry : after) {
    const auto earlier = before.find(entry.first);
    const bool isNew = earlier == before.end() || !std::includes(earlier->second.begin(), earlier->second.end(),
                                                                 entry.second.begin(), entry.second.end());
    if (entry.second.size() > 1 && isNew)
      return &entry;
  }
  return nullptr;
}

} // namespace

ReelState::ReelState(Session& session)
{
  for (const Cookie& log : session.manager().reelList) {
    ReelDbRec record(log);
    const std::string id = text(record.reelId()), name = nameOf(log);
    reels_[name] = id;
    if (id.empty())
      continue;
    byId_[base::fold(id)].insert(name);
    for (const std::string& former : oldNamesOf(record))
      byName_[base::fold(former)].insert(name);
  }
  for (const Cookie& log : reelhost::allShots()) {
    const std::string name = nameOf(log);
    shots_.insert(name);
    const Shot shot = shotFrom(reelhost::materialOf(log));
    if (shot.reel.empty())
      continue;
    const auto reel = byId_.find(base::fold(shot.reel));
    if (reel == byId_.end())
      withoutReel_[name] = shot.reel;
    for (const std::string& alias : shot.aliases) {
      std::set<std::string>& meant = byName_[base::fold(alias)];
      if (reel == byId_.end())
        meant.insert(base::fold(shot.reel));
      else
        meant.insert(*reel->second.begin());
    }
  }
}

void ReelState::requireSoundAfter(const ReelState& before, const std::string& operation,
                                  const std::string& undone) const
{
  const auto refuse = [&](const std::string& subject, std::string_view fact, std::string_view advice) {
    throw Error(ErrorKind::Refused, fmt::format("{}: {}: {}, {} ({})", operation, subject, fact, undone, advice));
  };
  if (const auto* const twice = newlyAmbiguous(byId_, before.byId_)) {
    const auto back = std::find_if(twice->second.begin(), twice->second.end(), [&](const std::string& log) {
      const auto earlier = before.reels_.find(log);
      return earlier == before.reels_.end() || earlier->second != reels_.at(log);
    });
    refuse(reels_.at(*back), "another reel now has this name", "rename that reel first");
  }
  for (const auto& [shot, reel] : withoutReel_)
    if (before.withoutReel_.count(shot) == 0)
      refuse(reel, "a shot would name it, but there is no such reel", "create the reel first");
  if (const auto* const name = newlyAmbiguous(byName_, before.byName_)) {
    const auto idOf = [&](const std::string& log) {
      const auto reel = reels_.find(log);
      return reel == reels_.end() ? log : reel->second;
    };
    refuse(name->first,
           fmt::format("the name would lead to both {} and {}", idOf(*name->second.begin()),
                       idOf(*std::next(name->second.begin()))),
           "see reeldb which");
  }
}

} // namespace reeldb::app
