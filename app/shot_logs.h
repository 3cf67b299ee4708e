// SPDX-License-Identifier: Apache-2.0
//
// Shots by their logs, and the conversion between the host's shots and the readers' clips. For the sources of this
// room.
#ifndef REELDB_APP_SHOT_LOGS_H
#define REELDB_APP_SHOT_LOGS_H

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/shots.h"
#include "host/cookie.h"
#include "reelhost/host.h"

namespace reeldb::app {

/// One text of a shot: its name in reports, and its members in a Shot and in the host's Material.
struct ShotText {
  const char* name;
  std::string Shot::*text;
  std::string reelhost::Material::*material;
};

/// The texts of a shot, in the order of reports. In reports the other names of its reel, and its channels, follow.
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
/// The clip that becomes the shot.
Shot shotFrom(const reelhost::Material& material);

/// The name that its list gave the source of the shot.
const std::string& ownNameOf(const Shot& shot);
/// What lists call the source of the shot: its own name first.
std::vector<lists::SourceName> namesOf(const Shot& shot);
/// Gives the shot the reel of its names, at least one, and the names.
void setReel(Shot& shot, const std::string& reel, const std::vector<lists::SourceName>& names);
/// The reel in which the names put the shot when it was brought in.
const std::string& reelByNames(const Shot& shot);
/// Lets the clip name its source like this, as if its list did.
void giveName(lists::Clip& clip, const std::string& name);
/// Gives the shot a reel that a person chose, whatever its names say. They stay.
void putInto(Shot& shot, const std::string& reel);
/// Adds what a further list calls the source of the shot, unless its names say as much. Returns whether it was added.
bool addName(Shot& shot, const lists::SourceName& name);

/// Gives the shot the record times of a further use, if they are earlier: a shot shows the first of its uses, in
/// whatever order lists came. Returns whether it did.
bool takeEarlierRecord(Shot& shot, const Shot& use);
/// Gives the shot what a further use says of it, but for its names: its earlier record times, all aliases, and the
/// other texts, of two the first by their bytes. So the order of the uses makes no difference. Returns whether the shot
/// is another one then.
bool takeUse(Shot& shot, const Shot& use);

/// The logs of the shots of these numbers, each once, by number. Throws Error (NotFound).
std::vector<std::pair<std::int64_t, Cookie>> requireShots(const std::vector<std::int64_t>& numbers);

std::vector<Shot> shotsFrom(const CookieVec& logs);

/// A key that is equal for the same shots: reel (ignoring ASCII case), clip name, source in, source out and tracks.
std::string shotKey(const Shot& shot);

} // namespace reeldb::app

#endif
