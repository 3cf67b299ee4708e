// SPDX-License-Identifier: Apache-2.0
//
// Commits to a project while other processes work on it.
#ifndef REELDB_APP_WATCH_H
#define REELDB_APP_WATCH_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/history.h"
#include "app/session.h"

namespace reeldb::app {

/// The revisions from the first to the last.
struct Revisions {
  std::int64_t first = 0, last = 0;
};

/// What a commit did to one reel.
struct ReelEvent {
  enum class What {
    New,      ///< the reel was created or came back
    Changed,  ///< a field of the reel changed, or the number of its shots
    Gone,     ///< the reel was deleted
    Renamed,  ///< the reel has another identifier
    Database, ///< for the whole commit: its reels were reported
  };
  What what = What::Database;
  std::string reel; ///< empty for an event that concerns no single reel
  std::string from; ///< Renamed: the former name
  /// Changed: the fields, and "shots" with the numbers of shots; empty if the history does not say which
  std::vector<FieldStep> fields = {};
  std::optional<CommitEntry> commit = {};  ///< the commit that did it, if the history says which
  std::int64_t log = 0;                    ///< the number of the reel's log, which never changes; 0: no single reel
  std::optional<Revisions> forgotten = {}; ///< Database: the commits that did it, if the history has forgotten them
};

/// "new", "changed", "gone", "renamed", "database"
std::string_view wordOf(ReelEvent::What what);

/// One commit, or all that changed at once if the history does not say which commits did it.
struct WatchedCommit {
  std::optional<CommitEntry> commit;  ///< empty: unknown
  std::optional<Revisions> forgotten; ///< the commits, if they were forgotten before they were reported
  std::vector<ReelEvent> reels; ///< a renamed reel with other changes has two events; other numbers of shots come last
  std::int64_t shotsNew = 0, shotsGone = 0;
  std::int64_t shotsChanged = 0; ///< those that were there before and after
};

/// Reports the commits of other processes to a listener, each once and in order, also one that changed neither reels
/// nor shots, but lists or options of the project. With a reel of interest it reports only commits that changed that
/// reel, and of them only that reel, also after a renaming; after the reel is deleted, the next reel with its
/// identifier. Blocks no other process. Main thread only.
///
/// A caller waits like this: it calls idle and poll once; then it waits until waitHandle() is readable, calls
/// readEvents() until that returns zero, and calls idle and poll each time that it returns a time.
class Watcher {
public:
  using Listener = std::function<void(const WatchedCommit&)>;

  /// The reel of interest need not exist. The session must outlive the watcher. Exceptions of the listener pass through
  /// poll and reportSince.
  Watcher(Session& session, const std::optional<std::string>& reel, Listener listener);
  ~Watcher();

  /// Throws Error (NotFound) if the reel of interest does not exist.
  void requireReelOfInterest() const;

  /// Reports the commits after @p revision that the project holds already, before any poll. Throws Error: NotFound if
  /// there is no such revision, Refused if the history does not hold all commits since or there is no history. With a
  /// reel of interest, the reels that have had its name at any time since that revision are of interest, with all that
  /// happened to them since; NotFound if there is none.
  void reportSince(std::int64_t revision);

  /// Releases the project, so that other processes can work on it.
  void idle();
  /// Checks whether another process has committed, and reports what it did. Throws Error if that cannot be determined.
  void poll();

  /// A descriptor that becomes readable when another process may have committed. -1 if there is no such descriptor:
  /// call poll from time to time; whyNoHandle() says why, "PATH: fact (cause)".
  int waitHandle();
  std::string whyNoHandle();
  /// Zero: call poll now. A longer time: somebody writes; call poll now, because there may be an earlier commit, and
  /// this again after that time. No time: wait on.
  std::optional<std::chrono::microseconds> readEvents();

private:
  class Reels;
  void report(std::vector<WatchedCommit> commits);
  Session& session_;
  const Listener listener_;
  std::unique_ptr<Reels> reels_;
};

} // namespace reeldb::app

#endif
