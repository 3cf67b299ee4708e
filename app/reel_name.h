// SPDX-License-Identifier: Apache-2.0
//
// What a reel may be called: one rule for new reels and new names.
#ifndef REELDB_CLI_REEL_NAME_H
#define REELDB_CLI_REEL_NAME_H

#include <string>

namespace reeldb::cli {

/// The rule, for the help of commands.
inline constexpr const char* reelNameRule =
    "A name that is blank or holds a star or a control character is refused. One that cut lists use for what\n"
    "is no reel (BL, BLACK, BARS, GEN, AX) is taken with a warning: import never means a reel by it.";

/// The identifier without its outer blanks. Throws Failure for one that cannot be shown or handed on, that is blank or
/// too long, or that denotes generated material. Looks at no project.
std::string checkedReelName(const std::string& asked);

/// Warns of an identifier that cut lists use for something that is no reel: no import will ever mean this reel by it.
void warnOfSpecialName(const std::string& id);

} // namespace reeldb::cli

#endif
