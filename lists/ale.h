// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_ALE_H
#define REELDB_LISTS_ALE_H

#include <string>
#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// The headings that a log gets when it is written, whatever the list that it is made of had.
inline constexpr std::string_view writtenVideoFormat = "1080", writtenAudioFormat = "48khz";

/// Whether a line opens a log file: its first cell is the section name Heading or Column.
bool startsLog(std::string_view line);

/// Sets `end` to where sound ends that begins at `start` and is as long as the clip. Returns why there is no such
/// timecode, or an empty text.
std::string endOfSound(const std::string& start, const Clip& clip, std::string& end);

/// Reads decoded text as a log file. Throws Error when no row can be read: there is no Column or no Data section, no
/// Name column, or the cells are not separated by tabs.
List readAle(std::string_view text);

} // namespace reeldb::lists

#endif
