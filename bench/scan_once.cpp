// SPDX-License-Identifier: Apache-2.0
//
// One scan that finds nothing, counted by callgrind: scan_once library|bare REELS. Collection is off but for the scan.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "reelhost/host.h"
#include "subjects.h"

int main(int argc, char** argv)
{
  if (argc != 3)
    return std::fprintf(stderr, "usage: scan_once library|bare REELS\n"), 2;
  reelhost::startUp();
  reeldb_bench::openProjectInMemory(std::atoi(argv[2]), 0);
  ReelDbManager& manager = *ReelDbManager::theReelDbManager();
  const LightweightString<char> id("Z999999_Z");
  bool found = false;
  if (std::strcmp(argv[1], "library") == 0) {
    found = manager.getCookieFromReelId(id).valid();
    CALLGRIND_TOGGLE_COLLECT;
    found = manager.getCookieFromReelId(id).valid();
    CALLGRIND_TOGGLE_COLLECT;
  } else {
    found = reeldb_bench::bareScan(manager.reelList, id.c_str());
    CALLGRIND_TOGGLE_COLLECT;
    found = reeldb_bench::bareScan(manager.reelList, id.c_str());
    CALLGRIND_TOGGLE_COLLECT;
  }
  return found ? 1 : 0;
}
