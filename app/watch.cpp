// SPDX-License-Identifier: Apache-2.0
#include "app/watch.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "ReelDbManager.h"
#include "app/commit_entries.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "base/ascii.h"
#include "host/codes.h"
#include "reelhost/feed.h"
#include "reelhost/history.h"
#include "reelhost/inform_manager.h"

namespace reeldb::app {

namespace {

using What = ReelEvent::What;

bool isReel(const std::optional<reelhost::StoredLog>& log)
{
  return log && log->type == codes::reelLog;
}

/// The revisions after @p last, the oldest first. Empty if the history does not hold all of them.
std::optional<std::vector<reelhost::Revision>> revisionsAfter(reelhost::History& history,
                                                              const reelhost::FeedPosition& last)
{
  std::vector<reelhost::Revision> revisions;
  bool isKnown = false;
  history.readRevisions([&](reelhost::Revision&& revision) {
    if (revision.number <= last.revision) {
      isKnown = revision.number == last.revision && revision.token == last.token;
      return false;
    }
    revisions.push_back(std::move(revision));
    return true;
  });
  std::reverse(revisions.begin(), revisions.end());
  if (last.revision == 0)
    isKnown = revisions.empty() || revisions.front().number == 1;
  if (!isKnown)
    return std::nullopt;
  return revisions;
}

} // namespace

std::string_view wordOf(ReelEvent::What what)
{
  switch (what) {
  case What::New:
    return "new";
  case What::Changed:
    return "changed";
  case What::Gone:
    return "gone";
  case What::Renamed:
    return "renamed";
  case What::Database:
    return "database";
  }
  return "";
}

/// The identifiers of the reels and the numbers of their shots, commit by commit.
class Watcher::Reels {
public:
  /// REQUIRES: the project is being read.
  explicit Reels(const std::optional<std::string>& reel) : reel_(reel)
  {
    read();
    if (!reel)
      return;
    log_ = logOf(*reel);
    if (log_ != 0)
      reel_ = ids_[log_];
  }

  void requireReelOfInterest(ReelDbManager& manager) const
  {
    if (reel_ && log_ == 0)
      requireReel(manager, *reel_); // throws
  }

  /// What the commits after the revision did that the project holds already. Throws Error as reportSince.
  std::vector<WatchedCommit> commitsSince(std::int64_t revision)
  {
    reelhost::History* const history = reelhost::projectStoreToRead().history();
    if (!history)
      throw Error(ErrorKind::Refused, "watch: this project keeps no history");
    std::vector<reelhost::Revision> later; // the newest first
    std::int64_t newest = 0;
    history->readRevisions([&](reelhost::Revision&& known) {
      newest = std::max(newest, known.number);
      if (known.number <= revision)
        return false;
      later.push_back(std::move(known));
      return true;
    });
    if (revision > newest)
      throw Error(ErrorKind::NotFound, fmt::format("watch: no revision {} (the newest is {})", revision, newest));
    if (!later.empty() && later.back().number != revision + 1)
      throw Error(
          ErrorKind::Refused,
          fmt::format("watch: the history does not reach back to revision {} (it begins with {}; use --since {} "
                      "or a later one)",
                      revision, later.back().number, later.back().number - 1));
    for (const reelhost::Revision& back : later) {
      reelhost::RevisionChanges changes = history->changesOf(back.number);
      for (reelhost::LogChange& change : changes.logs)
        std::swap(change.before, change.after);
      take(back, changes);
    }
    std::set<std::int64_t> ofInterest{log_};
    if (reel_)
      ofInterest.insert(logOf(*reel_)); // as of that revision
    std::vector<WatchedCommit> commits;
    for (auto forth = later.rbegin(); forth != later.rend(); ++forth)
      commits.push_back(take(*forth, history->changesOf(forth->number)));
    if (reel_)
      keepSinceOfInterest(commits, std::move(ofInterest));
    return commits;
  }

  /// What the commits since the last call did. Takes them over.
  std::vector<WatchedCommit> newCommits(const reelhost::ForeignChanges& changes)
  {
    std::vector<WatchedCommit> commits = allNewCommits(changes);
    if (reel_)
      for (WatchedCommit& commit : commits)
        std::erase_if(commit.reels, [this](const ReelEvent& event) { return !isOfInterest(event); });
    return commits;
  }

  /// Whether there is anything to report of a commit.
  bool isOfInterest(const WatchedCommit& commit) const
  {
    return !commit.reels.empty() || (!reel_ && (commit.commit || commit.forgotten));
  }

private:
  using Counts = std::unordered_map<std::string, std::int64_t>;

  std::vector<WatchedCommit> allNewCommits(const reelhost::ForeignChanges& changes)
  {
    reelhost::Store& store = reelhost::projectStoreToRead();
    reelhost::History* const history = store.history();
    if (!history || positionOf(store).otherWrites != last_.otherWrites || isAnotherProject())
      return {difference(changes)};
    const std::optional<std::vector<reelhost::Revision>> revisions = revisionsAfter(*history, last_);
    if (!revisions)
      return commitsAfterForgottenOnes(*history, changes);
    if (revisions->empty())
      return {difference(changes)};
    std::vector<WatchedCommit> commits;
    for (const reelhost::Revision& revision : *revisions) {
      commits.push_back(take(revision, history->changesOf(revision.number)));
      last_ = {revision.number, revision.token, last_.otherWrites};
    }
    return commits;
  }

  /// What the commits did that the history still has, after what those did together that it has forgotten since the
  /// last call. Everything together if the history is not that of the last call.
  std::vector<WatchedCommit> commitsAfterForgottenOnes(reelhost::History& history,
                                                       const reelhost::ForeignChanges& changes)
  {
    std::vector<reelhost::Revision> kept; // the newest first
    history.readRevisions([&](reelhost::Revision&& revision) {
      kept.push_back(std::move(revision));
      return true;
    });
    if (kept.empty() || kept.back().number <= last_.revision)
      return {difference(changes)};
    const std::int64_t firstForgotten = last_.revision + 1;
    const std::map<std::int64_t, std::string> ids = std::exchange(ids_, {});
    const Counts shots = std::exchange(shots_, {});
    read();
    std::set<std::int64_t> changed = logsOf(changes.changedReels);
    for (const reelhost::Revision& back : kept) {
      reelhost::RevisionChanges did = history.changesOf(back.number);
      for (reelhost::LogChange& change : did.logs) {
        changed.erase(change.number);
        std::swap(change.before, change.after);
      }
      take(back, did);
    }
    std::vector<WatchedCommit> commits = {difference(ids, shots, changed)};
    commits.front().forgotten = Revisions{firstForgotten, kept.back().number - 1};
    for (auto forth = kept.rbegin(); forth != kept.rend(); ++forth)
      commits.push_back(take(*forth, history.changesOf(forth->number)));
    return commits;
  }

  /// Leaves only what was done to reels of interest: these, and all that got the name of the reel of interest.
  void keepSinceOfInterest(std::vector<WatchedCommit>& commits, std::set<std::int64_t> logs)
  {
    for (const WatchedCommit& commit : commits)
      for (const ReelEvent& event : commit.reels)
        if ((event.what == What::New || event.what == What::Renamed) && base::sameName(event.reel, *reel_))
          logs.insert(event.log);
    logs.erase(0);
    if (logs.empty())
      requireReel(*ReelDbManager::theReelDbManager(), *reel_); // throws
    for (auto log = logs.rbegin(); log_ == 0 && log != logs.rend(); ++log)
      if (const auto there = ids_.find(*log); there != ids_.end()) { // it was renamed
        log_ = *log;
        reel_ = there->second;
      }
    for (WatchedCommit& commit : commits)
      std::erase_if(commit.reels, [&](const ReelEvent& event) { return logs.count(event.log) == 0; });
  }

  /// Whether another project was put in the place of this one.
  bool isAnotherProject() const { return reelhost::projectStoreToRead().info().uuid != project_; }

  void read()
  {
    reelhost::Store& store = reelhost::projectStoreToRead();
    ids_.clear();
    store.readReels([&](reelhost::StoredLog&& log) { ids_[log.number] = idOf(log); });
    byId_.clear();
    for (const auto& [log, id] : ids_)
      byId_.emplace(base::fold(id), log);
    shots_ = reelhost::shotCounts();
    project_ = store.info().uuid;
    last_ = positionOf(store);
  }

  static reelhost::FeedPosition positionOf(reelhost::Store& store)
  {
    reelhost::Feed* const feed = store.feed();
    return feed ? feed->position() : reelhost::FeedPosition();
  }

  std::int64_t logOf(const std::string& id) const
  {
    const auto found = byId_.find(base::fold(id));
    return found == byId_.end() ? 0 : found->second;
  }

  std::int64_t shotsOf(const std::string& id) const
  {
    const auto found = shots_.find(base::fold(id));
    return found == shots_.end() ? 0 : found->second;
  }

  static void report(WatchedCommit& commit, std::int64_t log, What what, const std::string& reel,
                     const std::string& from = {}, std::vector<FieldStep> fields = {})
  {
    commit.reels.push_back({what, reel, from, std::move(fields), commit.commit, log});
  }

  void setId(std::int64_t log, const std::string* id)
  {
    if (const auto known = ids_.find(log); known != ids_.end()) {
      if (const auto named = byId_.find(base::fold(known->second)); named != byId_.end() && named->second == log)
        byId_.erase(named);
      ids_.erase(known);
    }
    if (id) {
      ids_[log] = *id;
      byId_[base::fold(*id)] = log;
    }
  }

  void takeReel(WatchedCommit& commit, const reelhost::LogChange& change)
  {
    const bool was = isReel(change.before) || (change.forgotten && ids_.count(change.number) != 0);
    const bool is = isReel(change.after);
    if (!was && !is)
      return;
    const std::string id = is ? idOf(*change.after) : std::string();
    const std::string before = isReel(change.before) ? idOf(*change.before) : ids_[change.number];
    if (was && !is) {
      report(commit, change.number, What::Gone, before);
    } else if (!was && is) {
      report(commit, change.number, What::New, id);
    } else if (was && is) {
      if (before != id)
        report(commit, change.number, What::Renamed, id, before);
      std::vector<FieldStep> steps = stepsOf(change);
      std::erase_if(steps, [](const FieldStep& step) { return step.field == "reel"; });
      if (!steps.empty())
        report(commit, change.number, What::Changed, id, {}, std::move(steps));
    }
    setId(change.number, is ? &id : nullptr);
  }

  /// Counts the shot for its reels, and notes in @p before how many shots they had before the commit.
  void takeShot(WatchedCommit& commit, const reelhost::LogChange& change, Counts& before)
  {
    const bool was = change.before && !isReel(change.before), is = change.after && !isReel(change.after);
    commit.shotsNew += !was && is ? 1 : 0;
    commit.shotsGone += was && !is ? 1 : 0;
    commit.shotsChanged += was && is ? 1 : 0;
    const auto add = [&](const std::string& id, std::int64_t count) {
      if (id.empty())
        return;
      const std::string key = base::fold(id);
      before.emplace(key, shots_[key]);
      shots_[key] += count;
    };
    if (was)
      add(idOf(*change.before), -1);
    if (is)
      add(idOf(*change.after), 1);
  }

  WatchedCommit take(const reelhost::Revision& revision, const reelhost::RevisionChanges& changes)
  {
    WatchedCommit commit;
    commit.commit = entryFrom(revision, {});
    Counts before;
    for (const reelhost::LogChange& change : changes.logs) {
      takeReel(commit, change);
      takeShot(commit, change, before);
    }
    reportShots(commit, before);
    return commit;
  }

  /// Reports other numbers of shots, but not those of reels that are new, gone or renamed.
  void reportShots(WatchedCommit& commit, const Counts& before)
  {
    std::map<std::int64_t, FieldStep> steps;
    for (const auto& [id, count] : before)
      if (const auto log = byId_.find(id); log != byId_.end() && shots_[id] != count)
        steps[log->second] = {"shots", std::to_string(count), std::to_string(shots_[id])};
    for (ReelEvent& event : commit.reels)
      if (const auto step = steps.find(event.log); step != steps.end()) {
        if (event.what == What::Changed)
          event.fields.push_back(std::move(step->second));
        steps.erase(step);
      }
    for (auto& [log, step] : steps)
      report(commit, log, What::Changed, ids_[log], {}, {std::move(step)});
  }

  /// What differs, without the commits that did it.
  WatchedCommit difference(const reelhost::ForeignChanges& changes)
  {
    std::map<std::int64_t, std::string> ids = std::exchange(ids_, {});
    const Counts shots = std::exchange(shots_, {});
    const bool isAnother = isAnotherProject();
    read();
    WatchedCommit commit;
    if (isAnother) { // a log with the same number is another log
      for (const auto& [log, id] : std::exchange(ids, {}))
        report(commit, log, What::Gone, id);
      for (const auto& [log, id] : ids_)
        report(commit, log, What::New, id);
      return commit;
    }
    return difference(ids, shots, logsOf(changes.changedReels));
  }

  std::set<std::int64_t> logsOf(const CookieVec& reels) const
  {
    std::set<std::int64_t> logs;
    for (const Cookie& log : reels)
      logs.insert(logOf(text(ReelDbRec(log).reelId())));
    return logs;
  }

  /// What differs between these reels, with their numbers of shots, and those of now. @p changed: logs of reels that
  /// have another field.
  WatchedCommit difference(const std::map<std::int64_t, std::string>& ids, const Counts& shots,
                           const std::set<std::int64_t>& changed)
  {
    WatchedCommit commit;
    for (const auto& [log, id] : ids)
      if (ids_.count(log) == 0)
        report(commit, log, What::Gone, id);
    for (const auto& [log, id] : ids_) {
      const auto before = ids.find(log);
      if (before == ids.end()) {
        report(commit, log, What::New, id);
        continue;
      }
      if (before->second != id)
        report(commit, log, What::Renamed, id, before->second);
      const auto count = shots.find(base::fold(before->second));
      const bool otherShots = (count == shots.end() ? 0 : count->second) != shotsOf(id);
      if (changed.count(log) != 0 || (otherShots && before->second == id))
        report(commit, log, What::Changed, id);
    }
    return commit;
  }

  /// If the reel of interest was deleted, the next log with its identifier becomes the reel of interest.
  bool isOfInterest(const ReelEvent& event)
  {
    if (log_ == 0 && event.what != What::Gone && base::sameName(event.reel, *reel_))
      log_ = event.log;
    if (event.log != log_)
      return false;
    if (event.what == What::Gone)
      log_ = 0;
    else
      reel_ = event.reel;
    return true;
  }

  std::optional<std::string> reel_; ///< the reel of interest, as its record spells it
  std::int64_t log_ = 0;            ///< the log of that reel; 0 while it does not exist
  std::map<std::int64_t, std::string> ids_;
  std::unordered_map<std::string, std::int64_t> byId_; ///< folded identifiers
  Counts shots_;                                       ///< likewise
  reelhost::FeedPosition last_;                        ///< what was reported last
  decltype(reelhost::ProjectInfo::uuid) project_{};
};

Watcher::Watcher(Session& session, const std::optional<std::string>& reel, Listener listener)
    : session_(session), listener_(std::move(listener)), reels_(guarded([&] { return std::make_unique<Reels>(reel); }))
{
}

void Watcher::requireReelOfInterest() const
{
  guarded([this] { reels_->requireReelOfInterest(session_.manager()); });
}

Watcher::~Watcher() = default;

void Watcher::reportSince(std::int64_t revision)
{
  guarded([&] { report(reels_->commitsSince(revision)); });
}

void Watcher::report(std::vector<WatchedCommit> commits)
{
  reelhost::idle(); // a listener that waits, as for a pipe that is full, must not hold the project meanwhile
  for (WatchedCommit& commit : commits)
    if (reels_->isOfInterest(commit))
      listener_(commit);
}

void Watcher::idle()
{
  guarded([] { reelhost::idle(); });
}

void Watcher::poll()
{
  guarded([this] {
    for (;;) {
      const reelhost::ForeignChanges changes = reelhost::informOfChangesFromElsewhere(session_.manager());
      if (changes.state != reelhost::ForeignChanges::State::Applied)
        return;
      try {
        reelhost::projectStoreToRead();
      } catch (const reelhost::Error& error) {
        if (error.kind() != reelhost::ErrorKind::Busy)
          throw;
        continue; // another commit came in between: its revisions are read with the others
      }
      report(reels_->newCommits(changes));
      return;
    }
  });
}

int Watcher::waitHandle()
{
  return guarded([] {
    reelhost::Feed* const feed = reelhost::projectStore().feed();
    return feed ? feed->waitHandle() : -1;
  });
}

std::string Watcher::whyNoHandle()
{
  return guarded([] {
    reelhost::Feed* const feed = reelhost::projectStore().feed();
    return feed ? feed->whyNoWaitHandle() : reelhost::projectStore().subject() + ": reports no changes";
  });
}

std::optional<std::chrono::microseconds> Watcher::readEvents()
{
  reelhost::Feed* const feed = reelhost::projectStore().feed();
  return feed ? feed->readEvents() : std::nullopt;
}

} // namespace reeldb::app
