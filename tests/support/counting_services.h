// SPDX-License-Identifier: Apache-2.0
//
// Defines OS() in front of the host's, for programs that link the object library counting_services: whatever asks for
// memory or counts references is counted and passed on, and one allocation can be made to fail. Any thread.
#ifndef REELDB_TESTS_SUPPORT_COUNTING_SERVICES_H
#define REELDB_TESTS_SUPPORT_COUNTING_SERVICES_H

#include <cstdint>

namespace reeldb_tests {

std::int64_t allocations(); ///< successful allocate calls since the process began
std::int64_t releases();    ///< release calls with a pointer
std::int64_t memoryInUse(); ///< what was allocated and not released, in calls
std::int64_t countsUp();    ///< incRef calls
std::int64_t countsDown();  ///< decRef calls
/// How many holders the shared bodies and counted objects have beyond the first of each. A body that was left behind
/// shows in memoryInUse, a reference to one that stays shows here.
std::int64_t furtherHolders();

/// The n-th allocation from now (from 1) returns null, once. 0: none.
void failAllocation(std::int64_t n);
void failAllocationsFrom(std::int64_t n); ///< so do all after it, until failAllocation(0)
bool allocationWillFail();                ///< whether the n-th of either is still to come

} // namespace reeldb_tests

#endif
