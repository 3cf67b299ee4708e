// SPDX-License-Identifier: Apache-2.0
//
// What must still hold when something deleted or taken back returns. For the sources of this room.
#ifndef REELDB_APP_REEL_STATE_H
#define REELDB_APP_REEL_STATE_H

#include <map>
#include <set>
#include <string>

#include "app/session.h"

namespace reeldb::app {

/// The reels and shots of the open project, and what their names lead to.
class ReelState {
public:
  explicit ReelState(Session& session);

  const std::map<std::string, std::string>& reels() const { return reels_; } ///< log to identifier
  const std::set<std::string>& shots() const { return shots_; }              ///< logs

  /// Throws Error (Refused) if there is something here that was not there @p before: two reels with one identifier,
  /// ASCII case aside; a shot that names a missing reel; a former name or another name that leads to two reels.
  /// "@p operation: what is in the way: fact, @p undone (what to do)".
  void requireSoundAfter(const ReelState& before, const std::string& operation, const std::string& undone) const;

private:
  std::map<std::string, std::string> reels_;
  std::set<std::string> shots_;
  std::map<std::string, std::set<std::string>> byId_;   ///< folded identifier to the logs of its reels
  std::map<std::string, std::set<std::string>> byName_; ///< folded former or other name to logs of reels
  std::map<std::string, std::string> withoutReel_;      ///< logs of shots to the missing reel that they name
};

} // namespace reeldb::app

#endif
