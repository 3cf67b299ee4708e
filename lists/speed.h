// SPDX-License-Identifier: Apache-2.0
//
// The speed of an event: M2 lines of cut lists.
#ifndef REELDB_LISTS_SPEED_H
#define REELDB_LISTS_SPEED_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// A speed as a fraction of frames per second; negative if the source plays backwards.
struct FramesPerSecond {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1; ///< positive
  friend bool operator==(const FramesPerSecond&, const FramesPerSecond&) = default;
};

/// The value of the text, in lowest terms; empty if it is not a number of at most 9 digits and 6 decimals.
std::optional<FramesPerSecond> exactSpeed(std::string_view framesPerSecond);

struct SpeedLine {
  std::string_view reel; ///< without outer blanks
  Speed speed;
};

/// Reads the text behind M2: a reel, a speed, and a timecode or a frame number, which may be missing. Returns why it
/// cannot be read, or an empty text when `line` is filled.
std::string parseSpeedLine(std::string_view text, SpeedLine& line);

} // namespace reeldb::lists

#endif
