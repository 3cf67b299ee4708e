// SPDX-License-Identifier: Apache-2.0
/// @file
/// Notifies the library of what other processes change in the project. The host is not linked with the library, so this
/// is an inline function for applications that are linked with both. Main thread only.
#ifndef REELHOST_INFORM_MANAGER_H
#define REELHOST_INFORM_MANAGER_H

#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "reelhost/host.h"

namespace reelhost {

/// Applies the changes of other processes (applyChangesFromElsewhere), then notifies the manager: of the set of reels,
/// once, if it changed, with the identifier of the reel if exactly one is new; then of each reel that keeps its
/// identifier and has another value, in the order of the project. Clients are called when the whole change is applied.
/// While notifications are held nothing is applied: the state is Later. Returns what was applied. Throws as
/// applyChangesFromElsewhere does; exceptions of clients pass through.
inline ForeignChanges informOfChangesFromElsewhere(ReelDbManager& manager)
{
  ForeignChanges changes;
  if (manager.notifyHoldCount != 0) {
    changes.state = ForeignChanges::State::Later;
    return changes;
  }
  changes = applyChangesFromElsewhere();
  if (changes.reelSet)
    manager.informReelDbChanged(changes.newReel.c_str());
  for (const Cookie& log : changes.changedReels)
    manager.informReelDbRecChanged(ReelDbRec(log).reelId());
  return changes;
}

} // namespace reelhost

#endif
