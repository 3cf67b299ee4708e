// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BENCH_FOLLOWERS_H
#define REELDB_BENCH_FOLLOWERS_H

#include "table.h"

namespace reeldb_bench {

/// How soon a program that waits has what another process commits, for each kind of change and at three sizes.
void followers(Table& table);

} // namespace reeldb_bench

#endif
