// SPDX-License-Identifier: Apache-2.0
//
// The library on the minimal host: a project is entered, reels are made in three ways, and a client of the library is
// notified of each.
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
  ReelDbManager& manager = *ReelDbManager::theReelDbManager(); // it listens to projects from here on
  const Monitor monitor;

  minimal_host::enterProject("EXAMPLE", 3, 3);
  manager.createNewReel("A001", -1);
  minimal_host::importClip("B002");
  std::thread([&] { manager.createNewReel("C003", -1); }).join(); // deferred to the main thread
  minimal_host::runDeferred();                                    // the main thread makes the reel here

  std::vector<Text> ids;
  manager.getAllReelIds(ids, true);
  for (const Text& id : ids)
    std::printf("%s\n", id.c_str());
  minimal_host::leaveProject();
}
