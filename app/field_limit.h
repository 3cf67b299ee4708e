// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_FIELD_LIMIT_H
#define REELDB_CLI_FIELD_LIMIT_H

#include <cstddef>

namespace reeldb::cli {

/// The longest text that a reel's field gives back whole, in bytes.
inline constexpr std::size_t longestField = 2047;

} // namespace reeldb::cli

#endif
