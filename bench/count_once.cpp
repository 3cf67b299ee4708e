// SPDX-License-Identifier: Apache-2.0
//
// One operation on a project of 10,000 reels, to be counted by callgrind: count_once SCENARIO. Collection is on only
// during the operation, which has run once before, so that costs of a first run are not counted.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <vector>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "reelhost/host.h"
#include "subjects.h"

namespace {

constexpr int reels = 10'000, types = 1'000, clients = 1'000;

ReelDbManager& manager()
{
  return *ReelDbManager::theReelDbManager();
}

void counted(const std::function<void()>& operation)
{
  operation();
  CALLGRIND_TOGGLE_COLLECT;
  operation();
  CALLGRIND_TOGGLE_COLLECT;
}

void lookup()
{
  const LightweightString<char> id("Z999999_Z");
  counted([&] { manager().getCookieFromReelId(id); });
}

void bareLookup()
{
  counted([] { reeldb_bench::bareScan(manager().reelList, "Z999999_Z"); });
}

void list()
{
  std::vector<LightweightString<char>> ids;
  ids.reserve(reels);
  counted([&] {
    ids.clear();
    manager().getAllReelIds(ids, true);
  });
}

void compatible()
{
  std::vector<LightweightString<char>> ids;
  ids.reserve(reels);
  counted([&] {
    ids.clear();
    manager().getReelsCompatibleWithDevice(ids, 0);
  });
}

void create()
{
  int number = 0;
  counted([&] { manager().createNewReel(("NEW" + std::to_string(++number)).c_str(), -1); });
}

void rename()
{
  int number = 0;
  counted([&] {
    const std::string from = number ? "NEW" + std::to_string(number) : reeldb_bench::reelName(0);
    manager().changeReelId(from.c_str(), ("NEW" + std::to_string(++number)).c_str());
  });
}

void notify()
{
  std::vector<std::unique_ptr<ReelDbClient>> listeners;
  listeners.reserve(clients);
  for (int i = 0; i < clients; ++i)
    listeners.push_back(std::make_unique<ReelDbClient>());
  const LightweightString<char> id("A000001_C");
  counted([&] { manager().informReelDbRecChanged(id); });
}

void typeFile()
{
  std::string file = (std::filesystem::temp_directory_path() / "reeldb-count-XXXXXX").string();
  const int fd = mkstemp(file.data());
  if (fd >= 0) {
    std::ofstream out(file);
    for (int i = 0; i < types; ++i)
      out << "Bench type " << i << ":VideoChannels=1 AudioChannels=" << i % 16 << '\n';
  }
  counted([&] {
    ReelTypeManager catalogue;
    catalogue.load(file.c_str());
    for (int i = 0; i < types; ++i)
      catalogue.numVideoChans(("Bench type " + std::to_string(i)).c_str());
  });
  std::filesystem::remove(file);
}

} // namespace

int main(int argc, char** argv)
{
  constexpr std::pair<const char*, void (*)()> scenarios[] = {
      {"lookup", lookup}, {"bare-lookup", bareLookup}, {"list", list},     {"compatible", compatible},
      {"create", create}, {"rename", rename},          {"notify", notify}, {"type-file", typeFile},
  };
  for (const auto& [name, run] : scenarios)
    if (argc == 2 && std::strcmp(argv[1], name) == 0) {
      reelhost::startUp();
      reeldb_bench::openProjectInMemory(reels, 0);
      run();
      return 0;
    }
  std::fprintf(stderr, "usage: count_once SCENARIO, one of");
  for (const auto& scenario : scenarios)
    std::fprintf(stderr, " %s", scenario.first);
  return std::fputs("\n", stderr), 2;
}
