// SPDX-License-Identifier: Apache-2.0
/// @file
/// The deferred creation of a reel that was requested on a worker thread.
#ifndef REELDB_CREATE_NEW_REEL_ACTION_H
#define REELDB_CREATE_NEW_REEL_ACTION_H

#include "ReelDbExport.h"
#include "host/action.h"
#include "host/lwstring.h"

/// A reel creation that waits for the main thread. It keeps the identifier alive until it has run.
class REELDB_EXPORT CreateNewReelAction : public iExecutableAction {
public:
  /// Stores the arguments of ReelDbManager::createNewReel. The text is shared, not copied. Any thread.
  CreateNewReelAction(const LightweightString<char>& reelId, int deviceId);
  ~CreateNewReelAction() override; ///< runs on the thread of the last holder
  /// Creates the reel, or does nothing if the reel exists by now. The returned record is dropped: clients are notified
  /// of the reel. Main thread.
  void execute() override;

private:
  LightweightString<char> reelId_;
  int deviceId_;
};

#endif
