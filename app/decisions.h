// SPDX-License-Identifier: Apache-2.0
//
// What people decided about the names and the shots of a reel. It is kept in the reel's log, so the history and undo
// cover it. For the sources of this room.
#ifndef REELDB_APP_DECISIONS_H
#define REELDB_APP_DECISIONS_H

#include <cstdint>
#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "app/shots.h"
#include "reelhost/host.h"
#include "reelhost/store.h"

namespace reeldb::app {

/// One list says a name, and means the reel. Every other list means what the names say.
struct NameInList {
  std::int64_t list = 0;  ///< the number of the kept list; 0: it was removed, and may come again
  std::string name;       ///< the name that the list gives
  std::string reel;       ///< the identifier that the reel had when that was decided
  std::string bytes = {}; ///< the digest of a list that was removed

  bool operator==(const NameInList&) const = default;
};

struct Decisions {
  bool namesReel = false;           ///< whether a person gave the reel its identifier
  bool isApart = false;             ///< whether that name was made up to part a reel: no short form means it
  std::vector<std::string> aliases; ///< names that a person gave it
  std::vector<NameInList> inLists;
  std::vector<std::string> deletedShots; ///< digests of the shots that no list brings back

  bool operator==(const Decisions&) const = default;
};

/// They are under the keys "reel_decision0", "reel_decision1" ...
Decisions decisionsOf(ReelDbRec reel);
Decisions decisionsOf(const reelhost::StoredLog& reel);
/// Throws Error (Refused) if a name is too long to be kept.
void keepDecisions(ReelDbRec reel, const Decisions& decisions);

/// Notes that a person gave the reel its identifier.
void keepGivenName(ReelDbRec reel);

/// Removes the name, ignoring ASCII case, from the aliases and the former names of the reel. Returns whether it was one
/// of them.
bool takeName(ReelDbRec reel, const std::string& name);

/// Throws Error (Refused) if a person gave the name to a reel other than @p own: lists mean that reel by it, and a reel
/// of that name would take its shots with the next import.
void requireNotGiven(ReelDbManager& manager, const std::string& name, const std::string& own = {});

/// Lets decisions about the list hold for its bytes, because it is removed.
void keepForBytes(ReelDbManager& manager, const reelhost::KeptList& list);
/// Lets decisions about a removed list of these bytes hold for the list, which is kept again, and for its new versions.
void keepForList(ReelDbManager& manager, std::int64_t list, const reelhost::Digest& bytes);

/// The digest as a text.
std::string hexOf(const reelhost::Digest& digest);

/// Whether the name is one of them, ignoring ASCII case.
bool hasName(const std::vector<std::string>& names, const std::string& name);

/// What is kept of a deleted shot: the digest of its key in the reel.
std::string deletedShot(const Shot& shot);

} // namespace reeldb::app

#endif
