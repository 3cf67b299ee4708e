// SPDX-License-Identifier: Apache-2.0
//
// The difference between two versions of one list.
#ifndef REELDB_APP_LIST_VERSIONS_H
#define REELDB_APP_LIST_VERSIONS_H

#include <cstddef>
#include <optional>
#include <vector>

#include "app/shots.h"

namespace reeldb::app {

/// A clip before and after.
struct ClipStep {
  Shot before, after;
};

/// What differs between two versions of a list. Each clip is in one member at most.
struct VersionDifference {
  std::vector<Shot> added;       ///< in the order of the new version
  std::vector<Shot> gone;        ///< in the order of the old version
  std::vector<ClipStep> trimmed; ///< other source in or out, in the order of the new version
  std::vector<ClipStep> changed; ///< the same shot at another place of the cut, or with another transition or speed

  bool empty() const { return added.empty() && gone.empty() && trimmed.empty() && changed.empty(); }
};

/// For each clip of the new version, the place of the clip of the old version that is the same shot. A shot that a
/// version uses twice is there twice; of equal shots, those with equal record times go together first.
std::vector<std::optional<std::size_t>> sameShots(const std::vector<Shot>& before, const std::vector<Shot>& after);

/// Compares the clips of two versions. Clips without a source are left out. A shot that is gone and one that is added
/// are one that was trimmed if reel (ignoring ASCII case), clip name and tracks are equal, and no other shot that is
/// gone or added has these.
VersionDifference difference(const std::vector<Shot>& before, const std::vector<Shot>& after);

} // namespace reeldb::app

#endif
