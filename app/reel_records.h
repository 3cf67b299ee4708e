// SPDX-License-Identifier: Apache-2.0
//
// Reels by their records. For the sources of this room.
#ifndef REELDB_APP_REEL_RECORDS_H
#define REELDB_APP_REEL_RECORDS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "app/reels.h"

namespace reeldb::app {

/// How many shots each reel has, by its folded identifier, as reelhost::shotCounts returns it.
using ShotCounts = std::unordered_map<std::string, std::int64_t>;

Reel readReel(ReelDbRec record, const ShotCounts& shots);

/// The record of a reel, letter case aside. Throws Error (NotFound), which names those that may have been meant.
ReelDbRec requireReel(ReelDbManager& manager, const std::string& id);

/// Whether the reel type catalogue lists the name. Asking adds nothing to it.
bool isListedType(const std::string& type);

/// The identifier without its outer blanks. Throws Error for one that cannot be shown or handed on, that is blank or
/// too long, or that denotes generated material. Looks at no project.
std::string checkedReelName(const std::string& asked);

/// Adds a remark on an identifier that cut lists use for something that is no reel: no import will ever mean this reel
/// by it.
void remarkOnSpecialName(const std::string& id, std::vector<std::string>& remarks);

/// Those names that may have been meant by another: they have the same letters and digits in the same order, whatever
/// their case (also that of letters beyond ASCII) and whatever stands between them.
std::vector<std::string> similarNames(std::string_view meant, const std::vector<std::string>& names);

/// The names a reel had before, in the order in which they were given up, without one that came back. They are kept in
/// the configuration block of the reel's log, under the keys "reel_old_name0", "reel_old_name1" ...
std::vector<std::string> oldNamesOf(ReelDbRec reel);

/// Notes that the reel was called this, unless it is noted already. ASCII case does not matter: a name is found in any.
void keepOldName(ReelDbRec reel, const std::string& name);

} // namespace reeldb::app

#endif
