// SPDX-License-Identifier: Apache-2.0
//
// The memory of an open project: open_once FILE prints the bytes by which the process has grown after it has listed the
// reels, and after it has also loaded all shots.
#include <sys/resource.h>

#include <cstdio>
#include <vector>

#include "ReelDbManager.h"
#include "reelhost/host.h"

namespace {

long peak()
{
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss * 1024;
}

} // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
    return std::fprintf(stderr, "usage: open_once FILE\n"), 2;
  reelhost::startUp();
  ReelDbManager* const manager = ReelDbManager::theReelDbManager();
  const long before = peak();
  reelhost::openProject(reelhost::makeSqliteStore(argv[1]), reelhost::Access::Read);
  std::vector<LightweightString<char>> ids;
  manager->getAllReelIds(ids, true);
  const long listed = peak();
  const CookieVec shots = reelhost::allShots();
  std::printf("%ld %ld\n", listed - before, peak() - before);
  reelhost::closeProject();
  return ids.empty() || shots.count() == 0;
}
