// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_ALE_H
#define REELDB_LISTS_ALE_H

#include <optional>
#include <string>
#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// The headings that a log gets when it is written, whatever the list that it is made of had.
inline constexpr std::string_view writtenVideoFormat = "1080", writtenAudioFormat = "48khz";

/// Whether a line opens a log file: its first cell is the section name Heading or Column.
bool startsLog(std::string_view line);

/// Whether a camera roll is the beginning of the name: then the name is a clip of it. Else the roll is another name.
bool isClipOf(std::string_view roll, std::string_view name);

/// The sound of a row with a sound roll: the same material on the audio tracks, from another source. Empty if the roll
/// is no reel, or is the source of the picture.
std::optional<Clip> soundOf(const Clip& picture, const std::string& roll);

/// Sets `end` to where sound ends that begins at `start` and is as long as the clip. Returns why there is no such
/// timecode, or an empty text.
std::string endOfSound(const std::string& start, const Clip& clip, std::string& end);

/// Reads decoded text as a log file. Throws Error when no row can be read: there is no Column or no Data section, no
/// Name column, or the cells are not separated by tabs.
List readAle(std::string_view text);

} // namespace reeldb::lists

#endif
