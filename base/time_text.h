// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BASE_TIME_TEXT_H
#define REELDB_BASE_TIME_TEXT_H

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

namespace reeldb::base {

/// "2026-11-22T13:38:48Z" for these seconds since 1970; empty for 0, which means unknown.
inline std::string timeText(std::int64_t seconds)
{
  const std::time_t time = seconds;
  std::tm utc = {};
  if (seconds == 0 || !::gmtime_r(&time, &utc))
    return {};
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

} // namespace reeldb::base

#endif
