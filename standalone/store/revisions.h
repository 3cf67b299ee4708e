// SPDX-License-Identifier: Apache-2.0
//
// The order in which every store carries out the changes of a commit, and which revisions they make.
#ifndef REELDB_STORE_REVISIONS_H
#define REELDB_STORE_REVISIONS_H

#include <algorithm>
#include <cstdint>
#include <unordered_set>

#include "reelhost/store.h"

namespace reelhost {

/// @p makeRevision returns a writer of one revision: writeLogs, deleteLogs, setOptions, writeLists, deleteLists, then
/// finish. @p removeForGood does what the changes say of compact and forgetBefore.
template <class MakeRevision, class RemoveForGood>
void writeRevisions(const Changes& changes, MakeRevision makeRevision, RemoveForGood removeForGood)
{
  if (const Inverse& inverse = changes.inverse; inverse.revision != 0) {
    auto revision = makeRevision();
    revision.writeLogs(inverse.logs);
    revision.deleteLogs(inverse.deleted);
    revision.setOptions(inverse.options, inverse.unsetOptions);
    revision.writeLists(inverse.lists, {});
    revision.deleteLists(inverse.deletedLists);
    revision.finish(changes.origin, inverse);
  }
  const std::unordered_set<std::int64_t> deleted(changes.deleted.begin(), changes.deleted.end());
  const bool deletesWhatItWrites = std::any_of(changes.logs.begin(), changes.logs.end(),
                                               [&](const StoredLog& log) { return deleted.count(log.number) != 0; });
  // The events of deleted logs go with these logs.
  const auto deleteAndWriteLists = [&](auto& revision) {
    revision.deleteLogs(changes.deleted);
    revision.writeLists(changes.lists, changes.listBytes);
    revision.deleteLists(changes.deletedLists);
  };
  auto revision = makeRevision();
  revision.writeLogs(changes.logs);
  removeForGood();
  if (!deletesWhatItWrites)
    deleteAndWriteLists(revision);
  revision.setOptions(changes.options, {});
  revision.finish(changes.origin, {}, changes.compact || changes.forgetBefore != 0);
  if (deletesWhatItWrites) {
    auto deletion = makeRevision();
    deleteAndWriteLists(deletion);
    deletion.finish(changes.origin, {});
  }
}

} // namespace reelhost

#endif
