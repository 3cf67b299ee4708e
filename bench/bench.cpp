// SPDX-License-Identifier: Apache-2.0
//
// The benchmarks: ratios measured side by side in one run, printed as a table. BENCH_JSON names a file for the figures,
// and BENCH_GROWTH a file for the curves that bench/growth.gp draws.
#include <fmt/format.h>
#include <sqlite3.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "followers.h"
#include "processes.h"
#include "reelhost/host.h"
#include "stopwatch.h"
#include "subjects.h"
#include "support/temp_folder.h"
#include "table.h"

namespace reeldb_bench {

namespace {

using reeldb_tests::TempFolder;

const std::string bin = REELDB_BIN_DIR "/";

ReelDbManager& manager()
{
  return *ReelDbManager::theReelDbManager();
}

/// Keeps a result from being optimised away.
volatile std::size_t sink;

void scanInstructions(Table& table)
{
  table.add({"lookup that finds nothing, 10000 reels",
             "bare loop of the same host calls",
             "instructions",
             instructionsOf(bin + "count_once lookup"),
             instructionsOf(bin + "count_once bare-lookup"),
             1.05,
             {}});
}

void scanTime(Table& table)
{
  constexpr int reels = 10000;
  openProjectInMemory(reels, 0);
  std::vector<std::string> ids;
  ids.reserve(reels);
  for (int i = 0; i < reels; ++i)
    ids.push_back(reelName(i));
  const LightweightString<char> id("Z999999_Z");
  const Pair times = sideBySide(
      41, [&] { sink = manager().getCookieFromReelId(id).valid(); },
      [&] {
        std::size_t found = 0;
        for (const std::string& have : ids)
          found += strcasecmp(have.c_str(), id.c_str()) == 0;
        sink = found;
      });
  table.add({"the same, time", "strcasecmp over an array of strings", "ms", times.ours, times.theirs, 6, {}});
}

/// How the cost of an operation grows between two sizes, against how its bare loop grows.
template <class Ours, class Theirs>
void growth(Table& table, const std::string& what, int small, int large, int shots, double target, Ours ours,
            Theirs theirs)
{
  const auto measure = [&](int reels) {
    openProjectInMemory(reels, shots);
    const double work = static_cast<double>(reels) * (shots > 0 ? reels : 1);
    const int rounds = work < 1e6 ? 15 : 3;
    return sideBySide(rounds, ours, theirs);
  };
  const Pair a = measure(small);
  const Pair b = measure(large);
  if (small == 100)
    table.addPoint(what, {small, a.ours, a.theirs});
  table.addPoint(what, {large, b.ours, b.theirs});
  table.add({fmt::format("{}, {} to {} reels", what, small, large), "growth of the bare loop", "x", b.ours / a.ours,
             b.theirs / a.theirs, target, fmt::format("{:.4g} ms at {}, bare {:.4g} ms", b.ours, large, b.theirs)});
}

void listings(Table& table)
{
  const auto ids = [] {
    std::vector<LightweightString<char>> out;
    manager().getAllReelIds(out, true);
    sink = out.size();
  };
  const auto bareIds = [] {
    std::vector<LightweightString<char>> out;
    bareIdentifiers(manager().reelList, out);
    sink = out.size();
  };
  const auto compatible = [] {
    std::vector<LightweightString<char>> out;
    manager().getReelsCompatibleWithDevice(out, 0);
    sink = out.size();
  };
  const auto bareCompatibles = [] {
    std::vector<LightweightString<char>> out;
    bareCompatible(manager().reelList, 0, out);
    sink = out.size();
  };
  const auto referenced = [] {
    sink = static_cast<std::size_t>(manager().getReelsReferenced(reelhost::allShots()).count());
  };
  const auto bareReferences = [] {
    CookieVec out;
    bareReferenced(manager().reelList, reelhost::allShots(), out);
    sink = static_cast<std::size_t>(out.count());
  };
  for (const int large : {1000, 10000, 100000}) {
    growth(table, "getAllReelIds", large / 10, large, 0, 1.2, ids, bareIds);
    growth(table, "getReelsCompatibleWithDevice", large / 10, large, 0, 1.2, compatible, bareCompatibles);
    if (large <= 10000)
      growth(table, "getReelsReferenced", large / 10, large, 10, 1.2, referenced, bareReferences);
  }
}

/// Writes a cut list with one clip on each of these reels.
void writeList(const std::string& file, int clips, int firstReel)
{
  std::ofstream edl(file);
  edl << "TITLE: BENCH\nFCM: NON-DROP FRAME\n";
  for (int i = 0; i < clips; ++i)
    edl << fmt::format("{:06d}  {:<32} V     C        01:00:00:00 01:00:05:00 {:02d}:{:02d}:{:02d}:00 "
                       "{:02d}:{:02d}:{:02d}:00\n",
                       i + 1, reelName(firstReel + i), 1 + i / 3600, i / 60 % 60, i % 60, 1 + i / 3600, i / 60 % 60,
                       i % 60)
        << fmt::format("* FROM CLIP NAME: shot {}\n", i);
}

void writeLists(const TempFolder& folder, int clips)
{
  writeList(folder / "list.edl", clips, 0);
  std::ofstream plain(folder / "list.txt");
  for (int i = 0; i < clips; ++i)
    plain << reelName(i) << "\tshot " << i << '\n';
}

void imports(Table& table)
{
  for (const int clips : {1000, 10000}) {
    const TempFolder folder;
    writeLists(folder, clips);
    const std::string facility = folder / "facility";
    const std::string project = facility + "/projects/bench.reels";
    const std::string list = folder / "list.edl", plainList = folder / "list.txt", plain = folder / "plain.db";
    run(fmt::format("{}reeldb init {}", bin, facility));
    std::vector<double> ours, theirs;
    for (int i = 0; i < (clips > 1000 ? 3 : 11); ++i) {
      run(fmt::format("rm -f {}*; {}reeldb -C {} project new bench", project, bin, facility));
      ours.push_back(timeOf([&] { run(fmt::format("{}reeldb -C {} -p bench import {}", bin, facility, list)); }));
      run(fmt::format("rm -f {}*", plain));
      theirs.push_back(timeOf([&] { run(fmt::format("{}by_hand_import {} {}", bin, plainList, plain)); }));
    }
    Row row{fmt::format("import of {} clips on new reels, process", clips),
            "plain program on the SQLite C API",
            "ms",
            median(ours),
            median(theirs),
            {},
            {}};
    if (clips == 1000)
      row.target = 4;
    table.add(std::move(row));
  }
}

/// One of the programs of store_costs.cpp with a facility of its own.
class StoreCosts {
public:
  explicit StoreCosts(const std::string& program) : program_(bin + program), facility_(folder_ / "facility")
  {
    run(fmt::format("{} new {}", program_, facility_));
  }

  std::string importing(const std::string& lists) const
  {
    return fmt::format("{} import {} {}", program_, facility_, lists);
  }
  double pagesOfAChange(int commits) const
  {
    return std::stod(outputOf(fmt::format("{} set {} {}", program_, facility_, commits)));
  }
  double fileSize() const
  {
    return static_cast<double>(std::filesystem::file_size(facility_ + "/projects/main.reels"));
  }

private:
  const TempFolder folder_;
  const std::string program_, facility_;
};

struct StoreFigures {
  double bytes = 0, instructions = 0;
};

/// The file after the imports of these lists, each a commit of that number of new reels, and the mean of the
/// instructions of the processes that make such an import. A new project begins after every 5,000 reels: the scans of a
/// larger one take long, and the ratio is the same. The projects differ in the names of reels alone, so the
/// instructions are those of the first project, of each of its lists, or of every tenth if they are many.
StoreFigures storeFigures(const std::string& program, const std::vector<std::string>& lists, int reels)
{
  StoreFigures figures;
  const auto listsOfAProject = static_cast<std::size_t>(5000 / reels);
  const std::size_t step = std::max<std::size_t>(listsOfAProject / 10, 1);
  int counted = 0;
  for (std::size_t first = 0; first < lists.size(); first += listsOfAProject) {
    const StoreCosts costs(program);
    std::string later;
    for (std::size_t i = first; i < std::min(first + listsOfAProject, lists.size()); ++i) {
      if (first != 0 || i % step != 0) {
        later += lists[i] + " ";
        continue;
      }
      if (!later.empty())
        run(costs.importing(std::exchange(later, "")));
      figures.instructions += instructionsOfProcess(costs.importing(lists[i]));
      ++counted;
    }
    if (!later.empty())
      run(costs.importing(later));
    figures.bytes += costs.fileSize();
  }
  figures.instructions /= counted;
  return figures;
}

/// What the history of a project and its lists cost, against the store that projects had before they kept them.
void keeping(Table& table)
{
  constexpr int commits = 100;
  for (const int reels : {1000, 50}) {
    const TempFolder folder;
    std::vector<std::string> lists;
    for (int commit = 0; commit < commits; ++commit) {
      lists.push_back(folder / fmt::format("{}.edl", commit));
      writeList(lists.back(), reels, commit * reels);
    }
    const StoreFigures plain = storeFigures("store_costs_plain", lists, reels);
    for (const auto& [program, what, size, count] : {std::tuple("store_costs_no_lists", "history", 1.2, 1.1),
                                                     std::tuple("store_costs", "history and lists", 1.6, 1.25)}) {
      const StoreFigures ours = storeFigures(program, lists, reels);
      const std::string subject = fmt::format("{}, {} new reels a commit: ", what, reels);
      table.add({subject + "file", "the same rows in the plain store", "bytes", ours.bytes, plain.bytes, size, {}});
      table.add({subject + "import, mean",
                 "the same imports to the plain store",
                 "instructions",
                 ours.instructions,
                 plain.instructions,
                 count,
                 {}});
    }
  }
  const TempFolder folder;
  writeList(folder / "list.edl", 1000, 0);
  double pages[2] = {};
  for (const bool isPlain : {false, true}) {
    const StoreCosts costs(isPlain ? "store_costs_plain" : "store_costs");
    run(costs.importing(folder / "list.edl"));
    pages[isPlain] = costs.pagesOfAChange(commits);
  }
  constexpr double morePages = 3;
  table.add({"change of one field, 1000 reels", "the same change in the plain store", "pages", pages[0], pages[1],
             (pages[1] + morePages) / pages[1], "the target is 3 pages more"});
}

/// What an import does with the names that a project has, as the project grows: the further
/// instructions of the process for each further reel, up to 100,000 reels, against those up to 10,000.
void names(Table& table)
{
  const auto importInto = [](int reels) {
    const TempFolder folder;
    const std::string facility = folder / "facility", list = folder / "list.edl";
    run(fmt::format("{}reeldb init {}", bin, facility));
    writeProject(facility + "/projects/bench.reels", reels, 1);
    writeList(list, 1000, 0);
    return instructionsOfProcess(fmt::format("{}reeldb -C {} -p bench import {}", bin, facility, list));
  };
  const double few = importInto(1000), more = importInto(10000), many = importInto(100000);
  table.add({"import of 1000 clips: each further reel, to 100000 reels",
             "each further reel, to 10000 reels",
             "instructions",
             (many - more) / 90000,
             (more - few) / 9000,
             1.2,
             {}});
}

/// A table of 10,000 rows that changes type, shelf, availability and a user field of as many reels, against the report
/// of these reels.
void tables(Table& table)
{
  constexpr int reels = 10000;
  const TempFolder folder;
  const std::string facility = folder / "facility", rows = folder / "rows.csv";
  run(fmt::format("{}reeldb init {}", bin, facility));
  writeProject(facility + "/projects/bench.reels", reels, 1);
  std::ofstream csv(rows);
  csv << "reel,type,shelf,available,user field 0\n";
  for (int i = 0; i < reels; ++i)
    csv << fmt::format("{},Tape 4ch,Shelf {},no,scene {}\n", reelName(i), i % 50, i);
  csv.close();
  const std::string command = fmt::format("{}reeldb -C {} -p bench ", bin, facility);
  const double listing = instructionsOfProcess(command + "list --json");
  const double import = instructionsOfProcess(command + "import " + rows);
  if (outputOf(command + "list --where available=no --no-header | wc -l") != fmt::format("{}\n", reels))
    throw std::runtime_error("the table has not changed all reels");
  table.add({fmt::format("import of {0} rows that change four fields of {0} reels, process", reels),
             "reeldb list --json of the same reels",
             "instructions",
             import,
             listing,
             3,
             {}});
}

/// Commands that go through all reels of a large project, against the listing of its reels.
void bulk(Table& table)
{
  constexpr int reels = 10000;
  const TempFolder folder;
  const std::string facility = folder / "facility", list = folder / "list.edl";
  const std::string command = fmt::format("{}reeldb -C {} ", bin, facility);
  run(fmt::format("{}reeldb init {}", bin, facility));
  writeList(list, reels, 0);
  run(command + "import " + list);
  table.add({"reels-of --file with 10000 reels",
             "list of the same reels",
             "instructions",
             instructionsOfProcess(command + "reels-of --file " + list),
             instructionsOfProcess(command + "list"),
             3,
             {}});
}

/// Reads what a listing reads: the reels with their fields, and the number of shots of each identifier.
std::size_t readRows(const std::string& file)
{
  sqlite3* db = nullptr;
  sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
  std::size_t bytes = 0;
  for (const char* const query :
       {"SELECT * FROM logs WHERE type = 9 ORDER BY number",
        "SELECT f.* FROM fields f JOIN logs l ON l.number = f.log WHERE l.type = 9 ORDER BY "
        "f.log",
        "SELECT reel_id, count(*) FROM logs WHERE type <> 9 GROUP BY reel_id COLLATE NOCASE"}) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, query, -1, &statement, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(db));
    const int columns = sqlite3_column_count(statement);
    while (sqlite3_step(statement) == SQLITE_ROW)
      for (int i = 0; i < columns; ++i) {
        sqlite3_column_text(statement, i);
        bytes += static_cast<std::size_t>(sqlite3_column_bytes(statement, i));
      }
    sqlite3_finalize(statement);
  }
  sqlite3_close(db);
  return bytes;
}

/// The memory that a separate process uses for the project, as text.
std::string memoryOf(const std::string& file, int reels, int shots)
{
  double listed = 0, all = 0;
  std::istringstream(outputOf(bin + "open_once " + file)) >> listed >> all;
  return fmt::format("memory at its peak: {:.0f} bytes a reel log; {:.0f} bytes a log with all shots loaded",
                     listed / reels, all / (reels + shots));
}

void opening(Table& table)
{
  constexpr int reels = 100000;
  const TempFolder folder;
  const std::string file = folder / "large.reels";
  writeProject(file, reels, 10);
  const Pair times = sideBySide(
      3,
      [&] {
        reelhost::openProject(reelhost::makeSqliteStore(file), reelhost::Access::Read);
        std::vector<LightweightString<char>> ids;
        manager().getAllReelIds(ids, true);
        sink = ids.size() + reelhost::shotCounts().size();
        reelhost::closeProject();
      },
      [&] { sink = readRows(file); });
  table.add({"open 100000 reels and 1000000 shots, list reels", "the same rows by the SQLite C API", "ms", times.ours,
             times.theirs, 2, memoryOf(file, reels, 10 * reels)});
}

void typeFile(Table& table)
{
  constexpr int types = 100000;
  const TempFolder folder;
  const std::string file = folder / "reeltype.dat";
  {
    std::ofstream out(file);
    for (int i = 0; i < types; ++i)
      out << "Bench type " << i << ":VideoChannels=1 AudioChannels=" << i % 16 << '\n';
  }
  const Pair times = sideBySide(
      5,
      [&] {
        ReelTypeManager catalogue;
        catalogue.load(file.c_str());
        long long sum = 0;
        for (int i = 0; i < types; ++i)
          sum += catalogue.numVideoChans(fmt::format("Bench type {}", i).c_str());
        sink = static_cast<std::size_t>(sum);
      },
      [&] {
        std::unordered_map<std::string, std::string> catalogue;
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
          const char* const colon = std::strchr(line.c_str(), ':');
          catalogue[std::string(line.c_str(), colon)] = colon + 1;
        }
        long long sum = 0;
        for (int i = 0; i < types; ++i) {
          const std::string& params = catalogue[fmt::format("Bench type {}", i)];
          const char* const at = std::strstr(params.c_str(), "VideoChannels=");
          sum += at ? std::strtol(at + 14, nullptr, 10) : 0;
        }
        sink = static_cast<std::size_t>(sum);
      });
  table.add({"reel type file of 100000 types, load and ask each",
             "getline, strchr and a hash map",
             "ms",
             times.ours,
             times.theirs,
             3,
             {}});
}

class CountingClient : public ReelDbClient {
public:
  void reelDbChanged(LightweightString<char> id) override { heard += 1 + id.length(); }
  std::size_t heard = 0;
};

void notification(Table& table)
{
  openProjectInMemory(0, 0);
  std::vector<std::unique_ptr<CountingClient>> clients(10000);
  for (auto& client : clients)
    client = std::make_unique<CountingClient>();
  const LightweightString<char> id("A001");
  const Pair times = sideBySide(
      41, [&] { manager().informReelDbChanged(id); },
      [&] {
        for (auto& client : clients)
          static_cast<ReelDbClient&>(*client).reelDbChanged(id);
      });
  sink = clients.front()->heard;
  table.add({"informReelDbChanged to 10000 clients",
             "virtual calls with a string copy each",
             "ms",
             times.ours,
             times.theirs,
             1.5,
             {}});
}

void listProcess(Table& table)
{
  const TempFolder folder;
  const std::string facility = folder / "facility";
  run(fmt::format("{}reeldb init {}", bin, facility));
  const std::string project = facility + "/projects/bench.reels";
  writeProject(project, 400, 2);
  const std::string select =
      "sqlite3 -readonly " + project +
      " 'SELECT l.reel_id, l.reel_type, l.video, l.audio, (SELECT count(*) FROM logs s WHERE s.type"
      " <> 9 AND s.reel_id = l.reel_id COLLATE NOCASE) FROM logs l WHERE"
      " l.type = 9'";
  const Pair times = sideBySide(
      31, [&] { run(bin + "reeldb -C " + facility + " -p bench list"); }, [&] { run(select); });
  table.add(
      {"reeldb list of 400 reels, process", "the sqlite3 shell, the same rows", "ms", times.ours, times.theirs, 3, {}});
}

} // namespace

} // namespace reeldb_bench

/// reeldb_bench [SCENARIO...]: all scenarios, or those named.
int main(int argc, char** argv)
{
  using namespace reeldb_bench;
  constexpr std::pair<const char*, void (*)(Table&)> scenarios[] = {
      {"scan-instructions", scanInstructions},
      {"scan-time", scanTime},
      {"listings", listings},
      {"imports", imports},
      {"keeping", keeping},
      {"names", names},
      {"tables", tables},
      {"bulk", bulk},
      {"opening", opening},
      {"type-file", typeFile},
      {"notification", notification},
      {"list-process", listProcess},
      {"followers", followers},
  };
#ifndef NDEBUG
  fmt::print(stderr, "bench: this is no release build: the figures say little\n");
#endif
  const std::vector<std::string_view> wanted(argv + 1, argv + argc);
  for (const std::string_view name : wanted)
    if (std::none_of(std::begin(scenarios), std::end(scenarios), [&](const auto& s) { return s.first == name; })) {
      fmt::print(stderr, "bench: {}: no such scenario\n", name);
      return 2;
    }
  reelhost::startUp();
  ReelDbManager::theReelDbManager();
  try {
    Table table;
    for (const auto& [name, run] : scenarios)
      if (wanted.empty() || std::find(wanted.begin(), wanted.end(), name) != wanted.end())
        run(table);
    reelhost::closeProject();
    return table.finish() == 0 ? 0 : 1;
  } catch (const std::exception& e) {
    fmt::print(stderr, "bench: {}\n", e.what());
    return 2;
  }
}
