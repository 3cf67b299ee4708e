// SPDX-License-Identifier: Apache-2.0
//
// The exported allocation operators. All forward to the host's allocator, so a program that links the library uses it,
// too. The sized and the aligned forms are those of the standard library: the sized forms call the plain ones defined
// here, and the aligned forms pair with each other.
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

// Calls the array form, so that operator delete[] frees memory of the matching operator new[], even if a program
// replaces both.
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
