// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_SHOT_KEY_H
#define REELDB_CLI_SHOT_KEY_H

#include <string>

#include "lists/list.h"
#include "reelhost/host.h"

namespace reeldb::cli {

/// Equal for the same shot: reel (ASCII case aside), clip name, source in, source out and tracks are equal.
std::string shotKey(const reelhost::Material& shot);
std::string shotKey(const lists::Clip& clip);

/// The shot that a clip becomes.
reelhost::Material material(const lists::Clip& clip);

/// The clip that becomes the shot: the way back.
lists::Clip clipOf(const reelhost::Material& shot);

} // namespace reeldb::cli

#endif
