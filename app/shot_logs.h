// SPDX-License-Identifier: Apache-2.0
//
// Shots by their logs, and the one mapping between the host's shots and the readers' clips. For the sources of this
// room.
#ifndef REELDB_APP_SHOT_LOGS_H
#define REELDB_APP_SHOT_LOGS_H

#include <array>
#include <string>
#include <vector>

#include "app/shots.h"
#include "host/cookie.h"
#include "reelhost/host.h"

namespace reeldb::app {

/// One text of a shot: its name in reports, and where a shot and the host's have it.
struct ShotText {
  const char* name;
  std::string Shot::*text;
  std::string reelhost::Material::*material;
};

/// The texts of a shot, in the order of reports. Reports have the other names of its reel and its channels after them.
inline constexpr std::array<ShotText, 8> shotTexts = {{
    {"reel", &Shot::reel, &reelhost::Material::reel},
    {"clip", &Shot::clipName, &reelhost::Material::name},
    {"tracks", &Shot::tracks, &reelhost::Material::tracks},
    {"source_in", &Shot::sourceIn, &reelhost::Material::sourceIn},
    {"source_out", &Shot::sourceOut, &reelhost::Material::sourceOut},
    {"record_in", &Shot::recordIn, &reelhost::Material::recordIn},
    {"record_out", &Shot::recordOut, &reelhost::Material::recordOut},
    {"source_file", &Shot::sourceFile, &reelhost::Material::sourceFile},
}};

/// The shot that a clip becomes.
reelhost::Material materialFrom(const Shot& shot);
/// The clip that becomes the shot: the way back.
Shot shotFrom(const reelhost::Material& material);

std::vector<Shot> shotsFrom(const CookieVec& logs);

/// Equal for the same shot: reel (ASCII case aside), clip name, source in, source out and tracks are equal.
std::string shotKey(const Shot& shot);

} // namespace reeldb::app

#endif
