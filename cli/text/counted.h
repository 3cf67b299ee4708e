// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_COUNTED_H
#define REELDB_CLI_COUNTED_H

#include <string_view>

#include <fmt/format.h>

namespace reeldb::cli {

/// "1 reel", "2 reels"
template <class Number>
std::string counted(Number count, std::string_view what)
{
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

} // namespace reeldb::cli

#endif
