// SPDX-License-Identifier: Apache-2.0
//
// One event line of a cut list. It is read from the right: four timecodes, an optional duration, an optional
// transition, the channels. The text between the event number and the channels is the reel; it may contain blanks.
#ifndef REELDB_LISTS_EDL_LINE_H
#define REELDB_LISTS_EDL_LINE_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace reeldb::lists {

/// The role of the line by its transition field.
enum class Transition {
  Cut,        ///< C, or no transition field
  Into,       ///< D, Wnnn: the picture that the event dissolves or wipes to
  Background, ///< K B
  Key,        ///< K, K O: the picture keyed over the background
};

/// Views into the line.
struct EventLine {
  std::string_view number;
  std::string_view reel;      ///< without outer blanks, 1 to reelLength code points
  std::size_t reelColumn = 0; ///< the width of the reel in characters, with the blanks that pad it
  std::string_view channels;
  Transition transition = Transition::Cut;
  std::string transitionCode; ///< as in Event
  std::string_view duration;
  /// Source in, source out, record in, record out. The first two may be frame numbers.
  std::array<std::string_view, 4> timecodes;
};

/// The widest reel field in use.
inline constexpr std::size_t reelLength = 129;

/// Whether the line is meant as an event: it starts with a number of three digits or more, which a letter may follow,
/// or with a shorter number and contains a timecode, good or bad.
bool beginsLikeEvent(std::string_view line);

/// Whether the text is the number of an event: digits, which a letter may follow.
bool isEventNumber(std::string_view text);

/// Whether the text is the code of a transition, as in Event.
bool isTransitionCode(std::string_view text);

/// The number of words of the line that were meant as timecodes, valid or not.
std::size_t countTimecodes(std::string_view line);

/// Reads a line that begins like an event. Returns why it cannot be read, or an empty text when `event` is filled.
std::string parseEvent(std::string_view line, EventLine& event);

} // namespace reeldb::lists

#endif
