// SPDX-License-Identifier: Apache-2.0
//
// Where the facility is.
#ifndef REELDB_FRONT_FACILITY_H
#define REELDB_FRONT_FACILITY_H

#include "message.h"

/// The absolute path of the facility: @p given when not null, else the environment variable REELDB_FACILITY, else the
/// nearest folder from the working folder upwards that has a facility.toml. To be freed. Null when there is none that
/// can be read; then the refusal says why.
char* find_facility(const char* given, struct refusal* refusal);

#endif
