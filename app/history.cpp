// SPDX-License-Identifier: Apache-2.0
#include "app/history.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "app/commit_entries.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/reel_state.h"
#include "base/ascii.h"
#include "base/text_width.h"
#include "host/codes.h"
#include "reelhost/history.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

reelhost::History& requireHistory()
{
  if (reelhost::History* const history = reelhost::projectStore().history())
    return *history;
  throw Error(ErrorKind::Refused, fmt::format("{}: keeps no history", reelhost::projectInfo().name));
}

/// The number of the log of the reel that has the identifier, or of the one that had it when it was deleted last. Else
/// of the one that was renamed from it.
std::int64_t logNumberOf(reelhost::History& history, const std::string& id,
                         const std::vector<reelhost::Revision>& revisions)
{
  std::int64_t byId = 0, byOldName = 0;
  const auto look = [&](const reelhost::StoredLog& log) {
    if (log.type != codes::reelLog)
      return;
    if (byId == 0 && base::sameName(idOf(log), id))
      byId = log.number;
    const std::vector<std::string> oldNames = oldNamesOf(log);
    if (byOldName == 0 && std::any_of(oldNames.begin(), oldNames.end(),
                                      [&](const std::string& former) { return base::sameName(former, id); }))
      byOldName = log.number;
  };
  reelhost::projectStore().readReels(look);
  for (auto revision = revisions.begin(); byId == 0 && revision != revisions.end(); ++revision)
    if (revision->deleted != 0)
      for (const reelhost::LogChange& change : history.changesOf(revision->number).logs)
        if (change.before && !change.after)
          look(*change.before);
  if (byId == 0 && byOldName == 0)
    throw Error(ErrorKind::NotFound, fmt::format("{}: no such reel, now or in the history", base::shortText(id)));
  return byId != 0 ? byId : byOldName;
}

// --- Taking back ---------------------------------------------------------------------------------

std::vector<reelhost::Revision> revisionsOf(reelhost::History& history)
{
  std::vector<reelhost::Revision> revisions;
  history.readRevisions([&](reelhost::Revision&& revision) {
    revisions.push_back(std::move(revision));
    return true;
  });
  return revisions;
}

/// The file names of the kept lists, by number.
std::map<std::int64_t, std::string> filesOfLists()
{
  std::map<std::int64_t, std::string> files;
  for (const reelhost::KeptList& list : reelhost::keptLists())
    files.emplace(list.number, list.file);
  return files;
}

/// What @p map has and @p other lacks, in the order of the keys.
std::vector<std::string> onlyIn(const std::map<std::int64_t, std::string>& map,
                                const std::map<std::int64_t, std::string>& other)
{
  std::vector<std::string> texts;
  for (const auto& [number, text] : map)
    if (other.count(number) == 0)
      texts.push_back(text);
  return texts;
}

/// The newest revision in force that @p wanted accepts, by this user on this machine unless @p anybody. If names are
/// not kept, no revision is known to be this user's.
const reelhost::Revision& choose(const std::vector<reelhost::Revision>& revisions, const TakenBackRevisions& takenBack,
                                 bool anybody, const char* operation, bool (*wanted)(const reelhost::Revision&))
{
  const reelhost::Origin me = reelhost::currentOrigin();
  bool ofOthers = false;
  for (const reelhost::Revision& revision : revisions) {
    if (!wanted(revision) || takenBack.count(revision.number) != 0)
      continue;
    if (anybody || (!me.user.empty() && revision.origin.user == me.user && revision.origin.machine == me.machine))
      return revision;
    ofOthers = true;
  }
  std::string cause;
  if (ofOthers && me.user.empty())
    cause = " that is known to be yours ([history] names = false; --any takes the newest of anyone)";
  else if (ofOthers)
    cause = fmt::format(" (no commit by {} on {} is left; --any takes the newest of anyone)", me.user, me.machine);
  else if (revisions.empty())
    cause = " (no command is in the history of this project; that it was made is not taken back)";
  throw Error(ErrorKind::Refused, fmt::format("{0}: nothing to {0}{1}", operation, cause));
}

/// @p revision is one of @p revisions.
TakenBackCommit takeBack(Session& session, const char* operation, const reelhost::Revision& revision,
                         const std::vector<reelhost::Revision>& revisions, const TakenBackRevisions& takenBack)
{
  const ReelState before(session);
  const auto listsBefore = filesOfLists();
  const reelhost::TakenBack done = reelhost::takeBack(revision.number);
  if (!done.anything())
    throw Error(ErrorKind::Refused,
                fmt::format("{}: revision {}: nothing left to take back (undo REVISION takes an earlier "
                            "one back)",
                            operation, revision.number));
  session.manager().informReelDbChanged("");
  const ReelState after(session);
  const auto listsAfter = filesOfLists();
  after.requireSoundAfter(before, revision.number, operation, "nothing taken back");

  TakenBackCommit result;
  result.commit = entryFrom(revision, takenBack);
  result.revision = revisions.front().number + 1;
  result.isRedo = revision.takesBack != 0 && !revision.isRedo;
  if (result.isRedo)
    for (const reelhost::Revision& original : revisions)
      if (original.number == revision.takesBack)
        result.commit = entryFrom(original, takenBack);
  result.logsChanged = static_cast<std::size_t>(done.changed);
  result.lists = static_cast<std::size_t>(done.lists);
  result.options = done.options;
  result.listsRestored = onlyIn(listsAfter, listsBefore);
  result.listsRemoved = onlyIn(listsBefore, listsAfter);
  result.reelsRestored = onlyIn(after.reels(), before.reels());
  result.reelsRemoved = onlyIn(before.reels(), after.reels());
  const auto shotsOnlyIn = [](const ReelState& state, const ReelState& other) {
    return static_cast<std::size_t>(std::count_if(state.shots().begin(), state.shots().end(),
                                                  [&](const auto& shot) { return other.shots().count(shot) == 0; }));
  };
  result.shotsRestored = shotsOnlyIn(after, before);
  result.shotsRemoved = shotsOnlyIn(before, after);
  session.commit();
  return result;
}

} // namespace

ProjectHistory readHistory(Session&, const std::optional<std::string>& reel)
{
  return guarded([&] {
    reelhost::History& history = requireHistory();
    ProjectHistory result;
    result.reel = reel.value_or("");
    const std::vector<reelhost::Revision> revisions = revisionsOf(history);
    std::map<std::int64_t, std::vector<FieldStep>> steps;
    if (reel)
      history.readChangesOfLog(logNumberOf(history, *reel, revisions),
                               [&](reelhost::LogChange&& change) { steps[change.revision] = stepsOf(change); });
    const TakenBackRevisions takenBack = takenBackRevisions(history);
    for (const reelhost::Revision& revision : revisions) {
      const auto found = steps.find(revision.number);
      if (reel && found == steps.end())
        continue;
      result.commits.push_back(entryFrom(revision, takenBack));
      if (reel)
        result.commits.back().fields = std::move(found->second);
    }
    return result;
  });
}

std::vector<KeptDeletion> keptDeletions(Session&)
{
  return guarded([] {
    reelhost::History& history = requireHistory();
    if (history.olderVersion() != 0 && history.trashCount() != 0)
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: the deletions of a project of an earlier version cannot be listed (reeldb undelete "
                              "brings the last one back; after the next command that stores something, they can be)",
                              reelhost::projectInfo().name));
    std::vector<KeptDeletion> deletions;
    const auto take = [&](const reelhost::Revision& revision, const reelhost::RevisionChanges& changes) {
      KeptDeletion deletion{entryFrom(revision, {}), {}, 0};
      for (const reelhost::LogChange& change : changes.logs) {
        if (!reelhost::isRestorable(change))
          continue;
        if (change.before->type == codes::reelLog)
          deletion.reels.push_back(idOf(*change.before));
        else
          ++deletion.shots;
      }
      if (!deletion.reels.empty() || deletion.shots != 0)
        deletions.push_back(std::move(deletion));
      return true;
    };
    reelhost::readDeletionsInForce(history, take);
    return deletions;
  });
}

TakenBackCommit undo(Session& session, std::optional<std::int64_t> revision, bool anybody)
{
  return guarded([&] {
    reelhost::History& history = requireHistory();
    const std::vector<reelhost::Revision> revisions = revisionsOf(history);
    const TakenBackRevisions takenBack = takenBackRevisions(history);
    if (!revision) {
      const reelhost::Revision& chosen = choose(revisions, takenBack, anybody, "undo", [](const reelhost::Revision& r) {
        return r.takesBack == 0 && r.hasChanges();
      });
      return takeBack(session, "undo", chosen, revisions, takenBack);
    }
    for (const reelhost::Revision& known : revisions)
      if (known.number == *revision)
        return takeBack(session, "undo", known, revisions, takenBack);
    throw Error(ErrorKind::NotFound, fmt::format("undo: no revision {} (reeldb history lists them)", *revision));
  });
}

TakenBackCommit redo(Session& session, bool anybody)
{
  return guarded([&] {
    reelhost::History& history = requireHistory();
    const std::vector<reelhost::Revision> revisions = revisionsOf(history);
    const TakenBackRevisions takenBack = takenBackRevisions(history);
    const reelhost::Revision& chosen = choose(revisions, takenBack, anybody, "redo", [](const reelhost::Revision& r) {
      return r.takesBack != 0 && !r.isRedo && r.hasChanges();
    });
    return takeBack(session, "redo", chosen, revisions, takenBack);
  });
}

} // namespace reeldb::app
