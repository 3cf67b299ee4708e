// SPDX-License-Identifier: Apache-2.0
//
// The history of a project: who changed what, and taking it back.
#ifndef REELDB_APP_HISTORY_H
#define REELDB_APP_HISTORY_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/session.h"

namespace reeldb::app {

/// What a commit changed in one field of a reel.
struct FieldStep {
  /// As changeReel names it; "reel" is the identifier, "old-names" and "aliases" are names with commas between.
  std::string field;
  std::string before, after; ///< as they are stored
};

/// One commit of a project.
struct CommitEntry {
  std::int64_t revision = 0;
  std::string time;                                   ///< "2026-11-22T13:38:48Z"; empty: unknown
  std::string program, command;                       ///< empty: unknown
  std::string user, machine, folder;                  ///< empty: unknown, or not kept
  std::int64_t takesBack = 0;                         ///< the earlier revision that it takes back; 0: none
  bool isRedo = false;                                ///< whether that one took another one back
  std::int64_t takenBackBy = 0;                       ///< the revision that takes it back; 0: it is in force
  std::int64_t created = 0, changed = 0, deleted = 0; ///< numbers of logs: reels and shots
  std::int64_t lists = 0;                             ///< the number of kept lists that it changed
  bool options = false;                               ///< whether it changed options of the project, such as its rate
  std::vector<std::string> elsewhere;                 ///< what the command changed beside the project
  std::vector<FieldStep> fields;                      ///< of the reel, if the history of a reel was asked for
};

struct ProjectHistory {
  std::string reel;                 ///< as asked for; empty: the whole project
  std::vector<CommitEntry> commits; ///< the newest first
};

/// The commits of the project, or those that changed the reel, whose identifier may be that of a deleted reel. Throws
/// Error: NotFound, Refused if the project keeps no history.
ProjectHistory readHistory(Session& session, const std::optional<std::string>& reel);

/// A deletion that undelete can still bring back.
struct KeptDeletion {
  CommitEntry commit;
  std::vector<std::string> reels; ///< identifiers, in the order of the project
  std::size_t shots = 0;
};

/// The deletions that are kept, the newest first: undelete brings the first one back. Throws Error (Refused) if the
/// project keeps no history.
std::vector<KeptDeletion> keptDeletions(Session& session);

/// What undo or redo has done.
struct TakenBackCommit {
  CommitEntry commit;                                   ///< the one that was taken back or made again
  bool isRedo = false;                                  ///< whether it was made again
  std::int64_t revision = 0;                            ///< the new revision
  std::vector<std::string> reelsRestored, reelsRemoved; ///< identifiers
  std::size_t shotsRestored = 0, shotsRemoved = 0;
  std::size_t logsChanged = 0;                          ///< reels and shots that are there before and after
  std::size_t lists = 0;                                ///< kept lists that are there again, as they were, or gone
  std::vector<std::string> listsRestored, listsRemoved; ///< the file names of those that are there again, or gone
  bool options = false;                                 ///< whether options of the project changed
};

/// Takes a commit back and stores that as a commit of its own: @p revision, or else the newest one of this user on this
/// machine (of anybody if @p anybody) that takes none back and is not taken back. Throws Error, and stores nothing:
/// Refused if there is no such commit, if a later commit stands in the way, or if two reels would have one identifier,
/// a shot would name a reel that is missing, or a former or other name would lead to two reels. The message names what
/// is in the way. After an Error the session has to end. REQUIRES: a session for writing.
TakenBackCommit undo(Session& session, std::optional<std::int64_t> revision, bool anybody);

/// Makes the changes of the commit again that was taken back last, by this user on this machine unless @p anybody.
/// Throws as undo does. REQUIRES: a session for writing.
TakenBackCommit redo(Session& session, bool anybody);

} // namespace reeldb::app

#endif
