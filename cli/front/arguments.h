// SPDX-License-Identifier: Apache-2.0
//
// The little of the command line that has to be known before the library is loaded.
#ifndef REELDB_FRONT_ARGUMENTS_H
#define REELDB_FRONT_ARGUMENTS_H

#include <stdbool.h>

struct arguments {
  const char* facility;  ///< given with -C DIR, -CDIR, -C=DIR, --facility DIR or --facility=DIR; null when not given
  bool without_facility; ///< init, help and version ask for none
  int count;
  char** values; ///< as given, but the facility stands first, as --facility=DIR; ends in a null
};

/// Reads the line; the facility may be given once. Everything after "--" is left alone. Answers false after it has said
/// what is wrong.
bool read_arguments(int argc, char** argv, struct arguments* arguments);
void free_arguments(struct arguments* arguments);

#endif
