// SPDX-License-Identifier: Apache-2.0
//
// Deleting reels with the shots recorded from them, and bringing them back.
#ifndef REELDB_APP_DELETION_H
#define REELDB_APP_DELETION_H

#include <cstddef>
#include <string>
#include <vector>

#include "app/session.h"
#include "app/shots.h"

namespace reeldb::app {

/// The effects of a deletion: a value that can be shown before the deletion is carried out.
struct DeletionPlan {
  struct Item {
    std::string reel;        ///< the identifier as its record spells it
    bool kept = false;       ///< it stays, with its shots
    std::vector<Shot> shots; ///< recorded from it; they are deleted or kept with it
  };
  std::vector<std::string> reels, keep; ///< as the caller gave them
  bool dryRun = false;                  ///< for reports: whether the plan is only shown
  std::vector<Item> items;              ///< the reels that the caller gave, each once
  std::vector<std::string> logs;        ///< the logs to delete, in text form: reels, each followed by its shots

  bool empty() const { return logs.empty(); }
  std::size_t reelCount() const; ///< the number of reels to delete
  std::size_t shotCount() const { return logs.size() - reelCount(); }
};

/// Determines what deleting these reels would delete. Reels in @p keep stay, and so do their shots. Changes nothing.
/// Throws Error (NotFound) for a reel in either list that does not exist.
DeletionPlan planDeletion(Session& session, const std::vector<std::string>& reels,
                          const std::vector<std::string>& keep);

/// Carries out the plan and stores it. Throws Error (Refused) if the project has changed so that other logs would be
/// deleted than the plan lists; nothing is deleted then. REQUIRES: a session for writing.
void carryOut(Session& session, const DeletionPlan& plan);

/// Deletes the reels at once, without a plan to confirm, and stores that. Returns what was deleted. Throws Error as
/// planDeletion does. REQUIRES: a session for writing.
DeletionPlan deleteReels(Session& session, const std::vector<std::string>& reels, const std::vector<std::string>& keep);

struct Undeleted {
  std::vector<std::string> reels; ///< identifiers, in the order of the project
  std::size_t shots = 0;
};

/// Restores the last deletion and stores that. Throws Error (Refused) if there is no deletion, or if another reel now
/// has the identifier of a reel to restore. REQUIRES: a session for writing.
Undeleted undelete(Session& session);

} // namespace reeldb::app

#endif
