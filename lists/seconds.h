// SPDX-License-Identifier: Apache-2.0
//
// Exact arithmetic with times that are fractions, as timeline files write them. Every result is exact, or there is no
// result.
#ifndef REELDB_LISTS_SECONDS_H
#define REELDB_LISTS_SECONDS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "lists/frame_rate.h"

namespace reeldb::lists {

/// The fraction in a text, in lowest terms: "1001/24000", "86400", "-3.5", "2.4e1". Empty for any other text, and for a
/// number that 64 bits above and below the line cannot hold.
std::optional<Seconds> parseFraction(std::string_view text);

/// Empty if 64 bits above and below the line cannot hold the result, and for a division by zero.
std::optional<Seconds> sum(Seconds a, Seconds b);
std::optional<Seconds> difference(Seconds a, Seconds b);
std::optional<Seconds> product(Seconds a, Seconds b);
std::optional<Seconds> quotient(Seconds a, Seconds b);

/// How long a frame lasts.
Seconds frameDuration(FrameRate rate);

/// The rate at which frames of this duration follow each other; empty if it is not one of frameRates.
std::optional<FrameRate> rateOfFrames(Seconds duration);

/// The frame that begins at the time, or in which the time lies.
struct FrameAt {
  std::int64_t frame = 0;
  bool isWhole = false; ///< whether it begins there
};

/// Empty if 64 bits cannot hold the number.
std::optional<FrameAt> frameAt(Seconds time, FrameRate rate);

} // namespace reeldb::lists

#endif
