// SPDX-License-Identifier: Apache-2.0
//
// A program with the library and the standalone host that prints its facility.
#include <cstdio>

#include "ReelTypeManager.h"
#include "reelhost/host.h"

int main()
try {
  std::printf("%s, %u types\n", reelhost::facility().directory().c_str(), theReelTypeManager()->rep()->count());
} catch (const reelhost::Error& error) {
  std::printf("%s, %u types\n", error.what(), theReelTypeManager()->rep()->count());
}
