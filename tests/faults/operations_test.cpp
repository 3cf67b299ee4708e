// SPDX-License-Identifier: Apache-2.0
//
// No operation of the library is left out.
#include <cxxabi.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>

#include "faults/library_calls.h"
#include "faults/scene.h"

namespace reeldb_tests {

namespace {

using Names = std::set<std::string>;

std::string demangled(const std::string& symbol)
{
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status),
                                                         &std::free);
  return status == 0 ? name.get() : symbol;
}

bool startsWith(const std::string& text, const char* start)
{
  return text.compare(0, std::char_traits<char>::length(start), start) == 0;
}

/// The functions among the exported names. Data has no parameters, and symbols of types have a prefix.
Names exportedFunctions()
{
  std::ifstream list(REELDB_EXPORTS);
  Names functions;
  for (std::string symbol; std::getline(list, symbol);) {
    const std::string name = demangled(symbol);
    if (name.find('(') != std::string::npos && !startsWith(name, "virtual thunk to "))
      functions.insert(name);
  }
  return functions;
}

/// Operations that cannot fail: destructors, and the release of memory. The scenarios of constructors also run them.
bool cannotFail(const std::string& name)
{
  return name.find("::~") != std::string::npos || startsWith(name, "operator delete");
}

TEST(Operations, EachExportedFunctionHasAScenarioButThoseThatCannotFail)
{
  Names covered;
  for (const Scenario& scenario : allScenarios())
    covered.insert(scenario.operation);
  const Names exported = exportedFunctions();
  ASSERT_GT(exported.size(), 90U) << "the list of exported names was not found whole";
  for (const std::string& name : exported)
    EXPECT_NE(covered.count(name) != 0, cannotFail(name)) << name;
  for (const std::string& name : covered)
    EXPECT_EQ(exported.count(name), 1U) << name << " is not exported";
}

TEST(Operations, EachScenarioHasANameOfItsOwn)
{
  Names seen;
  for (const Scenario& scenario : allScenarios()) {
    const std::string name = (::testing::Message() << scenario).GetString();
    EXPECT_TRUE(seen.insert(name).second) << name;
  }
}

TEST(Operations, EveryImportedSymbolIsInterceptedExceptInheritedVirtuals)
{
  const LibraryCalls& calls = LibraryCalls::the();
  if (!calls.unavailable().empty())
    GTEST_SKIP() << calls.unavailable();
  Names others;
  for (const std::string& symbol : calls.notLed())
    if (const std::string name = demangled(symbol); !startsWith(name, "typeinfo for "))
      others.insert(name);
  EXPECT_EQ(others, (Names{"ArrayRec::compare(ArrayRec const&) const", "ArrayRec::operator!=(ArrayRec const&) const",
                           "ArrayRec::operator==(ArrayRec const&) const", "ArrayRec::printOn(GrowString&) const",
                           "ProjectListener::handleLogDirtied(Cookie const&)",
                           "ProjectListener::handleLogStorage(Cookie const&, bool)",
                           "ProjectListener::handleLogsDeletion(CookieVec const&, LightweightString<char>)",
                           "ProjectListener::handleLogsModification(CookieVec const&)"}));
}

} // namespace

} // namespace reeldb_tests
