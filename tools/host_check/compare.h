// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_HOST_CHECK_COMPARE_H
#define REELDB_HOST_CHECK_COMPARE_H

#include <set>
#include <string>
#include <vector>

namespace host_check {

/// A symbol that nobody offers.
struct Unmet {
  std::string symbol; ///< mangled
  /// What is offered under the same qualified name, with other parameters or another const: mangled, in order.
  std::vector<std::string> others;
};

/// What of @p asked is not among @p offered, ordered as it is written in C++.
std::vector<Unmet> unmet(const std::set<std::string>& asked, const std::set<std::string>& offered);

} // namespace host_check

#endif
