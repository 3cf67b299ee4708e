// SPDX-License-Identifier: Apache-2.0
//
// What a store costs, measured by bench.cpp. It is built with the host's own store, with that store but without lists,
// and with the store in plain_store.cpp.
//   store_costs new FACILITY             makes a facility with a project
//   store_costs import FACILITY LIST...  imports each list with a commit of its own
//   store_costs set FACILITY COMMITS     changes one field per commit, and prints the pages written per commit
#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "app/import.h"
#include "app/process.h"
#include "app/projects.h"
#include "app/reels.h"
#include "reelhost/host.h"

namespace {

namespace fs = std::filesystem;
using namespace reeldb;

/// Pages in the write-ahead log of an open project.
std::size_t pagesInLog(const fs::path& project)
{
  constexpr std::size_t logHeader = 32, frame = 24 + 4096;
  const fs::path log = project.native() + "-wal";
  const std::size_t size = fs::exists(log) ? fs::file_size(log) : 0;
  return size < logHeader ? 0 : (size - logHeader) / frame;
}

void importLists(const std::vector<std::string>& lists)
{
  for (const std::string& list : lists) {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(list)}, false);
  }
}

void setFields(int commits)
{
  const fs::path file = reelhost::facility().projectFile("main");
  const auto store = reelhost::makeSqliteStore(file);
  const std::chrono::milliseconds patience(1000);
  std::vector<reelhost::StoredLog> reels;
  store->begin(reelhost::Access::Read, patience);
  store->readReels([&](reelhost::StoredLog&& log) { reels.push_back(std::move(log)); });
  store->end();
  const std::size_t before = pagesInLog(file);
  for (int commit = 0; commit < commits; ++commit) {
    reelhost::StoredLog& log = reels[static_cast<std::size_t>(commit) * 97 % reels.size()];
    log.fields.emplace_back("bin_name", "shelf " + std::to_string(commit));
    reelhost::Changes changes;
    changes.logs = {log};
    changes.origin = reelhost::currentOrigin();
    store->begin(reelhost::Access::Write, patience);
    store->commit(changes);
  }
  std::printf("%f\n", static_cast<double>(pagesInLog(file) - before) / commits);
}

} // namespace

int main(int argc, char** argv)
{
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() < 2)
    return std::fprintf(stderr, "usage: store_costs new|import|set FACILITY [WORD...]\n"), 2;
  try {
    app::startUp();
    app::setCommandLine({"reeldb", "import", "list.edl"});
    if (words[0] == "new")
      return app::makeFacility(words[1]), 0;
    reelhost::useFacility(reelhost::Facility::read(words[1]));
    if (words[0] == "import")
      importLists({words.begin() + 2, words.end()});
    else
      setFields(std::stoi(words.at(2)));
    return 0;
  } catch (const std::exception& error) {
    return std::fprintf(stderr, "store_costs: %s\n", error.what()), 1;
  }
}
