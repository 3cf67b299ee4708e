// SPDX-License-Identifier: Apache-2.0
//
// Operations of the host that a fuzz target replaces by its own, as any program may. It watches or controls them a
// hundred thousand times per second, for which the host's journal and script would be too slow.
#ifndef REELDB_FUZZ_SUPPORT_OWN_HOST_H
#define REELDB_FUZZ_SUPPORT_OWN_HOST_H

#include <string>
#include <vector>

namespace reeldb_fuzz {

struct OwnHost {
  std::vector<std::string> printed; ///< the prints of vorn_printf since this was last cleared; stderr gets none of them
  bool offMainThread = false;       ///< whether co_pid returns another thread's number
  bool databaseIsGone = false;      ///< whether EditManager::getProjdb returns null
  int deviceResets = 0;             ///< the number of calls of resetDevices
};

OwnHost& ownHost();

} // namespace reeldb_fuzz

#endif
