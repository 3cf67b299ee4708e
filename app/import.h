// SPDX-License-Identifier: Apache-2.0
//
// Imports the clips of lists into the open project.
#ifndef REELDB_APP_IMPORT_H
#define REELDB_APP_IMPORT_H

#include <cstddef>
#include <string>
#include <vector>

#include "app/list_files.h"
#include "app/progress.h"
#include "app/session.h"

namespace reeldb::app {

/// The result for one list.
struct ImportedList {
  std::string file;
  lists::List list; ///< as it was read, without the clips; its spellings also name those that differ from a record's
  std::size_t clips = 0;
  std::size_t shotsAdded = 0;
  std::size_t shotsThere = 0;       ///< clips whose shot already existed, from another list or earlier in this one
  std::size_t shotsRepeated = 0;    ///< the part of shotsThere whose shot came earlier in this list
  std::vector<std::string> created; ///< identifiers of the reels that were created, in order
  std::vector<std::string> matched; ///< identifiers of reels that existed before, as their records spell them
};

/// The result for all lists.
struct ImportReport {
  std::vector<ImportedList> lists;
  bool dryRun = false;
  bool changes = false;             ///< whether the lists contain anything new
  bool stored = false;              ///< whether that was stored
  std::vector<std::string> remarks; ///< why the new reels are doubtful; each "subject: fact (cause)"

  bool rejectedLines() const; ///< whether a line of any list was rejected
};

/// Reports every new clip to the host as imported material; the library creates the reels. Two shots are the same if
/// reel (ignoring ASCII case), clip name, source in, source out and tracks are equal; the same shot is not added twice.
/// The import is one transaction. With @p dryRun nothing is stored, and the report contains what would be stored. If it
/// throws Error, nothing is stored. REQUIRES: a session for writing, unless it is a dry run.
ImportReport importLists(Session& session, std::vector<ListFile> files, bool dryRun, const Progress& progress = {});

} // namespace reeldb::app

#endif
