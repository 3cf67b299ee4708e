// SPDX-License-Identifier: Apache-2.0
#include "host/os.h"

#include <sys/single_threaded.h>

#include <atomic>
#include <cstdlib>

#include "reelhost/memory.h"
#include "values/holders.h"

namespace {

/// Adds @p step and returns the new value. While the process has one thread this takes no locked instruction.
template <class Atomic>
auto addTo(Atomic&& number, int step)
{
  if (__libc_single_threaded) {
    const auto sum = number.load(std::memory_order_relaxed) + step;
    number.store(sum, std::memory_order_relaxed);
    return sum;
  }
  return number.fetch_add(step, std::memory_order_acq_rel) + step;
}

constinit std::atomic<std::int64_t> allocateCalls, releaseCalls, incRefCalls, decRefCalls, firstHolders;
constinit std::atomic<std::int64_t> untilFailure; // 0: no allocation is to fail

/// Whether this is the allocation that was told to fail. Out of the way of all others, to which it is no more than a
/// look at a number.
__attribute__((noinline)) bool isTheOneToFail()
{
  std::int64_t left = untilFailure.load(std::memory_order_relaxed);
  while (left > 0 && !untilFailure.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
  }
  return left == 1;
}

bool mustFail()
{
  return untilFailure.load(std::memory_order_relaxed) > 0 && isTheOneToFail();
}

/// malloc and free underneath, so that memory may be given back by whichever operator delete a process ended up with.
class MallocAllocator final : public iAllocator {
public:
  void* allocate(std::size_t size) override
  {
    void* p = mustFail() ? nullptr : std::malloc(size ? size : 1);
    if (p)
      addTo(allocateCalls, 1);
    return p;
  }

  void release(void* p) override
  {
    if (p)
      addTo(releaseCalls, 1);
    std::free(p);
  }
};

class RefCounts final : public iRefCountService {
public:
  void incRef(int* address) override
  {
    addTo(incRefCalls, 1);
    addTo(std::atomic_ref(*address), 1);
  }

  int decRef(int* address) override
  {
    addTo(decRefCalls, 1);
    return addTo(std::atomic_ref(*address), -1);
  }
};

class Services final : public iHostServices {
public:
  iAllocator& allocator() override { return allocator_; }
  iRefCountService& refCounts() override { return refCounts_; }

private:
  MallocAllocator allocator_;
  RefCounts refCounts_;
};

// Ready before any code runs, and never destroyed: the first and the last calls of a process come here.
constinit Services services;

} // namespace

iHostServices* OS()
{
  return &services;
}

namespace reelhost {

std::int64_t allocations()
{
  return allocateCalls.load(std::memory_order_relaxed);
}

std::int64_t releases()
{
  return releaseCalls.load(std::memory_order_relaxed);
}

std::int64_t countsUp()
{
  return incRefCalls.load(std::memory_order_relaxed);
}

std::int64_t countsDown()
{
  return decRefCalls.load(std::memory_order_relaxed);
}

void countFirstHolder()
{
  addTo(firstHolders, 1);
}

std::int64_t holders()
{
  return firstHolders.load(std::memory_order_relaxed) + countsUp() - countsDown();
}

void failAllocation(std::int64_t n)
{
  untilFailure.store(n, std::memory_order_relaxed);
}

bool allocationWillFail()
{
  return untilFailure.load(std::memory_order_relaxed) > 0;
}

} // namespace reelhost
