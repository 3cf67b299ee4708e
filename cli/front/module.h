// SPDX-License-Identifier: Apache-2.0
//
// The module with the commands, which brings the library and the host with it.
#ifndef REELDB_FRONT_MODULE_H
#define REELDB_FRONT_MODULE_H

#include <stdbool.h>

#include "line/entry.h"

struct module {
  reeldb_main_function* run;
  reeldb_main_function* complete;
  reeldb_needs_facility_function* needs_facility;
  reeldb_complain_function* complain;
};

/// Loads the module from where it stands relative to this program. Answers false after it has said what is wrong.
bool load_module(struct module* module);

#endif
