// SPDX-License-Identifier: Apache-2.0
//
// Converts the host's errors to those of this room. For the sources of this room.
#ifndef REELDB_APP_HOST_ERRORS_H
#define REELDB_APP_HOST_ERRORS_H

#include "app/error.h"
#include "reelhost/error.h"

namespace reeldb::app {

/// The same error as an Error of this room.
Error errorFrom(const reelhost::Error& error);

/// Runs the work of an operation and converts the host's errors to this room's.
template <class Work>
auto guarded(Work work) -> decltype(work())
{
  try {
    return work();
  } catch (const reelhost::Error& error) {
    throw errorFrom(error);
  }
}

} // namespace reeldb::app

#endif
