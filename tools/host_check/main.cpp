// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "host_check/dynamic_symbols.h"
#include "host_check/report.h"
#include "host_check/stubs.h"

namespace {

namespace fs = std::filesystem;

constexpr int allThere = 0, somethingMissing = 1, notChecked = 2;

/// The library of this program's installation or build.
fs::path libraryBeside()
{
  const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
  for (const char* const place : {REELDB_LIBRARY_FOLDER, "../lib"}) {
    fs::path file = (folder / place / REELDB_LIBRARY).lexically_normal();
    if (fs::exists(file))
      return file;
  }
  throw std::runtime_error(folder.string() + ": " REELDB_LIBRARY " not found (looked in " REELDB_LIBRARY_FOLDER
                                             " and ../lib from there; --library names one)");
}

/// Whether the library belongs to the compiler's runtime or to the system, and so is not a part of a host.
bool isRuntime(const std::string& library)
{
  for (const char* const name : {"libstdc++.so", "libgcc_s.so", "libm.so", "libc.so", "libc++", "libpthread.so",
                                 "libdl.so", "librt.so", "ld-linux", "libasan.so", "libtsan.so", "libubsan.so"})
    if (library.rfind(name, 0) == 0)
      return true;
  return false;
}

/// The names of a library in other libraries and on the command line: its file name, and the name that links lead to.
std::vector<std::string> namesOf(const std::vector<std::string>& files)
{
  std::vector<std::string> names;
  for (const std::string& file : files) {
    names.push_back(fs::path(file).filename().string());
    names.push_back(fs::weakly_canonical(file).filename().string());
  }
  return names;
}

host_check::Report check(const fs::path& library, const std::vector<std::string>& hosts)
{
  host_check::Report report;
  report.library = library.string();
  report.hosts = hosts;
  const std::vector<std::string> known = namesOf(hosts);
  std::set<std::string> offered;
  for (const std::string& host : hosts) {
    host_check::DynamicSymbols symbols = host_check::readDynamicSymbols(host);
    offered.merge(symbols.offered);
    for (const std::string& needed : symbols.libraries) {
      // libx.so.14 may have been named as libx.so.14.0.0, or the other way round.
      const auto isIt = [&](const std::string& name) {
        return name.rfind(needed, 0) == 0 || needed.rfind(name, 0) == 0;
      };
      if (!isRuntime(needed) && needed != REELDB_LIBRARY && std::none_of(known.begin(), known.end(), isIt))
        report.notLookedAt.push_back(fmt::format("{} needs {}", host, needed));
    }
  }
  const std::set<std::string> asked = host_check::readDynamicSymbols(library).asked;
  if (asked.empty())
    throw std::runtime_error(library.string() + ": needs nothing from a host (is it the reel database?)");
  report.asked = asked.size();
  report.unmet = host_check::unmet(asked, offered);
  return report;
}

} // namespace

int main(int argc, char** argv)
{
  CLI::App app(
      "Lists the symbols that the reel database needs from its host, and that the host does not have, or has only\n"
      "with other parameters. Results, layouts and the order of virtual functions are not part of a symbol: the\n"
      "host contract suite checks these.",
      "reeldb-host-check");
  std::vector<std::string> hosts;
  std::string library;
  bool json = false, list = false, stubs = false;
  app.add_option("LIB", hosts, "The libraries that the host consists of, or a program that is a host")->type_name("");
  app.add_option("--library", library, "The reel database; by default the one of this program's installation")
      ->type_name("FILE");
  app.add_flag("--json", json, "Report as JSON");
  app.add_flag("--list", list, "List only the missing symbols; without LIB, all symbols that a host has to provide");
  app.add_flag("--stubs", stubs,
               "Print a C++ source with a stub for each missing function and for each function of a class that is not "
               "complete; without LIB, for a complete host");
  app.footer("Exit codes: 0 all symbols are there, 1 some are missing, 2 the check failed.\n"
             "A list and stubs give 0 even if symbols are missing.");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("reeldb-host-check: ") + error.what() + " (see reeldb-host-check --help)\n";
  });
  try {
    app.parse(argc, argv);
    if (hosts.empty() && !list && !stubs)
      throw CLI::RequiredError("LIB");
    if (stubs && (json || list))
      throw CLI::ExcludesError("--stubs", json ? "--json" : "--list");
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? allThere : notChecked;
  }
  try {
    const host_check::Report report = check(library.empty() ? libraryBeside() : fs::path(library), hosts);
    const std::string text = stubs  ? stubsFor(report.unmet)
                             : json ? asJson(report)
                             : list ? asList(report)
                                    : asText(report);
    std::fputs(text.c_str(), stdout);
    if (std::fflush(stdout) != 0)
      throw std::runtime_error("standard output: cannot be written");
    return report.unmet.empty() || list || stubs ? allThere : somethingMissing;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "reeldb-host-check: %s\n", e.what());
    return notChecked;
  }
}
