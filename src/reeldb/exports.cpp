// SPDX-License-Identifier: Apache-2.0
//
// The exports that are not classes.
#include "MainThread.h"
#include "ReelDbVersion.h"

int glib_pid = 0;

const char* reeldbDllVersionStr()
{
  return REELDB_VERSION ".0";
}
