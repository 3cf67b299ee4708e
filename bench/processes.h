// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BENCH_PROCESSES_H
#define REELDB_BENCH_PROCESSES_H

#include <string>

namespace reeldb_bench {

/// Runs a shell command and discards its output. Throws if its exit status is not @p status.
void run(const std::string& command, int status = 0);

/// Runs a shell command and returns its standard output. Throws if it fails.
std::string outputOf(const std::string& command);

/// Instructions that callgrind collected in the command, whose program turns collection on and off itself. The CPU
/// features are fixed, because the variants of string functions would otherwise depend on the machine.
double instructionsOf(const std::string& command);
/// Those of the whole process.
double instructionsOfProcess(const std::string& command);

} // namespace reeldb_bench

#endif
