// SPDX-License-Identifier: Apache-2.0
/// @file
/// The history of a project: its commits, and what each of them changed. Main thread only.
#ifndef REELHOST_HISTORY_H
#define REELHOST_HISTORY_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "reelhost/store.h"

namespace reelhost {

/// One commit.
struct Revision {
  std::int64_t number = 0;               ///< 1, 2, 3, ... in the order of the commits; never used twice
  std::array<unsigned char, 16> token{}; ///< random: two commits of one number in two copies of a project differ in it
  Origin origin;
  std::int64_t takesBack = 0;                         ///< the earlier revision that it takes back; 0: no revision
  bool isRedo = false;                                ///< whether that one took another one back
  std::int64_t created = 0, changed = 0, deleted = 0; ///< numbers of logs
  std::int64_t lists = 0;                             ///< the number of lists that it changed
  bool setOptions = false;                            ///< whether it changed options of the project

  bool hasChanges() const { return created != 0 || changed != 0 || deleted != 0 || lists != 0 || setOptions; }
};

/// A log or a list before and after one revision.
template <class Record>
struct RecordChange {
  std::int64_t revision = 0;
  std::int64_t number = 0;             ///< of the log or list
  std::optional<Record> before, after; ///< empty: there was no such log or list
  bool forgotten = false;              ///< whether its state before was removed for good
  std::int64_t next = 0;               ///< the next revision that changed it; 0: no later revision did
  bool isThere = false;                ///< whether it is there now
};
using LogChange = RecordChange<StoredLog>;
using ListChange = RecordChange<KeptList>;

/// What one revision changed.
struct RevisionChanges {
  std::vector<LogChange> logs;                          ///< by number
  std::vector<ListChange> lists;                        ///< by number
  std::optional<KeyValues> optionsBefore, optionsAfter; ///< all options; empty if the revision changed no option
};

/// What a store keeps of earlier commits. REQUIRES for all functions: a use of the store was begun. Throws Error:
/// Unreadable if the data are damaged, Io. Exceptions of a sink pass through.
class History {
public:
  virtual ~History() = default;

  /// The version of the stored format at the last begin or commit, if it is an older one; 0 if it is up to date. Needs
  /// no begin. A commit brings the format up to date. Until then the history is empty for a program that only
  /// reads.
  virtual int olderVersion() = 0;

  /// Reads the revisions, the newest first, until @p sink returns false.
  virtual void readRevisions(const std::function<bool(Revision&&)>& sink) = 0;
  /// What the revision changed. Throws Error (NotFound) if there is no such revision.
  virtual RevisionChanges changesOf(std::int64_t revision) = 0;
  /// Reads every change of the log, the oldest first.
  virtual void readChangesOfLog(std::int64_t number, const std::function<void(LogChange&&)>& sink) = 0;
  /// Reads which logs each revision changed, deleted, restored or created, without what they were. @p isNew: the
  /// revision created the log, which had never been there before.
  virtual void
  readChangedLogs(const std::function<void(std::int64_t revision, std::int64_t log, bool isNew)>& sink) = 0;
  /// The number of deleted logs that the history keeps.
  virtual std::int64_t trashCount() = 0;
  /// The number of removed lists that the history keeps.
  virtual std::int64_t removedListCount() = 0;

  /// Gives the space back that forgotten revisions have left. Needs no begin; it is an error if a use was begun. Throws
  /// Error: Busy, ReadOnly, Io. The project has not changed then.
  virtual void giveSpaceBack() = 0;
};

/// Every revision that is taken back, and the one that takes it back. A revision that took another one back and is
/// taken back itself has no effect.
std::map<std::int64_t, std::int64_t> takenBackRevisions(History& history);

/// Whether the revision deleted the log, and undelete can restore it.
bool isRestorable(const LogChange& change);

/// Reads the deletions that were not taken back, the newest first, until @p sink returns false. A revision that also
/// created logs is not a deletion, nor is one that replaced or removed a list and deleted what only that list had used.
/// Project compact may have removed what they deleted.
void readDeletionsInForce(History& history, const std::function<bool(const Revision&, const RevisionChanges&)>& sink);

/// The newest revision after @p revision that stands in the way of taking that one back: it is in force, takes nothing
/// back itself, and @p isPart accepts what it changed. 0 if there is no such revision.
std::int64_t newestInTheWay(History& history, std::int64_t revision,
                            const std::function<bool(const RevisionChanges&)>& isPart);

/// The last deletion in force that is not removed for good; 0 if there is no such deletion.
std::int64_t lastDeletion(History& history);

} // namespace reelhost

#endif
