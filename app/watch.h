// SPDX-License-Identifier: Apache-2.0
//
// Changes to the reels of a project while other processes work on it.
#ifndef REELDB_APP_WATCH_H
#define REELDB_APP_WATCH_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/session.h"

namespace reeldb::app {

/// One event.
struct ReelEvent {
  enum class What {
    New,      ///< the reel was created
    Changed,  ///< a field of the reel changed
    Gone,     ///< the reel was deleted
    Renamed,  ///< the reel was renamed
    Database, ///< the reels were read again
    Record,   ///< a field of the reel was set by this process
    Ours,     ///< likewise, of the reel of interest
  };
  What what = What::Database;
  std::string reel; ///< empty for an event that concerns no single reel
  std::string from; ///< Renamed: the former name
};

/// "new", "changed", "gone", "renamed", "database", "record", "ours"
std::string_view wordOf(ReelEvent::What what);

/// Reports the events of a project to a listener. With a reel of interest it reports only events of that reel, also
/// after a renaming; after the reel is deleted, those of the next reel with its identifier. Blocks no other process.
/// Main thread only.
class Watcher {
public:
  using Listener = std::function<void(const ReelEvent&)>;

  /// Throws Error (NotFound) if the reel of interest does not exist. The session must outlive the watcher. Exceptions
  /// of the listener pass through poll.
  Watcher(Session& session, const std::optional<std::string>& reel, Listener listener);
  ~Watcher();

  /// Releases the project, so that other processes can work on it.
  void idle();
  /// Checks whether another process has committed, and reports the changes. Throws Error if that cannot be determined.
  void poll();

private:
  class Client;
  Session& session_;
  std::unique_ptr<Client> client_;
};

} // namespace reeldb::app

#endif
