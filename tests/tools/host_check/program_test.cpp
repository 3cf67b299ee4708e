// SPDX-License-Identifier: Apache-2.0
//
// The program as its users meet it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "cli/process.h"
#include "support/temp_folder.h"

using reeldb_tests::ProcessResult;
using reeldb_tests::runProcess;

namespace {

ProcessResult check(std::vector<std::string> words)
{
  words.insert(words.begin(), HOST_CHECK);
  return runProcess(words);
}

bool holds(const std::string& text, const std::string& part)
{
  return text.find(part) != std::string::npos;
}

} // namespace

TEST(HostCheck, TheStandaloneHostHasAll)
{
  const ProcessResult result = check({STANDALONE_HOST, HOST_VALUES});
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_TRUE(holds(result.out, "symbols that it needs from a host are there\n")) << result.out;
  EXPECT_EQ(result.err, "");
}

TEST(HostCheck, NoLibraryIsAUsageError)
{
  const ProcessResult result = check({});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb-host-check: LIB is required (see reeldb-host-check --help)\n");
}

TEST(HostCheck, LibraryThatImportsNothingIsNotTheReelDatabase)
{
  const ProcessResult result = check({"--library", HOST_VALUES, STANDALONE_HOST});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_TRUE(holds(result.err, ": needs nothing from a host (is it the reel database?)\n")) << result.err;
}

TEST(HostCheck, WithoutItsValuesAHostIsNotWhole)
{
  const ProcessResult result = check({STANDALONE_HOST});
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(holds(result.out, "\nmissing:\n  Array::Array()\n")) << result.out;
  EXPECT_FALSE(holds(result.out, "  co_pid()\n")) << result.out;
  EXPECT_TRUE(holds(result.out, "needs libreelhostvalues.so.14 (name it, too, if it is a part of the host)\n"))
      << result.out;
}

TEST(HostCheck, TheValuesAloneAreNotAHost)
{
  const ProcessResult result = check({HOST_VALUES});
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(holds(result.out, "\n  co_pid()\n")) << result.out;
  EXPECT_FALSE(holds(result.out, "Array::Array()")) << result.out;
  EXPECT_FALSE(holds(result.out, "with other parameters")) << result.out;
}

TEST(HostCheck, MistakesAreDistinguished)
{
  const ProcessResult result = check({BROKEN_HOST, HOST_VALUES});
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(holds(result.out, "found only with other parameters:\n"
                                "  Edit::isImported() const\n"
                                "      found: Edit::isImported()\n"
                                "  Edit::setDirty(bool)\n"
                                "      found: Edit::setDirty(int)\n"))
      << result.out;
  EXPECT_TRUE(holds(result.out, "\n  Edit::make_original(bool, bool)\n")) << result.out;
  EXPECT_FALSE(holds(result.out, "co_pid")) << result.out;
}

TEST(HostCheck, AsJsonItCanBeRead)
{
  const ProcessResult result = check({"--json", BROKEN_HOST, HOST_VALUES});
  EXPECT_EQ(result.code, 1);
  const auto json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["hosts"], nlohmann::json({BROKEN_HOST, HOST_VALUES}));
  EXPECT_GT(json["asked"], json["unmet"].size());
  int others = 0;
  for (const auto& unmet : json["unmet"])
    others += static_cast<int>(unmet["others"].size());
  EXPECT_EQ(others, 2);
}

TEST(HostCheck, AnotherLibraryMayBeNamed)
{
  const ProcessResult result = check({"--library", REELDB_LIBRARY, STANDALONE_HOST, HOST_VALUES});
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_EQ(result.out.rfind(std::string(REELDB_LIBRARY) + ": all ", 0), 0u) << result.out;
}

TEST(HostCheck, WithoutAHostTheListIsAllThatIsAsked)
{
  const ProcessResult result = check({"--list"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out.rfind("Array::Array()\n", 0), 0u) << result.out;
  EXPECT_TRUE(holds(result.out, "\nco_pid()\n")) << result.out;
  const auto json = nlohmann::json::parse(check({"--list", "--json"}).out);
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), json["asked"]);
  EXPECT_EQ(json["unmet"].size(), json["asked"]);
}

TEST(HostCheck, TheListLeavesOutWhatTheLibrariesHave)
{
  const ProcessResult result = check({"--list", HOST_VALUES});
  EXPECT_EQ(result.code, 0);
  EXPECT_FALSE(holds(result.out, "Array::Array()\n")) << result.out;
  EXPECT_TRUE(holds(result.out, "\nco_pid()\n")) << result.out;
  EXPECT_EQ(check({"--list", STANDALONE_HOST, HOST_VALUES}).out, "");
}

namespace {

/// Makes a library of the stubs that @p words print, and checks it together with @p others.
ProcessResult checkOfStubs(std::vector<std::string> words, const std::vector<std::string>& others)
{
  const reeldb_tests::TempFolder folder;
  words.insert(words.begin(), "--stubs");
  const ProcessResult stubs = check(words);
  EXPECT_EQ(stubs.code, 0) << stubs.err;
  folder.write("my_host.cpp", stubs.out);
  const std::string library = folder / "libmyhost.so";
  const ProcessResult compiled = runProcess({CXX, "-std=c++17", "-Wall", "-Wextra", "-fPIC", "-shared", "-I", INCLUDES,
                                             folder / "my_host.cpp", "-o", library});
  EXPECT_EQ(compiled.code, 0) << compiled.err;
  std::vector<std::string> host = others;
  host.push_back(library);
  return check(host);
}

} // namespace

TEST(HostCheck, TheStubsAreACompleteHost)
{
  const ProcessResult result = checkOfStubs({}, {});
  EXPECT_EQ(result.code, 0) << result.out << result.err;
}

TEST(HostCheck, TheStubsBesideTheValuesAreTheRest)
{
  const ProcessResult result = checkOfStubs({HOST_VALUES}, {HOST_VALUES});
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  const std::string stubs = check({"--stubs", HOST_VALUES}).out;
  EXPECT_TRUE(holds(stubs, "\nint co_pid() { unwritten(\"co_pid\"); }\n")) << stubs;
  EXPECT_FALSE(holds(stubs, "Array::Array()")) << stubs;
  EXPECT_EQ(check({"--stubs", STANDALONE_HOST, HOST_VALUES}).out, "");
}

TEST(HostCheck, WhatCannotBeReadIsNotChecked)
{
  const ProcessResult gone = check({"no/such/lib.so"});
  EXPECT_EQ(gone.code, 2);
  EXPECT_EQ(gone.err, "reeldb-host-check: no/such/lib.so: cannot be opened (No such file or directory)\n");
  EXPECT_EQ(gone.out, "");
  EXPECT_EQ(check({"/"}).err, "reeldb-host-check: /: is a folder\n");
  EXPECT_EQ(check({"--library", "/proc/self/status", HOST_VALUES}).code, 2);
}

TEST(HostCheck, WrongCommandLineIsNotChecked)
{
  EXPECT_EQ(check({}).code, 2);
  EXPECT_EQ(check({"--no-such-option", HOST_VALUES}).code, 2);
  EXPECT_EQ(check({"--json"}).code, 2);
  EXPECT_EQ(check({"--stubs", "--json"}).code, 2);
  EXPECT_EQ(check({"--stubs", "--list"}).code, 2);
}

TEST(HostCheck, TheManualPageHasEveryOptionOfTheHelp)
{
  std::ifstream file(MANUAL_PAGE);
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  const std::string help = check({"--help"}).out;
  int options = 0;
  for (std::size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2)) {
    const std::string name = help.substr(at + 2, help.find_first_of(" \n", at) - at - 2);
    EXPECT_TRUE(holds(page, "\\-\\-" + name)) << name;
    ++options;
  }
  EXPECT_EQ(options, 5);
}

TEST(HostCheck, HelpListsTheExitCodes)
{
  const ProcessResult result = check({"--help"});
  EXPECT_EQ(result.code, 0);
  EXPECT_TRUE(holds(result.out, "Exit codes: 0 all symbols are there, 1 some are missing, 2 the check failed.\n"))
      << result.out;
  EXPECT_EQ(result.err, "");
}
