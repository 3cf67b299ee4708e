// SPDX-License-Identifier: Apache-2.0
//
// A program that is linked with this file keeps the history of its projects, but no lists: the symbols of a program
// take precedence over those of shared libraries.
#include "reelhost/host.h"

namespace reelhost {

bool keepsLists()
{
  return false;
}

} // namespace reelhost
