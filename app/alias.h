// SPDX-License-Identifier: Apache-2.0
//
// The names of a reel, and those that people give it.
#ifndef REELDB_APP_ALIAS_H
#define REELDB_APP_ALIAS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/names.h"
#include "app/session.h"

namespace reeldb::app {

/// Where a name of a reel comes from.
enum class NameOrigin {
  Renamed, ///< the reel had this name
  Given,   ///< a person gave it
  OneList, ///< a person said that one list means the reel by it
  Lists,   ///< lists gave it to shots of the reel
};

/// "renamed", "alias", "one-list", "lists"
std::string_view wordOf(NameOrigin origin);

struct ReelName {
  std::string name;
  NameOrigin origin = NameOrigin::Lists;
  lists::Match match = lists::Match::Decided; ///< how the name leads to the reel
  std::string sourceId = {};                  ///< of a name that lists gave
  std::int64_t list = 0;                      ///< the number of the one list
};

struct ReelAliases {
  std::string reel; ///< the identifier as its record spells it
  bool dryRun = false, stored = false;
  std::vector<ReelName> names; ///< those that people gave first; then those of lists, each once
  std::vector<ReelMove> moves; ///< shots that the change gave another reel
};

/// The names of the reel beside its identifier. Throws Error (NotFound).
ReelAliases aliasesOf(Session& session, const std::string& reel);

/// Lets lists mean the reel by these names, whatever else the names say, and moves their shots there; or, with
/// @p remove, lets lists mean by them what the names say. Stores that. A former name can be removed, too. Throws Error:
/// NotFound; Invalid or Refused for a name that breaks the rule of reels.h; Refused for the identifier of a reel, and
/// for a name that another reel has by decision. With @p dryRun nothing is stored. REQUIRES: a session for writing,
/// unless it is a dry run.
ReelAliases changeAliases(Session& session, const std::string& reel, const std::vector<std::string>& names, bool remove,
                          bool dryRun);

} // namespace reeldb::app

#endif
