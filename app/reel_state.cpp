// SPDX-License-Identifier: Apache-2.0
#include "app/reel_state.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "app/commit_entries.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "host/codes.h"
#include "reelhost/history.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

using Logs = std::map<std::int64_t, reelhost::StoredLog>;

/// The logs as they were stored before the revision.
Logs logsBefore(std::int64_t revision)
{
  reelhost::Store& store = reelhost::projectStore();
  reelhost::History& history = *store.history();
  Logs logs;
  const auto keep = [&](reelhost::StoredLog&& log) { logs.insert_or_assign(log.number, std::move(log)); };
  store.readReels(keep);
  store.readOthers(keep);
  std::vector<std::int64_t> revisions; // the newest first
  history.readRevisions([&](const reelhost::Revision& read) {
    revisions.push_back(read.number);
    return read.number > revision;
  });
  for (const std::int64_t number : revisions)
    for (reelhost::LogChange& change : history.changesOf(number).logs) {
      logs.erase(change.number);
      if (change.before)
        keep(std::move(*change.before));
    }
  return logs;
}

Shot shotIn(const reelhost::StoredLog& log)
{
  reelhost::Material material;
  for (const auto& [key, value] : log.fields)
    for (const reelhost::ShotText& known : reelhost::shotTexts)
      if (key == known.key)
        material.*known.text = value;
  return shotFrom(material);
}

/// What to do about a shot that would have no reel after @p revision is taken back.
std::string adviceFor(std::int64_t shot, std::int64_t revision)
{
  const std::int64_t inTheWay = reelhost::newestInTheWay(
      *reelhost::projectStore().history(), revision, [&](const reelhost::RevisionChanges& changes) {
        return std::any_of(changes.logs.begin(), changes.logs.end(),
                           [&](const reelhost::LogChange& change) { return change.number == shot; });
      });
  return inTheWay == 0 ? "create the reel first" : fmt::format("take revision {} back first", inTheWay);
}

} // namespace

ReelState::ReelState(Session& session)
{
  for (const Cookie& log : session.manager().reelList) {
    ReelDbRec record(log);
    addReel(reelhost::logNumber(log), text(record.reelId()), oldNamesOf(record));
  }
  for (const Cookie& log : reelhost::allShots())
    addShot(reelhost::logNumber(log), shotFrom(reelhost::materialOf(log)));
}

ReelState::ReelState(std::int64_t revision)
{
  const Logs logs = logsBefore(revision);
  for (const auto& [number, log] : logs)
    if (log.type == codes::reelLog)
      addReel(number, idOf(log), oldNamesOf(log));
  for (const auto& [number, log] : logs)
    if (log.type != codes::reelLog)
      addShot(number, shotIn(log));
}

void ReelState::addReel(std::int64_t log, const std::string& id, const std::vector<std::string>& oldNames)
{
  reels_[log] = id;
  if (id.empty())
    return;
  byId_[base::fold(id)].insert(log);
  for (const std::string& former : oldNames)
    byName_[base::fold(former)].insert({log, ""});
}

void ReelState::addShot(std::int64_t log, const Shot& shot)
{
  shots_.insert(log);
  if (shot.reel.empty())
    return;
  const auto reel = byId_.find(base::fold(shot.reel));
  const bool isThere = reel != byId_.end();
  if (!isThere)
    withoutReel_[log] = shot.reel;
  for (const std::string& alias : shot.aliases)
    byName_[base::fold(alias)].insert(isThere ? Meant(*reel->second.begin(), "") : Meant(0, base::fold(shot.reel)));
}

std::optional<ReelState::Fault> ReelState::newFault(const std::vector<const ReelState*>& earlier,
                                                    std::int64_t revision) const
{
  const auto isNew = [&](const auto& entry, const auto& namesOf) { // leads to several, and did not before
    return entry.second.size() > 1 && std::none_of(earlier.begin(), earlier.end(), [&](const ReelState* state) {
             const auto found = namesOf(*state).find(entry.first);
             return found != namesOf(*state).end() &&
                    std::includes(found->second.begin(), found->second.end(), entry.second.begin(), entry.second.end());
           });
  };
  for (const auto& entry : byId_) {
    if (!isNew(
            entry, [](const ReelState& state) -> const auto& { return state.byId_; }))
      continue;
    const std::map<std::int64_t, std::string>& before = earlier.front()->reels_;
    const auto back = std::find_if(entry.second.begin(), entry.second.end(), [&](std::int64_t log) {
      const auto found = before.find(log);
      return found == before.end() || found->second != reels_.at(log);
    });
    return Fault{reels_.at(*back), "another reel now has this name", "rename that reel first"};
  }
  for (const auto& [shot, reel] : withoutReel_)
    if (std::none_of(earlier.begin(), earlier.end(),
                     [log = shot](const ReelState* state) { return state->withoutReel_.count(log) != 0; }))
      return Fault{reel, "a shot would name it, but there would be no such reel", adviceFor(shot, revision)};
  for (const auto& entry : byName_) {
    if (!isNew(
            entry, [](const ReelState& state) -> const auto& { return state.byName_; }))
      continue;
    const auto idOf = [&](const Meant& meant) { return meant.first == 0 ? meant.second : reels_.at(meant.first); };
    return Fault{entry.first,
                 fmt::format("the name would lead to both {} and {}", idOf(*entry.second.begin()),
                             idOf(*std::next(entry.second.begin()))),
                 "see reeldb which"};
  }
  return {};
}

void ReelState::requireSoundAfter(const ReelState& before, std::int64_t revision, const std::string& operation,
                                  const std::string& undone) const
{
  if (!newFault({&before}, revision))
    return;
  const ReelState beforeRevision(revision);
  if (const std::optional<Fault> fault = newFault({&before, &beforeRevision}, revision))
    throw Error(ErrorKind::Refused,
                fmt::format("{}: {}: {}, {} ({})", operation, fault->subject, fault->fact, undone, fault->advice));
}

} // namespace reeldb::app
