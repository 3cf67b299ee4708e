// SPDX-License-Identifier: Apache-2.0
//
// Creation from other threads: it is deferred, and done when the main thread returns to the host.
#include "CreateNewReelAction.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include "MainThread.h"
#include "host/codes.h"
#include "host/config.h"
#include "host/projdb.h"
#include "reeldb/changes_fixture.h"
#include "support/counting_services.h"
#include "support/ledger.h"

namespace reeldb_tests {

namespace {

class Deferral : public ChangesTest {
protected:
  ReelDbRec create(const char* id, int device = -1) { return manager().createNewReel(id, device); }

  /// Makes the calling thread count as a worker thread, or as the main thread again.
  void pretendOtherThread()
  {
    script().coPid = [] { return glib_pid + 1; };
  }
  void pretendNothing() { script().coPid = nullptr; }
};

// --- Which thread is the main thread -------------------------------------------------------------

TEST_F(Deferral, OnlyTheLowSixteenBitsOfTheThreadCount)
{
  glib_pid = 0x2345;
  script().coPid = [] { return 0x12345; };
  EXPECT_TRUE(create("R1").valid());
  EXPECT_EQ(reelhost::deferredActions(), 0);
}

TEST_F(Deferral, UnmaskedMainThreadIdMakesEveryThreadAStranger)
{
  glib_pid = 0x12345;
  script().coPid = [] { return 0x12345; };
  EXPECT_FALSE(create("R1").valid());
  EXPECT_EQ(reelhost::deferredActions(), 1);
  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  EXPECT_EQ(reelhost::deferredActions(), 1) << "carried out, it is deferred again";
  pretendNothing();
  reelhost::startUp();
  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Deferral, BeforeTheHostsStartUpEveryCreationIsDeferred)
{
  glib_pid = 0;
  EXPECT_FALSE(create("R1").valid());
  EXPECT_EQ(reelhost::deferredActions(), 1);
  reelhost::startUp();
}

// --- What another thread's call does -------------------------------------------------------------

TEST_F(Deferral, CallReadsTheThreadAndDefersAndDoesNothingElse)
{
  addReel("R0");
  const RecordingClient client(heard_);
  pretendOtherThread();
  const Lines lines = linesOf([this] { EXPECT_FALSE(create(" R1 ").valid()); });
  EXPECT_EQ(lines, (Lines{"co_pid() -> " + std::to_string(glib_pid + 1), "defer(object)"}));
  EXPECT_EQ(reelhost::deferredActions(), 1);
  EXPECT_EQ(reelIds(), Lines{"R0"});
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Deferral, IdentifiersThatMakeNoReelAreDeferredAnyway)
{
  addReel("R1");
  pretendOtherThread();
  for (const char* id : {"R1", "A*B", "", "  "})
    create(id);
  EXPECT_EQ(reelhost::deferredActions(), 4);
  pretendNothing();
  const Lines operations = operationsOf([] { reelhost::runDeferredActions(); });
  EXPECT_EQ(countOf(operations, "EditManager::makeNewEdit"), 0);
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Deferral, IdentifierTravelsUntrimmed)
{
  addReel("R1");
  pretendOtherThread();
  create(" R1");
  pretendNothing();
  reelhost::runDeferredActions();
  EXPECT_EQ(reelIds(), (Lines{"R1", "R1"})) << "existence is tested with the blank";
}

TEST_F(Deferral, DeviceTravelsToo)
{
  reelhost::DeviceSettings settings = device(7, "CAM");
  settings.portType = codes::portNamingReel;
  settings.audioInputs = 3;
  setDevices({settings});
  pretendOtherThread();
  create("R1", 7);
  pretendNothing();
  reelhost::runDeferredActions();
  EXPECT_EQ(reelIds(), Lines{"CAM"});
  EXPECT_EQ(channels(manager().getCookieFromReelId("CAM"), 2), 3);
}

TEST_F(Deferral, ClientsAreNotifiedWhenTheReelIsMade)
{
  const RecordingClient client(heard_);
  pretendOtherThread();
  create("R1");
  pretendNothing();
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  EXPECT_EQ(heard_, (Heard{"some(R1)", "dbC(R1)"}));
}

TEST_F(Deferral, ReelMadeMeanwhileMakesTheActionANoOp)
{
  pretendOtherThread();
  create("R1");
  create("r1");
  pretendNothing();
  ASSERT_TRUE(create("R1").valid());
  const RecordingClient client(heard_);
  EXPECT_EQ(reelhost::runDeferredActions(), 2);
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Deferral, ActionsRunInTheOrderOfTheCalls)
{
  pretendOtherThread();
  for (const char* id : {"b", "B", "a"})
    create(id);
  pretendNothing();
  reelhost::runDeferredActions();
  EXPECT_EQ(reelIds(), (Lines{"b", "a"}));
}

TEST_F(Deferral, ActionTheHostDropsReleasesEverything)
{
  pretendOtherThread();
  script().swallowDeferred = true;
  const LightweightString<char> id = "an identifier";
  const std::int64_t up = countsUp();
  const std::int64_t down = countsDown();
  EXPECT_FALSE(manager().createNewReel(id, -1).valid());
  EXPECT_EQ(countsUp() - up, countsDown() - down);
  EXPECT_GE(countsUp() - up, 2) << "the action holds the identifier, somebody holds the action";
  EXPECT_EQ(reelhost::deferredActions(), 0);
}

// --- The action itself ---------------------------------------------------------------------------

TEST_F(Deferral, ActionKeepsTheIdentifierAlive)
{
  Zr::Ptr<iExecutableAction> action;
  {
    const LightweightString<char> id = "R1";
    action = Zr::Ptr<iExecutableAction>(new CreateNewReelAction(id, -1));
  }
  action->execute();
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Deferral, ActionSharesTheCallersTextAndReleasesItAtItsEnd)
{
  const LightweightString<char> id = "R1";
  const std::int64_t up = countsUp();
  const std::int64_t down = countsDown();
  {
    const CreateNewReelAction action(id, -1);
    EXPECT_EQ(countsUp() - up, 1);
    EXPECT_EQ(countsDown() - down, 0);
  }
  EXPECT_EQ(countsUp() - up, 1);
  EXPECT_EQ(countsDown() - down, 1);
}

TEST_F(Deferral, ActionMakesTheReelWithItsDevice)
{
  reelhost::DeviceSettings settings = device(7, "Deck");
  settings.audioInputs = 2;
  setDevices({settings});
  CreateNewReelAction action("R1", 7);
  action.execute();
  EXPECT_EQ(channels(manager().getCookieFromReelId("R1"), 2), 2);
}

TEST_F(Deferral, ActionRunTwiceMakesOneReel)
{
  CreateNewReelAction action("R1", -1);
  action.execute();
  action.execute();
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Deferral, ActionRunOnAnotherThreadDefersAgain)
{
  pretendOtherThread();
  CreateNewReelAction action("R1", -1);
  action.execute();
  EXPECT_EQ(reelhost::deferredActions(), 1);
  EXPECT_EQ(reelIds(), Lines{});
}

// --- Worker threads ------------------------------------------------------------------------------

/// A gate at which a thread waits until another thread opens it.
class Gate {
public:
  void open()
  {
    const std::lock_guard lock(mutex_);
    isOpen_ = true;
    opened_.notify_all();
  }
  void wait()
  {
    std::unique_lock lock(mutex_);
    opened_.wait(lock, [this] { return isOpen_; });
  }

private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool isOpen_ = false;
};

TEST_F(Deferral, WorkersReelIsMadeByTheMainThreadWhileTheWorkerStillHoldsItsText)
{
  Gate deferred, done;
  bool valid = true;
  std::string heldText;
  std::thread worker([&] {
    const LightweightString<char> id = "  a reel of the worker's  ";
    valid = manager().createNewReel(id, -1).valid();
    deferred.open();
    done.wait();
    const LightweightString<char> copy = id;
    heldText = text(copy);
  });
  deferred.wait();
  EXPECT_EQ(reelIds(), Lines{});
  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  EXPECT_EQ(reelIds(), Lines{"a reel of the worker's"});
  done.open();
  worker.join();
  EXPECT_FALSE(valid);
  EXPECT_EQ(heldText, "  a reel of the worker's  ");
}

TEST_F(Deferral, MainThreadMayMakeTheReelBeforeTheWorkerGetsItsResult)
{
  std::atomic<bool> stop = false;
  std::thread worker([&] {
    LightweightString<char> id = "R";
    for (int i = 0; i < 20; ++i) {
      id += i;
      manager().createNewReel(id, -1);
    }
    stop = true;
  });
  int made = 0;
  while (!stop)
    made += reelhost::runDeferredActions();
  worker.join();
  made += reelhost::runDeferredActions();
  EXPECT_EQ(made, 20);
  EXPECT_EQ(reelIds().size(), 20U);
}

TEST_F(Deferral, OnAWorkerOnlyTheThreadIsReadAndTheActionDeferred)
{
  addReel("R0");
  std::mutex mutex;
  std::multiset<std::string> onWorker;
  const std::thread::id mainId = std::this_thread::get_id();
  script().before = [&](const std::string& operation, const std::string&) {
    const std::lock_guard lock(mutex);
    if (std::this_thread::get_id() != mainId)
      onWorker.insert(operation);
  };
  std::thread([this] { create("R1"); }).join();
  reelhost::runDeferredActions();
  script().before = nullptr;
  EXPECT_EQ(onWorker, (std::multiset<std::string>{"co_pid", "defer"}));
  EXPECT_EQ(reelIds(), (Lines{"R0", "R1"}));
}

TEST_F(Deferral, OnAWorkerTheActionIsAllThatIsAllocated)
{
  NEEDS_ROUTED_NEW;
  script().swallowDeferred = true;
  std::int64_t allocated = -1;
  std::int64_t released = -1;
  std::thread([&] {
    const LightweightString<char> id = "an identifier that is longer than a short string";
    ReelDbManager& reels = manager();
    allocated = -allocations();
    released = -releases();
    reels.createNewReel(id, -1);
    allocated += allocations();
    released += releases();
  }).join();
  EXPECT_EQ(allocated, 1);
  EXPECT_EQ(released, 1) << "the host dropped the action";
}

TEST_F(Deferral, AHundredWorkersGetEachReelOnce)
{
  constexpr int workers = 100;
  constexpr int reelsOfEach = 3;
  const RecordingClient client(heard_);
  std::atomic<int> answers = 0;
  std::vector<std::thread> threads;
  for (int w = 0; w < workers; ++w)
    threads.emplace_back([&, w] {
      const LightweightString<char> shared = w % 2 ? "shared" : "SHARED";
      answers += manager().createNewReel(shared, -1).valid();
      for (int i = 0; i < reelsOfEach; ++i) {
        const std::string id = " " + std::to_string(w) + "/" + std::to_string(i) + " ";
        answers += manager().createNewReel(id.c_str(), -1).valid();
      }
    });
  int run = reelhost::runDeferredActions(); // some of them, while the workers go on
  for (std::thread& thread : threads)
    thread.join();
  run += reelhost::runDeferredActions();

  EXPECT_EQ(answers, 0);
  EXPECT_EQ(run, workers * (reelsOfEach + 1));
  EXPECT_EQ(reelhost::deferredActions(), 0);
  std::map<std::string, int> found;
  for (std::string id : reelIds())
    ++found[id == "SHARED" ? "shared" : id];
  EXPECT_EQ(found.size(), static_cast<std::size_t>(workers * reelsOfEach + 1));
  for (const auto& [id, count] : found)
    EXPECT_EQ(count, 1) << id;
  EXPECT_EQ(heard_.size(), 2 * found.size());
}

} // namespace

} // namespace reeldb_tests
