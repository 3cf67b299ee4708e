// SPDX-License-Identifier: Apache-2.0
//
// One event line of a cut list, read from the right: four timecodes, perhaps a duration, perhaps a transition, the
// channels; what is left between the event number and the channels is the reel, blanks and all.
#ifndef REELDB_LISTS_EDL_LINE_H
#define REELDB_LISTS_EDL_LINE_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace reeldb::lists {

/// What the transition field says of the line.
enum class Transition {
  Cut,        ///< C, or no transition field
  Into,       ///< D, Wnnn: this is the picture the event dissolves or wipes to
  Background, ///< K B
  Key,        ///< K, K O: this is the picture keyed over the background
};

/// Views into the line.
struct EventLine {
  std::string_view number;
  std::string_view reel; ///< without outer blanks, 1 to kReelLength code points
  std::string_view channels;
  Transition transition = Transition::Cut;
  std::array<std::string_view, 4> timecodes; ///< source in, source out, record in, record out
};

/// The widest reel field in use.
inline constexpr std::size_t kReelLength = 129;

/// Whether the line is meant as an event: it starts with a number of three digits or more, perhaps with a letter, or
/// with a shorter one and holds a timecode, good or bad.
bool beginsLikeEvent(std::string_view line);

/// The number of words of the line that were meant as timecodes, valid or not.
std::size_t countTimecodes(std::string_view line);

/// Reads a line that begins like an event. Returns why it cannot be read, or an empty text when `event` is filled.
std::string parseEvent(std::string_view line, EventLine& event);

} // namespace reeldb::lists

#endif
