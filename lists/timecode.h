// SPDX-License-Identifier: Apache-2.0
//
// Timecodes stay texts, because a list may not give their frame rate. These functions only check whether one is written
// as hh:mm:ss:ff, and which of two comes first. lists/frame_rate.h converts them.
#ifndef REELDB_LISTS_TIMECODE_H
#define REELDB_LISTS_TIMECODE_H

#include <string>
#include <string_view>

namespace reeldb::lists {

/// Why the text is not a timecode, or an empty text if it is: hh:mm:ss:ff, hours below 24, minutes and seconds below
/// 60, frames of two digits below 60 or of three below 120, and each separator one of ':', ';', '.' and ','.
std::string timecodeFault(std::string_view text);

/// The frames of a timecode without fault.
int framesOf(std::string_view timecode);

/// Whether the text is a frame number, which some lists have in place of source timecodes: one to nine digits.
bool isFrameNumber(std::string_view text);

/// Whether timecode a counts a later frame of the day than b. Both are without fault, or both are frame numbers.
bool isAfter(std::string_view a, std::string_view b);

/// Whether a separator of the timecode means drop frame.
bool isDropFrame(std::string_view timecode);

/// Whether the text was meant as a timecode, good or bad: only digits and three separators, or any text with two colons
/// or semicolons.
bool looksLikeTimecode(std::string_view text);

} // namespace reeldb::lists

#endif
