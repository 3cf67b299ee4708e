// SPDX-License-Identifier: Apache-2.0
//
// Prints the catalogue after the library has been loaded: a line "name|parameters" for each type. Before that it writes
// "new:A=1" to the file that PROBE_REWRITES names, if any, and reads the channels of the first type.
#include <cstdio>
#include <cstdlib>

#include "ReelTypeManager.h"

int main()
{
  if (const char* const path = std::getenv("PROBE_REWRITES")) {
    std::FILE* const file = std::fopen(path, "w");
    if (!file || std::fputs("new:A=1\n", file) < 0 || std::fclose(file) != 0)
      return 1;
    theReelTypeManager()->type(0u);
  }
  const AssocListRep& types = *theReelTypeManager()->rep();
  for (unsigned i = 0; i < types.count(); ++i)
    std::printf("%s|%s\n", types.entry(i)->key.c_str(), types.entry(i)->value.c_str());
  return 0;
}
