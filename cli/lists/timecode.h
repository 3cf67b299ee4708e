// SPDX-License-Identifier: Apache-2.0
//
// Timecodes stay texts: which frame rate counts them is not the list's to say. This only tells whether one is written
// as hh:mm:ss:ff.
#ifndef REELDB_LISTS_TIMECODE_H
#define REELDB_LISTS_TIMECODE_H

#include <string>
#include <string_view>

namespace reeldb::lists {

/// Why the text is no timecode, or an empty text when it is one: hh:mm:ss:ff with two or three digits of frames,
/// minutes and seconds below 60, and each separator one of ':', ';', '.' and ','.
std::string timecodeFault(std::string_view text);

/// Whether the text was meant as a timecode, good or bad: nothing but digits and three separators, or anything with two
/// colons or semicolons.
bool looksLikeTimecode(std::string_view text);

} // namespace reeldb::lists

#endif
