// SPDX-License-Identifier: Apache-2.0
//
// The program's operator new, as the library replaces it, so that code behind OS() that needs it is noticed. The
// operator of clang's thread sanitizer cannot be replaced.
#include <cstddef>
#include <new>

#include "host/os.h"

#ifdef __clang__
#if __has_feature(thread_sanitizer)
#define SANITIZER_HAS_NEW
#endif
#endif

#ifndef SANITIZER_HAS_NEW

void* operator new(std::size_t size)
{
  if (void* p = OS()->allocator().allocate(size))
    return p;
  throw std::bad_alloc();
}

void operator delete(void* p) noexcept
{
  if (p)
    OS()->allocator().release(p);
}

void operator delete(void* p, std::size_t) noexcept
{
  operator delete(p);
}

#endif
