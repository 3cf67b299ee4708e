// SPDX-License-Identifier: Apache-2.0
//
// A program that replaces the plain operators new and delete. The library's other forms forward to the program's, so
// that memory is released by the same allocator that provided it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "ReelDbVersion.h"

namespace {

constinit int allocations = 0, releases = 0;

} // namespace

void* operator new(std::size_t size)
{
  ++allocations;
  if (void* const p = std::malloc(size ? size : 1))
    return p;
  throw std::bad_alloc();
}

void operator delete(void* p) noexcept
{
  ++releases;
  std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
  ::operator delete(p);
}

namespace {

/// The library's own operator.
template <class Function>
Function* own(const char* name)
{
  static void* const library = dlopen(REELDB_SONAME, RTLD_NOLOAD | RTLD_NOW);
  return library ? reinterpret_cast<Function*>(dlsym(library, name)) : nullptr;
}

struct Counted {
  int allocations, releases;
  bool operator==(const Counted&) const = default;
};

template <class Action>
Counted countedDuring(Action action)
{
  const Counted before{allocations, releases};
  action();
  return {allocations - before.allocations, releases - before.releases};
}

TEST(ReplacedNew, ArrayFormsForwardToIt)
{
  ASSERT_NE(reeldbDllVersionStr(), nullptr); // keeps the program linked to the library
  const auto take = own<void*(std::size_t)>("_Znam");
  const auto giveBack = own<void(void*)>("_ZdaPv");
  ASSERT_TRUE(take && giveBack);
  void* p = nullptr;
  EXPECT_EQ(countedDuring([&] { p = take(8); }), (Counted{1, 0}));
  EXPECT_EQ(countedDuring([&] { giveBack(p); }), (Counted{0, 1}));
}

// In a sanitizer build the array forms are the sanitizer's, which are not replaced.
#ifndef REELDB_SANITIZED
TEST(ReplacedNew, NothrowArrayFormsForwardToIt)
{
  const auto take = own<void*(std::size_t, const std::nothrow_t&)>("_ZnamRKSt9nothrow_t");
  const auto giveBack = own<void(void*, const std::nothrow_t&)>("_ZdaPvRKSt9nothrow_t");
  ASSERT_TRUE(take && giveBack);
  void* p = nullptr;
  EXPECT_EQ(countedDuring([&] { p = take(8, std::nothrow); }), (Counted{1, 0}));
  EXPECT_EQ(countedDuring([&] { giveBack(p, std::nothrow); }), (Counted{0, 1}));
}
#endif

TEST(ReplacedNew, NothrowFormsForwardToIt)
{
  const auto take = own<void*(std::size_t, const std::nothrow_t&)>("_ZnwmRKSt9nothrow_t");
  const auto giveBack = own<void(void*, const std::nothrow_t&)>("_ZdlPvRKSt9nothrow_t");
  ASSERT_TRUE(take && giveBack);
  void* p = nullptr;
  EXPECT_EQ(countedDuring([&] { p = take(8, std::nothrow); }), (Counted{1, 0}));
  EXPECT_EQ(countedDuring([&] { giveBack(p, std::nothrow); }), (Counted{0, 1}));
}

} // namespace
