// SPDX-License-Identifier: Apache-2.0
//
// The meaning of a name in cut lists and log files.
#ifndef REELDB_LISTS_NAMES_H
#define REELDB_LISTS_NAMES_H

#include <string_view>

namespace reeldb::lists {

/// The meaning of a reel text that is never a reel: "black" (BL, BLACK), "colour bars" (BARS), "generated" (GEN), in
/// any case. Empty for every other text.
std::string_view placeholderReason(std::string_view reelText);

/// Why an identifier does not name a reel: it is a placeholder, or contains a star. Empty if it names a reel.
std::string_view specialReason(std::string_view identifier);

/// AX, in any case: a source without a tape; its clip name or source file identifies it.
bool isAuxiliary(std::string_view name);

} // namespace reeldb::lists

#endif
