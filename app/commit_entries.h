// SPDX-License-Identifier: Apache-2.0
//
// Commits and what they changed, as this room returns them. For the sources of this room.
#ifndef REELDB_APP_COMMIT_ENTRIES_H
#define REELDB_APP_COMMIT_ENTRIES_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "app/history.h"
#include "reelhost/history.h"

namespace reeldb::app {

/// Revisions that are taken back, and by which.
using TakenBackRevisions = std::map<std::int64_t, std::int64_t>;

/// Without the fields of a reel.
CommitEntry entryFrom(const reelhost::Revision& revision, const TakenBackRevisions& takenBack);

/// The reel identifier of the log; empty if it has none.
std::string idOf(const reelhost::StoredLog& log);

/// What the revision changed in the fields of a reel, by the names of the fields.
std::vector<FieldStep> stepsOf(const reelhost::LogChange& change);

} // namespace reeldb::app

#endif
