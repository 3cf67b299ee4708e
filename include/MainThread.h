// SPDX-License-Identifier: Apache-2.0
/// @file
/// Which thread the main one is.
#ifndef REELDB_MAIN_THREAD_H
#define REELDB_MAIN_THREAD_H

#include "ReelDbExport.h"

/// The id of the host's main thread. The library defines it, zero at load, and never writes it; the host stores
/// `co_pid() & codes::threadMask` of its main thread here before it makes reels, and before other threads do: it is
/// read without a lock.
///
/// Only the bits of codes::threadMask in co_pid() are compared with it. A host that stores an id above 65,535 unmasked
/// makes every thread a stranger: each creation is deferred, and deferred again when it is run.
extern REELDB_EXPORT int glib_pid;

#endif
