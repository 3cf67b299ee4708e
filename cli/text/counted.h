// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_COUNTED_H
#define REELDB_CLI_COUNTED_H

#include <cstddef>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace reeldb::cli {

/// "1 reel", "2 reels"
template <class Number>
std::string counted(Number count, std::string_view what)
{
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

/// "2 reels and 1 shot"; without what there are 0 of, but "0 reels and 0 shots"
inline std::string countedReelsAndShots(std::size_t reels, std::size_t shots)
{
  if (shots == 0 && reels != 0)
    return counted(reels, "reel");
  if (reels == 0 && shots != 0)
    return counted(shots, "shot");
  return fmt::format("{} and {}", counted(reels, "reel"), counted(shots, "shot"));
}

} // namespace reeldb::cli

#endif
