// SPDX-License-Identifier: Apache-2.0
/// @file
/// The version of the library.
#ifndef REELDB_VERSION_H
#define REELDB_VERSION_H

#include "ReelDbExport.h"

/// The version of the library: "14.0.0.0". Never null; the text lives as long as the library is loaded. Any thread.
REELDB_EXPORT const char* reeldbDllVersionStr();

#endif
