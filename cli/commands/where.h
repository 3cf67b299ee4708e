// SPDX-License-Identifier: Apache-2.0
//
// The option --where, and patterns of reels.
#ifndef REELDB_CLI_WHERE_H
#define REELDB_CLI_WHERE_H

#include <string>
#include <vector>

#include "line/command_line.h"

namespace reeldb::cli {

/// The rule for the help of a command that takes reels in this way.
inline constexpr const char* whereRule =
    "A star in the name of a reel stands for any characters. --where FIELD=VALUE takes the reels with that value,\n"
    "FIELD!=VALUE all others; given several times, all have to hold. FIELD is a field of reeldb set, name, shelf,\n"
    "shots, unused (yes or no), roll (a camera roll) or list (an imported list). A star in VALUE stands for any\n"
    "characters; an empty VALUE means that the field has no value.";

inline void addWhere(Command& command, std::vector<std::string>& where)
{
  command.texts("--where", where, "Only the reels with this value; may be given several times")
      .shownAs("FIELD=VALUE")
      .oneEachTime();
}

} // namespace reeldb::cli

#endif
