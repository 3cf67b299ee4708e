// SPDX-License-Identifier: Apache-2.0
//
// The channel field of an event ("V", "A2", "AA/V", "A1234V") and the Tracks column of a log ("VA1A2").
#ifndef REELDB_LISTS_TRACKS_H
#define REELDB_LISTS_TRACKS_H

#include <optional>
#include <string_view>

namespace reeldb::lists {

struct Tracks {
  int video = 0;
  int audio = 0;
};

/// The meaning of several digits after an A: "A12" is either channels 1 and 2, or channel 12.
enum class Digits { Set, Number };

/// Counts the channels; empty if the text is not a channel field. Letters in either case; "NONE" and "D" (data) have
/// no channels, "B" is V and A. Digits read as Set are one channel each when they rise from 1 to 9, else one number.
std::optional<Tracks> parseTracks(std::string_view text, Digits digits);

/// The same for the Tracks column of a log, which numbers every track and also writes ranges: "VA1A2", "V1 A1-8",
/// "V1-3", "A1-A4", "VA1A2D1". Letters in either case; blanks, commas and slashes part the tracks. V is picture, A
/// sound, and D (data) has no channels; "NONE" and "B" are as in cut lists.
std::optional<Tracks> parseLogTracks(std::string_view text);

/// The Tracks column for these channels, each with its number: "V", "VA1A2"; "NONE" without channels.
std::string logTracks(int video, int audio);

/// Whether the field holds a number that can only be one channel (10, 11, 20). It shows how the list writes channels.
bool hasChannelNumber(std::string_view text);

} // namespace reeldb::lists

#endif
