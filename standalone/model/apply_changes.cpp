// SPDX-License-Identifier: Apache-2.0
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "host/codes.h"
#include "model/edit_handles.h"
#include "model/listeners.h"
#include "model/project.h"
#include "model/stored_log.h"

namespace reelhost::model {

namespace {

std::string textOf(const LightweightString<char>& text)
{
  return text.empty() ? std::string() : std::string(text.c_str());
}

} // namespace

FeedPosition Project::newestPosition() const
{
  Feed* const feed = store_->feed();
  return feed ? feed->position() : FeedPosition();
}

/// What differs between the logs in memory and the stored ones, found by reading all of these.
Delta Project::differenceToStored()
{
  Delta delta;
  std::unordered_set<const Log*> there;
  const auto compare = [&](StoredLog&& stored) {
    const Log* const log = table_.find(CookieWords(cookieOf(stored)));
    if (log)
      there.insert(log);
    if (!log || !isSame(log->toStored(), stored))
      delta.logs.push_back(std::move(stored));
  };
  store_->readReels(compare);
  store_->readOthers(compare);
  for (const Log& log : logs_)
    if (!log.isGone && there.count(&log) == 0) {
      const StoredLog stored = log.toStored();
      delta.gone.push_back({stored.number, stored.uuid, stored.tag, stored.kind});
    }
  delta.options = store_->options();
  return delta;
}

/// What the change of the logs means for listeners that know the reels. It is collected while the delta is applied.
struct Project::AppliedChanges {
  ForeignChanges result;
  CookieVec modified, gone;
  int newReels = 0;
  bool otherChangeOfTheSet = false;

  void conclude()
  {
    result.reelSet = newReels != 0 || otherChangeOfTheSet;
    if (newReels != 1 || otherChangeOfTheSet)
      result.newReel.clear();
  }
};

void Project::apply(StoredLog&& stored, AppliedChanges& changes)
{
  const bool isReel = stored.type == codes::reelLog;
  Log* const log = table_.find(CookieWords(cookieOf(stored)));
  if (!log) {
    // Nobody holds a log while changes are applied. Those that wait to be stored may still be needed.
    const bool isBack = stored.number < nextNumber_;
    const Log& added = gone_.empty() || hasChanges() ? add(std::move(stored)) : addInPlaceOfGone(stored);
    changes.modified.add(added.cookie);
    if (isReel && isBack) {
      changes.otherChangeOfTheSet = true;
    } else if (isReel) {
      ++changes.newReels;
      changes.result.newReel = textOf(added.reelId);
    }
    return;
  }
  if (isSame(log->toStored(), stored))
    return;
  const bool wasReel = log->type == codes::reelLog;
  const std::string before = textOf(log->reelId);
  log->assign(stored);
  if (wasReel != isReel)
    reelsReady_ = false;
  refreshIndex(*log);
  changes.modified.add(log->cookie);
  if (wasReel != isReel || (isReel && before != textOf(log->reelId)))
    changes.otherChangeOfTheSet = true;
  else if (isReel)
    changes.result.changedReels.add(log->cookie);
}

void Project::apply(Delta&& delta, AppliedChanges& changes)
{
  for (StoredLog& stored : delta.logs)
    apply(std::move(stored), changes);
  for (const GoneLog& gone : delta.gone)
    if (Log* const log = table_.find(CookieWords(cookieOf(gone.uuid, gone.tag, gone.kind)))) {
      changes.otherChangeOfTheSet = changes.otherChangeOfTheSet || log->type == codes::reelLog;
      changes.gone.add(log->cookie);
      remove(*log);
    }
  if (delta.options)
    blockOf(options_).assign(*delta.options);
  changes.conclude();
}

std::optional<ForeignChanges> Project::applyFromElsewhere()
{
  endUse();
  begin(Access::Read);
  ProjectInfo info = currentInfo(*store_);
  std::optional<Delta> delta;
  if (hasChanges()) {
    delta = differenceWithChangesHere();
  } else if (info.uuid != info_.uuid) {
    return std::nullopt;
  } else {
    if (Feed* const feed = store_->feed())
      delta = feed->since(position_);
    if (!delta || delta->whole)
      delta = differenceToStored();
  }
  loadOthers(); // now, because nothing may throw once anything is applied
  const FeedPosition position = newestPosition();
  const std::int64_t nextNumber = store_->nextNumber();

  AppliedChanges changes;
  apply(std::move(*delta), changes);
  info_ = std::move(info);
  nextNumber_ = unusedFrom_ = nextNumber;
  position_ = position;
  isStale_ = false;
  idle();
  changes.result.state = ForeignChanges::State::Applied;
  if (changes.modified.count() != 0)
    notifyLogsModification(changes.modified);
  if (changes.gone.count() != 0)
    notifyLogsDeletion(changes.gone);
  return std::move(changes.result);
}

} // namespace reelhost::model
