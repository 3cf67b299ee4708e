// SPDX-License-Identifier: Apache-2.0
/// @file
/// The identity of the main thread.
#ifndef REELDB_MAIN_THREAD_H
#define REELDB_MAIN_THREAD_H

#include "ReelDbExport.h"

/// The id of the host's main thread. The library defines it as zero and never writes it. The host stores
/// `co_pid() & codes::threadMask` of its main thread here before any thread creates a reel: the library reads it
/// without a lock.
///
/// The library compares only the bits of codes::threadMask in co_pid() with it. If a host stores an id above 65,535
/// without the mask, no thread matches: every creation is deferred, and deferred again when it runs.
extern REELDB_EXPORT int glib_pid;

#endif
