// SPDX-License-Identifier: Apache-2.0
//
// What must still hold when something deleted or taken back returns. For the sources of this room.
#ifndef REELDB_APP_REEL_STATE_H
#define REELDB_APP_REEL_STATE_H

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/session.h"
#include "app/shots.h"

namespace reeldb::app {

/// The reels and shots of the open project, and what their names lead to. Logs are given by their numbers.
class ReelState {
public:
  /// As they are now, with changes that are not stored yet.
  explicit ReelState(Session& session);
  /// As they were stored before the revision, without what the history has forgotten.
  explicit ReelState(std::int64_t revision);

  const std::map<std::int64_t, std::string>& reels() const { return reels_; } ///< log to identifier
  const std::set<std::int64_t>& shots() const { return shots_; }              ///< logs

  /// Throws Error (Refused) if there is something here that was there neither in @p before nor before the revision that
  /// is taken back: two reels with one identifier, ASCII case aside; a shot that names a missing reel; a former name or
  /// another name that leads to two reels. "@p operation: what is in the way: fact, @p undone (what to do)".
  void requireSoundAfter(const ReelState& before, std::int64_t revision, const std::string& operation,
                         const std::string& undone) const;

private:
  /// What a name leads to: the log of a reel, or 0 and the folded identifier of a reel that is missing.
  using Meant = std::pair<std::int64_t, std::string>;
  struct Fault {
    std::string subject, fact, advice;
  };

  void addReel(std::int64_t log, const std::string& id, const std::vector<std::string>& oldNames);
  /// REQUIRES: all reels were added.
  void addShot(std::int64_t log, const Shot& shot);
  /// A fault that none of the @p earlier states had, when @p revision is taken back.
  std::optional<Fault> newFault(const std::vector<const ReelState*>& earlier, std::int64_t revision) const;

  std::map<std::int64_t, std::string> reels_;
  std::set<std::int64_t> shots_;
  std::map<std::string, std::set<std::int64_t>> byId_; ///< folded identifier to the logs of its reels
  std::map<std::string, std::set<Meant>> byName_;      ///< folded former or other name to what it leads to
  std::map<std::int64_t, std::string> withoutReel_;    ///< logs of shots to the missing reel that they name
};

} // namespace reeldb::app

#endif
