// SPDX-License-Identifier: Apache-2.0
//
// What the library exports beside its classes.
#include "MainThread.h"
#include "ReelDbVersion.h"

int glib_pid = 0;

const char* reeldbDllVersionStr()
{
  return REELDB_VERSION ".0";
}
