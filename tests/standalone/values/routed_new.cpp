// SPDX-License-Identifier: Apache-2.0
//
// The program's operator new, as the library replaces it: so nothing behind OS() can come to need it unnoticed. Weak,
// because the runtime of one sanitizer (clang's for threads) brings one that cannot be replaced.
#include <cstddef>
#include <new>

#include "host/os.h"

__attribute__((weak)) void* operator new(std::size_t size)
{
  if (void* p = OS()->allocator().allocate(size))
    return p;
  throw std::bad_alloc();
}

__attribute__((weak)) void operator delete(void* p) noexcept
{
  if (p)
    OS()->allocator().release(p);
}

__attribute__((weak)) void operator delete(void* p, std::size_t) noexcept
{
  operator delete(p);
}
