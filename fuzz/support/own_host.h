// SPDX-License-Identifier: Apache-2.0
//
// Operations of the host that a fuzz target puts its own in the place of, as any program may: what it wants to see, or
// to answer, a hundred thousand times a second, which the host's journal and script are not made for.
#ifndef REELDB_FUZZ_SUPPORT_OWN_HOST_H
#define REELDB_FUZZ_SUPPORT_OWN_HOST_H

#include <string>
#include <vector>

namespace reeldb_fuzz {

struct OwnHost {
  std::vector<std::string> printed; ///< what vorn_printf was given since this was last emptied; nothing goes to stderr
  bool offMainThread = false;       ///< co_pid answers another thread's number
  bool databaseIsGone = false;      ///< EditManager::getProjdb answers null
  int deviceResets = 0;             ///< calls of resetDevices
};

OwnHost& ownHost();

} // namespace reeldb_fuzz

#endif
