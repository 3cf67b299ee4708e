// SPDX-License-Identifier: Apache-2.0
//
// The lists that the open project keeps.
#ifndef REELDB_APP_KEPT_LISTS_H
#define REELDB_APP_KEPT_LISTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "app/session.h"
#include "app/shots.h"

namespace reeldb::app {

/// A list that the project keeps.
struct KeptList {
  std::int64_t number = 0;
  std::string file, title, format; ///< the title may be empty; "edl" or "ale"
  std::int64_t events = 0;         ///< the number of its lines that are events, those without a source included
};

/// The lists of the project, by number. Throws Error (Refused) if the project keeps no lists.
std::vector<KeptList> keptLists(Session& session);

/// The list with this number, or else the one with this file name, or else the one with this title; letter case of
/// names is ignored. Throws Error: NotFound, Refused if several lists have the name.
KeptList requireList(Session& session, const std::string& name);

/// An event of a list.
struct ListUse {
  Shot clip;        ///< what the list says
  std::string reel; ///< the identifier that the reel of its shot has now; empty: the event has no source
};

/// A list with its events, or with some of them.
struct ListEvents {
  KeptList list;
  std::vector<ListUse> events; ///< in the order of the list
};

ListEvents eventsOf(Session& session, const std::string& list);

/// All lists of the project with their events, by number. Throws Error (Refused) if the project keeps no lists.
std::vector<ListEvents> eventsOfLists(Session& session);

/// The bytes of the list's file.
std::string originalOf(Session& session, const std::string& list);

/// The lists with an event that comes from the reel, each with these events. Throws Error (NotFound) if there is
/// neither such a reel nor such a shot.
std::vector<ListEvents> listsUsing(Session& session, const std::string& reel);

/// What was removed with a list.
struct RemovedList {
  KeptList list;
  bool dryRun = false, stored = false;
  std::vector<std::string> reels; ///< identifiers
  std::vector<Shot> shots;
};

/// Removes the list with its events, and the shots and reels that nothing else names and that imports alone made and
/// changed; stores that unless @p dryRun. Throws Error as requireList does. REQUIRES: a session for writing, unless it
/// is a dry run.
RemovedList removeList(Session& session, const std::string& list, bool dryRun);

} // namespace reeldb::app

#endif
