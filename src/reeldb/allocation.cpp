// SPDX-License-Identifier: Apache-2.0
//
// The allocation operators the library exports, all led to the host's allocator. A program that links the library
// allocates there too. The sized and the aligned forms stay the standard library's: the sized ones come here by way of
// the plain ones, the aligned ones pair with each other.
#include <new>

#include "host/os.h"

#ifndef __clang__
#pragma GCC diagnostic ignored "-Wsized-deallocation"
#endif

void* operator new(std::size_t size)
{
  for (;;) {
    // One byte for an empty object: every object has an address of its own.
    if (void* const p = OS()->allocator().allocate(size ? size : 1))
      return p;
    const std::new_handler makeRoom = std::get_new_handler();
    if (!makeRoom)
      throw std::bad_alloc();
    makeRoom();
  }
}

void* operator new[](std::size_t size)
{
  return ::operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}

// By way of the array form: what operator delete[] gives back was made by operator new[], whoever replaces the two.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
  try {
    return ::operator new[](size);
  } catch (...) {
    return nullptr;
  }
}

void operator delete(void* p) noexcept
{
  if (p)
    OS()->allocator().release(p);
}

void operator delete[](void* p) noexcept
{
  ::operator delete(p);
}

void operator delete(void* p, const std::nothrow_t&) noexcept
{
  ::operator delete(p);
}

void operator delete[](void* p, const std::nothrow_t&) noexcept
{
  ::operator delete[](p);
}
