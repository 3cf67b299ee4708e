// SPDX-License-Identifier: Apache-2.0
#include "reelhost/history.h"

#include <algorithm>

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

std::vector<Revision> deletionsInForce(History& history)
{
  const std::map<std::int64_t, std::int64_t> takenBack = takenBackRevisions(history);
  std::vector<Revision> deletions;
  history.readRevisions([&](Revision&& revision) {
    if (revision.takesBack == 0 && revision.deleted != 0 && revision.created == 0 &&
        takenBack.count(revision.number) == 0)
      deletions.push_back(std::move(revision));
    return true;
  });
  return deletions;
}

std::int64_t lastDeletion(History& history)
{
  for (const Revision& revision : deletionsInForce(history)) {
    const RevisionChanges changes = history.changesOf(revision.number);
    if (std::any_of(changes.logs.begin(), changes.logs.end(), isRestorable))
      return revision.number;
  }
  return 0;
}

} // namespace reelhost
