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
#include "reelhost/store.h"

namespace reeldb::app {

/// The number of shots of each reel by its folded identifier, from reelhost::shotCounts.
using ShotCounts = std::unordered_map<std::string, std::int64_t>;

Reel readReel(ReelDbRec record, const ShotCounts& shots);

/// The record of a reel, ignoring letter case. Throws Error (NotFound), which lists similar names.
ReelDbRec requireReel(ReelDbManager& manager, const std::string& id);

/// Whether the reel type catalogue lists the name. Does not add the name.
bool isListedType(const std::string& type);

/// The identifier without its outer blanks. Throws Error for an identifier that is not UTF-8 without control
/// characters, that is blank or too long, or that denotes generated material. Reads no project.
std::string checkedReelName(const std::string& asked);

/// Adds a warning about a type that the catalogue does not list. The empty type gets none.
void remarkOnUnlistedType(const std::string& type, std::vector<std::string>& remarks);

/// Adds a warning about an identifier that cut lists use for something that is not a reel: no import can refer to this
/// reel by it.
void remarkOnSpecialName(const std::string& id, std::vector<std::string>& remarks);

/// The names similar to @p meant: they have the same letters and digits in the same order, ignoring case (also that of
/// letters beyond ASCII) and all characters between them.
std::vector<std::string> similarNames(std::string_view meant, const std::vector<std::string>& names);

/// The former names of a reel, oldest first, without its current name. They are kept in the configuration block of the
/// reel's log, under the keys "reel_old_name0", "reel_old_name1" ...
std::vector<std::string> oldNamesOf(ReelDbRec reel);
std::vector<std::string> oldNamesOf(const reelhost::StoredLog& reel);

/// Stores a former name of the reel, unless it is stored already. ASCII case does not matter.
void keepOldName(ReelDbRec reel, const std::string& name);
/// Removes it from the former names. Returns whether it was one.
bool forgetOldName(ReelDbRec reel, const std::string& name);

/// The texts under the keys "KEY0", "KEY1" ... of the reel's log, up to the first that is missing or empty.
std::vector<std::string> keptTexts(ReelDbRec reel, const std::string& key);
std::vector<std::string> keptTexts(const reelhost::StoredLog& reel, const std::string& key);
/// Replaces these texts; none of the new ones is empty.
void keepTexts(ReelDbRec reel, const std::string& key, const std::vector<std::string>& texts);

} // namespace reeldb::app

#endif
