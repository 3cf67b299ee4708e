// SPDX-License-Identifier: Apache-2.0
//
// Shots by their logs, and the one mapping between the host's shots and the readers' clips. For the sources of this
// room.
#ifndef REELDB_APP_SHOT_LOGS_H
#define REELDB_APP_SHOT_LOGS_H

#include <string>
#include <vector>

#include "app/shots.h"
#include "host/cookie.h"
#include "reelhost/host.h"

namespace reeldb::app {

/// The shot that a clip becomes.
reelhost::Material materialFrom(const Shot& shot);
/// The clip that becomes the shot: the way back.
Shot shotFrom(const reelhost::Material& material);

std::vector<Shot> shotsFrom(const CookieVec& logs);

/// Equal for the same shot: reel (ASCII case aside), clip name, source in, source out and tracks are equal.
std::string shotKey(const Shot& shot);

} // namespace reeldb::app

#endif
