// SPDX-License-Identifier: Apache-2.0
#include "host_check/report.h"

#include <map>
#include <set>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "host_check/signature.h"

namespace host_check {

namespace {

/// The text for a symbol. If two symbols have the same text, as the constructors of a whole object and of a base have,
/// the mangled name is added.
class Signatures {
public:
  explicit Signatures(const std::vector<Unmet>& all)
  {
    for (const Unmet& unmet : all) {
      note(unmet.symbol);
      for (const std::string& other : unmet.others)
        note(other);
    }
  }

  std::string of(const std::string& symbol) const
  {
    const std::string signature = demangled(symbol);
    return symbols_.at(signature).size() > 1 ? fmt::format("{} [{}]", signature, symbol) : signature;
  }

private:
  void note(const std::string& symbol) { symbols_[demangled(symbol)].insert(symbol); }
  std::map<std::string, std::set<std::string>> symbols_;
};

std::string sectionOf(const Report& report, const char* title, bool withOthers)
{
  const Signatures signatures(report.unmet);
  std::string text;
  for (const Unmet& unmet : report.unmet) {
    if (unmet.others.empty() == withOthers)
      continue;
    text += fmt::format("  {}\n", signatures.of(unmet.symbol));
    for (const std::string& other : unmet.others)
      text += fmt::format("      found: {}\n", signatures.of(other));
  }
  return text.empty() ? text : fmt::format("{}:\n{}", title, text);
}

} // namespace

std::string asText(const Report& report)
{
  if (report.unmet.empty())
    return fmt::format("{}: all {} symbols that it needs from a host are there\n", report.library, report.asked);
  std::string text = fmt::format("{}: needs {} symbols from a host, and {} of them {} not there\n", report.library,
                                 report.asked, report.unmet.size(), report.unmet.size() == 1 ? "is" : "are");
  text += sectionOf(report, "missing", false);
  text += sectionOf(report, "found only with other parameters", true);
  for (const std::string& pair : report.notLookedAt)
    text += fmt::format("not checked: {} (name it, too, if it is a part of the host)\n", pair);
  return text;
}

std::string asList(const Report& report)
{
  const Signatures signatures(report.unmet);
  std::string text;
  for (const Unmet& unmet : report.unmet)
    text += signatures.of(unmet.symbol) + "\n";
  return text;
}

std::string asJson(const Report& report)
{
  using nlohmann::ordered_json;
  ordered_json unmet = ordered_json::array();
  for (const Unmet& one : report.unmet) {
    ordered_json others = ordered_json::array();
    for (const std::string& other : one.others)
      others.push_back({{"symbol", other}, {"signature", demangled(other)}});
    unmet.push_back({{"symbol", one.symbol}, {"signature", demangled(one.symbol)}, {"others", others}});
  }
  const ordered_json all = {{"library", report.library},
                            {"hosts", report.hosts},
                            {"asked", report.asked},
                            {"unmet", unmet},
                            {"notLookedAt", report.notLookedAt}};
  // Paths may contain invalid UTF-8; invalid bytes become U+FFFD.
  return all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace host_check
