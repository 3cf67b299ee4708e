// SPDX-License-Identifier: Apache-2.0
/// @file
/// The version of the library.
#ifndef REELDB_VERSION_H
#define REELDB_VERSION_H

#include "ReelDbExport.h"

/// @name The version of the headers
/// For the preprocessor: the version that a program is compiled for. The library that it is loaded with may be a later
/// one of the same major version.
/// @{
#define REELDB_VERSION_MAJOR 14
#define REELDB_VERSION_MINOR 0
#define REELDB_VERSION_PATCH 0
/// @}

/// The version of the library: "14.0.0.0". Never null; the text lives as long as the library is loaded. Any thread.
REELDB_EXPORT const char* reeldbDllVersionStr();

#endif
