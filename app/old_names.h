// SPDX-License-Identifier: Apache-2.0
//
// The names a reel had before. The command keeps them, in the configuration block of the reel's log: keys
// "reel_old_name0", "reel_old_name1" ... in the order in which they were given up.
#ifndef REELDB_CLI_OLD_NAMES_H
#define REELDB_CLI_OLD_NAMES_H

#include <string>
#include <vector>

#include "ReelDbRec.h"

namespace reeldb::cli {

std::vector<std::string> oldNamesOf(ReelDbRec reel);

/// Notes that the reel was called this, unless it is noted already. ASCII case does not matter: a name is found in any.
void keepOldName(ReelDbRec reel, const std::string& name);

} // namespace reeldb::cli

#endif
