// SPDX-License-Identifier: Apache-2.0
#include "host/os.h"

#include <sys/single_threaded.h>

#include <atomic>
#include <cstdlib>

namespace {

/// Adds @p step and returns the new value. While the process has one thread, it uses no locked instruction.
int addTo(int* address, int step)
{
  const std::atomic_ref number(*address);
  if (__libc_single_threaded) {
    const int sum = number.load(std::memory_order_relaxed) + step;
    number.store(sum, std::memory_order_relaxed);
    return sum;
  }
  return number.fetch_add(step, std::memory_order_acq_rel) + step;
}

/// Uses malloc and free, so that any operator delete of the process can release the memory.
class MallocAllocator final : public iAllocator {
public:
  void* allocate(std::size_t size) override { return std::malloc(size ? size : 1); }
  void release(void* p) override { std::free(p); }
};

class RefCounts final : public iRefCountService {
public:
  void incRef(int* address) override { addTo(address, 1); }
  int decRef(int* address) override { return addTo(address, -1); }
};

class Services final : public iHostServices {
public:
  iAllocator& allocator() override { return allocator_; }
  iRefCountService& refCounts() override { return refCounts_; }

private:
  MallocAllocator allocator_;
  RefCounts refCounts_;
};

// Initialised before any code runs and never destroyed, because the first and the last calls of a process come here.
constinit Services services;

} // namespace

iHostServices* OS()
{
  return &services;
}
