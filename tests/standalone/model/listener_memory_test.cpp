// SPDX-License-Identifier: Apache-2.0
//
// A program that waits while others make and delete logs needs no more memory from day to day.
#include <cstdlib>
#include <string>

#include "reelhost/inform_manager.h"
#include "standalone/model/elsewhere.h"
#include "support/counting_services.h"
#include "support/library_fixture.h"
#include "support/temp_folder.h"

namespace reeldb_tests {
namespace {

TEST(ListenerMemory, StaysTheSameWhateverOthersMakeAndDelete)
{
  constexpr int logs = 100; // that each commit of the others makes, while it deletes those of the last one
  const int commits = (std::getenv("REELDB_LONG_TESTS") ? 1'000'000 : 20'000) / (2 * logs);
  TempFolder folder;
  const std::filesystem::path file = folder.path() / "shared.reels";
  reelhost::ProjectInfo info;
  info.name = "SHARED";
  info.uuid.fill(7);
  reelhost::createSqliteProject(file, info, {{"reeldb_defaultType", ""}}); // the library would set it
  Elsewhere elsewhere(file);
  reelhost::startUp();
  reelhost::openProject(reelhost::makeSqliteStore(file), reelhost::Access::Write);
  reelhost::idle();
  ReelDbManager& manager = *ReelDbManager::theReelDbManager();
  Heard heard;
  const RecordingClient client(heard);
  int notified = 0;

  std::int64_t number = 0;
  const auto commit = [&] {
    reelhost::Changes changes;
    for (int i = 0; i < logs; ++i) {
      if (number >= logs)
        changes.deleted.push_back(number + 1 - logs);
      reelhost::StoredLog log;
      log.number = ++number;
      for (std::size_t at = 0; at < sizeof number; ++at)
        log.uuid[at] = static_cast<unsigned char>(number >> (8 * at));
      log.type = i % 2 == 0 ? 9 : 1;
      log.fields = {{"reelid", "Reel " + std::to_string(number)}, {"bin", "a text that is longer than a short one"}};
      changes.logs.push_back(std::move(log));
    }
    elsewhere.commit(changes);
    reelhost::idle();
    reelhost::informOfChangesFromElsewhere(manager);
    reelhost::idle();
    std::vector<LightweightString<char>> ids;
    manager.getAllReelIds(ids, false);
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(logs / 2));
    reelhost::shotsOf("Reel " + std::to_string(number)); // by the index
    notified += static_cast<int>(heard.size());
    heard.clear();
    heard.shrink_to_fit();
  };
  for (int i = 0; i < 5; ++i)
    commit();
  const std::int64_t before = memoryInUse();
  notified = 0;
  for (int i = 0; i < commits; ++i)
    commit();
  EXPECT_EQ(notified, commits); // of the set of reels, once each
  EXPECT_LE(memoryInUse(), before + logs) << "after " << commits * 2 * logs << " changes";
  reelhost::closeProject();
}

} // namespace
} // namespace reeldb_tests
