// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_TIMING_H
#define REELDB_LISTS_TIMING_H

#include <optional>

#include "lists/frame_rate.h"
#include "lists/list.h"

namespace reeldb::lists {

/// The warning that the list cannot belong to a project of this rate, with the line that proves it; empty if it can. A
/// list contradicts the project when one of its clips has another rate, when a timecode has more frames than the
/// project counts, or when it is drop frame and the rate has none.
std::optional<Warning> contradiction(const List& list, FrameRate project);

} // namespace reeldb::lists

#endif
