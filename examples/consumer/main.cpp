// SPDX-License-Identifier: Apache-2.0
//
// Enters a project, makes a reel, and is notified of it.
#include <cstdio>
#include <exception>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "host/codes.h"
#include "reelhost/host.h"

namespace {

/// A client is notified of every change to the reels, by any part of the program.
class Client : public ReelDbClient {
public:
  void reelDbChanged(LightweightString<char> id) override
  {
    if (id.empty())
      std::puts("notified: the project was entered");
    else
      std::printf("notified: there is a new reel, %s\n", id.c_str());
  }
};

int run()
{
  reelhost::startUp();
  ReelDbManager& manager =
      *ReelDbManager::theReelDbManager(); // before the project is entered, because the manager listens only from now on
  const Client client;

  // A project in memory. For a project in a file, use reelhost::createSqliteProject and reelhost::makeSqliteStore.
  reelhost::ProjectInfo info;
  info.name = "EXAMPLE";
  info.uuid.fill('E');
  info.frameRate = info.outputFrameRate = codes::rate25;
  reelhost::openProject(reelhost::makeMemoryStore(info), reelhost::Access::Write);

  ReelDbRec reel = manager.createNewReel("A001", -1);
  if (!reel.valid()) {
    std::fputs("A001: no reel was made\n", stderr);
    return 1;
  }
  std::printf("%s is in the project %s\n", reel.reelId().c_str(), reelhost::projectInfo().name.c_str());
  reelhost::closeProject();
  return 0;
}

} // namespace

int main()
{
  try {
    return run();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "consumer: %s\n", e.what());
    return 1;
  }
}
