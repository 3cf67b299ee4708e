// SPDX-License-Identifier: Apache-2.0
//
// A program on the library and the standalone host that says which facility it has.
#include <cstdio>

#include "ReelTypeManager.h"
#include "reelhost/host.h"

int main()
try {
  std::printf("%s, %u types\n", reelhost::facility().directory().c_str(), theReelTypeManager()->rep()->count());
} catch (const reelhost::Error& error) {
  std::printf("%s, %u types\n", error.what(), theReelTypeManager()->rep()->count());
}
