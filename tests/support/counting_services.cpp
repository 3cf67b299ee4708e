// SPDX-License-Identifier: Apache-2.0
#include "support/counting_services.h"

#include <atomic>

#include "host/os.h"
#include "support/hosts_own.h"

namespace {

// Nothing here has a constructor: the library allocates before those of the program run.
constinit std::atomic<std::int64_t> allocateCalls, releaseCalls, incRefCalls, decRefCalls;
constinit std::atomic<std::int64_t> firstReferences, lastReferences;
constinit std::atomic<std::int64_t> untilFailure; // 0: no allocation is to fail
constinit std::atomic<bool> failsAlways;          // the one that is to fail, and all after it
constinit std::atomic<iHostServices*> hosts;

iHostServices& hostsServices()
{
  iHostServices* services = hosts.load(std::memory_order_relaxed);
  if (!services) {
    services = reeldb_tests::hostsOwn<iHostServices*()>("_Z2OSv")();
    hosts.store(services, std::memory_order_relaxed);
  }
  return *services;
}

/// Whether this is an allocation that is to fail.
bool mustFail()
{
  std::int64_t left = untilFailure.load(std::memory_order_relaxed);
  while (left > 0 && !untilFailure.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
  }
  return left == 1 || (left == 0 && failsAlways.load(std::memory_order_relaxed));
}

class CountingAllocator final : public iAllocator {
public:
  void* allocate(std::size_t size) override
  {
    void* const p = mustFail() ? nullptr : hostsServices().allocator().allocate(size);
    if (p)
      ++allocateCalls;
    return p;
  }

  void release(void* p) override
  {
    if (p)
      ++releaseCalls;
    hostsServices().allocator().release(p);
  }
};

class CountingRefCounts final : public iRefCountService {
public:
  void incRef(int* address) override
  {
    ++incRefCalls;
    // Nobody else can hold what has no holder yet.
    if (std::atomic_ref(*address).load(std::memory_order_relaxed) == 0)
      ++firstReferences;
    hostsServices().refCounts().incRef(address);
  }

  int decRef(int* address) override
  {
    ++decRefCalls;
    const int left = hostsServices().refCounts().decRef(address);
    if (left == 0)
      ++lastReferences;
    return left;
  }
};

class CountingServices final : public iHostServices {
public:
  iAllocator& allocator() override { return allocator_; }
  iRefCountService& refCounts() override { return refCounts_; }

private:
  CountingAllocator allocator_;
  CountingRefCounts refCounts_;
};

constinit CountingServices services;

} // namespace

iHostServices* OS()
{
  return &services;
}

namespace reeldb_tests {

std::int64_t allocations()
{
  return allocateCalls;
}

std::int64_t releases()
{
  return releaseCalls;
}

std::int64_t memoryInUse()
{
  return allocations() - releases();
}

std::int64_t countsUp()
{
  return incRefCalls;
}

std::int64_t countsDown()
{
  return decRefCalls;
}

// The first holder of a shared body comes with it; that of a counted object comes by incRef. Either goes with the
// decRef that leaves 0.
std::int64_t furtherHolders()
{
  return countsUp() - firstReferences - (countsDown() - lastReferences);
}

void failAllocation(std::int64_t n)
{
  failsAlways = false;
  untilFailure = n;
}

void failAllocationsFrom(std::int64_t n)
{
  untilFailure = n;
  failsAlways = true;
}

bool allocationWillFail()
{
  return untilFailure > 0;
}

} // namespace reeldb_tests
