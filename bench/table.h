// SPDX-License-Identifier: Apache-2.0
//
// The table of results: one row per ratio, with its target and whether it was met.
#ifndef REELDB_BENCH_TABLE_H
#define REELDB_BENCH_TABLE_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace reeldb_bench {

/// One measured ratio: ours over theirs, both measured side by side in this run.
struct Row {
  std::string what;
  std::string against;
  std::string unit; ///< of ours and theirs: "ms", "instructions", "x" for growth
  double ours = 0;
  double theirs = 0;
  std::optional<double> target; ///< the highest accepted ratio; without a target the ratio is only reported
  std::string note;

  double ratio() const { return ours / theirs; }
  bool met() const { return !target || ratio() <= *target; }
};

/// The cost of an operation and of its bare loop in a project of this size, in milliseconds.
struct Point {
  int reels;
  double ours, bare;
};

class Table {
public:
  void add(Row row); ///< prints the row at once
  /// Keeps a point of a curve for the file.
  void addPoint(const std::string& series, const Point& point);
  /// Prints the last line and writes the files that BENCH_JSON (figures) and BENCH_GROWTH (curves) name. Returns the
  /// number of targets missed.
  int finish() const;

private:
  std::vector<Row> rows_;
  std::vector<std::pair<std::string, std::vector<Point>>> series_;
};

} // namespace reeldb_bench

#endif
