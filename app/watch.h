// SPDX-License-Identifier: Apache-2.0
//
// What becomes of the reels of a project while other processes work on it.
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

/// One thing that happened.
struct ReelEvent {
  enum class What {
    New,      ///< the reel is there now
    Changed,  ///< something that is known of it is another now
    Gone,     ///< it is no longer there
    Renamed,  ///< it is called that now
    Database, ///< the reels were read again
    Record,   ///< a field of the reel was set by this process
    Ours,     ///< likewise, of the reel of interest
  };
  What what = What::Database;
  std::string reel; ///< empty where it is about none
  std::string from; ///< Renamed: what it was called
};

/// "new", "changed", "gone", "renamed", "database", "record", "ours"
std::string_view wordOf(ReelEvent::What what);

/// Reports the events of a project to a listener. With a reel of interest it reports that one alone, also when it is
/// renamed; once it is gone, the next reel that bears its identifier. Keeps no other process waiting. Main thread only.
class Watcher {
public:
  using Listener = std::function<void(const ReelEvent&)>;

  /// Throws Error (NotFound) when the reel of interest is not there. The session outlives the watcher. An exception of
  /// the listener leaves poll.
  Watcher(Session& session, const std::optional<std::string>& reel, Listener listener);
  ~Watcher();

  /// Lets go of the project, so that others can work on it.
  void idle();
  /// Looks whether another process has committed, and reports what that came to. Throws Error when it cannot be found
  /// out.
  void poll();

private:
  class Client;
  Session& session_;
  std::unique_ptr<Client> client_;
};

} // namespace reeldb::app

#endif
