// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_HOST_CHECK_STUBS_H
#define REELDB_HOST_CHECK_STUBS_H

#include <string>
#include <vector>

#include "host_check/compare.h"

namespace host_check {

/// A C++ source with a stub for each operation of the classes and groups of functions in which a symbol is unmet.
/// Throws std::logic_error for a symbol that no stub meets.
std::string stubsFor(const std::vector<Unmet>& unmet);

} // namespace host_check

#endif
