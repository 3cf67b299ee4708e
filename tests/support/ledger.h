// SPDX-License-Identifier: Apache-2.0
//
// How tests look at memory and counts. All of the program's operator new goes to OS()->allocator()
// too (routed_new.cpp), as in a program that is linked with the library; a test that counts on that says
// NEEDS_ROUTED_NEW.
#ifndef REELDB_TESTS_SUPPORT_LEDGER_H
#define REELDB_TESTS_SUPPORT_LEDGER_H

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

#include "support/counting_services.h"

/// What happened since it was made.
class Ledger {
public:
  std::int64_t allocations() const { return reeldb_tests::allocations() - allocations_; }
  std::int64_t open() const { return allocations() - (reeldb_tests::releases() - releases_); } ///< not yet released
  std::int64_t countsUp() const { return reeldb_tests::countsUp() - up_; }
  std::int64_t countsDown() const { return reeldb_tests::countsDown() - down_; }

private:
  std::int64_t allocations_ = reeldb_tests::allocations(), releases_ = reeldb_tests::releases();
  std::int64_t up_ = reeldb_tests::countsUp(), down_ = reeldb_tests::countsDown();
};

inline bool newIsRouted()
{
  const Ledger ledger;
  ::operator delete(::operator new(1));
  return ledger.allocations() == 1;
}

#define NEEDS_ROUTED_NEW                                                                                               \
  if (!newIsRouted())                                                                                                  \
  GTEST_SKIP() << "a sanitizer or valgrind has put its operator new in the place of the one that goes through OS()"

/// Whether @p action ends in std::bad_alloc when its n-th allocation (from 1) fails.
template <class Action>
bool failsAt(int n, Action action)
{
  bool failed = false;
  reeldb_tests::failAllocation(n);
  try {
    action();
  } catch (const std::bad_alloc&) {
    failed = true;
  }
  reeldb_tests::failAllocation(0);
  return failed;
}

template <class Action>
bool failsWithoutMemory(Action action)
{
  return failsAt(1, action);
}

/// Runs @p scenario again and again, and makes its first allocation fail, then its second and so on, until a run meets
/// no failure. Returns the number of runs that ended in std::bad_alloc, or -1 if one of them kept memory.
template <class Scenario>
int failEachAllocation(Scenario scenario)
{
  for (int failures = 0;; ++failures) {
    const Ledger ledger;
    const bool failed = failsAt(failures + 1, scenario);
    if (ledger.open() != 0)
      return -1;
    if (!failed)
      return failures;
  }
}

#endif
