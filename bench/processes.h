// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BENCH_PROCESSES_H
#define REELDB_BENCH_PROCESSES_H

#include <string>

namespace reeldb_bench {

/// Runs a shell command; what it prints is thrown away. Throws when it fails, unless @p status is the answer expected.
void run(const std::string& command, int status = 0);

/// Runs a shell command and answers what it prints on standard output. Throws when it fails.
std::string outputOf(const std::string& command);

/// Instructions that callgrind collected in the command, whose program turns collection on and off itself. The CPU
/// features are pinned: which variant of a string function runs would otherwise depend on the machine.
double instructionsOf(const std::string& command);

} // namespace reeldb_bench

#endif
