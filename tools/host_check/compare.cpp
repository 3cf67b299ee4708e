// SPDX-License-Identifier: Apache-2.0
#include "host_check/compare.h"

#include <algorithm>
#include <map>

#include "host_check/signature.h"

namespace host_check {

std::vector<Unmet> unmet(const std::set<std::string>& asked, const std::set<std::string>& offered)
{
  std::map<std::string, std::vector<std::string>> byName;
  for (const std::string& symbol : offered)
    byName[qualifiedName(demangled(symbol))].push_back(symbol);

  std::vector<Unmet> result;
  for (const std::string& symbol : asked)
    if (offered.count(symbol) == 0) {
      const auto same = byName.find(qualifiedName(demangled(symbol)));
      result.push_back({symbol, same == byName.end() ? std::vector<std::string>() : same->second});
    }
  std::stable_sort(result.begin(), result.end(),
                   [](const Unmet& a, const Unmet& b) { return demangled(a.symbol) < demangled(b.symbol); });
  return result;
}

} // namespace host_check
