// SPDX-License-Identifier: Apache-2.0
//
// Changes that wait to be stored here, and what others have stored meanwhile.
#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "base/ascii.h"
#include "base/time_text.h"
#include "host/codes.h"
#include "model/project.h"
#include "model/step.h"
#include "reelhost/conflict.h"
#include "reelhost/display_text.h"
#include "reelhost/material.h"

namespace reelhost::model {

namespace {

using reeldb::base::fold;

std::string quoted(const std::optional<std::string>& value)
{
  return value ? '"' + displayText(*value) + '"' : "nothing";
}

bool isReel(const StoredLog& log)
{
  return log.type == codes::reelLog;
}

std::string foldedId(const LightweightString<char>& id)
{
  return id.empty() ? std::string() : fold(id.c_str());
}

[[noreturn]] void throwConflict(Meeting meeting, const std::string& fact)
{
  const std::string what = displayText(meeting.subject) + ": " + fact + " (" + describeCommit(meeting.revision) + ")";
  throw Conflict(std::move(meeting), what);
}

} // namespace

/// What others have stored since the position of the project.
class Project::Others {
public:
  Others(Project& project, Delta& delta) : project_(project), history_(project.requireHistory()), delta_(delta)
  {
    for (StoredLog& log : delta.logs)
      logs_.emplace(log.number, &log);
    for (const GoneLog& log : delta.gone)
      gone_.insert(log.number);
    history_.readRevisions([&](Revision&& revision) {
      const bool isNew = revision.number > project.position_.revision;
      if (isNew)
        revisions_.emplace(revision.number, std::move(revision));
      return isNew;
    });
  }

  /// Puts the changes made here into the delta. Throws Conflict if that is not possible.
  void merge()
  {
    for (const auto& [number, log] : logs_)
      storedIds_.emplace(number, isReel(*log) ? fold(idOf(*log)) : std::string());
    for (const Log* const log : project_.dirty_)
      if (!log->isGone)
        merge(*log);
    for (const std::int64_t number : project_.deleted_)
      if (const auto stored = logs_.find(number); stored != logs_.end())
        throwConflict({nameOf(*stored->second), {}, {}, {}, lastRevisionOf(number)},
                      "deleted here, and changed by another process meanwhile");
    mergeOptions();
    requireOtherLists();
    requireNames();
    for (Log* const log : project_.dirty_)
      if (const auto id = storedIds_.find(log->number); id != storedIds_.end())
        log->storedReelId = id->second.c_str();
  }

private:
  std::vector<LogChange> changesOf(std::int64_t number)
  {
    std::vector<LogChange> changes;
    history_.readChangesOfLog(number, [&](LogChange&& change) {
      if (change.revision > project_.position_.revision)
        changes.push_back(std::move(change));
    });
    return changes;
  }

  const Revision& lastRevisionOf(std::int64_t number) { return revisions_.at(changesOf(number).back().revision); }

  void merge(const Log& log)
  {
    const StoredLog here = log.toStored();
    if (gone_.count(log.number) != 0)
      throwConflict({nameOf(here), {}, {}, {}, lastRevisionOf(log.number)},
                    "changed here, and deleted by another process meanwhile");
    const auto found = logs_.find(log.number);
    if (found == logs_.end())
      return;
    StoredLog& stored = *found->second;
    const std::vector<LogChange> changes = changesOf(log.number);
    const StoredLog& before = changes.front().before.value();
    StoredLog merged = here;
    if (const std::optional<std::string> name = takeSteps(merged, before, stored)) {
      const auto change = std::find_if(changes.rbegin(), changes.rend(), [&](const LogChange& c) {
        return !c.before || !c.after || valueIn(*c.before, *name) != valueIn(*c.after, *name);
      });
      Meeting meeting{nameOf(before), *name, valueIn(here, *name), valueIn(stored, *name),
                      revisions_.at(change->revision)};
      const std::string fact = *name + " is " + quoted(meeting.here) + " here, and another process stored " +
                               quoted(meeting.stored) + " meanwhile";
      throwConflict(std::move(meeting), fact);
    }
    stored = std::move(merged);
  }

  void mergeOptions()
  {
    if (!delta_.options || project_.changedOptions_.empty())
      return;
    Values here = valuesOf(blockOf(project_.options_).fields());
    const Values stored = valuesOf(*delta_.options);
    std::optional<Values> before;
    const Revision* last = nullptr;
    for (const auto& [number, revision] : revisions_)
      if (revision.setOptions) {
        if (!before)
          before = valuesOf(history_.changesOf(number).optionsBefore.value());
        last = &revision;
      }
    if (const auto key = takeSteps(here, before.value(), stored)) {
      Meeting meeting{project_.info_.name, *key, valueIn(here, *key), valueIn(stored, *key), *last};
      const std::string fact = "option " + *key + " is " + quoted(meeting.here) + " here, and another process stored " +
                               quoted(meeting.stored) + " meanwhile";
      throwConflict(std::move(meeting), fact);
    }
    delta_.options->assign(here.begin(), here.end());
    for (Project::ChangedOption& option : project_.changedOptions_) {
      const auto found = stored.find(*option.key);
      option.stored = found == stored.end() ? std::nullopt : std::optional(found->second);
    }
  }

  /// Lists are not merged.
  void requireOtherLists()
  {
    if (project_.changedLists_.empty())
      return;
    for (const auto& [number, revision] : revisions_) {
      if (revision.lists == 0)
        continue;
      for (const ListChange& change : history_.changesOf(number).lists)
        if (project_.changedLists_.count(change.number) != 0)
          throwConflict({nameOf(change.after ? *change.after : change.before.value()), {}, {}, {}, revision},
                        "changed here, and by another process meanwhile");
    }
    for (const auto& [number, list] : project_.changedLists_)
      for (const ListEvent& event : list ? list->events : std::vector<ListEvent>())
        if (gone_.count(event.shot) != 0)
          throwConflict({nameOf(*list), {}, {}, {}, lastRevisionOf(event.shot)},
                        "changed here, and another process deleted a shot of it meanwhile");
  }

  /// No two reels may get one identifier, and no shot may lose its reel, because of both changes together.
  void requireNames()
  {
    struct Reels {
      const Log* here = nullptr; ///< that got the identifier here
      std::int64_t stored = 0;   ///< that got it elsewhere
      std::int64_t left = 0;     ///< that lost it elsewhere
      bool isHere = false;       ///< whether a reel has it here
      bool isStored = false;     ///< likewise elsewhere
      bool willBe = false;       ///< likewise with both changes
    };
    std::unordered_map<std::string, Reels> byId;
    const auto known = [&](const Log& log) { return logs_.count(log.number) != 0 || gone_.count(log.number) != 0; };
    std::set<std::int64_t> seen;
    for (const Log& log : project_.logs_) {
      const bool deletedHere = log.isGone && project_.deleted_.count(log.number) != 0;
      if (log.isGone && !deletedHere)
        continue;
      seen.insert(log.number);
      const std::string id = log.type == codes::reelLog ? foldedId(log.reelId) : std::string();
      const std::string before = log.isDirty && log.type == codes::reelLog ? foldedId(log.storedReelId) : id;
      if (!deletedHere)
        byId[id].isHere = true;
      if (!known(log))
        byId[before].isStored = true;
      const auto stored = logs_.find(log.number);
      if (gone_.count(log.number) != 0 || (stored != logs_.end() && storedIds_.at(log.number) != before))
        byId[before].left = log.number;
      if (deletedHere || gone_.count(log.number) != 0)
        continue;
      const std::string after = stored != logs_.end() && isReel(*stored->second) ? fold(idOf(*stored->second)) : id;
      Reels& reels = byId[after];
      reels.willBe = true;
      if (log.isDirty && id != before)
        reels.here = &log;
      if (stored != logs_.end() && storedIds_.at(log.number) != before)
        reels.stored = log.number;
    }
    for (const auto& [number, id] : storedIds_) {
      Reels& reels = byId[id];
      reels.isStored = true;
      if (seen.count(number) != 0)
        continue;
      reels.willBe = true;
      reels.stored = number;
    }
    byId.erase(std::string());
    for (const auto& [id, reels] : byId)
      if (reels.here && reels.stored != 0 && reels.here->number != reels.stored)
        throwConflict({reels.here->reelId.c_str(), shotTexts.front().key, reels.here->reelId.c_str(),
                       idOf(*logs_.at(reels.stored)), lastRevisionOf(reels.stored)},
                      "a reel got this identifier here, and another one by another process meanwhile");
    for (const Log* const log : project_.dirty_) {
      const auto named = byId.find(foldedId(log->reelId));
      if (!log->isGone && log->type != codes::reelLog && named != byId.end() && named->second.isHere &&
          !named->second.willBe)
        throwConflict({log->reelId.c_str(), {}, {}, {}, lastRevisionOf(named->second.left)},
                      "a shot names this reel here, and another process deleted or renamed it meanwhile");
    }
    for (const auto& [number, log] : logs_) {
      const auto named = byId.find(fold(idOf(*log)));
      if (!isReel(*log) && named != byId.end() && named->second.isStored && !named->second.willBe)
        throwConflict({idOf(*log), {}, {}, {}, lastRevisionOf(number)},
                      "deleted or renamed here, and another process stored a shot of it meanwhile");
    }
  }

  Project& project_;
  History& history_;
  Delta& delta_;
  std::map<std::int64_t, StoredLog*> logs_;       ///< those of the delta
  std::map<std::int64_t, std::string> storedIds_; ///< their folded identifiers as they are stored, of reels only
  std::set<std::int64_t> gone_;                   ///< the numbers of the gone logs of the delta
  std::map<std::int64_t, Revision> revisions_;    ///< by number
};

Delta Project::differenceWithChangesHere()
{
  Feed* const feed = store_->feed();
  const bool canBeMerged = feed && store_->history() && access_ == Access::Write && inverse_.revision == 0 &&
                           !compact_ && forgetBefore_ == 0 && nextNumber_ == unusedFrom_ &&
                           store_->info().uuid == info_.uuid;
  Delta delta;
  delta.whole = true;
  if (canBeMerged)
    delta = feed->since(position_);
  if (delta.whole)
    throw Error(ErrorKind::Busy,
                subject() + ": changed by another process, and changes made here are not stored (read it again)");
  Others(*this, delta).merge();
  return delta;
}

} // namespace reelhost::model

std::string reelhost::describeCommit(const Revision& revision)
{
  const Origin& origin = revision.origin;
  std::string text;
  for (const auto& [word, value] :
       {std::pair("by ", origin.user), {"on ", origin.machine}, {"at ", reeldb::base::timeText(origin.time)}})
    if (!value.empty())
      text.append(text.empty() ? "" : " ").append(word).append(displayText(value));
  text.append(text.empty() ? "" : ", ").append("revision ").append(std::to_string(revision.number));
  return origin.command.empty() ? text : text.append(": ").append(displayText(origin.command));
}
