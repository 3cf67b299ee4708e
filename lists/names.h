// SPDX-License-Identifier: Apache-2.0
//
// The meaning of a name in cut lists and log files.
#ifndef REELDB_LISTS_NAMES_H
#define REELDB_LISTS_NAMES_H

#include <cstddef>
#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// The meaning of a reel text that is never a reel: "black" (BL, BLACK), "colour bars" (BARS), "generated" (GEN), in
/// any case. Empty for every other text.
std::string_view placeholderReason(std::string_view reelText);

/// Why an identifier does not name a reel: it is a placeholder, or contains a star. Empty if it names a reel.
std::string_view specialReason(std::string_view identifier);

/// The width of the reel field that holds a column of this width: the narrowest of paddedReelFields; 0 if none does, or
/// if the column is empty.
std::size_t paddedField(std::size_t column);

/// Whether the reel text of an event fills its field, so that it may be cut.
bool fillsField(const Event& event);

/// Why a row of a log has no source.
inline constexpr std::string_view noSourceReason = "no tape and no source file";

/// Why something in a timeline has no source.
inline constexpr std::string_view gapReason = "gap";
inline constexpr std::string_view nestedReason = "nested sequence";
inline constexpr std::string_view multicamReason = "multicam clip";
inline constexpr std::string_view generatedReason = "generated";

/// AX, in any case: a source without a tape; its clip name or source file identifies it.
bool isAuxiliary(std::string_view name);

} // namespace reeldb::lists

#endif
