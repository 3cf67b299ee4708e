// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_APP_PROGRESS_H
#define REELDB_APP_PROGRESS_H

#include <cstddef>
#include <functional>

namespace reeldb::app {

/// Called after each piece of a long operation, with the number of finished pieces and the total. Returns whether to
/// continue: after false the operation throws Error (Cancelled) and stores nothing. May be empty.
using Progress = std::function<bool(std::size_t done, std::size_t total)>;

} // namespace reeldb::app

#endif
