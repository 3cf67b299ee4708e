// SPDX-License-Identifier: Apache-2.0
/// @file
/// What others have changed in a project since a revision, and how to wait for it. Main thread only.
#ifndef REELHOST_FEED_H
#define REELHOST_FEED_H

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "reelhost/store.h"

namespace reelhost {

/// A state of a project: its newest revision, and what was written without one.
struct FeedPosition {
  std::int64_t revision = 0;             ///< 0: there is no revision yet
  std::array<unsigned char, 16> token{}; ///< that of the revision
  std::int64_t otherWrites = 0;          ///< counts what programs that keep no history have written
  friend bool operator==(const FeedPosition& a, const FeedPosition& b)
  {
    return a.revision == b.revision && a.token == b.token && a.otherWrites == b.otherWrites;
  }
  friend bool operator!=(const FeedPosition& a, const FeedPosition& b) { return !(a == b); }
};

/// A log that no longer exists.
struct GoneLog {
  std::int64_t number = 0;
  std::array<unsigned char, 16> uuid{}; ///< uuid, tag and kind form the log's Cookie
  std::uint16_t tag = 0;
  char kind = 'E';
};

/// The difference between two states of a project.
struct Delta {
  bool whole = false;          ///< the difference is unknown: the project has to be read again. All below is empty then
  std::vector<StoredLog> logs; ///< the logs that are new or changed, as they are now, by number
  std::vector<GoneLog> gone;   ///< by number
  std::optional<KeyValues> options; ///< all options, if one changed
};

/// How long to wait for changes: without a time, until the handle is readable again.
using AskAgain = std::optional<std::chrono::microseconds>;

/// What a store may have for programs that wait for changes by other processes.
///
/// The way to wait: get the handle, then ask Store::changedElsewhere once, because a commit may have come before the
/// handle. Then wait until the handle is readable, and call readEvents; when it returns a time above zero, call it
/// again after that time. Ask Store::changedElsewhere each time that it returns a time, also zero: one process may
/// write after another has committed.
class Feed {
public:
  virtual ~Feed() = default;

  /// The state as of the current use, or, without a use, as the last commit of this store left it. Throws Error:
  /// Unreadable if the data are damaged, Io.
  virtual FeedPosition position() = 0;
  /// What differs between @p before and the state that the current use sees. Whole if @p before is no state of this
  /// project or of one without a revision, if its history was forgotten since, and if a program that keeps no history
  /// has changed the project. Throws Error as position does. REQUIRES: a use was begun.
  virtual Delta since(const FeedPosition& before) = 0;

  /// A file descriptor that becomes readable when another process may have committed; it belongs to the store and stays
  /// the same. -1 if there is no such descriptor: ask Store::changedElsewhere from time to time instead.
  virtual int waitHandle() = 0;
  /// Why there is no waitHandle, "PATH: fact (cause)"; empty if there is one or if no other process can commit.
  virtual std::string whyNoWaitHandle() = 0;
  /// Reads the events of the handle. Zero: ask Store::changedElsewhere now. A longer time: another process is writing,
  /// so ask for earlier commits now, and call this again after that time. No time: nothing has happened. Never throws
  /// and never waits.
  virtual AskAgain readEvents() noexcept = 0;
};

} // namespace reelhost

#endif
