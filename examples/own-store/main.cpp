// SPDX-License-Identifier: Apache-2.0
//
// The library in a product that has a database, and none of the strings, logs and views that a host needs: the
// standalone host brings those, and asks this Store for whole logs. Replace the map by your database.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ReelDbManager.h"
#include "host/codes.h"
#include "reelhost/facility.h"
#include "reelhost/host.h"
#include "reelhost/material.h"
#include "reelhost/store.h"

namespace {

using reelhost::Changes;
using reelhost::KeyValues;
using reelhost::ProjectInfo;
using reelhost::StoredLog;
using Sink = std::function<void(StoredLog&&)>;

/// The product's own database. It outlives every opening of the project.
struct Database {
  ProjectInfo info;
  std::map<std::string, std::string> options;
  std::map<std::int64_t, StoredLog> logs; // by number
  std::int64_t lastNumber = 0;
};

/// One opening of the project. A store of a real database begins a transaction in begin(), ends it in end(), and
/// reports what fails as reelhost::Error.
class DatabaseStore final : public reelhost::Store {
public:
  explicit DatabaseStore(Database& database) : database_(database) {}

  std::string subject() const override { return "the database"; } // in messages
  void begin(reelhost::Access, std::chrono::milliseconds) override {}
  void end() noexcept override {}

  ProjectInfo info() override { return database_.info; }
  KeyValues options() override { return {database_.options.begin(), database_.options.end()}; }
  std::int64_t nextNumber() override { return database_.lastNumber + 1; }
  void readReels(const Sink& sink) override { read(sink, true); }
  void readOthers(const Sink& sink) override { read(sink, false); }

  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override {
    std::map<std::string, std::int64_t> counts;
    for (const auto& [number, log] : database_.logs)
      if (log.type != codes::reelLog)
        for (const auto& [key, text] : log.fields)
          if (key == "reelid" && !text.empty())
            ++counts[lowerCase(text)];
    return {counts.begin(), counts.end()};
  }

  // All of it or nothing: here an exception for lack of memory leaves the copy behind.
  void commit(const Changes& changes) override {
    Database changed = database_;
    for (const StoredLog& log : changes.logs) {
      changed.logs[log.number] = log;
      changed.lastNumber = std::max(changed.lastNumber, log.number);
    }
    for (const std::int64_t number : changes.deleted)
      changed.logs.erase(number);
    for (const auto& [key, text] : changes.options)
      changed.options[key] = text;
    std::swap(database_, changed);
  }

  bool changedElsewhere() override { return false; } // no other process writes to it
  std::vector<std::string> check() override { return {}; }

  // It hands out no history, so what is deleted is gone.

private:
  void read(const Sink& sink, bool reels) {
    for (const auto& [number, log] : database_.logs)
      if ((log.type == codes::reelLog) == reels)
        sink(StoredLog(log));
  }

  static std::string lowerCase(std::string text) {
    for (char& c : text)
      if (c >= 'A' && c <= 'Z')
        c = static_cast<char>(c - 'A' + 'a');
    return text;
  }

  Database& database_;
};

/// The facility of the product: its devices. Label maps and names of user fields would come from its folder.
reelhost::Facility facility() {
  reelhost::DeviceSettings deck;
  deck.number = 0;
  deck.id = 1;
  deck.name = "Deck 1";
  deck.tapes = {"Live"};
  reelhost::Facility facility;
  facility.devices().push_back(deck);
  return facility;
}

} // namespace

int main() {
  reelhost::useFacility(facility());
  reelhost::startUp();
  ReelDbManager& manager = *ReelDbManager::theReelDbManager(); // from here on it is notified of projects

  Database database;
  database.info.name = "EXAMPLE";
  database.info.frameRate = database.info.outputFrameRate = codes::rate25;

  reelhost::openProject(std::make_unique<DatabaseStore>(database), reelhost::Access::Write);
  reelhost::Material clip;
  clip.reel = "A001";
  reelhost::importMaterial(clip); // the library creates its reel
  manager.checkLiveDeviceMedia(0);
  reelhost::commit();
  reelhost::closeProject();

  reelhost::openProject(std::make_unique<DatabaseStore>(database), reelhost::Access::Read);
  std::vector<LightweightString<char>> ids;
  manager.getAllReelIds(ids, true);
  for (const auto& id : ids) {
    const int shots = reelhost::shotsOf(id.c_str()).count();
    std::printf("%s with %d %s\n", id.c_str(), shots, shots == 1 ? "shot" : "shots");
  }
  reelhost::closeProject();
  std::printf("%zu rows in the database\n", database.logs.size());
}
