// SPDX-License-Identifier: Apache-2.0
#include "MainThread.h"
#include "host/action.h"
#include "host/codes.h"
#include "reelhost/host.h"

// Weak, so that this host loads also where the library is not.
extern int glib_pid __attribute__((weak));

void reelhost::startUp()
{
  const int id = co_pid() & codes::threadMask;
  if (&glib_pid)
    glib_pid = id;
}
