// SPDX-License-Identifier: Apache-2.0
#include "reelhost/history.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace reelhost {

bool isRestorable(const LogChange& change)
{
  return change.before && !change.after && !change.isThere;
}

std::map<std::int64_t, std::int64_t> takenBackRevisions(History& history)
{
  std::map<std::int64_t, std::int64_t> takenBack;
  history.readRevisions([&](Revision&& revision) {
    // Later revisions come first, so it is known by now whether this one was taken back.
    if (revision.takesBack != 0 && takenBack.count(revision.number) == 0)
      takenBack.emplace(revision.takesBack, revision.number);
    return true;
  });
  return takenBack;
}

std::int64_t newestInTheWay(History& history, std::int64_t revision,
                            const std::function<bool(const RevisionChanges&)>& isPart)
{
  const std::map<std::int64_t, std::int64_t> takenBack = takenBackRevisions(history);
  std::vector<std::int64_t> later; // the newest first
  history.readRevisions([&](Revision&& read) {
    if (read.number > revision && read.takesBack == 0 && takenBack.count(read.number) == 0)
      later.push_back(read.number);
    return read.number > revision;
  });
  const auto found =
      std::find_if(later.begin(), later.end(), [&](std::int64_t number) { return isPart(history.changesOf(number)); });
  return found == later.end() ? 0 : *found;
}

namespace {

/// A deletion of logs takes events out of lists, but leaves the lists what they are.
bool isReplacedOrRemoved(const ListChange& change)
{
  return change.before && (!change.after || change.after->digest != change.before->digest);
}

} // namespace

void readDeletionsInForce(History& history, const std::function<bool(const Revision&, const RevisionChanges&)>& sink)
{
  const std::map<std::int64_t, std::int64_t> takenBack = takenBackRevisions(history);
  std::vector<Revision> deletions;
  history.readRevisions([&](Revision&& revision) {
    if (revision.takesBack == 0 && revision.deleted != 0 && revision.created == 0 &&
        takenBack.count(revision.number) == 0)
      deletions.push_back(std::move(revision));
    return true;
  });
  for (const Revision& revision : deletions) {
    const RevisionChanges changes = history.changesOf(revision.number);
    if (std::none_of(changes.lists.begin(), changes.lists.end(), isReplacedOrRemoved) && !sink(revision, changes))
      return;
  }
}

std::int64_t lastDeletion(History& history)
{
  std::int64_t last = 0;
  readDeletionsInForce(history, [&](const Revision& revision, const RevisionChanges& changes) {
    if (std::any_of(changes.logs.begin(), changes.logs.end(), isRestorable))
      last = revision.number;
    return last == 0;
  });
  return last;
}

} // namespace reelhost
