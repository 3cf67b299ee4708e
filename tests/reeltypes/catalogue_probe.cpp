// SPDX-License-Identifier: Apache-2.0
//
// Prints what the catalogue holds when the library has been loaded: a line "name|parameters" for each type.
#include <cstdio>

#include "ReelTypeManager.h"

int main()
{
  const AssocListRep& types = *theReelTypeManager()->rep();
  for (unsigned i = 0; i < types.count(); ++i)
    std::printf("%s|%s\n", types.entry(i)->key.c_str(), types.entry(i)->value.c_str());
  return 0;
}
