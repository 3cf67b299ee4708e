// SPDX-License-Identifier: Apache-2.0
//
// Worker threads make reels by the hundred while the main thread runs what they defer.
#include <atomic>
#include <map>
#include <thread>

#include "journal/watch.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

using WorkerCreation = LibraryTest;

/// The identifiers of one worker: own ones, and every fourth one that all workers ask for, each in a spelling of its
/// own.
std::string idOf(int worker, int i)
{
  if (i % 4 != 0)
    return std::to_string(worker) + "/" + std::to_string(i);
  return (worker % 2 ? "SHARED " : "shared ") + std::to_string(i);
}

std::string folded(std::string id)
{
  for (char& c : id)
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return id;
}

TEST_F(WorkerCreation, EveryReelIsThereOnceWhileTheMainThreadRunsTheQueue)
{
  constexpr int workers = 8;
  constexpr int reelsOfEach = 250;
  reelhost::watch(reelhost::Watcher::Script, false);
  Heard heard;
  const RecordingClient client(heard);
  std::atomic<int> atWork = workers;
  std::atomic<int> valid = 0;
  std::atomic<int> runsWithWorkers = 0;
  std::vector<std::thread> threads;
  for (int worker = 0; worker < workers; ++worker)
    threads.emplace_back([&, worker] {
      for (int i = 0; i < reelsOfEach; ++i) {
        while (i == reelsOfEach / 2 && runsWithWorkers == 0) // so that the main thread surely has to do while they work
          std::this_thread::yield();
        const LightweightString<char> id = idOf(worker, i).c_str();
        valid += manager().createNewReel(id, -1).valid();
      }
      --atWork;
    });
  int run = 0;
  while (atWork > 0) {
    const int now = reelhost::runDeferredActions();
    run += now;
    runsWithWorkers += now > 0;
  }
  for (std::thread& thread : threads)
    thread.join();
  run += reelhost::runDeferredActions();

  EXPECT_EQ(valid, 0) << "a worker cannot learn of its reel";
  EXPECT_EQ(run, workers * reelsOfEach);
  EXPECT_GT(runsWithWorkers, 0) << "the main thread came too late";
  EXPECT_EQ(reelhost::deferredActions(), 0);

  std::map<std::string, int> expected, found, told;
  for (int worker = 0; worker < workers; ++worker)
    for (int i = 0; i < reelsOfEach; ++i)
      expected[folded(idOf(worker, i))] = 1;
  std::vector<LightweightString<char>> ids;
  manager().getAllReelIds(ids, true);
  for (const LightweightString<char>& id : ids)
    ++found[folded(id.c_str())];
  for (const std::string& notice : heard)
    if (notice.compare(0, 4, "dbC(") == 0)
      ++told[folded(notice.substr(4, notice.size() - 5))];
  EXPECT_EQ(found, expected);
  EXPECT_EQ(told, expected) << "clients are notified of each reel once";
}

} // namespace

} // namespace reeldb_tests
