// SPDX-License-Identifier: Apache-2.0
#include "reelhost/history.h"

#include <algorithm>
#include <set>

namespace reelhost {

bool isRestorable(const LogChange& change)
{
  return change.before && !change.after && !change.isThere;
}

std::int64_t lastDeletion(History& history)
{
  std::set<std::int64_t> takenBack;
  std::vector<std::int64_t> deletions;
  history.readRevisions([&](Revision&& revision) {
    // Later revisions come first, so it is known by now whether this one was taken back.
    if (takenBack.count(revision.number) != 0)
      return true;
    if (revision.takesBack != 0)
      takenBack.insert(revision.takesBack);
    else if (revision.deleted != 0)
      deletions.push_back(revision.number);
    return true;
  });
  for (const std::int64_t revision : deletions) {
    const RevisionChanges changes = history.changesOf(revision);
    if (std::any_of(changes.logs.begin(), changes.logs.end(), [](const LogChange& log) { return isRestorable(log); }))
      return revision;
  }
  return 0;
}

} // namespace reelhost
