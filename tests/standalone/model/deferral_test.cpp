// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>
#include <thread>

#include "host/action.h"
#include "model/thread_numbers.h"
#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using reelhost::deferredActions;
using reelhost::runDeferredActions;

class DeferralTest : public HostTest {
protected:
  ~DeferralTest() override { reelhost::runDeferredActions(); } // before the members that the actions write to end
  class Action : public iExecutableAction {
  public:
    explicit Action(std::function<void()> work) : work_(std::move(work)) {}
    void execute() override { work_(); }

  private:
    std::function<void()> work_;
  };
  void deferNote(const std::string& what)
  {
    defer(new Action([this, what] { ran_.push_back(what); }));
  }
  std::vector<std::string> ran_;
};

using Texts = std::vector<std::string>;

TEST_F(DeferralTest, ActionsAreCountedWhileTheyWait)
{
  EXPECT_EQ(deferredActions(), 0);
  deferNote("a");
  deferNote("b");
  EXPECT_EQ(deferredActions(), 2);
  EXPECT_EQ(runDeferredActions(), 2);
  EXPECT_EQ(deferredActions(), 0);
  EXPECT_EQ(ran_, (Texts{"a", "b"}));
}

TEST_F(DeferralTest, AnActionThatThrowsTakesNoOtherWithIt)
{
  deferNote("a");
  defer(new Action([] { throw std::runtime_error("no"); }));
  deferNote("b");
  EXPECT_THROW(runDeferredActions(), std::runtime_error);
  EXPECT_EQ(ran_, Texts{"a"});
  EXPECT_EQ(deferredActions(), 1);
  EXPECT_EQ(runDeferredActions(), 1);
  EXPECT_EQ(ran_, (Texts{"a", "b"}));
}

TEST_F(DeferralTest, WhatIsDeferredMeanwhileWaits)
{
  defer(new Action([this] { deferNote("late"); }));
  deferNote("b");
  EXPECT_EQ(runDeferredActions(), 2);
  EXPECT_EQ(ran_, Texts{"b"});
  EXPECT_EQ(runDeferredActions(), 1);
  EXPECT_EQ(ran_, (Texts{"b", "late"}));
}

TEST_F(DeferralTest, AnActionMayRunTheOthers)
{
  defer(new Action([this] {
    deferNote("late");
    EXPECT_EQ(runDeferredActions(), 2);
    deferNote("later");
  }));
  deferNote("b");
  EXPECT_EQ(runDeferredActions(), 1);
  EXPECT_EQ(ran_, (Texts{"b", "late"}));
  EXPECT_EQ(runDeferredActions(), 1);
  EXPECT_EQ(ran_.back(), "later");
}

TEST_F(DeferralTest, NoActionIsNotDeferred)
{
  defer(nullptr);
  EXPECT_EQ(deferredActions(), 0);
}

TEST_F(DeferralTest, ManyThreadsDeferAtOnce)
{
  constexpr int threads = 4, each = 500;
  int ran = 0;
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t)
    workers.emplace_back([&ran] {
      for (int i = 0; i < each; ++i) {
        defer(new Action([&ran] { ++ran; }));
        co_pid();
      }
    });
  int answered = 0;
  while (answered < threads * each)
    answered += runDeferredActions();
  for (std::thread& worker : workers)
    worker.join();
  EXPECT_EQ(ran, threads * each);
  EXPECT_EQ(deferredActions(), 0);
}

TEST_F(DeferralTest, ThreadNumbersNeverComeBackToAnEarlierOne)
{
  reelhost::model::ThreadNumbers numbers;
  EXPECT_EQ(numbers.next(), 1);
  EXPECT_EQ(numbers.next(), 2);
  for (int i = 3; i < 0xFFFF; ++i)
    numbers.next();
  EXPECT_EQ(numbers.next(), 0xFFFF);
  for (int i = 0; i < 0x10000; ++i)
    ASSERT_EQ(numbers.next(), 0xFFFF);
}

} // namespace
