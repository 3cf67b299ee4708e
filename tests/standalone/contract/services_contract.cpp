// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "host/os.h"
#include "host/refcount.h"
#include "host_fixture.h"

// With this option a sanitizer lets malloc return null instead of ending the process. Other builds ignore it.
extern "C" const char* __asan_default_options()
{
  return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options()
{
  return "allocator_may_return_null=1";
}

namespace {

HOST_CONTRACT(Services);

class Counted : public Zr::InternalRefCount {
public:
  explicit Counted(int& alive) : alive_(alive) { ++alive_; }
  ~Counted() override { --alive_; }

private:
  int& alive_;
};

void* allocated = nullptr;
__attribute__((constructor)) void allocateBeforeMain()
{
  allocated = OS()->allocator().allocate(100);
}

TEST_P(Services, AreThereBeforeMain)
{
  PROMISE("host/os.h", "never null, always the same, usable from any thread, before main() and after exit().");
  EXPECT_NE(allocated, nullptr);
}

TEST_P(Services, AreOneObject)
{
  PROMISE("host/os.h", "never null, always the same, usable from any thread, before main() and after exit().");
  ASSERT_NE(OS(), nullptr);
  EXPECT_EQ(OS(), OS());
}

TEST_P(Services, MemoryIsAlignedForAnything)
{
  PROMISE("host/os.h",
          "Returns @p size bytes aligned for any object without extended alignment, or null when there is no memory.");
  for (std::size_t size : {1u, 7u, 24u, 4097u}) {
    void* const memory = OS()->allocator().allocate(size);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(std::max_align_t), 0u) << size;
    std::memset(memory, 0xAB, size);
    OS()->allocator().release(memory);
  }
}

TEST_P(Services, AskingForNothingGivesMemoryOfItsOwn)
{
  PROMISE("host/os.h",
          "Returns @p size bytes aligned for any object without extended alignment, or null when there is no memory.");
  void* const first = OS()->allocator().allocate(0);
  void* const second = OS()->allocator().allocate(0);
  EXPECT_NE(first, second);
  OS()->allocator().release(first);
  OS()->allocator().release(second);
}

TEST_P(Services, MoreThanThereIsGivesNull)
{
  PROMISE("host/os.h", "or null when there is no memory.");
  volatile std::size_t tooMuch = SIZE_MAX / 2;
  EXPECT_EQ(OS()->allocator().allocate(tooMuch), nullptr);
}

TEST_P(Services, NullIsReleasedWithoutHarm)
{
  PROMISE("host/os.h", "Frees memory from allocate; null does nothing.");
  OS()->allocator().release(nullptr);
}

TEST_P(Services, ACountReturnsTheRest)
{
  PROMISE("host/os.h", "Subtracts one from `*address` and returns the new value.");
  int count = 1;
  OS()->refCounts().incRef(&count);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(OS()->refCounts().decRef(&count), 1);
  EXPECT_EQ(OS()->refCounts().decRef(&count), 0);
}

// The identifier of a deferred creation is counted up on a worker and down on the main thread.
TEST_P(Services, CountsHoldAcrossThreads)
{
  PROMISE("host/os.h", "Any thread may call it: the identifier of a deferred reel creation is counted up on a worker "
                       "thread and down on the main thread.");
  // In short rounds that both threads begin together. Otherwise a busy machine runs one thread after the other, and
  // finds nothing.
  constexpr int rounds = 10000, changes = 200;
  iRefCountService& service = OS()->refCounts();
  const auto onTwoThreads = [&](const auto& change) {
    std::atomic<int> arrived{0};
    const auto run = [&] {
      for (int round = 1; round <= rounds; ++round) {
        ++arrived;
        for (int spins = 0; arrived < 2 * round; ++spins)
          if (spins > 200)
            std::this_thread::yield();
        for (int i = 0; i < changes; ++i)
          change();
      }
    };
    std::thread other(run);
    run();
    other.join();
  };
  int count = 1;
  onTwoThreads([&] { service.incRef(&count); });
  EXPECT_EQ(count, 1 + 2 * rounds * changes);
  onTwoThreads([&] { service.decRef(&count); });
  EXPECT_EQ(count, 1);
}

TEST_P(Services, AnObjectEndsWithItsLastHolder)
{
  PROMISE("host/refcount.h", "The count starts at 0, and the object deletes itself when the last holder releases it.");
  int alive = 0;
  {
    Zr::Ptr<Counted> first(new Counted(alive));
    Zr::Ptr<Counted> second(first);
    first = nullptr;
    EXPECT_EQ(alive, 1);
    const Zr::Ptr<Counted>& same = second;
    second = same;
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
}

TEST_P(Services, AnObjectIsHeldByWhatItIsDerivedFromToo)
{
  PROMISE("host/refcount.h", "Becomes one more holder, through a base class of the object.");
  int alive = 0;
  {
    Zr::Ptr<Counted> made(new Counted(alive));
    const Zr::Ptr<Zr::InternalRefCount> held(made);
    made = nullptr;
    EXPECT_EQ(alive, 1);
    EXPECT_NE(held.get(), nullptr);
    const Zr::Ptr<Zr::InternalRefCount> none(made);
    EXPECT_EQ(none.get(), nullptr);
  }
  EXPECT_EQ(alive, 0);
}

} // namespace
