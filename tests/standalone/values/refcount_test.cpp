// SPDX-License-Identifier: Apache-2.0
#include "host/refcount.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "host/action.h"
#include "support/ledger.h"

namespace {

/// Counts the objects that live.
struct Counted : Zr::InternalRefCount {
  explicit Counted(int& alive) : alive_(alive) { ++alive_; }
  ~Counted() override { --alive_; }

private:
  int& alive_;
};

struct Derived : Counted {
  using Counted::Counted;
};

struct Action : iExecutableAction {
  explicit Action(int& alive) : alive_(alive) { ++alive_; }
  ~Action() override { --alive_; }
  void execute() override { ran = true; }
  bool ran = false;

private:
  int& alive_;
};

} // namespace

TEST(InternalRefCount, LastReleaseDeletes)
{
  int alive = 0;
  const Counted* object = new Counted(alive);
  object->addRef();
  object->addRef();
  object->release();
  EXPECT_EQ(alive, 1);
  object->release();
  EXPECT_EQ(alive, 0);
}

TEST(InternalRefCount, CountsGoThroughTheService)
{
  int alive = 0;
  const Ledger ledger;
  {
    const Zr::Ptr<Counted> first(new Counted(alive)), second = first;
  }
  EXPECT_EQ(ledger.countsUp(), 2);
  EXPECT_EQ(ledger.countsDown(), 2);
}

TEST(InternalRefCount, ObjectOfItsOwnOnTheStackIsLeftAlone)
{
  int alive = 0;
  {
    const Counted object(alive);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
}

TEST(Ptr, NullCountsNothing)
{
  const Ledger ledger;
  const Zr::Ptr<Counted> none, copy = none, fromNull(static_cast<Counted*>(nullptr));
  EXPECT_FALSE(none);
  EXPECT_EQ(copy.get(), nullptr);
  EXPECT_EQ(fromNull.get(), nullptr);
  EXPECT_EQ(ledger.countsUp(), 0);
}

TEST(Ptr, HoldersKeepTheObject)
{
  int alive = 0;
  Zr::Ptr<Counted> first(new Derived(alive));
  {
    const Zr::Ptr<Derived> derived(new Derived(alive));
    const Zr::Ptr<Counted> second = derived;
    EXPECT_EQ(second.get(), derived.get());
    EXPECT_EQ(alive, 2);
    first = second;
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 1);
  auto& same = first;
  first = same;
  EXPECT_EQ(alive, 1);
  first = nullptr;
  EXPECT_EQ(alive, 0);
}

TEST(Ptr, ActionIsDeletedWholeThroughItsBase)
{
  int alive = 0;
  const Ledger ledger;
  {
    const Zr::Ptr<iExecutableAction> action(new Action(alive));
    const Zr::Ptr<iObject> object = action;
    action->execute();
    EXPECT_TRUE(dynamic_cast<Action&>(*object).ran);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
  EXPECT_EQ(ledger.open(), 0);
}

TEST(PtrThreads, CopiesOnManyThreadsDeleteTheObjectOnce)
{
  int alive = 0;
  std::vector<std::thread> threads;
  {
    const Zr::Ptr<Counted> object(new Counted(alive));
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([copy = object] {
        for (int i = 0; i < 10000; ++i)
          const Zr::Ptr<Counted> other = copy;
      });
  }
  for (std::thread& thread : threads)
    thread.join();
  threads.clear();
  EXPECT_EQ(alive, 0);
}
