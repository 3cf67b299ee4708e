// SPDX-License-Identifier: Apache-2.0
#include "host_check/stubs.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "host_check/signature.h"
#include "host_stubs_text.h"

namespace host_check {

namespace {

constexpr std::string_view headingStart = "// --- ";

/// What is under one heading, "// --- HEADER: NAME, NAME": classes or functions, and their stubs.
struct Section {
  std::vector<std::string> names;
  std::string text;
};

/// The source of the stubs: what comes before the first heading has no names.
std::vector<Section> sections()
{
  std::vector<Section> all(1);
  std::istringstream source(hostStubs);
  for (std::string line; std::getline(source, line);) {
    if (line.rfind(headingStart, 0) == 0) {
      all.emplace_back();
      std::istringstream names(line.substr(line.find(": ") + 1));
      for (std::string name; std::getline(names >> std::ws, name, ',');)
        all.back().names.push_back(name);
    }
    all.back().text += line + "\n";
  }
  return all;
}

/// The name of the function, class or object that a symbol belongs to.
std::string subjectOf(const std::string& symbol)
{
  std::string signature = demangled(symbol);
  for (const char* const prefix : {"typeinfo for ", "virtual thunk to "})
    if (signature.rfind(prefix, 0) == 0)
      signature.erase(0, std::string_view(prefix).size());
  return qualifiedName(signature);
}

bool belongs(const std::string& subject, const std::string& name)
{
  const std::string_view rest = std::string_view(subject).substr(std::min(name.size(), subject.size()));
  return subject.rfind(name, 0) == 0 && (rest.empty() || rest.rfind("::", 0) == 0 || rest[0] == '<');
}

/// The section whose name is the longest of those that the symbol belongs to.
std::size_t sectionOf(const std::vector<Section>& all, const std::string& symbol)
{
  const std::string subject = subjectOf(symbol);
  std::size_t best = 0, length = 0;
  for (std::size_t i = 0; i < all.size(); ++i)
    for (const std::string& name : all[i].names)
      if (name.size() > length && belongs(subject, name)) {
        best = i;
        length = name.size();
      }
  if (length == 0)
    throw std::logic_error(demangled(symbol) + ": has no stub (is the library newer than this program?)");
  return best;
}

} // namespace

std::string stubsFor(const std::vector<Unmet>& unmet)
{
  const std::vector<Section> all = sections();
  std::set<std::size_t> wanted;
  if (!unmet.empty())
    wanted.insert(0);
  for (const Unmet& one : unmet)
    wanted.insert(sectionOf(all, one.symbol));
  std::string text;
  for (const std::size_t i : wanted)
    text += all[i].text;
  return text;
}

} // namespace host_check
