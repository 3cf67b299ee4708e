// SPDX-License-Identifier: Apache-2.0
//
// Frame rates, and the arithmetic between timecode labels, frames and seconds. Everything is counted in integers, so
// every result is exact, or there is none and the reason says why.
//
// A label names a frame of a day. Labels end at 23:59:59 and do not wrap: a clip past midnight is the caller's
// question.
#ifndef REELDB_LISTS_FRAME_RATE_H
#define REELDB_LISTS_FRAME_RATE_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace reeldb::lists {

/// A rate at which frames follow each other, one of frameRates.
struct FrameRate {
  int frames = 25;     ///< the number of frames that a second of timecode counts
  bool slowed = false; ///< whether that second of timecode lasts 1.001 seconds, as in 29.97
  friend bool operator==(const FrameRate&, const FrameRate&) = default;
};

inline constexpr std::array<FrameRate, 12> frameRates = {{{24, true},
                                                          {24, false},
                                                          {25, false},
                                                          {30, true},
                                                          {30, false},
                                                          {48, true},
                                                          {48, false},
                                                          {50, false},
                                                          {60, true},
                                                          {60, false},
                                                          {120, true},
                                                          {120, false}}};

/// The name of the rate, with at most two decimals: "23.98", "25".
std::string rateName(FrameRate rate);

/// The rate that a text means: its name, with further decimals or zeros ("23.976", "25.00"), or a fraction
/// ("30000/1001"). Empty for any other text.
std::optional<FrameRate> rateOf(std::string_view text);

/// How timecode counts: at a rate, and with drop frame or without. Drop frame leaves out the labels of the first two
/// (29.97) or four (59.94) frames of every minute but each tenth, so that labels keep up with the clock.
struct Counting {
  FrameRate rate;
  bool dropFrame = false;
};

/// Whether there is drop frame at the rate: at 29.97 and 59.94 only.
bool hasDropFrame(FrameRate rate);

/// The number of frames that have a label. REQUIRES: drop frame only where hasDropFrame().
std::int64_t framesADay(Counting counting);

/// Sets `frame` to the frame of the label, 0 for 00:00:00:00. Returns why there is none, or an empty text. A label is
/// as in timecodeFault(); its frames are below the rate, ';' is a separator of drop frame alone, and drop frame has the
/// label.
std::string frameOf(std::string_view label, Counting counting, std::int64_t& frame);

/// Sets `label` to that of the frame, hh:mm:ss:ff, or hh:mm:ss;ff in drop frame; three digits of frames at 120 frames
/// and more. Returns why there is none, or an empty text.
std::string labelOf(std::int64_t frame, Counting counting, std::string& label);

/// A time as a fraction. The denominator is positive.
struct Seconds {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;
  friend bool operator==(const Seconds&, const Seconds&) = default;
};

/// Sets `seconds` to how long that number of frames lasts, in lowest terms. Returns why it cannot, or an empty text.
std::string secondsOf(std::int64_t frames, FrameRate rate, Seconds& seconds);

/// Sets `frames` to the number of frames that last so long. Returns why it cannot, or an empty text: the time may end
/// within a frame, because nothing is rounded.
std::string framesIn(Seconds seconds, FrameRate rate, std::int64_t& frames);

} // namespace reeldb::lists

#endif
