// SPDX-License-Identifier: Apache-2.0
//
// The conversion between the clips of readers and the events that the host keeps. For the sources of this room.
#ifndef REELDB_APP_KEPT_EVENTS_H
#define REELDB_APP_KEPT_EVENTS_H

#include <cstdint>
#include <vector>

#include "lists/list.h"
#include "reelhost/lists.h"

namespace reeldb::app {

/// @p shot is the number of the clip's shot, 0 for a clip without a source.
reelhost::ListEvent eventFrom(const lists::Clip& clip, std::int64_t shot);
/// The clip that was kept as the event.
lists::Clip clipFrom(const reelhost::ListEvent& event);

} // namespace reeldb::app

#endif
