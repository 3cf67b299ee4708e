// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <thread>
#include <vector>

#include "host/action.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Deferral);

class Action : public iExecutableAction {
public:
  Action(int& alive, std::function<void()> work) : alive_(alive), work_(std::move(work)) { ++alive_; }
  ~Action() override { --alive_; }
  void execute() override { work_(); }

private:
  int& alive_;
  std::function<void()> work_;
};

TEST_P(Deferral, AThreadHasOneNumberAndAnotherThreadAnother)
{
  PROMISE("host/action.h", "so these bits must differ between threads. They must not be 0 on any thread, because "
                           "`glib_pid` is 0 before the start-up.");
  const int own = co_pid();
  EXPECT_EQ(co_pid(), own);
  int others[2] = {};
  std::thread first([&] { others[0] = co_pid(); });
  first.join();
  std::thread second([&] { others[1] = co_pid(); });
  second.join();
  EXPECT_NE(own & codes::threadMask, 0);
  for (int other : others) {
    EXPECT_NE(other & codes::threadMask, own & codes::threadMask);
    EXPECT_NE(other & codes::threadMask, 0);
  }
}

TEST_P(Deferral, AnActionRunsOnceAndLater)
{
  PROMISE("host/action.h", "Must not run the action before it returns.");
  int alive = 0, runs = 0;
  {
    const Zr::Ptr<iExecutableAction> action(new Action(alive, [&] { ++runs; }));
    defer(action);
  }
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(alive, 1); // the host holds it
  host().runDeferredActions();
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(alive, 0);
  host().runDeferredActions();
  EXPECT_EQ(runs, 1);
}

TEST_P(Deferral, ActionsOfAWorkerRunOnTheMainThreadInOrder)
{
  PROMISE("host/action.h", "Queues the action for the main thread, behind the actions that already wait.");
  int alive = 0;
  std::vector<int> order;
  std::vector<std::thread::id> threads;
  std::thread worker([&] {
    for (int i = 0; i < 10; ++i)
      defer(new Action(alive, [&, i] {
        order.push_back(i);
        threads.push_back(std::this_thread::get_id());
      }));
  });
  worker.join();
  host().runDeferredActions();
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  for (std::thread::id thread : threads)
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_P(Deferral, AnActionMayDeferAnother)
{
  PROMISE(
      "host/action.h",
      "An action that is deferred while the host runs actions waits until the main thread comes back the next time");
  int alive = 0, runs = 0;
  defer(new Action(alive, [&] { defer(new Action(alive, [&] { ++runs; })); }));
  host().runDeferredActions();
  EXPECT_EQ(runs, 0);
  host().runDeferredActions();
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(alive, 0);
}

} // namespace
