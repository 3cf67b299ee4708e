// SPDX-License-Identifier: Apache-2.0
/// @file
/// What the host's memory and count services have done: for tests and benchmarks. Any thread.
#ifndef REELHOST_MEMORY_H
#define REELHOST_MEMORY_H

#include <cstdint>

namespace reelhost {

std::int64_t allocations(); ///< successful allocate calls since the process began
std::int64_t releases();    ///< release calls with a pointer
std::int64_t countsUp();    ///< incRef calls
std::int64_t countsDown();  ///< decRef calls
/// Holders there are now of shared bodies (texts, storages of Cookies) and of counted objects. What was done and undone
/// leaves it as it was.
std::int64_t holders();
/// The n-th allocation from now (from 1) answers null, once. 0: none.
void failAllocation(std::int64_t n);
bool allocationWillFail(); ///< whether failAllocation's n-th is still to come

} // namespace reelhost

#endif
