// SPDX-License-Identifier: Apache-2.0
#include "table.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

namespace reeldb_bench {

namespace {

/// Writes the text to the file that the environment variable names. Does nothing if the variable is not set.
void writeWanted(const char* variable, const std::string& text)
{
  const char* const file = std::getenv(variable);
  if (!file)
    return;
  std::ofstream out(file);
  out << text << std::flush;
  if (!out)
    fmt::print(stderr, "bench: {}: cannot be written\n", file);
}

} // namespace

void Table::add(Row row)
{
  if (rows_.empty())
    fmt::print("{:<44} {:<38} {:>14} {:>14} {:>7} {:>7}  {}\n", "what", "against", "ours", "theirs", "ratio", "target",
               "verdict");
  fmt::print("{:<44} {:<38} {:>14} {:>14} {:>7.2f} {:>7}  {}{}\n", row.what, row.against,
             fmt::format("{:.4g} {}", row.ours, row.unit), fmt::format("{:.4g} {}", row.theirs, row.unit), row.ratio(),
             row.target ? fmt::format("{:.2f}", *row.target) : "-",
             !row.target ? "reported"
             : row.met() ? "met"
                         : "MISSED",
             row.note.empty() ? "" : "; " + row.note);
  std::fflush(stdout);
  rows_.push_back(std::move(row));
}

void Table::addPoint(const std::string& series, const Point& point)
{
  auto at = std::find_if(series_.begin(), series_.end(), [&](const auto& one) { return one.first == series; });
  if (at == series_.end())
    at = series_.insert(at, {series, {}});
  at->second.push_back(point);
}

int Table::finish() const
{
  int targets = 0;
  int met = 0;
  nlohmann::json json = {{"cores", std::thread::hardware_concurrency()}, {"rows", nlohmann::json::array()}};
  for (const Row& row : rows_) {
    if (row.target) {
      ++targets;
      met += row.met() ? 1 : 0;
    }
    nlohmann::json entry = {{"what", row.what},     {"against", row.against}, {"unit", row.unit}, {"ours", row.ours},
                            {"theirs", row.theirs}, {"ratio", row.ratio()},   {"note", row.note}};
    if (row.target) {
      entry["target"] = *row.target;
      entry["met"] = row.met();
    }
    json["rows"].push_back(std::move(entry));
  }
  json["targets"] = targets;
  json["met"] = met;
  std::string curves = "# reels, milliseconds, milliseconds of the bare loop\n";
  for (const auto& [what, points] : series_) {
    curves += fmt::format("\n\n\"{}\"\n", what);
    for (const Point& point : points)
      curves += fmt::format("{} {:.4g} {:.4g}\n", point.reels, point.ours, point.bare);
  }
  writeWanted("BENCH_JSON", json.dump(2) + '\n');
  writeWanted("BENCH_GROWTH", curves);
  fmt::print("{} of {} targets met\n", met, targets);
  return targets - met;
}

} // namespace reeldb_bench
