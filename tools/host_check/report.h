// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_HOST_CHECK_REPORT_H
#define REELDB_HOST_CHECK_REPORT_H

#include <cstddef>
#include <string>
#include <vector>

#include "host_check/compare.h"

namespace host_check {

struct Report {
  std::string library;            ///< the reel database
  std::vector<std::string> hosts; ///< the files that were checked
  std::size_t asked = 0;          ///< the number of symbols that the library needs from a host
  std::vector<Unmet> unmet;
  /// Libraries that a host needs and that were not checked: "libx.so needs liby.so".
  std::vector<std::string> notLookedAt;
};

std::string asText(const Report& report); ///< for people; ends in a newline
std::string asList(const Report& report); ///< what is unmet, one signature per line
std::string asJson(const Report& report); ///< one object, with a newline at its end

} // namespace host_check

#endif
