// SPDX-License-Identifier: Apache-2.0
//
// Shots that were made before projects kept lists and the names that lists give. For the sources of this room.
#ifndef REELDB_APP_SHOTS_MADE_BEFORE_H
#define REELDB_APP_SHOTS_MADE_BEFORE_H

#include <cstddef>
#include <utility>
#include <vector>

#include "app/project_names.h"

namespace reeldb::app {

/// Whether no list gave the shot a name that it keeps. It was made before names were kept, or its reel is its name.
bool isNameless(const Shot& shot);

/// The places of those of the shots that no kept list uses.
std::vector<std::size_t> withoutList(const std::vector<KnownShot>& shots, const std::vector<std::size_t>& places);

/// The places of shots that were made before and are clips of a list that is read now, with the clips: clip name,
/// source range and tracks are equal, and both have a name of the source. Each shot is there once at most, and so is
/// each clip. Time is linear in the numbers of shots and clips, unless there are such shots in a project that keeps
/// lists.
std::vector<std::pair<std::size_t, const lists::Clip*>> shotsMadeBefore(const std::vector<KnownShot>& shots,
                                                                        const std::vector<const lists::Clip*>& clips);

} // namespace reeldb::app

#endif
