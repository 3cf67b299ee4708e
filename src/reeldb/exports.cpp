// SPDX-License-Identifier: Apache-2.0
#include "MainThread.h"

int glib_pid = 0;
