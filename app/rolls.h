// SPDX-License-Identifier: Apache-2.0
//
// Camera rolls: groups of reels that one camera recorded on one card or tape.
#ifndef REELDB_APP_ROLLS_H
#define REELDB_APP_ROLLS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/needs.h"
#include "app/session.h"

namespace reeldb::app {

struct Roll {
  std::string name;               ///< empty for the reels that are of no roll
  std::vector<std::string> reels; ///< identifiers, in the order of the project
  std::int64_t shots = 0;
};

/// The reels of one camera roll that shots need.
struct NeededRoll {
  std::string name;               ///< empty for the reels that are of no roll
  std::vector<std::string> reels; ///< identifiers, in the order of the needs
  std::int64_t shots = 0;
  std::size_t ready = 0; ///< the number of these reels that are ready
};

/// The beginning of a name that a camera gave a clip, in front of the clip's number: "A012" of "A012C003_210609".
/// Empty for any other name.
std::string_view rollOfCameraClip(std::string_view name);

/// The reels of the project by their camera rolls: the rolls sorted by name, then the reels of no roll. A reel is of
/// the longest camera roll of a log that begins its identifier, else of the roll that its identifier names as that of a
/// camera clip.
std::vector<Roll> reelsByRoll(Session& session);

/// The needs by camera rolls, in the same order. The camera rolls of the clips, which need not be imported, count, too.
std::vector<NeededRoll> needsByRoll(Session& session, const std::vector<Need>& needs,
                                    const std::vector<lists::Clip>& clips = {});

} // namespace reeldb::app

#endif
