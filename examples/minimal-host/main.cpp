// SPDX-License-Identifier: Apache-2.0
//
// The library at work on the minimal host: a project is entered, reels come into being in three ways, and a client of
// the library hears of each.
#include <cstdio>
#include <thread>
#include <vector>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "minimal_host.h"

using Text = LightweightString<char>;

namespace {

class Monitor : public ReelDbClient {
public:
  void reelDbChanged(Text id) override { std::printf("reels changed: '%s'\n", id.c_str()); }
};

} // namespace

int main() {
  minimal_host::startUp();
  ReelDbManager& manager = *ReelDbManager::theReelDbManager(); // from here on it hears of projects
  const Monitor monitor;

  minimal_host::enterProject("EXAMPLE", 3, 3);
  manager.createNewReel("A001", -1);
  minimal_host::importClip("B002");
  std::thread([&] { manager.createNewReel("C003", -1); }).join(); // left for the main thread ...
  minimal_host::runDeferred();                                    // ... which does it here

  std::vector<Text> ids;
  manager.getAllReelIds(ids, true);
  for (const Text& id : ids)
    std::printf("%s\n", id.c_str());
  minimal_host::leaveProject();
}
