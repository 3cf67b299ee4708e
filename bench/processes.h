// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BENCH_PROCESSES_H
#define REELDB_BENCH_PROCESSES_H

#include <filesystem>
#include <string>

namespace reeldb_bench {

/// Runs a shell command; what it prints is thrown away. Throws when it fails, unless @p status is the answer expected.
void run(const std::string& command, int status = 0);

/// Runs a shell command and answers what it prints on standard output. Throws when it fails.
std::string outputOf(const std::string& command);

/// Instructions that callgrind collected in the command, whose program turns collection on and off itself. The CPU
/// features are pinned: which variant of a string function runs would otherwise depend on the machine.
double instructionsOf(const std::string& command);

/// A folder of its own that goes when this ends.
class Folder {
public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  std::string text(const std::string& name) const { return (path_ / name).string(); }

private:
  std::filesystem::path path_;
};

} // namespace reeldb_bench

#endif
