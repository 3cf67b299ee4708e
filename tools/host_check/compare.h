// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_HOST_CHECK_COMPARE_H
#define REELDB_HOST_CHECK_COMPARE_H

#include <set>
#include <string>
#include <vector>

namespace host_check {

/// A symbol that no library of the host exports.
struct Unmet {
  std::string symbol; ///< mangled
  /// The mangled exported symbols with the same qualified name, but with other parameters or another const, in order.
  std::vector<std::string> others;
};

/// The symbols of @p asked that are not in @p offered, ordered by their C++ text.
std::vector<Unmet> unmet(const std::set<std::string>& asked, const std::set<std::string>& offered);

} // namespace host_check

#endif
