// SPDX-License-Identifier: Apache-2.0
//
// A look at the reel type file before the library reads it.
#ifndef REELDB_FRONT_TYPE_FILE_H
#define REELDB_FRONT_TYPE_FILE_H

#include <stdbool.h>

#include "message.h"

/// The library reads devicedata/reeltype.dat of the facility while it is loaded, and a field that does not fit its
/// buffers ends the process. Answers whether it can read the file, or that there is none; otherwise the refusal names
/// file and line. Numbers of channels that the library takes for others are remarks, with file and line too.
bool check_type_file(const char* facility, struct refusal* refusal, struct remarks* remarks);

#endif
