// SPDX-License-Identifier: Apache-2.0
/// @file
/// Reel creation that was asked for on another thread than the main one.
#ifndef REELDB_CREATE_NEW_REEL_ACTION_H
#define REELDB_CREATE_NEW_REEL_ACTION_H

#include "ReelDbExport.h"
#include "host/action.h"
#include "host/lwstring.h"

/// A reel creation that waits for the main thread. It keeps the identifier alive until it has run.
class REELDB_EXPORT CreateNewReelAction : public iExecutableAction {
public:
  /// Keeps the arguments of ReelDbManager::createNewReel; the text is shared, not copied. Any thread.
  CreateNewReelAction(const LightweightString<char>& reelId, int deviceId);
  ~CreateNewReelAction() override; ///< lets go of the identifier, on the thread of the last holder
  /// Main thread: creates the reel; a reel made meanwhile makes it a no-op. The record is dropped: clients hear of it.
  void execute() override;

private:
  LightweightString<char> reelId_;
  int deviceId_;
};

#endif
